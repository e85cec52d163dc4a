// Host-only JNI library for the Java pixel tests: puts known pixels into a
// QImage's native image and reads them back, through the loaded library.
#include <jni.h>

#include <algorithm>
#include <cstring>

#include "image_filter/image.h"
#include "jni/bridge.h"

#define PROBE(ret, name) extern "C" JNIEXPORT ret JNICALL Java_com_lumeric_pixels_PixelsProbe_##name

PROBE(void, attach)(JNIEnv* env, jclass, jobject qimage, jint width, jint height, jint channels,
                    jbyteArray pixels) {
    _Image* image = create_image(width, height, static_cast<unsigned>(channels), -1);
    const jsize length = std::min<jsize>(env->GetArrayLength(pixels), static_cast<jsize>(image->size));
    env->GetByteArrayRegion(pixels, 0, length, reinterpret_cast<jbyte*>(image->data));
    ImageInfo info;
    GetImageInfo(env, &info);
    SetNativeImage(env, &info, qimage, image);
}

PROBE(void, dispose)(JNIEnv* env, jclass, jobject qimage) {
    ImageInfo info;
    GetImageInfo(env, &info);
    _Image* image = GetNativeImage(env, &info, qimage);
    free_image(&image);
    SetNativeImage(env, &info, qimage, nullptr);
}

// The first size bytes of the native image, or null without one.
PROBE(jbyteArray, pixels)(JNIEnv* env, jclass, jobject qimage) {
    const _Image* image = GetNativeImageFromQImage(env, qimage);
    if (!image || !image->data) return nullptr;
    jbyteArray out = env->NewByteArray(static_cast<jsize>(image->size));
    env->SetByteArrayRegion(out, 0, static_cast<jsize>(image->size), reinterpret_cast<const jbyte*>(image->data));
    return out;
}

// {width, height, channels, stride, size, layout}
PROBE(jintArray, describe)(JNIEnv* env, jclass, jobject qimage) {
    const _Image* image = GetNativeImageFromQImage(env, qimage);
    const jint values[6] = {image->width, image->height, image->channels, image->stride,
                            static_cast<jint>(image->size), static_cast<jint>(image->layout)};
    jintArray out = env->NewIntArray(6);
    env->SetIntArrayRegion(out, 0, 6, values);
    return out;
}
