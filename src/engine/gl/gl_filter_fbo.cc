#include "engine/gl/gl_filter_fbo.h"

#include <utility>

GLuint glTextureNameOf(IHFTexture* texture) {
    const HFGLTexture* gl = dynamic_cast<HFGLTexture*>(texture);
    return gl != nullptr ? gl->glTexture() : 0;
}

GLFilterFBO::~GLFilterFBO() {
    glBindFramebuffer(GL_FRAMEBUFFER, framebuffer);
    glFramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D, 0, 0);
    glDeleteFramebuffers(1, &framebuffer);
    framebuffer = 0;
    texture.release();
}

shared_ptr<GLFilterFBO> GLFilterFBO::create() {
    shared_ptr<GLFilterFBO> fbo(new GLFilterFBO());
    glGenFramebuffers(1, &fbo->framebuffer);
    return fbo;
}

void GLFilterFBO::attach(shared_ptr<IHFTexture> colour) {
    texture = std::move(colour);
    const GLuint name = glTextureNameOf(texture.get());
    glActiveTexture(GL_TEXTURE1);
    glBindFramebuffer(GL_FRAMEBUFFER, framebuffer);
    glBindTexture(GL_TEXTURE_2D, name);
    glFramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D, name, 0);
    glBindTexture(GL_TEXTURE_2D, 0);
}

void GLFilterFBO::setSize(int32_t newWidth, int32_t newHeight) {
    if (newWidth == 0 || newHeight == 0) return;
    width = newWidth;
    height = newHeight;
}

void GLFilterFBO::bind() const {
    glBindFramebuffer(GL_FRAMEBUFFER, framebuffer);
    glViewport(0, 0, width, height);
}
