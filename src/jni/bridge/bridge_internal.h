// Helpers shared by the bridge's own sources; not part of the exported glue.
#ifndef IFC_JNI_BRIDGE_INTERNAL_H
#define IFC_JNI_BRIDGE_INTERNAL_H

#include <jni.h>

#include <string>

// Owns one JNI local reference and deletes it on scope exit, which matters on
// natively attached threads: they have no Java frame that would pop it.
template <typename T>
class LocalRef {
public:
    LocalRef(JNIEnv* env, T ref) : env_(env), ref_(ref) {}
    ~LocalRef() {
        if (ref_ != nullptr) env_->DeleteLocalRef(ref_);
    }
    LocalRef(const LocalRef&) = delete;
    LocalRef& operator=(const LocalRef&) = delete;

    T get() const { return ref_; }
    // Gives up ownership, for references handed back to the caller.
    T release() {
        T ref = ref_;
        ref_ = nullptr;
        return ref;
    }

private:
    JNIEnv* env_;
    T ref_;
};

// FindClass, falling back to the library's own class loader on threads that
// Java never called; null (no pending exception) when not found.
jclass jniFindAppClass(JNIEnv* env, const char* name);

#endif  // IFC_JNI_BRIDGE_INTERNAL_H
