// Every JNI native of the library runs its body through guardNative: a C++
// exception that reaches it (std::bad_alloc from a container, say) becomes a
// pending Java exception instead of unwinding into the JVM, which aborts.
#ifndef IFC_JNI_NATIVE_GUARD_H
#define IFC_JNI_NATIVE_GUARD_H

#include <jni.h>

#include <type_traits>

namespace ifc {

// Called from a catch block: raises `className` with the exception's text
// unless a Java exception is already pending, and logs it.
void raiseCaughtException(JNIEnv* env, const char* className) noexcept;

// The body's result, or a zero/null/false result after raising.
template <typename Body>
auto guardNative(JNIEnv* env, Body&& body, const char* className = "java/lang/RuntimeException") noexcept
    -> decltype(body()) {
    using Result = decltype(body());
    try {
        return body();
    } catch (...) {
        raiseCaughtException(env, className);
    }
    if constexpr (!std::is_void_v<Result>) return Result{};
}

}  // namespace ifc

#endif  // IFC_JNI_NATIVE_GUARD_H
