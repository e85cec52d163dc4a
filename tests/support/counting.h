// Deterministic per-frame cost for tests and benchmarks: GL calls and heap
// allocations made on the calling thread. Linking counting_gl.cc into an
// executable wraps every OpenGL ES 2.0 entry point it calls (each call is
// counted, then forwarded to the driver loaded after the executable);
// counting_alloc.cc counts operator new and, outside sanitizer builds,
// malloc, calloc and realloc. Allocations the driver makes inside a GL call
// are not counted: they are not ours to remove.
#ifndef IFC_TESTS_SUPPORT_COUNTING_H
#define IFC_TESTS_SUPPORT_COUNTING_H

#include <GLES2/gl2.h>

#include <string>

namespace counting {

enum GLEntry {
#define IFC_GL_ENTRY(result, name, parameters, arguments) k_##name,
#include "support/gl_entry_points.inc"
#undef IFC_GL_ENTRY
    kGLEntryCount
};

// GL calls per entry point, as a running total or a difference of two.
struct GLCalls {
    long calls[kGLEntryCount] = {};

    long total() const;
    // Every glGet* entry point, glGetUniformLocation and glGetError included.
    long gets() const;
    long of(GLEntry entry) const { return calls[entry]; }
    GLCalls operator-(const GLCalls& before) const;
    // "glUseProgram 3, glDrawArrays 3, ..." for failure messages.
    std::string describe() const;
};

GLCalls glCallsSoFar();
long allocationsSoFar();
// True inside a wrapped GL call.
bool insideGL();

// GL calls and allocations made while `work` runs.
struct Cost {
    GLCalls gl;
    long allocations = 0;
};

template <typename Work>
Cost costOf(Work&& work) {
    const GLCalls glBefore = glCallsSoFar();
    const long allocationsBefore = allocationsSoFar();
    work();
    Cost cost;
    cost.allocations = allocationsSoFar() - allocationsBefore;
    cost.gl = glCallsSoFar() - glBefore;
    return cost;
}

}  // namespace counting

#endif  // IFC_TESTS_SUPPORT_COUNTING_H
