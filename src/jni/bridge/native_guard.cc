#include "jni/bridge/native_guard.h"

#include <exception>
#include <new>

#include "jni/bridge/bridge.h"

namespace ifc {

void raiseCaughtException(JNIEnv* env, const char* className) noexcept {
    try {
        throw;
    } catch (const std::bad_alloc&) {
        log_printE("native call failed: out of memory");
        if (env != nullptr && !env->ExceptionCheck()) jniThrowException(env, className, "out of native memory");
    } catch (const std::exception& e) {
        log_printE("native call failed: %s", e.what());
        if (env != nullptr && !env->ExceptionCheck()) jniThrowException(env, className, e.what());
    } catch (...) {
        log_printE("native call failed");
        if (env != nullptr && !env->ExceptionCheck()) jniThrowException(env, className, "native call failed");
    }
}

}  // namespace ifc
