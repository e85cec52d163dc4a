#include "render/jni_guards.h"

#include "jni/bridge/bridge.h"

LockedBitmap::LockedBitmap(JNIEnv* env, jobject bitmap, bool requireRGBA) : env_(env), bitmap_(bitmap) {
    if (bitmap == nullptr) {
        jniThrowNullPointerException(env, "bitmap is null");
        result_ = ANDROID_BITMAP_RESULT_BAD_PARAMETER;
        return;
    }
    result_ = AndroidBitmap_getInfo(env, bitmap, &info_);
    if (result_ < 0) return;
    if (requireRGBA && info_.format != ANDROID_BITMAP_FORMAT_RGBA_8888) return;
    result_ = AndroidBitmap_lockPixels(env, bitmap, &pixels_);
    if (result_ < 0) pixels_ = nullptr;
}

LockedBitmap::~LockedBitmap() { unlock(); }

int LockedBitmap::unlock() {
    if (pixels_ == nullptr) return 0;
    pixels_ = nullptr;
    return AndroidBitmap_unlockPixels(env_, bitmap_);
}
