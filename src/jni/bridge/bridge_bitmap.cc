// Android bitmaps as header-only images, and the bitmap copy native.
#include <android/bitmap.h>

#include <algorithm>
#include <cstring>

#include "image/borrowed_pixels.h"
#include "image/image_internal.h"
#include "jni/bridge/bridge.h"
#include "jni/bridge/native_guard.h"

namespace {

size_t imageBytes(const _Image* image) { return ifc::heldBytes(image->stride, image->height); }

}  // namespace

size_t copyImageToPixels(const _Image* image, void* pixels, size_t capacity) {
    if (image->data == nullptr || pixels == nullptr) return 0;
    size_t count = imageBytes(image);
    // An owning image holds `size` bytes; a header borrows a whole bitmap.
    if (image->size > 0) count = std::min<size_t>(count, image->size);
    count = std::min(count, capacity);
    memcpy(pixels, image->data, count);
    return count;
}

extern "C" {

// The header is 4 channels with a derived stride whatever the bitmap's own
// format and stride; a failed lock shows only as null data. A bitmap whose
// info cannot be read (a null one among others) gives an empty header that
// was never locked. Null only when the header cannot be allocated.
_Image* bindBitmap2Image(JNIEnv* env, jobject bitmap) {
    AndroidBitmapInfo info{};
    bool readable = AndroidBitmap_getInfo(env, bitmap, &info) >= 0;
    if (!readable) info = AndroidBitmapInfo{};
    _Image* image = create_image_header(static_cast<int>(info.width),
                                        static_cast<int>(info.height), 4, -1);
    if (image == nullptr) return nullptr;
    void* pixels = nullptr;
    if (!readable || AndroidBitmap_lockPixels(env, bitmap, &pixels) < 0) pixels = nullptr;
    image->data = static_cast<unsigned char*>(pixels);
    if (!ifc::markPixelsBorrowed(image)) {
        // Unmarked, the bitmap's pixels could be freed as the image's own.
        if (pixels != nullptr) AndroidBitmap_unlockPixels(env, bitmap);
        image->data = nullptr;
    }
    return image;
}

void unbindBitmap(JNIEnv* env, jobject bitmap, _Image* image) {
    AndroidBitmap_unlockPixels(env, bitmap);
    free_image_header(&image);
}

JNIEXPORT jint JNICALL Java_com_lumeric_util_FilterEngineJNILib_nativeCopyImage(
    JNIEnv* env, jclass, jobject bitmap, jlong nativeImage) {
    return ifc::guardNative(env, [&]() -> jint {
        if (bitmap == nullptr) {
            jniThrowNullPointerException(env, "bitmap is null");
            return ANDROID_BITMAP_RESULT_BAD_PARAMETER;
        }
        const _Image* image = fromJavaHandle<_Image>(nativeImage);
        if (image == nullptr) {
            jniThrowRuntimeException(env, "native image is null");
            return ANDROID_BITMAP_RESULT_BAD_PARAMETER;
        }
        AndroidBitmapInfo info{};
        int result = AndroidBitmap_getInfo(env, bitmap, &info);
        if (result < 0) return result;
        void* pixels = nullptr;
        result = AndroidBitmap_lockPixels(env, bitmap, &pixels);
        if (result < 0) return result;
        // Never more than the bitmap holds, whatever the image's size.
        copyImageToPixels(image, pixels, ifc::heldBytes(info.stride, info.height));
        return AndroidBitmap_unlockPixels(env, bitmap);
    });
}

}  // extern "C"
