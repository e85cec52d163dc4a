// Host-only JNI library for the Java tests of the bridge: it calls the very
// functions that the loaded libimage_filter_common.so exports, most of which
// Java cannot reach directly.
#include <jni.h>

#include <string>
#include <thread>

#include "jni/bridge/bridge.h"

namespace {

std::string utf(JNIEnv* env, jstring text) {
    const char* chars = env->GetStringUTFChars(text, nullptr);
    std::string out(chars);
    env->ReleaseStringUTFChars(text, chars);
    return out;
}

jintArray intArray(JNIEnv* env, std::initializer_list<jint> values) {
    jintArray out = env->NewIntArray(static_cast<jsize>(values.size()));
    env->SetIntArrayRegion(out, 0, static_cast<jsize>(values.size()), values.begin());
    return out;
}

}  // namespace

#define PROBE(ret, name) extern "C" JNIEXPORT ret JNICALL Java_com_lumeric_bridge_BridgeProbe_##name

// Image whose byte i holds i & 0xFF, derived stride.
PROBE(jlong, newImage)(JNIEnv*, jclass, jint width, jint height, jint channels) {
    _Image* image = create_image(width, height, static_cast<unsigned>(channels), -1);
    for (uint32_t i = 0; i < image->size; ++i) image->data[i] = static_cast<unsigned char>(i);
    return toJavaHandle(image);
}

PROBE(void, freeImage)(JNIEnv*, jclass, jlong handle) {
    _Image* image = fromJavaHandle<_Image>(handle);
    free_image(&image);
}

// width, height, channels, stride, size, data != null
PROBE(jintArray, describe)(JNIEnv* env, jclass, jlong handle) {
    const _Image* image = fromJavaHandle<_Image>(handle);
    return intArray(env, {image->width, image->height, image->channels, image->stride,
                          static_cast<jint>(image->size), image->data != nullptr});
}

PROBE(jbyteArray, bytes)(JNIEnv* env, jclass, jlong handle) {
    const _Image* image = fromJavaHandle<_Image>(handle);
    jsize n = static_cast<jsize>(image->size);
    jbyteArray out = env->NewByteArray(n);
    if (n > 0) env->SetByteArrayRegion(out, 0, n, reinterpret_cast<const jbyte*>(image->data));
    return out;
}

PROBE(void, attach)(JNIEnv* env, jclass, jobject qimage, jlong handle) {
    ImageInfo info;
    GetImageInfo(env, &info);
    SetNativeImage(env, &info, qimage, fromJavaHandle<_Image>(handle));
}

PROBE(jlong, attached)(JNIEnv* env, jclass, jobject qimage) {
    return toJavaHandle(GetNativeImageFromQImage(env, qimage));
}

PROBE(jobject, newQImage)(JNIEnv* env, jclass) {
    ImageInfo info;
    GetImageInfo(env, &info);
    return CreateQImage(env, &info);
}

PROBE(jintArray, rect)(JNIEnv* env, jclass, jobject rect) {
    MRect out{};
    convertObj2Rect(env, rect, &out);
    return intArray(env, {out.x, out.y, out.width, out.height});
}

PROBE(jlong, loadResource)(JNIEnv* env, jclass, jstring path, jint kind) {
    return toJavaHandle(jniLoadBundleResource(utf(env, path).c_str(), kind));
}

// The callback runs on a thread that Java never called.
PROBE(jlong, loadResourceOnNativeThread)(JNIEnv* env, jclass, jstring path, jint kind) {
    std::string copy = utf(env, path);
    _Image* image = nullptr;
    std::thread worker([&] { image = jniLoadBundleResource(copy.c_str(), kind); });
    worker.join();
    return toJavaHandle(image);
}

PROBE(void, throwNamed)(JNIEnv* env, jclass, jstring className, jstring message) {
    jniThrowException(env, utf(env, className).c_str(), utf(env, message).c_str());
}

PROBE(void, checkImage)(JNIEnv* env, jclass, jlong handle) {
    Check_Image(env, fromJavaHandle<_Image>(handle));
}

PROBE(jlong, bind)(JNIEnv* env, jclass, jobject bitmap) {
    return toJavaHandle(bindBitmap2Image(env, bitmap));
}

PROBE(void, unbind)(JNIEnv* env, jclass, jobject bitmap, jlong handle) {
    unbindBitmap(env, bitmap, fromJavaHandle<_Image>(handle));
}
