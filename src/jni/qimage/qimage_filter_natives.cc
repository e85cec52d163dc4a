// QImage natives of the CPU filters: the down-sampled blur and the colour
// histograms.
#include <cstdint>

#include "jni/pixels/blur8.h"
#include "jni/bridge/bridge.h"
#include "jni/bridge/native_guard.h"
#include "jni/pixels/qimage_pixels.h"

namespace {

// Check_Image raises "image is empty"; the caller then returns instead of
// reading a missing buffer.
_Image* checked_image(JNIEnv* env, jobject thiz) {
    _Image* image = GetNativeImageFromQImage(env, thiz);
    Check_Image(env, image);
    return image && image->data ? image : nullptr;
}

jintArray histogram_array(JNIEnv* env, jobject thiz, bool per_channel) {
    const _Image* image = checked_image(env, thiz);
    if (!image) return nullptr;
    const int count = per_channel ? 768 : 256;
    uint32_t bins[768] = {};
    ifc::image_histogram(image, bins, per_channel);
    jintArray array = env->NewIntArray(count);
    if (!array) return nullptr;
    env->SetIntArrayRegion(array, 0, count, reinterpret_cast<const jint*>(bins));
    return array;
}

}  // namespace

extern "C" {

// Named "in place", but the source stays as it is and a new QImage holds the
// blurred, down-sampled channel 0.
JNIEXPORT jobject JNICALL Java_com_lumeric_filter_QImage_InplaceBlur8bitQImage(JNIEnv* env, jobject thiz,
                                                                              jint scale, jint sigma) {
    return ifc::guardNative(env, [&]() -> jobject {
        // Scale 0 would divide by zero.
        if (scale <= 0) {
            jniThrowRuntimeException(env, "InplaceBlur8bitQImage: scale must be positive");
            return nullptr;
        }
        const _Image* source = checked_image(env, thiz);
        if (!source) return nullptr;
        ImageInfo info;
        GetImageInfo(env, &info);
        jobject result = CreateQImage(env, &info);
        if (!result) return nullptr;
        _Image* blurred = ifc::blur8_image(source, scale, sigma);
        SetNativeImage(env, &info, result, blurred);
        return result;
    });
}

JNIEXPORT jintArray JNICALL Java_com_lumeric_filter_QImage_nativeGetArrayHistogram(JNIEnv* env, jobject thiz) {
    return ifc::guardNative(env, [&]() -> jintArray {
        return histogram_array(env, thiz, false);
    });
}

JNIEXPORT jintArray JNICALL Java_com_lumeric_filter_QImage_nativeGetArrayHistogramChannels(JNIEnv* env,
                                                                                        jobject thiz) {
    return ifc::guardNative(env, [&]() -> jintArray {
        return histogram_array(env, thiz, true);
    });
}

}  // extern "C"
