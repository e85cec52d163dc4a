// RAII owners for what natives borrow from Java: primitive array elements
// (released with mode 0: copied back, then freed) and locked bitmap pixels,
// so that every early return gives back what was taken.
#ifndef IFC_JNI_JNI_GUARDS_H
#define IFC_JNI_JNI_GUARDS_H

#include <android/bitmap.h>
#include <jni.h>

#include <cstddef>
#include <cstdint>

namespace ifc {

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

// Elements of a Java array for the guard's scope; data() is null when there
// are none. The checking form raises first: a null array, or one shorter
// than `required` elements, raises the Java exception and takes nothing.
template <typename Array, typename Element>
class ArrayElements {
public:
    ArrayElements(JNIEnv* env, Array array) : env_(env), array_(array) {
        if (array == nullptr) return;
        length_ = static_cast<size_t>(env->GetArrayLength(array));
        data_ = ArrayAccess<Array, Element>::get(env, array);
    }
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
    const uint8_t* bytes() const { return reinterpret_cast<const uint8_t*>(data_); }
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

// Locked pixels of a bitmap, unlocked on scope exit unless told to stay
// locked; data() is null when locking failed.
class BitmapPixels {
public:
    BitmapPixels(JNIEnv* env, jobject bitmap) : env_(env), bitmap_(bitmap) {
        if (AndroidBitmap_lockPixels(env, bitmap, &pixels_) < 0) pixels_ = nullptr;
    }
    ~BitmapPixels() {
        if (pixels_ != nullptr && !keepLocked_) AndroidBitmap_unlockPixels(env_, bitmap_);
    }
    BitmapPixels(const BitmapPixels&) = delete;
    BitmapPixels& operator=(const BitmapPixels&) = delete;

    bool locked() const { return pixels_ != nullptr; }
    void* get() const { return pixels_; }
    const uint8_t* data() const { return static_cast<const uint8_t*>(pixels_); }
    // The lock outlives this scope (a bound image, or a deliberate leftover).
    void keepLocked() { keepLocked_ = true; }

private:
    JNIEnv* env_;
    jobject bitmap_;
    void* pixels_ = nullptr;
    bool keepLocked_ = false;
};

}  // namespace ifc

#endif  // IFC_JNI_JNI_GUARDS_H
