// JNI side of com.lumeric.demo.DemoGL: the few GL calls the demo makes itself
// (an app gets them from android.opengl.GLES20).
#include <GLES2/gl2.h>
#include <jni.h>

extern "C" {

JNIEXPORT jint JNICALL Java_com_lumeric_demo_DemoGL_genTexture(JNIEnv*, jclass) {
    GLuint texture = 0;
    glGenTextures(1, &texture);
    return static_cast<jint>(texture);
}

JNIEXPORT void JNICALL Java_com_lumeric_demo_DemoGL_deleteTexture(JNIEnv*, jclass, jint texture) {
    const GLuint name = static_cast<GLuint>(texture);
    glDeleteTextures(1, &name);
}

JNIEXPORT void JNICALL Java_com_lumeric_demo_DemoGL_finish(JNIEnv*, jclass) { glFinish(); }

JNIEXPORT jstring JNICALL Java_com_lumeric_demo_DemoGL_renderer(JNIEnv* env, jclass) {
    const GLubyte* renderer = glGetString(GL_RENDERER);
    return env->NewStringUTF(renderer != nullptr ? reinterpret_cast<const char*>(renderer) : "unknown");
}

}  // extern "C"
