#include "package_render.h"

#include <GLES2/gl2.h>

#include <chrono>
#include <cstdio>
#include <new>

#include "engine/filter_wraper.h"

namespace filterpack {
namespace {

// A texture of the caller's, as the camera or the gallery would hand over.
class SourceTexture {
public:
    // glGetError tells whether the upload worked.
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

std::string glErrorText(GLenum error) {
    char text[64];
    std::snprintf(text, sizeof(text), "GL error 0x%04x", error);
    return text;
}

void drainGlErrors() {
    for (int i = 0; i < 16 && glGetError() != GL_NO_ERROR; ++i) {
    }
}

// After a frame: the package left an output texture and GL saw no error.
bool frameRendered(const std::string& name, HFFilterWraper& wraper, std::string* error) {
    if (wraper.outputTexture() == 0) {
        *error = "package " + name + " leaves no GL output texture";
        return false;
    }
    const GLenum status = glGetError();
    if (status != GL_NO_ERROR) {
        *error = glErrorText(status) + " while package " + name + " rendered";
        return false;
    }
    return true;
}

bool uploaded(const std::string& what, std::string* error) {
    const GLenum status = glGetError();
    if (status == GL_NO_ERROR) return true;
    *error = glErrorText(status) + " while uploading the " + what + " picture";
    return false;
}

std::string noFilter(const std::string& name) {
    return "the engine builds no filter from package " + name + " (its log above says why)";
}

std::string rendererName() {
    const GLubyte* renderer = glGetString(GL_RENDERER);
    return renderer != nullptr ? reinterpret_cast<const char*>(renderer) : "unknown renderer";
}

}  // namespace

bool renderPackage(const std::string& name, const RgbaImage& input, RgbaImage* output, std::string* error) {
    drainGlErrors();
    const SourceTexture source(input.width, input.height, input.pixels.data());
    if (!uploaded(std::to_string(input.width) + "x" + std::to_string(input.height), error)) return false;
    HFFilterWraper wraper(name.c_str());
    if (!wraper.hasFilter()) {
        *error = noFilter(name);
        return false;
    }
    wraper.renderTexture(static_cast<int>(source.get()), input.width, input.height);
    if (!frameRendered(name, wraper, error)) return false;
    output->width = input.width;
    output->height = input.height;
    const ReadBackFramebuffer framebuffer(static_cast<GLuint>(wraper.outputTexture()));
    if (!framebuffer.read(output)) {
        *error = "the output texture of package " + name + " cannot be read back";
        return false;
    }
    return true;
}

BenchResult benchPackage(const std::string& name, int width, int height, int frames, EngineSession* session) {
    BenchResult result;
    result.renderer = rendererName();
    GLint limit = 0;
    glGetIntegerv(GL_MAX_TEXTURE_SIZE, &limit);
    if (width > limit || height > limit) {
        result.error = std::to_string(width) + "x" + std::to_string(height) + " is larger than " + result.renderer +
                       " allows: GL_MAX_TEXTURE_SIZE is " + std::to_string(limit);
        return result;
    }
    RgbaImage picture;
    try {
        picture = testPicture(width, height);
    } catch (const std::bad_alloc&) {
        result.error = "not enough memory for a " + std::to_string(width) + "x" + std::to_string(height) + " picture";
        return result;
    }
    drainGlErrors();
    const SourceTexture source(width, height, picture.pixels.data());
    if (!uploaded(std::to_string(width) + "x" + std::to_string(height), &result.error)) return result;
    session->passes().clear();  // only this wrapper's leaves
    HFFilterWraper wraper(name.c_str());
    if (!wraper.hasFilter()) {
        result.error = noFilter(name);
        return result;
    }
    const int texture = static_cast<int>(source.get());
    wraper.renderTexture(texture, width, height);
    glFinish();
    if (!frameRendered(name, wraper, &result.error)) return result;

    const auto start = std::chrono::steady_clock::now();
    for (int i = 0; i < frames; ++i) {
        wraper.renderTexture(texture, width, height);
        glFinish();
    }
    const std::chrono::duration<double, std::milli> elapsed = std::chrono::steady_clock::now() - start;
    if (!frameRendered(name, wraper, &result.error)) return result;
    result.milliseconds = frames > 0 ? elapsed.count() / frames : 0.0;

    for (PassTime& pass : session->passes()) pass = PassTime{pass.label, 0.0, 0};
    session->setTiming(true);
    for (int i = 0; i < frames; ++i) wraper.renderTexture(texture, width, height);
    session->setTiming(false);
    if (!frameRendered(name, wraper, &result.error)) return result;
    for (const PassTime& pass : session->passes()) {
        result.passes.push_back(PassTime{pass.label, pass.frames > 0 ? pass.milliseconds / pass.frames : 0.0,
                                         pass.frames});
    }
    return result;
}

}  // namespace filterpack
