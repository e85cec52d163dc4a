#include "engine/texture.h"

#include "engine/gl_frame_state.h"

const HFGLTextureOptions defaultTextureOptions = {
    GL_LINEAR, GL_LINEAR, GL_CLAMP_TO_EDGE, GL_CLAMP_TO_EDGE, GL_RGBA, GL_RGBA, GL_UNSIGNED_BYTE,
};

HFGLTexture::HFGLTexture(unsigned int name, HFGLTextureOptions textureOptions)
    : texture(name), ownsTexture(false), recordedSize{0, 0}, options(textureOptions) {
    setupParameters();
}

HFGLTexture::HFGLTexture(_Image* image, HFGLTextureOptions textureOptions)
    : texture(0), ownsTexture(false), recordedSize{0, 0}, options(textureOptions) {
    setupParameters();
    setImage(image);
}

HFGLTexture::~HFGLTexture() {
    if (texture != 0) {
        if (ownsTexture) {
            // Deleting unbinds the name from every unit.
            glDeleteTextures(1, &texture);
            GLFrameState::forgetTextures();
        }
        texture = 0;
    }
}

shared_ptr<HFGLTexture> HFGLTexture::createTexture(unsigned int name, HFGLTextureOptions textureOptions) {
    return shared_ptr<HFGLTexture>(new HFGLTexture(name, textureOptions));
}

shared_ptr<HFGLTexture> HFGLTexture::createTexture(_Image* image, HFGLTextureOptions textureOptions) {
    return shared_ptr<HFGLTexture>(new HFGLTexture(image, textureOptions));
}

// Wrapping a caller's name applies the sampling options to that texture too.
void HFGLTexture::setupParameters() {
    glActiveTexture(GL_TEXTURE0);
    if (texture == 0) {
        ownsTexture = true;
        glGenTextures(1, &texture);
    } else {
        ownsTexture = false;
    }
    glBindTexture(GL_TEXTURE_2D, texture);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, static_cast<GLint>(options.minFilter));
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, static_cast<GLint>(options.magFilter));
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, static_cast<GLint>(options.wrapS));
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, static_cast<GLint>(options.wrapT));
    glBindTexture(GL_TEXTURE_2D, 0);
}

// Uploads and resizes use unit 3 so that units 0-2, which the GL filters bind
// while drawing, stay untouched. Rows are taken as tightly packed.
void HFGLTexture::setImage(_Image* image) {
    if (image == nullptr) {
        recordedSize = HFSize{0, 0};
        return;
    }
    recordedSize = HFSize{image->width, image->height};
    GLenum format = GL_RGBA;
    if (image->channels == 1) {
        format = GL_LUMINANCE;
    } else if (image->channels == 2) {
        format = GL_LUMINANCE_ALPHA;
    }
    options.internalFormat = format;
    glActiveTexture(GL_TEXTURE3);
    glBindTexture(GL_TEXTURE_2D, texture);
    glTexImage2D(GL_TEXTURE_2D, 0, static_cast<GLint>(format), image->width, image->height, 0, format,
                 GL_UNSIGNED_BYTE, image->data);
    glBindTexture(GL_TEXTURE_2D, 0);
}

// The texture stays bound on unit 3 afterwards. Borrowed names only record
// the size: re-specifying the storage would wipe the caller's pixels before
// the first filter reads them. They are still bound, so the GL state left
// behind is the same for both kinds.
void HFGLTexture::resize(int width, int height) {
    if (width == recordedSize.width && height == recordedSize.height) return;
    if (width == 0 || height == 0) return;
    recordedSize = HFSize{width, height};
    glActiveTexture(GL_TEXTURE3);
    glBindTexture(GL_TEXTURE_2D, texture);
    if (!ownsTexture) return;
    glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA, width, height, 0, GL_RGBA, GL_UNSIGNED_BYTE, nullptr);
}
