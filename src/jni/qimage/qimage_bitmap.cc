// QImage natives that move pixels between the native image and Android
// bitmaps, or bind an image to a bitmap's locked pixels.
#include <android/bitmap.h>

#include <algorithm>
#include <cstring>
#include <optional>

#include "image/borrowed_pixels.h"
#include "image/image_internal.h"
#include "jni/bridge/bridge.h"
#include "jni/bridge/native_guard.h"
#include "jni/qimage/qimage_guards.h"
#include "jni/qimage/qimage_ops.h"

namespace {

size_t bitmapBytes(const AndroidBitmapInfo& info) { return ifc::heldBytes(info.stride, info.height); }

// Copies take the least of this, the image's and the bitmap's bytes: a
// count too large for this ABI leaves the other two to bound them.
size_t packedBytes(const _Image* image, const AndroidBitmapInfo& info) {
    return ifc::byteCount(std::max(image->channels, 0), info.width, info.height);
}

// Steps shared by Bitmap2QImage and BindBitmap: the format and lock errors
// are raised but do not stop the native.
struct BitmapSource {
    BitmapSource(JNIEnv* env, jobject bitmap, const AndroidBitmapInfo& bitmapInfo, ifc::DeferredThrow* pending)
        : info(bitmapInfo), pixels(env, bitmap) {
        if (info.format != ANDROID_BITMAP_FORMAT_RGBA_8888) pending->nullPointer("Bitmap format is not RGBA_8888");
        if (!pixels.locked()) pending->runtime("can't lock bitmap pixels");
        if (!GetImageInfo(env, &imageInfo)) pending->runtime("can't GetImageInfo");
    }

    AndroidBitmapInfo info;
    ifc::BitmapPixels pixels;
    ImageInfo imageInfo{};
};

// Builds a QImage for Bitmap2QImage / BindBitmap once every step passed.
// Bitmap info that cannot be read (a null bitmap among others) gives null
// without an exception. With an exception raised the object would be
// unreachable behind it, so none is built; a binding still leaves a locked
// bitmap locked, as binding always does. A binding keeps the lock only
// once its QImage exists.
template <typename MakeImage>
jobject newQImageFromBitmap(JNIEnv* env, jobject bitmap, bool binds, MakeImage makeImage) {
    AndroidBitmapInfo info{};
    if (AndroidBitmap_getInfo(env, bitmap, &info) < 0) return nullptr;
    ifc::DeferredThrow pending(env);
    BitmapSource source(env, bitmap, info, &pending);
    if (pending.raised()) {
        if (binds) source.pixels.keepLocked();
        return nullptr;
    }
    _Image* image = makeImage(source);
    if (image == nullptr) {
        pending.runtime("Out of memory of QImage");
        return nullptr;
    }
    jobject result = CreateQImage(env, &source.imageInfo);
    if (result == nullptr) {
        free_image(&image);  // a bound header goes without the bitmap's pixels
        return nullptr;
    }
    SetNativeImage(env, &source.imageInfo, result, image);
    if (binds) source.pixels.keepLocked();  // until UnBindBitmap
    return result;
}

// The steps FromBitmap and ToBitmap share before copying: bitmap info,
// format (FromBitmap only), pixel lock, this image. `ready` false means the
// native returns false.
struct BitmapTarget {
    BitmapTarget(JNIEnv* env, jobject self, jobject bitmap, bool rgbaOnly, ifc::DeferredThrow* pending) {
        if (AndroidBitmap_getInfo(env, bitmap, &info) < 0) {
            pending->nullPointer("can't get Bitmap info");
            return;
        }
        if (rgbaOnly && info.format != ANDROID_BITMAP_FORMAT_RGBA_8888) {
            pending->nullPointer("Bitmap format is not RGBA_8888");
            return;
        }
        pixels.emplace(env, bitmap);
        if (!pixels->locked()) {
            pending->runtime("can't lock bitmap pixels");
            return;
        }
        qimage.emplace(env, self);
        if (!qimage->valid) pending->runtime("can't GetImageInfo");
        ready = true;
    }
    size_t imageBytes() const { return packedBytes(qimage->image, info); }
    void* destination() const { return pixels->get(); }

    bool ready = false;
    AndroidBitmapInfo info{};
    std::optional<ifc::BitmapPixels> pixels;
    std::optional<ifc::QImageSelf> qimage;
};

}  // namespace

extern "C" {

JNIEXPORT jobject JNICALL Java_com_lumeric_filter_QImage_Bitmap2QImage(JNIEnv* env, jobject, jobject bitmap) {
    return ifc::guardNative(env, [&]() -> jobject {
        return newQImageFromBitmap(env, bitmap, false, [](BitmapSource& source) {
            int w = static_cast<int>(source.info.width), h = static_cast<int>(source.info.height);
            _Image* image = create_image(w, h, 4, w * 4);
            if (image != nullptr) {
                size_t count = std::min<size_t>(image->size, bitmapBytes(source.info));
                std::memcpy(image->data, source.pixels.get(), count);
            }
            return image;
        });
    });
}

JNIEXPORT jobject JNICALL Java_com_lumeric_filter_QImage_BindBitmap(JNIEnv* env, jobject, jobject bitmap) {
    return ifc::guardNative(env, [&]() -> jobject {
        return newQImageFromBitmap(env, bitmap, true, [](BitmapSource& source) {
            int w = static_cast<int>(source.info.width), h = static_cast<int>(source.info.height);
            _Image* header = create_image_header(w, h, 4, w * 4);
            if (header == nullptr) return header;
            header->data = static_cast<unsigned char*>(source.pixels.get());
            // The pixels stay the bitmap's: disposing, replacing or turning the
            // image never frees them.
            if (!ifc::markPixelsBorrowed(header)) free_image_header(&header);
            return header;
        });
    });
}

// Copies this image into the bitmap (QImage -> Bitmap, whatever the name says).
JNIEXPORT jboolean JNICALL Java_com_lumeric_filter_QImage_FromBitmap(JNIEnv* env, jobject self, jobject bitmap) {
    return ifc::guardNative(env, [&]() -> jboolean {
        ifc::DeferredThrow pending(env);
        BitmapTarget target(env, self, bitmap, true, &pending);
        if (!target.ready) return JNI_FALSE;
        if (target.qimage->image == nullptr) {
            pending.runtime("image is empty");  // nothing to copy from
            return JNI_FALSE;
        }
        ifc::copyImagePrefix(target.qimage->image, target.imageBytes(), target.destination(), bitmapBytes(target.info));
        return JNI_TRUE;
    });
}

JNIEXPORT jboolean JNICALL Java_com_lumeric_filter_QImage_ToBitmap(JNIEnv* env, jobject self, jobject bitmap) {
    return ifc::guardNative(env, [&]() -> jboolean {
        ifc::DeferredThrow pending(env);
        BitmapTarget target(env, self, bitmap, false, &pending);
        if (!target.ready) return JNI_FALSE;
        const _Image* image = target.qimage->image;
        if (image == nullptr) {
            target.pixels->keepLocked();  // the bitmap is left locked here, as it always was
            return JNI_FALSE;
        }
        const AndroidBitmapInfo& info = target.info;
        if (info.format == ANDROID_BITMAP_FORMAT_RGBA_8888) {
            ifc::copyImagePrefix(image, target.imageBytes(), target.destination(), bitmapBytes(info));
        } else if (info.format == ANDROID_BITMAP_FORMAT_RGB_565) {
            ifc::sampleToRGB565(image, static_cast<uint16_t*>(target.destination()), static_cast<int>(info.width),
                                static_cast<int>(info.height), info.stride / 2);
        }
        return JNI_TRUE;
    });
}

// On the bound image: drops the borrowed pixels and the header, then unlocks.
JNIEXPORT jboolean JNICALL Java_com_lumeric_filter_QImage_UnBindBitmap(JNIEnv* env, jobject self, jobject bitmap) {
    return ifc::guardNative(env, [&]() -> jboolean {
        AndroidBitmapInfo info{};  // unreadable (a null bitmap too): false, nothing done
        if (AndroidBitmap_getInfo(env, bitmap, &info) < 0) return JNI_FALSE;
        ifc::QImageSelf qimage(env, self);
        if (qimage.image == nullptr || ifc::pixelsBorrowed(qimage.image)) {
            if (qimage.image != nullptr) qimage.image->data = nullptr;
            free_image_header(&qimage.image);
        } else {
            free_image(&qimage.image);  // pixels of its own since binding (a quarter turn)
        }
        qimage.attach(nullptr);
        AndroidBitmap_unlockPixels(env, bitmap);
        return JNI_TRUE;
    });
}

}  // extern "C"
