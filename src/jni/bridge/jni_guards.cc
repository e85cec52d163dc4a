#include "jni/bridge/jni_guards.h"

#include <cstdio>

#include "jni/bridge/bridge.h"

namespace ifc {

void throwNullArgument(JNIEnv* env, const char* what) { jniThrowNullPointerException(env, what); }

void throwArrayTooShort(JNIEnv* env, const char* what, size_t required, size_t length) {
    char message[160];
    std::snprintf(message, sizeof message, "%s holds %zu elements, %zu needed", what, length, required);
    jniThrowRuntimeException(env, message);
}

}  // namespace ifc
