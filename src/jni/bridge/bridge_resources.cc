// Resource callbacks: the filter engine asks Java's FilterEngineJNILib for
// bundle files, possibly from a thread that Java never called.
#include <cstdarg>

#include "image/borrowed_pixels.h"
#include "jni/bridge/bridge.h"
#include "jni/bridge/bridge_internal.h"

namespace {

constexpr const char* kLibClass = "com/lumeric/util/FilterEngineJNILib";

// Calls the static String -> Object callback `name`; null when the env, the
// class or the method is missing, or when the callback threw (cleared here so
// that native callers never run on with an exception pending).
jobject callBundleReader(JNIEnv* env, const char* name, const char* signature,
                         const char* path) {
    LocalRef<jclass> clazz(env, jniFindAppClass(env, kLibClass));
    if (clazz.get() == nullptr) {
        log_printE("FindClass() Error.....");
        return nullptr;
    }
    jmethodID method = env->GetStaticMethodID(clazz.get(), name, signature);
    if (method == nullptr) {
        env->ExceptionClear();
        log_printE("GetMethodID() Error.....");
        return nullptr;
    }
    LocalRef<jstring> javaPath(env, env->NewStringUTF(path));
    jobject result = jniCallStaticObjectMethod(env, clazz.get(), method, javaPath.get());
    if (env->ExceptionCheck()) {
        env->ExceptionClear();
        log_printE("%s(%s) threw", name, path);
        if (result != nullptr) env->DeleteLocalRef(result);
        return nullptr;
    }
    return result;
}

JNIEnv* callbackEnv() {
    JNIEnv* env = jniGetEnv();
    if (env == nullptr) log_printE("env() == NULL");
    return env;
}

}  // namespace

jobject jniCallStaticObjectMethod(JNIEnv* env, jclass clazz, jmethodID method, ...) {
    va_list args;
    va_start(args, method);
    jobject result = env->CallStaticObjectMethodV(clazz, method, args);
    va_end(args);
    return result;
}

extern "C" {

// The image is detached from the returned QImage so that Java's Dispose
// cannot free it: ownership passes to the native caller.
_Image* jniReadBundleImage(const char* path) {
    JNIEnv* env = callbackEnv();
    if (env == nullptr) return nullptr;
    LocalRef<jobject> qimage(
        env, callBundleReader(env, "readBundleImage",
                              "(Ljava/lang/String;)Lcom/lumeric/filter/QImage;", path));
    if (qimage.get() == nullptr) return nullptr;

    ImageInfo info;
    GetImageInfo(env, &info);
    LocalRef<jclass> clazz(env, info.clazz);
    _Image* image = GetNativeImage(env, &info, qimage.get());
    SetNativeImage(env, &info, qimage.get(), nullptr);
    if (ifc::pixelsBorrowed(image)) {
        // A QImage bound to a bitmap: the caller frees what it gets, so it
        // gets its own copy; the bitmap's pixels stay the bitmap's.
        _Image* copy = clone_image_ex(image);
        free_image(&image);
        return copy;
    }
    return image;
}

// The bytes come back as one row of n one-byte pixels (stride n, size n).
_Image* jniReadBundleData(const char* path) {
    JNIEnv* env = callbackEnv();
    if (env == nullptr) return nullptr;
    LocalRef<jbyteArray> bytes(
        env, static_cast<jbyteArray>(
                 callBundleReader(env, "readBundleData", "(Ljava/lang/String;)[B", path)));
    if (bytes.get() == nullptr) return nullptr;

    jsize n = env->GetArrayLength(bytes.get());
    _Image* image = create_image(n, 1, 1, n);
    if (image == nullptr) {
        log_printE("no memory for %s (%d bytes)", path, static_cast<int>(n));
        return nullptr;
    }
    if (n > 0) env->GetByteArrayRegion(bytes.get(), 0, n, reinterpret_cast<jbyte*>(image->data));
    return image;
}

_Image* jniLoadBundleResource(const char* path, int kind) {
    return kind == 0 ? jniReadBundleImage(path) : jniReadBundleData(path);
}

}  // extern "C"
