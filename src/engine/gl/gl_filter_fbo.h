// The offscreen target of a GL leaf filter: a framebuffer whose colour
// attachment is the filter's output texture. No depth or stencil.
#ifndef IFC_ENGINE_GL_GL_FILTER_FBO_H
#define IFC_ENGINE_GL_GL_FILTER_FBO_H

#include <GLES2/gl2.h>

#include <cstdint>

#include "engine/shared_ptr.h"
#include "engine/texture.h"

struct GLFilterFBO {
    GLuint framebuffer = 0;
    int32_t width = 0;
    int32_t height = 0;
    shared_ptr<IHFTexture> texture;

    GLFilterFBO() = default;
    GLFilterFBO(const GLFilterFBO&) = delete;
    GLFilterFBO& operator=(const GLFilterFBO&) = delete;
    // Detaches and deletes the framebuffer, which leaves the default
    // framebuffer bound when this one was.
    virtual ~GLFilterFBO();

    static shared_ptr<GLFilterFBO> create();

    // Keeps a reference to the texture (an HFGLTexture) and attaches it on
    // unit 1; the framebuffer stays bound.
    void attach(shared_ptr<IHFTexture> colour);
    // Ignored when either value is 0 or the pair is unchanged.
    void setSize(int32_t newWidth, int32_t newHeight);
    // Binds the framebuffer and sets the viewport to its size.
    void bind() const;
};

// GL name of a GL texture; 0 for any other kind of texture.
GLuint glTextureNameOf(IHFTexture* texture);

#endif  // IFC_ENGINE_GL_GL_FILTER_FBO_H
