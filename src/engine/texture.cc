#include "engine/texture.h"

#include <cstring>
#include <vector>

#include "engine/gl_frame_state.h"
#include "image/image_internal.h"
#include "jni/bridge/log.h"

const HFGLTextureOptions defaultTextureOptions = {
    GL_LINEAR, GL_LINEAR, GL_CLAMP_TO_EDGE, GL_CLAMP_TO_EDGE, GL_RGBA, GL_RGBA, GL_UNSIGNED_BYTE,
};

namespace {

int bytesPerTexel(GLenum format) {
    if (format == GL_LUMINANCE) return 1;
    if (format == GL_LUMINANCE_ALPHA) return 2;
    return 4;
}

// What glTexImage2D reads for the image in `format` under the caller's unpack
// alignment. A three-channel image goes up as RGBA, and a luminance row is
// padded to the alignment, so GL may want more bytes than the image holds.
size_t bytesGLReads(const _Image& image, GLenum format) {
    if (image.width <= 0 || image.height <= 0) return 0;
    GLint alignment = 4;
    glGetIntegerv(GL_UNPACK_ALIGNMENT, &alignment);
    return ifc::paddedRowsBytes(image.width, image.height, bytesPerTexel(format), alignment);
}

size_t bytesHeld(const _Image& image) {
    if (image.size != 0) return image.size;
    return ifc::heldBytes(image.stride, image.height);
}

// Sizes GL rejects before reading anything need no copy.
bool withinTextureLimits(int width, int height) {
    GLint limit = 0;
    glGetIntegerv(GL_MAX_TEXTURE_SIZE, &limit);
    return width <= limit && height <= limit;
}

}  // namespace

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
// while drawing, stay untouched. The image's stride is not passed to GL.
void HFGLTexture::setImage(_Image* image) {
    if (image == nullptr) {
        recordedSize = HFSize{0, 0};
        return;
    }
    GLenum format = GL_RGBA;
    if (image->channels == 1) {
        format = GL_LUMINANCE;
    } else if (image->channels == 2) {
        format = GL_LUMINANCE_ALPHA;
    }
    const size_t wanted = bytesGLReads(*image, format);
    if (image->data != nullptr && ifc::tooLarge(wanted)) {
        // GL would read past any buffer this ABI can address: the texture is left as it was.
        log_printE("image %dx%d is too large to upload here", image->width, image->height);
        return;
    }
    recordedSize = HFSize{image->width, image->height};
    options.internalFormat = format;
    // GL sees the image's bytes as they are and zeros past their end.
    const void* pixels = image->data;
    std::vector<unsigned char> padded;
    const size_t held = bytesHeld(*image);
    if (pixels != nullptr && wanted > held && withinTextureLimits(image->width, image->height)) {
        padded.assign(wanted, 0);
        memcpy(padded.data(), image->data, held);
        pixels = padded.data();
    }
    glActiveTexture(GL_TEXTURE3);
    glBindTexture(GL_TEXTURE_2D, texture);
    glTexImage2D(GL_TEXTURE_2D, 0, static_cast<GLint>(format), image->width, image->height, 0, format,
                 GL_UNSIGNED_BYTE, pixels);
    glBindTexture(GL_TEXTURE_2D, 0);
}

// The texture stays bound on unit 3 afterwards. Borrowed names only record
// the size: re-specifying the storage would wipe the caller's pixels before
// the first filter reads them. They are still bound, so the GL state left
// behind is the same for both kinds.
void HFGLTexture::resize(int width, int height) {
    if (width == recordedSize.width && height == recordedSize.height) return;
    if (width == 0 || height == 0) return;
    // GL refuses these with GL_INVALID_VALUE anyway; some drivers crash on a
    // side far beyond the limit instead, so they never reach GL.
    if (width < 0 || height < 0 || !withinTextureLimits(width, height)) {
        log_printE("texture size %dx%d is beyond this GL's limits", width, height);
        return;
    }
    recordedSize = HFSize{width, height};
    glActiveTexture(GL_TEXTURE3);
    glBindTexture(GL_TEXTURE_2D, texture);
    if (!ownsTexture) return;
    glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA, width, height, 0, GL_RGBA, GL_UNSIGNED_BYTE, nullptr);
}
