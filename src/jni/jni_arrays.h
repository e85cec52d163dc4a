// RAII owners of JNI array elements and bitmap locks used by the pixel
// natives, so that every early return releases what was taken.
#ifndef IFC_JNI_JNI_ARRAYS_H
#define IFC_JNI_JNI_ARRAYS_H

#include <android/bitmap.h>
#include <jni.h>

#include <cstdint>

namespace ifc {

// GetByteArrayElements, released with mode 0 (copied back, then freed).
class ByteArrayElements {
public:
    ByteArrayElements(JNIEnv* env, jbyteArray array)
        : env_(env), array_(array), bytes_(env->GetByteArrayElements(array, nullptr)) {}
    ~ByteArrayElements() {
        if (bytes_) env_->ReleaseByteArrayElements(array_, bytes_, 0);
    }
    ByteArrayElements(const ByteArrayElements&) = delete;
    ByteArrayElements& operator=(const ByteArrayElements&) = delete;

    const uint8_t* data() const { return reinterpret_cast<const uint8_t*>(bytes_); }

private:
    JNIEnv* env_;
    jbyteArray array_;
    jbyte* bytes_;
};

// Locked pixels of a bitmap; data() is null when locking failed.
class BitmapPixels {
public:
    BitmapPixels(JNIEnv* env, jobject bitmap) : env_(env), bitmap_(bitmap) {
        if (AndroidBitmap_lockPixels(env, bitmap, &pixels_) < 0) pixels_ = nullptr;
    }
    ~BitmapPixels() {
        if (pixels_) AndroidBitmap_unlockPixels(env_, bitmap_);
    }
    BitmapPixels(const BitmapPixels&) = delete;
    BitmapPixels& operator=(const BitmapPixels&) = delete;

    const uint8_t* data() const { return static_cast<const uint8_t*>(pixels_); }

private:
    JNIEnv* env_;
    jobject bitmap_;
    void* pixels_ = nullptr;
};

}  // namespace ifc

#endif  // IFC_JNI_JNI_ARRAYS_H
