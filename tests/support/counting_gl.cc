// Wraps every GL ES 2.0 entry point of the executable: count, then call the
// driver's function (looked up once).
#include <dlfcn.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "support/counting.h"

namespace counting {

namespace {

const char* const kNames[] = {
#define IFC_GL_ENTRY(result, name, parameters, arguments) #name,
#include "support/gl_entry_points.inc"
#undef IFC_GL_ENTRY
};

// Per thread: llvmpipe's own threads never enter these wrappers, and the
// counts of one test thread stay its own.
thread_local GLCalls running;
thread_local int depth = 0;

struct InsideGL {
    InsideGL() { ++depth; }
    ~InsideGL() { --depth; }
};

// The library loaded after the executable, or, when the linker dropped it as
// unneeded (every gl* symbol is defined here), the GL ES library itself.
void* driverFunction(const char* name) {
    void* function = dlsym(RTLD_NEXT, name);
    if (function == nullptr) {
        static void* const library = dlopen("libGLESv2.so.2", RTLD_NOW | RTLD_GLOBAL);
        if (library != nullptr) function = dlsym(library, name);
    }
    if (function == nullptr) {
        fprintf(stderr, "counting: no driver function %s\n", name);
        abort();
    }
    return function;
}

}  // namespace

long GLCalls::total() const {
    long sum = 0;
    for (long count : calls) sum += count;
    return sum;
}

long GLCalls::gets() const {
    long sum = 0;
    for (int i = 0; i < kGLEntryCount; ++i) {
        if (strncmp(kNames[i], "glGet", 5) == 0) sum += calls[i];
    }
    return sum;
}

GLCalls GLCalls::operator-(const GLCalls& before) const {
    GLCalls difference;
    for (int i = 0; i < kGLEntryCount; ++i) difference.calls[i] = calls[i] - before.calls[i];
    return difference;
}

std::string GLCalls::describe() const {
    std::string text;
    for (int i = 0; i < kGLEntryCount; ++i) {
        if (calls[i] == 0) continue;
        if (!text.empty()) text += ", ";
        text += std::string(kNames[i]) + " " + std::to_string(calls[i]);
    }
    return text;
}

GLCalls glCallsSoFar() { return running; }

bool insideGL() { return depth > 0; }

}  // namespace counting

extern "C" {
#define IFC_GL_ENTRY(result, name, parameters, arguments)                                              \
    GL_APICALL result GL_APIENTRY name parameters {                                                    \
        ++counting::running.calls[counting::k_##name];                                                 \
        const counting::InsideGL inside;                                                               \
        static const auto driver = reinterpret_cast<result(GL_APIENTRY*) parameters>(                  \
            counting::driverFunction(#name));                                                          \
        return driver arguments;                                                                       \
    }
#include "support/gl_entry_points.inc"
#undef IFC_GL_ENTRY
}
