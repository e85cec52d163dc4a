// The render natives' bitmap owner (info, format check, lock) beside the
// shared array guards.
#ifndef IFC_RENDER_JNI_GUARDS_H
#define IFC_RENDER_JNI_GUARDS_H

#include <android/bitmap.h>
#include <jni.h>

#include <cstddef>

#include "image/image_internal.h"
#include "jni/bridge/jni_guards.h"

using ifc::ByteElements;
using ifc::throwArrayTooShort;
using ifc::throwNullArgument;
using ifc::FloatElements;
using ifc::IntElements;

// A bitmap's info and locked pixels; unlocked on scope exit. With
// requireRGBA, a bitmap of another format is not locked. result() is the
// failing AndroidBitmap_* result (0 for success or a wrong format); a null
// bitmap raises "java/lang/NullPointerException".
class LockedBitmap {
public:
    LockedBitmap(JNIEnv* env, jobject bitmap, bool requireRGBA);
    ~LockedBitmap();
    LockedBitmap(const LockedBitmap&) = delete;
    LockedBitmap& operator=(const LockedBitmap&) = delete;

    bool locked() const { return pixels_ != nullptr; }
    int result() const { return result_; }
    const AndroidBitmapInfo& info() const { return info_; }
    void* pixels() const { return pixels_; }
    size_t byteCount() const { return ifc::heldBytes(info_.stride, info_.height); }
    // Unlocks now; the unlock result.
    int unlock();

private:
    JNIEnv* env_;
    jobject bitmap_;
    AndroidBitmapInfo info_{};
    void* pixels_ = nullptr;
    int result_ = 0;
};

#endif  // IFC_RENDER_JNI_GUARDS_H
