// QImage natives for camera frames and the overlay blend: they marshal the
// Java arguments and call the plain conversions.
#include <android/bitmap.h>

#include <cstdint>
#include <cstdio>

#include "image_filter/filters.h"
#include "jni/bridge/bridge.h"
#include "jni/pixels/frame_checks.h"
#include "jni/bridge/jni_guards.h"
#include "jni/bridge/native_guard.h"
#include "jni/pixels/pixel_kernels.h"
#include "jni/pixels/qimage_pixels.h"

namespace {

// Raises what check_frame refused; false then.
bool frame_accepted(JNIEnv* env, ifc::FrameCheck check, int width, int height, int64_t length,
                    const ifc::FramePlan& plan) {
    switch (check) {
        case ifc::FrameCheck::kOk:
            return true;
        case ifc::FrameCheck::kBadStep:
            jniThrowRuntimeException(env, "YUV420sp2YUV2: step must be positive");
            return false;
        case ifc::FrameCheck::kNullData:  // not asked for: a null array passes the checks
        case ifc::FrameCheck::kSizeOutOfRange:
            jniThrowRuntimeException(env, "frame size out of range");
            return false;
        case ifc::FrameCheck::kTooShort:
            break;
    }
    char message[128];
    std::snprintf(message, sizeof message, "frame data too short: %d bytes for %dx%d, %lld needed",
                  static_cast<int>(length), width, height, static_cast<long long>(plan.nominal_bytes));
    jniThrowRuntimeException(env, message);
    return false;
}

// The common frame: check, reuse or replace the native image, tag it RGBA,
// attach it, then convert the array into it.
// The conversion tables are built when the library loads.
void convert_frame(JNIEnv* env, jobject thiz, jbyteArray data, int width, int height, int step,
                   ifc::FrameFormat format) {
    // A null array passes: the frame image is still made and attached, and
    // the missing bytes are reported as every format's out-of-memory message.
    const int64_t length = data != nullptr ? env->GetArrayLength(data) : INT64_MAX;
    ifc::FramePlan plan{};
    const ifc::FrameCheck check = ifc::check_frame(format, width, height, step, true, length, &plan);
    if (!frame_accepted(env, check, width, height, length, plan)) return;
    ImageInfo info;
    GetImageInfo(env, &info);
    _Image* image = ifc::frame_image_for(GetNativeImage(env, &info, thiz), plan.out_width, plan.out_height);
    if (image != nullptr) image->layout = 0x01020304;
    SetNativeImage(env, &info, thiz, image);
    ifc::ByteElements frame(env, data);
    // One message for every format, as Java code matches on it.
    if (frame.data() == nullptr || image == nullptr || image->data == nullptr) {
        jniThrowRuntimeException(env, "Out of memory of QImage.DecodeYUV420sp");
        return;
    }
    ifc::convert_checked_frame(plan, frame.bytes(), static_cast<int64_t>(frame.length()), image->data);
}

}  // namespace

extern "C" {

JNIEXPORT void JNICALL Java_com_lumeric_filter_QImage_RGB565toRGB(JNIEnv* env, jobject thiz, jbyteArray data,
                                                                  jint width, jint height) {
    ifc::guardNative(env, [&] { convert_frame(env, thiz, data, width, height, 1, ifc::FrameFormat::kRgb565); });
}

JNIEXPORT void JNICALL Java_com_lumeric_filter_QImage_YUV422toRGB(JNIEnv* env, jobject thiz, jbyteArray data,
                                                                  jint width, jint height) {
    ifc::guardNative(env, [&] { convert_frame(env, thiz, data, width, height, 1, ifc::FrameFormat::kYuv422); });
}

JNIEXPORT void JNICALL Java_com_lumeric_filter_QImage_YUV420sp2RGB(JNIEnv* env, jobject thiz, jbyteArray data,
                                                                   jint width, jint height) {
    ifc::guardNative(env, [&] { convert_frame(env, thiz, data, width, height, 1, ifc::FrameFormat::kNv21Rgba); });
}

JNIEXPORT void JNICALL Java_com_lumeric_filter_QImage_YUV420sp2YUV(JNIEnv* env, jobject thiz, jbyteArray data,
                                                                   jint width, jint height) {
    ifc::guardNative(env, [&] { convert_frame(env, thiz, data, width, height, 1, ifc::FrameFormat::kNv21Yuva); });
}

JNIEXPORT void JNICALL Java_com_lumeric_filter_QImage_YUV420sp2YUV2(JNIEnv* env, jobject thiz, jbyteArray data,
                                                                    jint width, jint height, jint step) {
    ifc::guardNative(env, [&] { convert_frame(env, thiz, data, width, height, step, ifc::FrameFormat::kNv21Decimated); });
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
