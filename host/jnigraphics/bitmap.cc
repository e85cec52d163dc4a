// Host libjnigraphics: AndroidBitmap_* over the host android.graphics.Bitmap,
// whose pixels live in a direct ByteBuffer so a locked address stays valid.
// Locks are counted in the Bitmap's "lockCount" so tests can see a bitmap
// left locked; Bitmap.failNextLocks() makes locking fail on purpose.
// Implements the NDK's own <android/bitmap.h> as Debian ships it.
#include <android/bitmap.h>

#define EXPORT __attribute__((visibility("default")))

namespace {

struct BitmapFields {
    jfieldID width, height, format, pixels, lockCount, failLocks;
};

bool lookUp(JNIEnv* env, jobject bitmap, BitmapFields* f) {
    if (env == nullptr || bitmap == nullptr) return false;
    jclass cls = env->FindClass("android/graphics/Bitmap");
    if (cls == nullptr) {
        env->ExceptionClear();
        return false;
    }
    bool isBitmap = env->IsInstanceOf(bitmap, cls);
    if (isBitmap) {
        f->width = env->GetFieldID(cls, "width", "I");
        f->height = env->GetFieldID(cls, "height", "I");
        f->format = env->GetFieldID(cls, "nativeFormat", "I");
        f->pixels = env->GetFieldID(cls, "pixels", "Ljava/nio/ByteBuffer;");
        f->lockCount = env->GetFieldID(cls, "lockCount", "I");
        f->failLocks = env->GetFieldID(cls, "failLocks", "I");
    }
    env->DeleteLocalRef(cls);
    return isBitmap;
}

int bytesPerPixel(int format) {
    switch (format) {
        case ANDROID_BITMAP_FORMAT_RGBA_8888: return 4;
        case ANDROID_BITMAP_FORMAT_RGB_565: return 2;
        case ANDROID_BITMAP_FORMAT_RGBA_4444: return 2;
        case ANDROID_BITMAP_FORMAT_A_8: return 1;
        default: return 4;
    }
}

}  // namespace

extern "C" {

EXPORT int AndroidBitmap_getInfo(JNIEnv* env, jobject jbitmap, AndroidBitmapInfo* info) {
    BitmapFields f;
    if (!lookUp(env, jbitmap, &f)) return ANDROID_BITMAP_RESULT_BAD_PARAMETER;
    if (info != nullptr) {
        info->width = static_cast<uint32_t>(env->GetIntField(jbitmap, f.width));
        info->height = static_cast<uint32_t>(env->GetIntField(jbitmap, f.height));
        info->format = env->GetIntField(jbitmap, f.format);
        info->stride = info->width * bytesPerPixel(info->format);
        info->flags = 0;
    }
    return ANDROID_BITMAP_RESULT_SUCCESS;
}

EXPORT int AndroidBitmap_lockPixels(JNIEnv* env, jobject jbitmap, void** addrPtr) {
    BitmapFields f;
    if (!lookUp(env, jbitmap, &f)) return ANDROID_BITMAP_RESULT_BAD_PARAMETER;
    jint failing = env->GetIntField(jbitmap, f.failLocks);
    if (failing > 0) {
        env->SetIntField(jbitmap, f.failLocks, failing - 1);
        return ANDROID_BITMAP_RESULT_ALLOCATION_FAILED;
    }
    jobject buffer = env->GetObjectField(jbitmap, f.pixels);
    if (buffer == nullptr) return ANDROID_BITMAP_RESULT_ALLOCATION_FAILED;  // recycled
    void* address = env->GetDirectBufferAddress(buffer);
    env->DeleteLocalRef(buffer);
    if (address == nullptr) return ANDROID_BITMAP_RESULT_JNI_EXCEPTION;
    env->SetIntField(jbitmap, f.lockCount, env->GetIntField(jbitmap, f.lockCount) + 1);
    if (addrPtr != nullptr) *addrPtr = address;
    return ANDROID_BITMAP_RESULT_SUCCESS;
}

EXPORT int AndroidBitmap_unlockPixels(JNIEnv* env, jobject jbitmap) {
    BitmapFields f;
    if (!lookUp(env, jbitmap, &f)) return ANDROID_BITMAP_RESULT_BAD_PARAMETER;
    jint count = env->GetIntField(jbitmap, f.lockCount);
    // Unlocking a bitmap that is not locked succeeds, as on a device.
    if (count > 0) env->SetIntField(jbitmap, f.lockCount, count - 1);
    return ANDROID_BITMAP_RESULT_SUCCESS;
}

}  // extern "C"
