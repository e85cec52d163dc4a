#include "headless_gl.h"

#include <EGL/egl.h>
#include <EGL/eglext.h>

#include <cstdio>
#include <cstring>

namespace ifc_host {
namespace {

EGLDisplay openDisplay() {
    // Prefer Mesa's surfaceless platform: it needs no window system at all.
    const char* clientExtensions = eglQueryString(EGL_NO_DISPLAY, EGL_EXTENSIONS);
    if (clientExtensions != nullptr && std::strstr(clientExtensions, "EGL_MESA_platform_surfaceless")) {
        auto getPlatformDisplay = reinterpret_cast<PFNEGLGETPLATFORMDISPLAYEXTPROC>(
            eglGetProcAddress("eglGetPlatformDisplayEXT"));
        if (getPlatformDisplay != nullptr) {
            EGLDisplay display = getPlatformDisplay(EGL_PLATFORM_SURFACELESS_MESA, EGL_DEFAULT_DISPLAY, nullptr);
            if (display != EGL_NO_DISPLAY && eglInitialize(display, nullptr, nullptr)) return display;
        }
    }
    EGLDisplay display = eglGetDisplay(EGL_DEFAULT_DISPLAY);
    if (display != EGL_NO_DISPLAY && eglInitialize(display, nullptr, nullptr)) return display;
    return EGL_NO_DISPLAY;
}

std::string eglFailure(const char* what) {
    char text[96];
    std::snprintf(text, sizeof text, "%s failed (EGL error 0x%x)", what, eglGetError());
    return text;
}

}  // namespace

std::unique_ptr<HeadlessGL> HeadlessGL::create(int width, int height, std::string* error) {
    std::string ignored;
    if (error == nullptr) error = &ignored;
    std::unique_ptr<HeadlessGL> gl(new HeadlessGL());

    EGLDisplay display = openDisplay();
    if (display == EGL_NO_DISPLAY) {
        *error = eglFailure("eglInitialize");
        return nullptr;
    }
    gl->display_ = display;
    if (!eglBindAPI(EGL_OPENGL_ES_API)) {
        *error = eglFailure("eglBindAPI");
        return nullptr;
    }

    const EGLint configAttributes[] = {
        EGL_SURFACE_TYPE, EGL_PBUFFER_BIT,
        EGL_RENDERABLE_TYPE, EGL_OPENGL_ES2_BIT,
        EGL_RED_SIZE, 8, EGL_GREEN_SIZE, 8, EGL_BLUE_SIZE, 8, EGL_ALPHA_SIZE, 8,
        EGL_DEPTH_SIZE, 16,
        EGL_NONE};
    EGLConfig config = nullptr;
    EGLint count = 0;
    if (!eglChooseConfig(display, configAttributes, &config, 1, &count) || count < 1) {
        *error = eglFailure("eglChooseConfig (RGBA8 pbuffer, ES2)");
        return nullptr;
    }

    const EGLint pbufferAttributes[] = {EGL_WIDTH, width, EGL_HEIGHT, height, EGL_NONE};
    EGLSurface surface = eglCreatePbufferSurface(display, config, pbufferAttributes);
    if (surface == EGL_NO_SURFACE) {
        *error = eglFailure("eglCreatePbufferSurface");
        return nullptr;
    }
    gl->surface_ = surface;

    const EGLint contextAttributes[] = {EGL_CONTEXT_CLIENT_VERSION, 2, EGL_NONE};
    EGLContext context = eglCreateContext(display, config, EGL_NO_CONTEXT, contextAttributes);
    if (context == EGL_NO_CONTEXT) {
        *error = eglFailure("eglCreateContext (ES 2.0)");
        return nullptr;
    }
    gl->context_ = context;

    if (!gl->makeCurrent()) {
        *error = eglFailure("eglMakeCurrent");
        return nullptr;
    }
    return gl;
}

bool HeadlessGL::makeCurrent() {
    return eglMakeCurrent(display_, surface_, surface_, context_) == EGL_TRUE;
}

HeadlessGL::~HeadlessGL() {
    if (display_ == nullptr) return;
    eglMakeCurrent(display_, EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT);
    if (context_ != nullptr) eglDestroyContext(display_, context_);
    if (surface_ != nullptr) eglDestroySurface(display_, surface_);
    // The display stays initialised: Mesa shares it process-wide and other
    // contexts of the same process may still use it.
}

}  // namespace ifc_host
