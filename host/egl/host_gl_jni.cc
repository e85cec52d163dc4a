// JNI side of com.lumeric.host.HostGL: lets Java tests and the demo own a
// headless GL context on their thread.
#include <GLES2/gl2.h>
#include <jni.h>

#include <string>

#include "headless_gl.h"

extern "C" {

JNIEXPORT jlong JNICALL Java_com_lumeric_host_HostGL_nativeCreate(JNIEnv* env, jclass, jint width, jint height) {
    std::string error;
    auto gl = ifc_host::HeadlessGL::create(width, height, &error);
    if (!gl) {
        jclass cls = env->FindClass("java/lang/IllegalStateException");
        env->ThrowNew(cls, ("no OpenGL ES 2.0 context could be made: " + error).c_str());
        return 0;
    }
    return static_cast<jlong>(reinterpret_cast<intptr_t>(gl.release()));
}

JNIEXPORT jboolean JNICALL Java_com_lumeric_host_HostGL_nativeMakeCurrent(JNIEnv*, jclass, jlong handle) {
    auto* gl = reinterpret_cast<ifc_host::HeadlessGL*>(static_cast<intptr_t>(handle));
    return gl != nullptr && gl->makeCurrent() ? JNI_TRUE : JNI_FALSE;
}

JNIEXPORT void JNICALL Java_com_lumeric_host_HostGL_nativeDestroy(JNIEnv*, jclass, jlong handle) {
    delete reinterpret_cast<ifc_host::HeadlessGL*>(static_cast<intptr_t>(handle));
}

JNIEXPORT jint JNICALL Java_com_lumeric_host_HostGL_nativeMaxTextureSize(JNIEnv*, jclass) {
    GLint limit = 0;
    glGetIntegerv(GL_MAX_TEXTURE_SIZE, &limit);
    return limit;
}

}  // extern "C"
