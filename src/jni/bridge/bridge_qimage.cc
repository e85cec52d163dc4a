// Binding between com/lumeric/filter/QImage and the native _Image it holds.
#include <cstdarg>

#include "jni/bridge/bridge.h"
#include "jni/bridge/bridge_internal.h"

extern "C" {

int GetImageInfo(JNIEnv* env, ImageInfo* info) {
    info->clazz = jniFindAppClass(env, "com/lumeric/filter/QImage");
    info->width = env->GetFieldID(info->clazz, "width", "I");
    info->height = env->GetFieldID(info->clazz, "height", "I");
    info->nativeImage = env->GetFieldID(info->clazz, "nativeImage", "J");
    info->pixelFormat = env->GetFieldID(info->clazz, "pixelFormat", "I");
    info->pixelBytes = env->GetFieldID(info->clazz, "pixelBytes", "I");
    info->constructor = env->GetMethodID(info->clazz, "<init>", "()V");
    return 1;
}

// A null image only clears the handle: width, height and pixelBytes keep
// describing the last image on purpose.
void SetNativeImage(JNIEnv* env, ImageInfo* info, jobject qimage, _Image* image) {
    env->SetLongField(qimage, info->nativeImage, toJavaHandle(image));
    if (image == nullptr) return;
    env->SetIntField(qimage, info->width, image->width);
    env->SetIntField(qimage, info->height, image->height);
    env->SetIntField(qimage, info->pixelBytes, image->channels);
}

_Image* GetNativeImage(JNIEnv* env, ImageInfo* info, jobject qimage) {
    return fromJavaHandle<_Image>(env->GetLongField(qimage, info->nativeImage));
}

_Image* GetNativeImageFromQImage(JNIEnv* env, jobject qimage) {
    ImageInfo info;
    GetImageInfo(env, &info);
    _Image* image = GetNativeImage(env, &info, qimage);
    env->DeleteLocalRef(info.clazz);
    return image;
}

jobject CreateQImage(JNIEnv* env, ImageInfo* info) {
    return env->NewObject(info->clazz, info->constructor);
}

}  // extern "C"

jobject jniNewObject(JNIEnv* env, jclass clazz, jmethodID constructor, ...) {
    va_list args;
    va_start(args, constructor);
    jobject object = env->NewObjectV(clazz, constructor, args);
    va_end(args);
    return object;
}
