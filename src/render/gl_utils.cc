#include "render/gl_utils.h"

#include <sys/time.h>

#include "jni/bridge/log.h"

namespace {

timeval benchStart;
timeval benchEnd;
double benchLast;

// A failed compile only counts when the driver explains it: some drivers
// report failure with an empty log for shaders that still link.
GLuint compileShader(GLenum type, const char* source) {
    // A missing source cannot compile; never hand a null string to the driver.
    if (source == nullptr) return 0;
    GLuint shader = glCreateShader(type);
    if (shader == 0) return 0;
    glShaderSource(shader, 1, &source, nullptr);
    glCompileShader(shader);
    GLint compiled = 0;
    glGetShaderiv(shader, GL_COMPILE_STATUS, &compiled);
    if (compiled == 0) {
        GLint logLength = 0;
        glGetShaderiv(shader, GL_INFO_LOG_LENGTH, &logLength);
        if (logLength != 0) {
            glDeleteShader(shader);
            return 0;
        }
    }
    return shader;
}

const char* const kEglErrorNames[] = {
    "EGL_SUCCESS",         "EGL_NOT_INITIALIZED",  "EGL_BAD_ACCESS",        "EGL_BAD_ALLOC",
    "EGL_BAD_ATTRIBUTE",   "EGL_BAD_CONFIG",       "EGL_BAD_CONTEXT",       "EGL_BAD_CURRENT_SURFACE",
    "EGL_BAD_DISPLAY",     "EGL_BAD_MATCH",        "EGL_BAD_NATIVE_PIXMAP", "EGL_BAD_NATIVE_WINDOW",
    "EGL_BAD_PARAMETER",   "EGL_BAD_SURFACE",      "EGL_CONTEXT_LOST",
};
constexpr int kEglSuccess = 0x3000;  // the codes run contiguously from here

}  // namespace

extern "C" {

bool checkGlError(const char* /*name*/) { return glGetError() == GL_NO_ERROR; }

void bench_start() { gettimeofday(&benchStart, nullptr); }

void bench_end(const char* label) {
    gettimeofday(&benchEnd, nullptr);
    // Single precision throughout, as the timer always measured.
    float elapsed = ((float)(benchEnd.tv_sec - benchStart.tv_sec) * 1000000.0f +
                     (float)benchEnd.tv_usec - (float)benchStart.tv_usec) /
                    1000.0f;
    benchLast = elapsed;
    log_printE("%s %.2fms", label, benchLast);
}

}  // extern "C"

double benchLastMilliseconds() { return benchLast; }

GLuint buildGLProgram(const char* vertexSource, const char* fragmentSource) {
    GLuint vertexShader = compileShader(GL_VERTEX_SHADER, vertexSource);
    if (vertexShader == 0) return 0;
    GLuint fragmentShader = compileShader(GL_FRAGMENT_SHADER, fragmentSource);
    // Shaders are released on every path (the builder used to leak the vertex
    // shader here); nobody else holds their names.
    if (fragmentShader == 0) {
        glDeleteShader(vertexShader);
        return 0;
    }
    GLuint program = glCreateProgram();
    if (program != 0) {
        glAttachShader(program, vertexShader);
        checkGlError("vertexShader glAttachShader");
        glAttachShader(program, fragmentShader);
        checkGlError("pixelShader glAttachShader");
    }
    // Attached shaders live on until the program goes.
    glDeleteShader(vertexShader);
    glDeleteShader(fragmentShader);
    if (program == 0) return 0;
    glLinkProgram(program);
    GLint linked = 0;
    glGetProgramiv(program, GL_LINK_STATUS, &linked);
    if (linked == 1) return program;
    glDeleteProgram(program);
    return 0;
}

const char* eglErrorName(int code) {
    int index = code - kEglSuccess;
    int count = static_cast<int>(sizeof(kEglErrorNames) / sizeof(kEglErrorNames[0]));
    return index >= 0 && index < count ? kEglErrorNames[index] : "UNKNOWN";
}
