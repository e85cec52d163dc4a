// Logging under the library's tag "filter process".
#include "jni/bridge/log.h"

#include <android/log.h>

#include <cstdarg>

namespace {
constexpr const char* kTag = "filter process";
}

extern "C" {

int log_printI(const char* format, ...) {
    va_list args;
    va_start(args, format);
    int result = __android_log_vprint(ANDROID_LOG_INFO, kTag, format, args);
    va_end(args);
    return result;
}

int log_printE(const char* format, ...) {
    va_list args;
    va_start(args, format);
    int result = __android_log_vprint(ANDROID_LOG_ERROR, kTag, format, args);
    va_end(args);
    return result;
}

// Debug logging is compiled out on purpose.
void log_printD(const char*, ...) {}

}  // extern "C"
