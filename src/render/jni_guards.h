// RAII owners for what the render natives borrow from Java: primitive array
// elements (released with mode 0: copy back and free) and locked bitmaps.
#ifndef IFC_RENDER_JNI_GUARDS_H
#define IFC_RENDER_JNI_GUARDS_H

#include <android/bitmap.h>
#include <jni.h>

#include <cstddef>

// "java/lang/NullPointerException" / "java/lang/RuntimeException" naming `what`.
void throwNullArgument(JNIEnv* env, const char* what);
void throwArrayTooShort(JNIEnv* env, const char* what, size_t required, size_t length);

template <typename Array, typename Element>
struct ArrayAccess;

template <>
struct ArrayAccess<jbyteArray, jbyte> {
    static jbyte* get(JNIEnv* env, jbyteArray a) { return env->GetByteArrayElements(a, nullptr); }
    static void release(JNIEnv* env, jbyteArray a, jbyte* p) { env->ReleaseByteArrayElements(a, p, 0); }
};
template <>
struct ArrayAccess<jintArray, jint> {
    static jint* get(JNIEnv* env, jintArray a) { return env->GetIntArrayElements(a, nullptr); }
    static void release(JNIEnv* env, jintArray a, jint* p) { env->ReleaseIntArrayElements(a, p, 0); }
};
template <>
struct ArrayAccess<jfloatArray, jfloat> {
    static jfloat* get(JNIEnv* env, jfloatArray a) { return env->GetFloatArrayElements(a, nullptr); }
    static void release(JNIEnv* env, jfloatArray a, jfloat* p) { env->ReleaseFloatArrayElements(a, p, 0); }
};

// Elements of a Java array for the guard's scope. A null array, or one
// shorter than `required` elements, raises the Java exception and leaves
// data() null.
template <typename Array, typename Element>
class ArrayElements {
public:
    ArrayElements(JNIEnv* env, Array array, size_t required, const char* what) : env_(env), array_(array) {
        if (array == nullptr) {
            throwNullArgument(env, what);
            return;
        }
        length_ = static_cast<size_t>(env->GetArrayLength(array));
        if (length_ < required) {
            throwArrayTooShort(env, what, required, length_);
            return;
        }
        data_ = ArrayAccess<Array, Element>::get(env, array);
    }
    ~ArrayElements() {
        if (data_ != nullptr) ArrayAccess<Array, Element>::release(env_, array_, data_);
    }
    ArrayElements(const ArrayElements&) = delete;
    ArrayElements& operator=(const ArrayElements&) = delete;

    Element* data() const { return data_; }
    size_t length() const { return length_; }

private:
    JNIEnv* env_;
    Array array_;
    size_t length_ = 0;
    Element* data_ = nullptr;
};

using ByteElements = ArrayElements<jbyteArray, jbyte>;
using IntElements = ArrayElements<jintArray, jint>;
using FloatElements = ArrayElements<jfloatArray, jfloat>;

// A bitmap's info and locked pixels; unlocked on scope exit. With
// requireRGBA, a bitmap of another format is not locked. result() is the
// failing AndroidBitmap_* result (0 for success or a wrong format); a null
// bitmap raises "java/lang/NullPointerException".
class LockedBitmap {
public:
    LockedBitmap(JNIEnv* env, jobject bitmap, bool requireRGBA);
    ~LockedBitmap();
    LockedBitmap(const LockedBitmap&) = delete;
    LockedBitmap& operator=(const LockedBitmap&) = delete;

    bool locked() const { return pixels_ != nullptr; }
    int result() const { return result_; }
    const AndroidBitmapInfo& info() const { return info_; }
    void* pixels() const { return pixels_; }
    size_t byteCount() const { return static_cast<size_t>(info_.stride) * info_.height; }
    // Unlocks now; the unlock result.
    int unlock();

private:
    JNIEnv* env_;
    jobject bitmap_;
    AndroidBitmapInfo info_{};
    void* pixels_ = nullptr;
    int result_ = 0;
};

#endif  // IFC_RENDER_JNI_GUARDS_H
