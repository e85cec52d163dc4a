// The glue every native shares: load hook, per-thread JNIEnv, the QImage and
// MRect bindings, exceptions, resource callbacks and small utilities.
#ifndef IFC_JNI_BRIDGE_H
#define IFC_JNI_BRIDGE_H

#include <jni.h>

#include <cstddef>
#include <cstdint>

#include "image_filter/image.h"
#include "jni/bridge/log.h"

// JNI handles of com/lumeric/filter/QImage, looked up afresh on every call.
struct ImageInfo {
    jclass clazz;
    jfieldID width;
    jfieldID height;
    jfieldID nativeImage;
    jfieldID pixelFormat;
    jfieldID pixelBytes;
    jmethodID constructor;
};

// JNI handles of com/lumeric/filter/MRect.
struct RectInfo {
    jclass clazz;
    jfieldID x;
    jfieldID y;
    jfieldID w;
    jfieldID h;
};

extern "C" {

IFC_API jint JNI_OnLoad(JavaVM* vm, void* reserved);

// The calling thread's env, attaching the thread on first use; null before
// the load hook ran.
IFC_API JNIEnv* jniGetEnv();

IFC_API void jniThrowException(JNIEnv* env, const char* className, const char* message);
IFC_API void jniThrowNullPointerException(JNIEnv* env, const char* message);
IFC_API void jniThrowRuntimeException(JNIEnv* env, const char* message);
// Raises "image is empty" when image or its data is null; callers go on.
IFC_API void Check_Image(JNIEnv* env, const _Image* image);

IFC_API int GetImageInfo(JNIEnv* env, ImageInfo* info);
IFC_API void SetNativeImage(JNIEnv* env, ImageInfo* info, jobject qimage, _Image* image);
IFC_API _Image* GetNativeImage(JNIEnv* env, ImageInfo* info, jobject qimage);
IFC_API _Image* GetNativeImageFromQImage(JNIEnv* env, jobject qimage);
IFC_API jobject CreateQImage(JNIEnv* env, ImageInfo* info);

IFC_API void getRectID(JNIEnv* env, RectInfo* info);
IFC_API void getRectObject(JNIEnv* env, RectInfo* info, jobject rect, MRect* out);
IFC_API void convertObj2Rect(JNIEnv* env, jobject rect, MRect* out);

// Header-only image over a locked RGBA bitmap (data null when locking failed).
IFC_API _Image* bindBitmap2Image(JNIEnv* env, jobject bitmap);
IFC_API void unbindBitmap(JNIEnv* env, jobject bitmap, _Image* image);

// Resource callbacks into FilterEngineJNILib; the caller owns the result.
IFC_API _Image* jniReadBundleImage(const char* path);
IFC_API _Image* jniReadBundleData(const char* path);
IFC_API _Image* jniLoadBundleResource(const char* path, int kind);  // 0 image, else data

// printf into a new string (caller frees), cut to 1023 characters.
IFC_API char* format_utf8string(const char* format, ...) __attribute__((format(printf, 1, 2)));

IFC_API unsigned int getTime();
IFC_API double get_tick_count();
IFC_API const char* get_time_string();
IFC_API void* generate_bundle_path();
IFC_API void* read_bundle_image();
IFC_API void writeImageToAlbum();
IFC_API void start_time_recorder();
IFC_API void pause_time_recorder();
IFC_API void print_recorders();
IFC_API void release_time_recorder();
IFC_API int get_recorder_time();

}  // extern "C"

// Variadic forwarders: CallStaticObjectMethodV (resource callbacks) and
// NewObjectV (constructing Java objects from varargs).
jobject jniCallStaticObjectMethod(JNIEnv* env, jclass clazz, jmethodID method, ...);
jobject jniNewObject(JNIEnv* env, jclass clazz, jmethodID constructor, ...);

// Copies the image's stride x height bytes (never more than it owns) into
// pixels holding `capacity` bytes; returns the bytes copied.
size_t copyImageToPixels(const _Image* image, void* pixels, size_t capacity);

// Java long <-> native pointer, full width on every ABI. On a 32-bit ABI the
// long holds the address sign-extended, and the low 32 bits are read back.
static_assert(sizeof(intptr_t) == sizeof(void*) && sizeof(void*) <= sizeof(jlong),
              "a native pointer fits a Java long");
template <typename T>
inline jlong toJavaHandle(T* p) { return static_cast<jlong>(reinterpret_cast<intptr_t>(p)); }
template <typename T>
inline T* fromJavaHandle(jlong handle) { return reinterpret_cast<T*>(static_cast<intptr_t>(handle)); }

#endif  // IFC_JNI_BRIDGE_H
