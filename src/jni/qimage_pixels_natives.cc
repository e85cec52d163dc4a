// QImage natives for camera frames and the overlay blend: they marshal the
// Java arguments and call the plain conversions.
#include <android/bitmap.h>

#include <algorithm>
#include <climits>
#include <cstdio>
#include <cstring>
#include <vector>

#include "image_filter/filters.h"
#include "jni/bridge.h"
#include "jni/camera_frames.h"
#include "jni/jni_guards.h"
#include "jni/native_guard.h"
#include "jni/pixel_kernels.h"
#include "jni/qimage_pixels.h"

namespace {

// The size Java allocates for a frame: w*h*3/2 for NV21, 2*w*h for the
// 16-bit formats. The walks read a little past it for odd sizes; those bytes
// read as 0 (see convert_frame) instead of whatever follows the array.
int64_t nv21_nominal_bytes(int width, int height) { return int64_t{width} * height * 3 / 2; }
int64_t two_bytes_per_pixel(int width, int height) { return int64_t{width} * height * 2; }

// Checks the Java arguments; raises and returns false when they are unusable.
// A null array passes: the frame image is still made and attached, and the
// missing bytes are reported as every format's out-of-memory message.
bool frame_arguments_ok(JNIEnv* env, jbyteArray data, int width, int height, int64_t nominal_bytes) {
    if (width < 0 || height < 0 || int64_t{width} * height * 4 > INT_MAX) {
        jniThrowRuntimeException(env, "frame size out of range");
        return false;
    }
    if (data == nullptr) return true;
    const jsize length = env->GetArrayLength(data);
    if (length < nominal_bytes) {
        char message[128];
        std::snprintf(message, sizeof message, "frame data too short: %d bytes for %dx%d, %lld needed",
                      static_cast<int>(length), width, height, static_cast<long long>(nominal_bytes));
        jniThrowRuntimeException(env, message);
        return false;
    }
    return true;
}

// The common frame: reuse or replace the native image, tag it RGBA, attach
// it, then convert the array into it with convert(frame, out).
// The conversion tables are built when the library loads.
template <typename Convert>
void convert_frame(JNIEnv* env, jobject thiz, jbyteArray data, int width, int height, int out_width,
                   int out_height, int64_t nominal_bytes, int64_t bytes_read, Convert convert) {
    if (!frame_arguments_ok(env, data, width, height, nominal_bytes)) return;
    ImageInfo info;
    GetImageInfo(env, &info);
    _Image* image = ifc::frame_image_for(GetNativeImage(env, &info, thiz), out_width, out_height);
    if (image != nullptr) image->layout = 0x01020304;
    SetNativeImage(env, &info, thiz, image);
    ifc::ByteElements frame(env, data);
    // One message for every format, as Java code matches on it.
    if (frame.data() == nullptr || image == nullptr || image->data == nullptr) {
        jniThrowRuntimeException(env, "Out of memory of QImage.DecodeYUV420sp");
        return;
    }
    const int64_t length = static_cast<int64_t>(frame.length());
    if (length >= bytes_read) {
        convert(frame.bytes(), image->data);
        return;
    }
    // Odd sizes walk a few bytes past the frame: give them zeros.
    std::vector<uint8_t> padded(static_cast<size_t>(bytes_read), 0);
    std::memcpy(padded.data(), frame.bytes(), static_cast<size_t>(length));
    convert(padded.data(), image->data);
}

// The same frame at full size through one of the whole-frame conversions.
void convert_full_frame(JNIEnv* env, jobject thiz, jbyteArray data, int width, int height,
                        int64_t nominal_bytes, int64_t bytes_read,
                        void (*convert)(const uint8_t*, int, int, uint8_t*)) {
    convert_frame(env, thiz, data, width, height, width, height, nominal_bytes, bytes_read,
                  [=](const uint8_t* frame, uint8_t* out) { convert(frame, width, height, out); });
}

}  // namespace

extern "C" {

JNIEXPORT void JNICALL Java_com_lumeric_filter_QImage_RGB565toRGB(JNIEnv* env, jobject thiz, jbyteArray data,
                                                                  jint width, jint height) {
    ifc::guardNative(env, [&] {
        convert_full_frame(env, thiz, data, width, height, two_bytes_per_pixel(width, height),
                           ifc::rgb565_bytes_read(width, height), ifc::rgb565_to_rgba);
    });
}

JNIEXPORT void JNICALL Java_com_lumeric_filter_QImage_YUV422toRGB(JNIEnv* env, jobject thiz, jbyteArray data,
                                                                  jint width, jint height) {
    ifc::guardNative(env, [&] {
        convert_full_frame(env, thiz, data, width, height, two_bytes_per_pixel(width, height),
                           ifc::yuv422_bytes_read(width, height), ifc::yuv422_to_rgba);
    });
}

JNIEXPORT void JNICALL Java_com_lumeric_filter_QImage_YUV420sp2RGB(JNIEnv* env, jobject thiz, jbyteArray data,
                                                                   jint width, jint height) {
    ifc::guardNative(env, [&] {
        convert_full_frame(env, thiz, data, width, height, nv21_nominal_bytes(width, height),
                           ifc::nv21_bytes_read(width, height), ifc::nv21_to_rgba);
    });
}

JNIEXPORT void JNICALL Java_com_lumeric_filter_QImage_YUV420sp2YUV(JNIEnv* env, jobject thiz, jbyteArray data,
                                                                   jint width, jint height) {
    ifc::guardNative(env, [&] {
        convert_full_frame(env, thiz, data, width, height, nv21_nominal_bytes(width, height),
                           ifc::nv21_bytes_read(width, height), ifc::nv21_to_yuva);
    });
}

JNIEXPORT void JNICALL Java_com_lumeric_filter_QImage_YUV420sp2YUV2(JNIEnv* env, jobject thiz, jbyteArray data,
                                                                    jint width, jint height, jint step) {
    ifc::guardNative(env, [&] {
        step = ifc::even_step(step);
        // A step of 0 would divide by zero; a negative one gives no frame.
        if (step <= 0) {
            jniThrowRuntimeException(env, "YUV420sp2YUV2: step must be positive");
            return;
        }
        if (width < 0 || height < 0) {
            jniThrowRuntimeException(env, "frame size out of range");
            return;
        }
        const int64_t bytes_read = ifc::nv21_decimated_bytes_read(width, height, step);
        convert_frame(env, thiz, data, width, height, width / step, height / step,
                      std::min(nv21_nominal_bytes(width, height), bytes_read), bytes_read,
                      [=](const uint8_t* frame, uint8_t* out) {
                          ifc::nv21_to_yuva_decimated(frame, width, height, step, out);
                      });
    });
}

JNIEXPORT jboolean JNICALL Java_com_lumeric_filter_QImage_alphaMix(JNIEnv* env, jobject thiz, jobject overlay,
                                                                   jint x, jint y) {
    return ifc::guardNative(env, [&]() -> jboolean {
        AndroidBitmapInfo bitmap{};  // a null overlay has no info either: logged, no exception
        if (AndroidBitmap_getInfo(env, overlay, &bitmap) < 0) {
            log_printE("can't get Bitmap info");
            return JNI_FALSE;
        }
        if (bitmap.format != ANDROID_BITMAP_FORMAT_RGBA_8888) {
            log_printE("Bitmap format is not RGBA_8888");
            return JNI_FALSE;
        }
        ifc::BitmapPixels pixels(env, overlay);
        if (pixels.data() == nullptr) {
            log_printE("can't lock bitmap pixels");
            return JNI_FALSE;
        }
        ImageInfo info;
        if (!GetImageInfo(env, &info)) {
            log_printE("can't GetImageInfo");
            return JNI_FALSE;
        }
        _Image* image = GetNativeImage(env, &info, thiz);
        if (image == nullptr || image->data == nullptr) {
            log_printE("alphaMix: image is empty");
            return JNI_FALSE;
        }
        ifc::alpha_mix_overlay(image, pixels.data(), static_cast<int>(bitmap.width), static_cast<int>(bitmap.height),
                               x, y);
        return JNI_TRUE;
    });
}

}  // extern "C"
