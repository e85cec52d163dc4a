// Scope owners for the QImage natives: a deferred exception and `this`
// QImage's binding (array and bitmap guards are in jni/jni_guards.h).
#ifndef IFC_JNI_QIMAGE_GUARDS_H
#define IFC_JNI_QIMAGE_GUARDS_H

#include <android/bitmap.h>
#include <jni.h>

#include "jni/bridge/bridge.h"
#include "jni/bridge/jni_guards.h"

namespace ifc {

// Some natives raise an exception and carry on. The first one raised is
// thrown when this goes out of scope (declare it first), so no JNI call runs
// with an exception pending; Java sees it on return all the same.
class DeferredThrow {
public:
    explicit DeferredThrow(JNIEnv* env) : env_(env) {}
    ~DeferredThrow() {
        if (className_ != nullptr) jniThrowException(env_, className_, message_);
    }
    DeferredThrow(const DeferredThrow&) = delete;
    DeferredThrow& operator=(const DeferredThrow&) = delete;

    void raise(const char* className, const char* message) {
        if (className_ != nullptr) return;
        className_ = className;
        message_ = message;
    }
    void runtime(const char* message) { raise("java/lang/RuntimeException", message); }
    void nullPointer(const char* message) { raise("java/lang/NullPointerException", message); }
    bool raised() const { return className_ != nullptr; }

private:
    JNIEnv* env_;
    const char* className_ = nullptr;
    const char* message_ = nullptr;
};

// `this` QImage with its binding handles and current native image.
struct QImageSelf {
    QImageSelf(JNIEnv* env, jobject self) : env(env), self(self) {
        valid = GetImageInfo(env, &info) != 0;
        image = valid ? GetNativeImage(env, &info, self) : nullptr;
    }
    // Attaches `replacement` (or 0) and republishes width, height, pixelBytes.
    void attach(_Image* replacement) {
        image = replacement;
        SetNativeImage(env, &info, self, replacement);
    }

    JNIEnv* env;
    jobject self;
    ImageInfo info{};
    bool valid = false;
    _Image* image = nullptr;
};

}  // namespace ifc

#endif  // IFC_JNI_QIMAGE_GUARDS_H
