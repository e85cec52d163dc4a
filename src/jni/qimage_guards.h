// Scope owners for the QImage natives: a deferred exception, a locked
// bitmap and pinned int-array elements.
#ifndef IFC_JNI_QIMAGE_GUARDS_H
#define IFC_JNI_QIMAGE_GUARDS_H

#include <android/bitmap.h>
#include <jni.h>

#include "jni/bridge.h"

namespace ifc {

// Some natives raise an exception and carry on. The first one raised is
// thrown when this goes out of scope (declare it first), so no JNI call runs
// with an exception pending; Java sees it on return all the same.
class DeferredThrow {
public:
    explicit DeferredThrow(JNIEnv* env) : env_(env) {}
    ~DeferredThrow() {
        if (className_ != nullptr) jniThrowException(env_, className_, message_);
    }
    DeferredThrow(const DeferredThrow&) = delete;
    DeferredThrow& operator=(const DeferredThrow&) = delete;

    void raise(const char* className, const char* message) {
        if (className_ != nullptr) return;
        className_ = className;
        message_ = message;
    }
    void runtime(const char* message) { raise("java/lang/RuntimeException", message); }
    void nullPointer(const char* message) { raise("java/lang/NullPointerException", message); }
    bool raised() const { return className_ != nullptr; }

private:
    JNIEnv* env_;
    const char* className_ = nullptr;
    const char* message_ = nullptr;
};

// Locks a bitmap's pixels; unlocks on scope exit unless told to stay locked.
class BitmapPixels {
public:
    BitmapPixels(JNIEnv* env, jobject bitmap) : env_(env), bitmap_(bitmap) {
        if (AndroidBitmap_lockPixels(env, bitmap, &pixels_) < 0) pixels_ = nullptr;
    }
    ~BitmapPixels() {
        if (pixels_ != nullptr && !keepLocked_) AndroidBitmap_unlockPixels(env_, bitmap_);
    }
    BitmapPixels(const BitmapPixels&) = delete;
    BitmapPixels& operator=(const BitmapPixels&) = delete;

    bool locked() const { return pixels_ != nullptr; }
    void* get() const { return pixels_; }
    // The lock outlives this scope (a bound image, or a deliberate leftover).
    void keepLocked() { keepLocked_ = true; }

private:
    JNIEnv* env_;
    jobject bitmap_;
    void* pixels_ = nullptr;
    bool keepLocked_ = false;
};

// GetIntArrayElements, released with mode 0 (copied back) on scope exit.
class IntArrayElements {
public:
    IntArrayElements(JNIEnv* env, jintArray array)
        : env_(env), array_(array), elements_(env->GetIntArrayElements(array, nullptr)) {}
    ~IntArrayElements() {
        if (elements_ != nullptr) env_->ReleaseIntArrayElements(array_, elements_, 0);
    }
    IntArrayElements(const IntArrayElements&) = delete;
    IntArrayElements& operator=(const IntArrayElements&) = delete;

    jint* get() const { return elements_; }

private:
    JNIEnv* env_;
    jintArray array_;
    jint* elements_;
};

// `this` QImage with its binding handles and current native image.
struct QImageSelf {
    QImageSelf(JNIEnv* env, jobject self) : env(env), self(self) {
        valid = GetImageInfo(env, &info) != 0;
        image = valid ? GetNativeImage(env, &info, self) : nullptr;
    }
    // Attaches `replacement` (or 0) and republishes width, height, pixelBytes.
    void attach(_Image* replacement) {
        image = replacement;
        SetNativeImage(env, &info, self, replacement);
    }

    JNIEnv* env;
    jobject self;
    ImageInfo info{};
    bool valid = false;
    _Image* image = nullptr;
};

}  // namespace ifc

#endif  // IFC_JNI_QIMAGE_GUARDS_H
