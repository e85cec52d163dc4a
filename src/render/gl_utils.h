// Small GL ES 2.0 helpers shared by the direct renderer and the read-back
// natives: the error test, a millisecond bench timer, the program builder and
// EGL error names for diagnostics.
#ifndef IFC_RENDER_GL_UTILS_H
#define IFC_RENDER_GL_UTILS_H

#include <GLES2/gl2.h>

#include "image_filter/image.h"

extern "C" {

// True when one glGetError() reports no error. Only one flag is consumed; the
// name is a label for readers of the call site and is not logged.
IFC_API bool checkGlError(const char* name);

IFC_API void bench_start();
// Logs "<label> <elapsed>ms" at error level and keeps the elapsed time.
IFC_API void bench_end(const char* label);

}  // extern "C"

// Milliseconds measured by the last bench_end().
double benchLastMilliseconds();

// Compiles, attaches and links; 0 on failure. Nothing is logged.
GLuint buildGLProgram(const char* vertexSource, const char* fragmentSource);

// "EGL_SUCCESS" ... "EGL_CONTEXT_LOST" for the standard codes, else "UNKNOWN".
const char* eglErrorName(int code);

#endif  // IFC_RENDER_GL_UTILS_H
