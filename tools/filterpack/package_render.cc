#include "package_render.h"

#include <GLES2/gl2.h>

#include <chrono>

#include "engine/filter_wraper.h"

namespace filterpack {
namespace {

// A texture of the caller's, as the camera or the gallery would hand over.
class SourceTexture {
public:
    SourceTexture(int width, int height, const void* pixels) {
        glGenTextures(1, &name);
        glBindTexture(GL_TEXTURE_2D, name);
        glPixelStorei(GL_UNPACK_ALIGNMENT, 1);
        glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA, width, height, 0, GL_RGBA, GL_UNSIGNED_BYTE, pixels);
        glBindTexture(GL_TEXTURE_2D, 0);
    }
    ~SourceTexture() { glDeleteTextures(1, &name); }
    SourceTexture(const SourceTexture&) = delete;
    SourceTexture& operator=(const SourceTexture&) = delete;

    GLuint get() const { return name; }

private:
    GLuint name = 0;
};

// Reads a texture through a framebuffer of our own; framebuffer 0 is bound
// again afterwards.
class ReadBackFramebuffer {
public:
    explicit ReadBackFramebuffer(GLuint texture) {
        glGenFramebuffers(1, &name);
        glBindFramebuffer(GL_FRAMEBUFFER, name);
        glFramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D, texture, 0);
    }
    ~ReadBackFramebuffer() {
        glBindFramebuffer(GL_FRAMEBUFFER, 0);
        glDeleteFramebuffers(1, &name);
    }
    ReadBackFramebuffer(const ReadBackFramebuffer&) = delete;
    ReadBackFramebuffer& operator=(const ReadBackFramebuffer&) = delete;

    bool read(RgbaImage* image) const {
        if (glCheckFramebufferStatus(GL_FRAMEBUFFER) != GL_FRAMEBUFFER_COMPLETE) return false;
        image->pixels.assign(static_cast<size_t>(image->width) * image->height * 4, 0);
        glPixelStorei(GL_PACK_ALIGNMENT, 1);
        glReadPixels(0, 0, image->width, image->height, GL_RGBA, GL_UNSIGNED_BYTE, image->pixels.data());
        return glGetError() == GL_NO_ERROR;
    }

private:
    GLuint name = 0;
};

// Soft diagonal gradients with a hard-edged square: enough structure for
// blurs and lookups to do real work.
RgbaImage testPicture(int width, int height) {
    RgbaImage picture{width, height, std::vector<uint8_t>(static_cast<size_t>(width) * height * 4)};
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            uint8_t* p = &picture.pixels[(static_cast<size_t>(y) * width + x) * 4];
            const bool square = x > width / 4 && x < width / 2 && y > height / 4 && y < height / 2;
            p[0] = static_cast<uint8_t>(255 * x / width);
            p[1] = static_cast<uint8_t>(255 * y / height);
            p[2] = square ? 255 : static_cast<uint8_t>(255 * (x + y) / (width + height));
            p[3] = 255;
        }
    }
    return picture;
}

}  // namespace

bool renderPackage(const std::string& name, const RgbaImage& input, RgbaImage* output) {
    const SourceTexture source(input.width, input.height, input.pixels.data());
    HFFilterWraper wraper(name.c_str());
    if (!wraper.hasFilter()) return false;
    wraper.renderTexture(static_cast<int>(source.get()), input.width, input.height);
    const int texture = wraper.outputTexture();
    if (texture == 0) return false;
    output->width = input.width;
    output->height = input.height;
    const ReadBackFramebuffer framebuffer(static_cast<GLuint>(texture));
    return framebuffer.read(output);
}

double benchPackage(const std::string& name, int width, int height, int frames) {
    const RgbaImage picture = testPicture(width, height);
    const SourceTexture source(width, height, picture.pixels.data());
    HFFilterWraper wraper(name.c_str());
    if (!wraper.hasFilter()) return -1.0;
    wraper.renderTexture(static_cast<int>(source.get()), width, height);
    glFinish();
    const auto start = std::chrono::steady_clock::now();
    for (int i = 0; i < frames; ++i) {
        wraper.renderTexture(static_cast<int>(source.get()), width, height);
        glFinish();
    }
    const std::chrono::duration<double, std::milli> elapsed = std::chrono::steady_clock::now() - start;
    return frames > 0 ? elapsed.count() / frames : 0.0;
}

}  // namespace filterpack
