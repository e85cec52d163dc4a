// QImage natives for camera frames and the overlay blend: they marshal the
// Java arguments and call the plain conversions.
#include <android/bitmap.h>

#include <climits>
#include <cstdio>

#include "image_filter/filters.h"
#include "jni/bridge.h"
#include "jni/camera_frames.h"
#include "jni/jni_arrays.h"
#include "jni/pixel_kernels.h"
#include "jni/qimage_pixels.h"

namespace {

// Checks the Java arguments; raises and returns false when they are unusable.
bool frame_arguments_ok(JNIEnv* env, jbyteArray data, int width, int height, int64_t bytes_read) {
    if (data == nullptr) {
        jniThrowNullPointerException(env, "frame data is null");
        return false;
    }
    if (width < 0 || height < 0 || int64_t{width} * height * 4 > INT_MAX) {
        jniThrowRuntimeException(env, "frame size out of range");
        return false;
    }
    const jsize length = env->GetArrayLength(data);
    if (length < bytes_read) {
        char message[128];
        std::snprintf(message, sizeof message, "frame data too short: %d bytes for %dx%d, %lld needed",
                      static_cast<int>(length), width, height, static_cast<long long>(bytes_read));
        jniThrowRuntimeException(env, message);
        return false;
    }
    return true;
}

// The common frame: reuse or replace the native image, tag it RGBA, attach
// it, then convert the array into it with convert(frame, out).
template <typename Convert>
void convert_frame(JNIEnv* env, jobject thiz, jbyteArray data, int width, int height, int out_width,
                   int out_height, int64_t bytes_read, Convert convert) {
    if (!frame_arguments_ok(env, data, width, height, bytes_read)) return;
    // Java has no way to build the tables itself: the first frame does.
    if (!ifc::g_yuv_tables_ready) image_filter_initialize();
    ImageInfo info;
    GetImageInfo(env, &info);
    _Image* image = ifc::frame_image_for(GetNativeImage(env, &info, thiz), out_width, out_height);
    image->layout = 0x01020304;
    SetNativeImage(env, &info, thiz, image);
    ifc::ByteArrayElements frame(env, data);
    // One message for every format, as Java code matches on it.
    if (frame.data() == nullptr || image->data == nullptr) {
        jniThrowRuntimeException(env, "Out of memory of QImage.DecodeYUV420sp");
        return;
    }
    convert(frame.data(), image->data);
}

// The same frame at full size through one of the whole-frame conversions.
void convert_full_frame(JNIEnv* env, jobject thiz, jbyteArray data, int width, int height, int64_t bytes_read,
                        void (*convert)(const uint8_t*, int, int, uint8_t*)) {
    convert_frame(env, thiz, data, width, height, width, height, bytes_read,
                  [=](const uint8_t* frame, uint8_t* out) { convert(frame, width, height, out); });
}

}  // namespace

extern "C" {

JNIEXPORT void JNICALL Java_com_lumeric_filter_QImage_RGB565toRGB(JNIEnv* env, jobject thiz, jbyteArray data,
                                                                  jint width, jint height) {
    convert_full_frame(env, thiz, data, width, height, ifc::rgb565_bytes_read(width, height), ifc::rgb565_to_rgba);
}

JNIEXPORT void JNICALL Java_com_lumeric_filter_QImage_YUV422toRGB(JNIEnv* env, jobject thiz, jbyteArray data,
                                                                  jint width, jint height) {
    convert_full_frame(env, thiz, data, width, height, ifc::yuv422_bytes_read(width, height), ifc::yuv422_to_rgba);
}

JNIEXPORT void JNICALL Java_com_lumeric_filter_QImage_YUV420sp2RGB(JNIEnv* env, jobject thiz, jbyteArray data,
                                                                   jint width, jint height) {
    convert_full_frame(env, thiz, data, width, height, ifc::nv21_bytes_read(width, height), ifc::nv21_to_rgba);
}

JNIEXPORT void JNICALL Java_com_lumeric_filter_QImage_YUV420sp2YUV(JNIEnv* env, jobject thiz, jbyteArray data,
                                                                   jint width, jint height) {
    convert_full_frame(env, thiz, data, width, height, ifc::nv21_bytes_read(width, height), ifc::nv21_to_yuva);
}

JNIEXPORT void JNICALL Java_com_lumeric_filter_QImage_YUV420sp2YUV2(JNIEnv* env, jobject thiz, jbyteArray data,
                                                                    jint width, jint height, jint step) {
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
    convert_frame(env, thiz, data, width, height, width / step, height / step,
                  ifc::nv21_decimated_bytes_read(width, height, step), [=](const uint8_t* frame, uint8_t* out) {
                      ifc::nv21_to_yuva_decimated(frame, width, height, step, out);
                  });
}

JNIEXPORT jboolean JNICALL Java_com_lumeric_filter_QImage_alphaMix(JNIEnv* env, jobject thiz, jobject overlay,
                                                                   jint x, jint y) {
    if (overlay == nullptr) {
        jniThrowNullPointerException(env, "overlay bitmap is null");
        return JNI_FALSE;
    }
    AndroidBitmapInfo bitmap{};
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
    if (!ifc::alpha_mix_overlay(image, pixels.data(), static_cast<int>(bitmap.width),
                                static_cast<int>(bitmap.height), x, y)) {
        log_printE("alphaMix: image has fewer than 3 channels");
        return JNI_FALSE;
    }
    return JNI_TRUE;
}

}  // extern "C"
