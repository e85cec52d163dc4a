// Where the shaders compiled on this thread come from, so that compile and
// link failures name the package, the GL description file and the line of
// that file the GLSL error falls on.
#ifndef IFC_ENGINE_GL_SHADER_ORIGIN_H
#define IFC_ENGINE_GL_SHADER_ORIGIN_H

#include <GLES2/gl2.h>

#include <string>

#include "engine/gl/gl_filter_impl.h"

// The package whose filters are being built. Scopes nest (a model includes
// other packages); an empty name (an inline leaf) keeps the enclosing one.
class IFC_API HFPackageScope {
public:
    explicit HFPackageScope(const std::string& name);
    ~HFPackageScope();
    HFPackageScope(const HFPackageScope&) = delete;
    HFPackageScope& operator=(const HFPackageScope&) = delete;

    // Innermost package name; empty outside every scope.
    static const std::string& current();

private:
    const HFPackageScope* outer;
    const std::string* name;
};

// The GL description whose shader texts are being compiled (not owned; it
// must outlive the scope).
class IFC_API HFShaderOriginScope {
public:
    HFShaderOriginScope(const std::string& implementName, const HFGLFilterImpl* impl);
    ~HFShaderOriginScope();
    HFShaderOriginScope(const HFShaderOriginScope&) = delete;
    HFShaderOriginScope& operator=(const HFShaderOriginScope&) = delete;

private:
    friend struct HFShaderOriginAccess;
    const HFShaderOriginScope* outer;
    std::string file;
    const HFGLFilterImpl* impl;
};

// One problem per line of the GL info log of a shader that did not compile.
// `source` is the text as stored (before deciphering); a sealed source has no
// readable lines, so its problems name the pass instead.
IFC_API void HFShaderOrigin_reportCompileFailure(GLenum type, const char* source, bool sealed, const char* log);
IFC_API void HFShaderOrigin_reportLinkFailure(const char* log);

// "0:12(5): error: ..." (Mesa), "ERROR: 0:12: ..." (most others) or
// "0(12) : error ..." (NVIDIA): the line number, or 0 when the log line names
// none.
IFC_API int HFShaderOrigin_glslLine(const std::string& logLine);

#endif  // IFC_ENGINE_GL_SHADER_ORIGIN_H
