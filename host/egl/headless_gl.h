// Host-only: a headless OpenGL ES 2.0 context made current on the calling
// thread (Mesa surfaceless platform with a small pbuffer, or the default
// display), for C++ test fixtures, the Java tests and the tools.
#ifndef IFC_HOST_HEADLESS_GL_H
#define IFC_HOST_HEADLESS_GL_H

#include <memory>
#include <string>

namespace ifc_host {

class HeadlessGL {
public:
    // Creates a context with a width x height pbuffer as framebuffer 0 and
    // makes it current. Returns null and fills *error when that fails.
    static std::unique_ptr<HeadlessGL> create(int width, int height, std::string* error);
    ~HeadlessGL();  // releases the current binding and destroys everything

    HeadlessGL(const HeadlessGL&) = delete;
    HeadlessGL& operator=(const HeadlessGL&) = delete;

    bool makeCurrent();

private:
    HeadlessGL() = default;
    void* display_ = nullptr;
    void* surface_ = nullptr;
    void* context_ = nullptr;
};

}  // namespace ifc_host

#endif  // IFC_HOST_HEADLESS_GL_H
