// GLSLRender natives that move pixels into textures, tiles of large images,
// the masked bitmap copy, native buffers and the brightness curve.
#include <GLES2/gl2.h>
#include <jni.h>

#include <cstdlib>
#include <memory>

#include "gl/tight_rgba_rows.h"
#include "image/image_internal.h"
#include "jni/bridge/bridge.h"
#include "jni/bridge/native_guard.h"
#include "jni/pixels/qimage_pixels.h"
#include "render/brightness_curve.h"
#include "render/gl_utils.h"
#include "render/jni_guards.h"
#include "render/magic_engine.h"
#include "render/native_buffers.h"
#include "render/pixel_uploads.h"
#include "render/tiles.h"

namespace {

using MallocBuffer = std::unique_ptr<uint8_t, decltype(&free)>;

MallocBuffer mallocTile(const TileRect& tile) {
    const size_t size = ifc::byteCount(tile.width, tile.height, 4);
    auto* bytes = ifc::tooLarge(size) ? nullptr : static_cast<uint8_t*>(malloc(size));
    if (bytes == nullptr) log_printE("malloc pixel data out of memory");
    return MallocBuffer(bytes, &free);
}

// The image behind a QImage with pixels, or null with a Java exception raised.
_Image* imageWithPixels(JNIEnv* env, jobject qimage) {
    if (qimage == nullptr) {
        throwNullArgument(env, "image is null");
        return nullptr;
    }
    _Image* image = GetNativeImageFromQImage(env, qimage);
    if (image == nullptr || image->data == nullptr) {
        jniThrowRuntimeException(env, "image is empty");
        return nullptr;
    }
    return image;
}

// The tile of the grid inside the image, or false with a Java exception.
bool imageTile(JNIEnv* env, const _Image* image, int col, int row, int cols, int rows, TileRect* tile) {
    if (tileRect(image->width, image->height, col, row, cols, rows, tile)) return true;
    jniThrowRuntimeException(env, "tile outside the image");
    return false;
}

// A record whose rows are shorter than width x channels cannot hold its tiles.
void throwShortRows(JNIEnv* env) { jniThrowRuntimeException(env, "image rows shorter than its width"); }

BrightnessCurve& brightnessCurve() {
    static BrightnessCurve curve;
    return curve;
}

void uploadLut(const uint8_t* lut) {
    glTexImage2D(GL_TEXTURE_2D, 0, GL_ALPHA, kCurveBins, 1, 0, GL_ALPHA, GL_UNSIGNED_BYTE, lut);
}

// Reads the rectangle, bins it and advances the curve; uploads whenever the
// table changed.
void histogramFromGPU(uint8_t* pixels, int32_t* history, int x, int y, int w, int h, int frameCount,
                      int frameIndex, const CurveParams& params) {
    BrightnessCurve& curve = brightnessCurve();
    if (frameIndex < 0) {
        curve.reset(history, frameCount);
        uploadLut(curve.lut());
        return;
    }
    // Without buffers, with a negative size, or with a frame outside the
    // ring there is nothing that may be read or written: left alone.
    if (pixels == nullptr || history == nullptr || w < 0 || h < 0 || frameIndex >= frameCount) return;
    {
        TightRgbaRows tight(GL_PACK_ALIGNMENT);  // the buffer holds w x h x 4 bytes exactly
        glReadPixels(x, y, w, h, GL_RGBA, GL_UNSIGNED_BYTE, pixels);
    }
    int32_t bins[kCurveBins];
    int64_t pixelCount = static_cast<int64_t>(w) * h;
    histogramRGB(pixels, pixelCount, bins);
    if (curve.addFrame(bins, pixelCount, history, frameCount, frameIndex, params) != BrightnessCurve::Step::Kept) {
        uploadLut(curve.lut());
    }
}

// The curve writes frameCount histograms into `history` and reads w x h RGBA
// pixels into `pixels`: both must be buffers from nativeAllocBuffer that
// large (null ones are left alone further on). Raises and returns false
// otherwise.
bool curveBuffersHold(JNIEnv* env, jlong pixels, jlong history, int w, int h, int frameCount, int frameIndex) {
    auto holds = [](jlong buffer, int64_t bytes) {
        if (buffer == 0 || bytes <= 0) return true;
        return nativeBufferHolds(fromJavaHandle<void>(buffer), ifc::byteCount(bytes));
    };
    int64_t historyBytes = int64_t{frameCount} * kCurveBins * 4;
    int64_t pixelBytes = frameIndex < 0 || w < 0 || h < 0 ? 0 : int64_t{w} * h * 4;
    if (holds(history, historyBytes) && holds(pixels, pixelBytes)) return true;
    jniThrowRuntimeException(env, "nativeCalHistogramFromGPU: buffers smaller than the frame or the history ring");
    return false;
}

size_t words(const LockedBitmap& bitmap) { return bitmap.byteCount() / 4; }

size_t area(const LockedBitmap& bitmap) { return ifc::byteCount(bitmap.info().width, bitmap.info().height); }

}  // namespace

extern "C" {

JNIEXPORT void JNICALL Java_com_lumeric_filter_GLSLRender_nativePreprocessJepg(JNIEnv* env, jclass, jobject qimage,
                                                                               jintArray tiles) {
    ifc::guardNative(env, [&] {
        _Image* image = imageWithPixels(env, qimage);
        if (image == nullptr) return;
        IntElements counts(env, tiles, 2, "tiles");
        if (counts.data() == nullptr) return;
        GLint limit = 0;
        glGetIntegerv(GL_MAX_TEXTURE_SIZE, &limit);
        counts.data()[0] = tileCountForWidth(image->width, limit);
        counts.data()[1] = tileCountForHeight(image->height, limit);
    });
}

JNIEXPORT void JNICALL Java_com_lumeric_filter_GLSLRender_nativePickJepgToTexture(
    JNIEnv* env, jclass, jobject qimage, jint col, jint row, jint cols, jint rows, jint texture, jintArray size) {
    ifc::guardNative(env, [&] {
        _Image* image = imageWithPixels(env, qimage);
        if (image == nullptr) return;
        IntElements tileSize(env, size, 2, "size");
        TileRect tile;
        if (tileSize.data() == nullptr || !imageTile(env, image, col, row, cols, rows, &tile)) return;
        if (image->channels == 3 || image->channels == 4) {
            MallocBuffer rgba = mallocTile(tile);
            if (!rgba) return;
            if (!packTileRGBA(image, tile, rgba.get())) return throwShortRows(env);
            glActiveTexture(GL_TEXTURE0);
            glBindTexture(GL_TEXTURE_2D, static_cast<GLuint>(texture));
            glTexParameterf(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_LINEAR);
            glTexParameterf(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR);
            glTexParameterf(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_CLAMP_TO_EDGE);
            glTexParameterf(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, GL_CLAMP_TO_EDGE);
            {
                TightRgbaRows tight(GL_UNPACK_ALIGNMENT);
                glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA, tile.width, tile.height, 0, GL_RGBA, GL_UNSIGNED_BYTE,
                             rgba.get());
            }
            checkGlError("glTexImage2D");
        }
        tileSize.data()[0] = tile.width;
        tileSize.data()[1] = tile.height;
    });
}

JNIEXPORT void JNICALL Java_com_lumeric_filter_GLSLRender_nativePushJepgFromTexture(
    JNIEnv* env, jclass, jobject qimage, jint col, jint row, jint cols, jint rows, jint slot) {
    ifc::guardNative(env, [&] {
        _Image* image = imageWithPixels(env, qimage);
        TileRect tile;
        if (image == nullptr || !imageTile(env, image, col, row, cols, rows, &tile)) return;
        MallocBuffer rgba = mallocTile(tile);
        if (!rgba) return;
        if (slot < 0) {
            readRGBA(0, 0, tile.width, tile.height, rgba.get());
            checkGlError("glReadPixels");
        } else {
            magicReadPixels(rgba.get(), tile.width, tile.height, static_cast<unsigned>(slot));
        }
        if ((image->channels == 3 || image->channels == 4) && !unpackTileRGBA(rgba.get(), tile, image)) {
            throwShortRows(env);
        }
    });
}

JNIEXPORT void JNICALL Java_com_lumeric_filter_GLSLRender_nativePreviewData(JNIEnv* env, jclass, jbyteArray data,
                                                                            jint texture, jint width, jint height) {
    ifc::guardNative(env, [&] {
        ByteElements bytes(env, data, unpackedByteCount(width, previewRows(height), 1), "data");
        if (bytes.data() == nullptr) return;
        uploadPreviewFrame(bytes.data(), static_cast<GLuint>(texture), width, height);
    });
}

JNIEXPORT void JNICALL Java_com_lumeric_filter_GLSLRender_nativePreviewYuvData(JNIEnv* env, jclass,
                                                                               jbyteArray data, jint texture,
                                                                               jint width, jint height) {
    ifc::guardNative(env, [&] {
        ByteElements bytes(env, data, unpackedByteCount(width, height, 4), "data");
        if (bytes.data() == nullptr) return;
        uploadPreviewRGBA(bytes.data(), static_cast<GLuint>(texture), width, height);
    });
}

JNIEXPORT void JNICALL Java_com_lumeric_filter_GLSLRender_nativeTextCure(JNIEnv* env, jclass, jintArray curve,
                                                                         jint texture) {
    ifc::guardNative(env, [&] {
        IntElements values(env, curve, 0, "curve");
        if (values.data() == nullptr) return;
        uploadCurveTexture(values.data(), static_cast<int>(values.length()), static_cast<GLuint>(texture));
    });
}

JNIEXPORT void JNICALL Java_com_lumeric_filter_GLSLRender_nativeTextImage(JNIEnv* env, jclass, jobject qimage,
                                                                          jint texture) {
    ifc::guardNative(env, [&] {
        if (qimage == nullptr) {
            throwNullArgument(env, "image is null");
            return;
        }
        _Image* image = GetNativeImageFromQImage(env, qimage);
        if (image == nullptr || image->data == nullptr) return;
        uploadImageTexture(image, static_cast<GLuint>(texture));
    });
}

JNIEXPORT void JNICALL Java_com_lumeric_filter_GLSLRender_nativeCopyTexture2(JNIEnv* env, jclass, jobject qimage) {
    ifc::guardNative(env, [&] {
        _Image* image = imageWithPixels(env, qimage);
        if (image == nullptr) return;
        // The read is RGBA whatever the image holds: refuse images too small for it.
        size_t needed = image->width > 0 && image->height > 0 ? ifc::byteCount(image->width, image->height, 4) : 0;
        size_t available = ifc::image_capacity(image);
        if (needed > available) {
            jniThrowRuntimeException(env, "image too small for an RGBA read");
            return;
        }
        readRGBA(0, 0, image->width, image->height, image->data);
    });
}

JNIEXPORT void JNICALL Java_com_lumeric_filter_GLSLRender_nativeUpdateScaleBitmap(
    JNIEnv* env, jclass, jobject src, jobject mask, jobject dst, jint offY, jint offX) {
    ifc::guardNative(env, [&] {
        // Checked before any bitmap is touched: no JNI call may follow the exception.
        if (src == nullptr || mask == nullptr || dst == nullptr) {
            throwNullArgument(env, "bitmap is null");
            return;
        }
        LockedBitmap source(env, src, false);
        LockedBitmap maskBitmap(env, mask, false);
        LockedBitmap target(env, dst, false);
        if (!source.locked() || !maskBitmap.locked() || !target.locked()) return;
        // Words are addressed with the mask's and the source's widths: each
        // bitmap must hold that many 32-bit words.
        size_t maskArea = area(maskBitmap);
        if (words(maskBitmap) < maskArea || words(target) < maskArea || words(source) < area(source)) {
            jniThrowRuntimeException(env, "bitmap too small for 32-bit pixels");
            return;
        }
        updateScaleBitmap(static_cast<const uint32_t*>(source.pixels()), static_cast<int>(source.info().width),
                          static_cast<int>(source.info().height), static_cast<const uint32_t*>(maskBitmap.pixels()),
                          static_cast<int>(maskBitmap.info().width), static_cast<int>(maskBitmap.info().height),
                          static_cast<uint32_t*>(target.pixels()), offY, offX);
        target.unlock();
        maskBitmap.unlock();
        source.unlock();
    });
}

JNIEXPORT jlong JNICALL Java_com_lumeric_filter_GLSLRender_nativeAllocBuffer(JNIEnv* env, jclass, jint size) {
    return ifc::guardNative(env, [&]() -> jlong { return toJavaHandle(allocateNativeBuffer(size)); });
}

// Only buffers from nativeAllocBuffer are freed, each once.
JNIEXPORT void JNICALL Java_com_lumeric_filter_GLSLRender_nativeFreeBuffer(JNIEnv* env, jclass, jlong buffer) {
    ifc::guardNative(env, [&] {
        if (!releaseNativeBuffer(fromJavaHandle<void>(buffer))) {
            jniThrowRuntimeException(env, "nativeFreeBuffer: not a live buffer from nativeAllocBuffer");
        }
    });
}

JNIEXPORT void JNICALL Java_com_lumeric_filter_GLSLRender_nativeCalHistogramFromGPU(
    JNIEnv* env, jclass, jlong pixels, jlong history, jint x, jint y, jint w, jint h, jfloat lowFrac, jfloat highFrac,
    jint frameCount, jint frameIndex, jfloat gammaScale, jfloat threshold) {
    ifc::guardNative(env, [&] {
        if (!curveBuffersHold(env, pixels, history, w, h, frameCount, frameIndex)) return;
        histogramFromGPU(fromJavaHandle<uint8_t>(pixels), fromJavaHandle<int32_t>(history), x, y, w, h, frameCount,
                         frameIndex, CurveParams{lowFrac, highFrac, gammaScale, threshold});
    });
}

}  // extern "C"
