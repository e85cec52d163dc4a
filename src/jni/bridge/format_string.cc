// printf into a newly allocated string of at most 1023 characters.
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "jni/bridge/bridge.h"

namespace {
constexpr int kLimit = 1024;  // the library's own limit, terminating 0 included
}

extern "C" {

// Texts of 1023 characters or more are reported as overflowing and returned
// cut to 1023 characters; the formatting itself is bounded.
char* format_utf8string(const char* format, ...) {
    char buffer[kLimit] = {};
    va_list args;
    va_start(args, format);
    int length = vsnprintf(buffer, sizeof buffer, format, args);
    va_end(args);
    if (length >= kLimit - 1) log_printI("format_utf8string: error");
    if (length < 0) buffer[0] = '\0';

    size_t size = strlen(buffer) + 1;
    char* copy = static_cast<char*>(malloc(size));
    if (copy != nullptr) memcpy(copy, buffer, size);
    return copy;
}

}  // extern "C"
