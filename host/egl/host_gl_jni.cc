// JNI side of com.lumeric.host.HostGL: lets Java tests and the demo own a
// headless GL context on their thread, and make, fill, read and delete
// textures on it. The Java class checks the arguments; here only GL runs.
#include <EGL/egl.h>
#include <GLES2/gl2.h>
#include <jni.h>

#include <string>
#include <vector>

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

namespace {

void throwIllegalState(JNIEnv* env, const char* message) {
    env->ThrowNew(env->FindClass("java/lang/IllegalStateException"), message);
}

bool haveContext(JNIEnv* env) {
    if (eglGetCurrentContext() != EGL_NO_CONTEXT) return true;
    throwIllegalState(env, "no current GL context on this thread (HostGL.makeCurrent)");
    return false;
}

// 0xAARRGGBB ints (Bitmap order) to R, G, B, A bytes and back.
std::vector<unsigned char> rgbaOf(JNIEnv* env, jintArray argb, size_t count) {
    std::vector<jint> pixels(count);
    env->GetIntArrayRegion(argb, 0, static_cast<jsize>(count), pixels.data());
    std::vector<unsigned char> rgba(count * 4);
    for (size_t i = 0; i < count; ++i) {
        const uint32_t p = static_cast<uint32_t>(pixels[i]);
        rgba[4 * i] = static_cast<unsigned char>(p >> 16);
        rgba[4 * i + 1] = static_cast<unsigned char>(p >> 8);
        rgba[4 * i + 2] = static_cast<unsigned char>(p);
        rgba[4 * i + 3] = static_cast<unsigned char>(p >> 24);
    }
    return rgba;
}

}  // namespace

JNIEXPORT void JNICALL Java_com_lumeric_host_HostGL_nativeFillTexture(JNIEnv* env, jclass, jint texture, jint width,
                                                                      jint height, jintArray argb) {
    if (!haveContext(env)) return;
    GLint maxSize = 0;
    glGetIntegerv(GL_MAX_TEXTURE_SIZE, &maxSize);
    if (width > maxSize || height > maxSize) {
        const std::string message = "texture size " + std::to_string(width) + "x" + std::to_string(height) +
                                    " is beyond GL_MAX_TEXTURE_SIZE " + std::to_string(maxSize);
        env->ThrowNew(env->FindClass("java/lang/IllegalArgumentException"), message.c_str());
        return;
    }
    const std::vector<unsigned char> rgba = rgbaOf(env, argb, static_cast<size_t>(width) * height);
    GLint bound = 0;
    glGetIntegerv(GL_TEXTURE_BINDING_2D, &bound);
    glBindTexture(GL_TEXTURE_2D, static_cast<GLuint>(texture));
    // Rows are tightly packed; the default unpack alignment of 4 would not
    // matter for RGBA, but a caller may have changed it.
    glPixelStorei(GL_UNPACK_ALIGNMENT, 1);
    glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA, width, height, 0, GL_RGBA, GL_UNSIGNED_BYTE, rgba.data());
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_LINEAR);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_CLAMP_TO_EDGE);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, GL_CLAMP_TO_EDGE);
    glBindTexture(GL_TEXTURE_2D, static_cast<GLuint>(bound));
}

JNIEXPORT jint JNICALL Java_com_lumeric_host_HostGL_nativeGenTexture(JNIEnv* env, jclass) {
    if (!haveContext(env)) return 0;
    GLuint name = 0;
    glGenTextures(1, &name);
    return static_cast<jint>(name);
}

JNIEXPORT void JNICALL Java_com_lumeric_host_HostGL_nativeDeleteTexture(JNIEnv* env, jclass, jint texture) {
    if (!haveContext(env)) return;
    const GLuint name = static_cast<GLuint>(texture);
    glDeleteTextures(1, &name);
}

JNIEXPORT void JNICALL Java_com_lumeric_host_HostGL_nativeReadTexture(JNIEnv* env, jclass, jint texture, jint width,
                                                                      jint height, jintArray argb) {
    if (!haveContext(env)) return;
    GLint boundFramebuffer = 0;
    glGetIntegerv(GL_FRAMEBUFFER_BINDING, &boundFramebuffer);
    GLuint framebuffer = 0;
    glGenFramebuffers(1, &framebuffer);
    glBindFramebuffer(GL_FRAMEBUFFER, framebuffer);
    glFramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D, static_cast<GLuint>(texture), 0);
    const bool complete = glCheckFramebufferStatus(GL_FRAMEBUFFER) == GL_FRAMEBUFFER_COMPLETE;
    const size_t count = static_cast<size_t>(width) * height;
    std::vector<unsigned char> rgba(count * 4);
    if (complete) {
        glPixelStorei(GL_PACK_ALIGNMENT, 1);
        glReadPixels(0, 0, width, height, GL_RGBA, GL_UNSIGNED_BYTE, rgba.data());
    }
    glBindFramebuffer(GL_FRAMEBUFFER, static_cast<GLuint>(boundFramebuffer));
    glDeleteFramebuffers(1, &framebuffer);
    if (!complete) {
        throwIllegalState(env, "the texture cannot be read: it has no RGBA storage of that size");
        return;
    }
    std::vector<jint> pixels(count);
    for (size_t i = 0; i < count; ++i) {
        const unsigned char* p = &rgba[4 * i];
        pixels[i] = static_cast<jint>((uint32_t{p[3]} << 24) | (uint32_t{p[0]} << 16) | (uint32_t{p[1]} << 8) | p[2]);
    }
    env->SetIntArrayRegion(argb, 0, static_cast<jsize>(count), pixels.data());
}

JNIEXPORT jint JNICALL Java_com_lumeric_host_HostGL_nativeMaxTextureSize(JNIEnv*, jclass) {
    GLint limit = 0;
    glGetIntegerv(GL_MAX_TEXTURE_SIZE, &limit);
    return limit;
}

JNIEXPORT void JNICALL Java_com_lumeric_host_HostGL_nativePixelStore(JNIEnv* env, jclass, jint name, jint value) {
    if (haveContext(env)) glPixelStorei(static_cast<GLenum>(name), value);
}

JNIEXPORT jint JNICALL Java_com_lumeric_host_HostGL_nativeInteger(JNIEnv* env, jclass, jint name) {
    GLint value = 0;
    if (haveContext(env)) glGetIntegerv(static_cast<GLenum>(name), &value);
    return value;
}

}  // extern "C"
