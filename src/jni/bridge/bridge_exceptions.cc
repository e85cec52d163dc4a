// Raising Java exceptions from native code.
#include "jni/bridge/bridge.h"
#include "jni/bridge/bridge_internal.h"

extern "C" {

// An unknown class name leaves FindClass's NoClassDefFoundError pending
// instead of the requested exception.
void jniThrowException(JNIEnv* env, const char* className, const char* message) {
    LocalRef<jclass> clazz(env, env->FindClass(className));
    if (clazz.get() != nullptr) env->ThrowNew(clazz.get(), message);
}

void jniThrowNullPointerException(JNIEnv* env, const char* message) {
    jniThrowException(env, "java/lang/NullPointerException", message);
}

void jniThrowRuntimeException(JNIEnv* env, const char* message) {
    jniThrowException(env, "java/lang/RuntimeException", message);
}

void Check_Image(JNIEnv* env, const _Image* image) {
    if (image == nullptr || image->data == nullptr) jniThrowRuntimeException(env, "image is empty");
}

}  // extern "C"
