// Shader texts, textures and small helpers shared by the GL tests.
#ifndef IFC_TESTS_ENGINE_GL_GL_TEST_SUPPORT_H
#define IFC_TESTS_ENGINE_GL_GL_TEST_SUPPORT_H

#include <GLES2/gl2.h>

#include <cstdint>
#include <string>
#include <vector>

#include "image_filter/image.h"

namespace gltest {

constexpr const char* kVertex =
    "attribute vec4 position; attribute vec2 inputTextureCoordinate; varying vec2 uv;\n"
    "void main(){ gl_Position = position; uv = inputTextureCoordinate; }\n";

// Swaps red and blue of input 0, so a pass-through cannot fake it.
constexpr const char* kSwapFragment =
    "precision mediump float; varying vec2 uv; uniform sampler2D inputImageTexture;\n"
    "void main(){ gl_FragColor = texture2D(inputImageTexture, uv).bgra; }\n";

// Shows input 1 (sampler "inputImageTexture2").
constexpr const char* kSecondInputFragment =
    "precision mediump float; varying vec2 uv; uniform sampler2D inputImageTexture;\n"
    "uniform sampler2D inputImageTexture2;\n"
    "void main(){ gl_FragColor = texture2D(inputImageTexture2, uv); }\n";

// Uses every uniform kind a description can set.
constexpr const char* kUniformFragment =
    "precision mediump float; varying vec2 uv; uniform sampler2D inputImageTexture;\n"
    "uniform sampler2D inputImageTexture2;\n"
    "uniform float amount; uniform vec4 tint; uniform mat4 colorMatrix; uniform float toneCurve[256];\n"
    "uniform int width; uniform int height; uniform float horStep; uniform float verStep;\n"
    "void main(){ vec4 c = texture2D(inputImageTexture, uv) + texture2D(inputImageTexture2, uv);\n"
    "  gl_FragColor = colorMatrix * c * amount + tint + vec4(toneCurve[0] + toneCurve[1] + toneCurve[255])\n"
    "    + vec4(float(width + height) * horStep * verStep); }\n";

// The "mee" packed form: length, x, then 4-byte little-endian words, each ended by x.
inline std::string packMee(const std::string& text) {
    std::string packed = "mee" + std::to_string(text.size()) + "x";
    for (size_t i = 0; i < text.size(); i += 4) {
        uint32_t word = 0;
        for (size_t k = 0; k < 4 && i + k < text.size(); ++k) {
            word |= static_cast<uint32_t>(static_cast<unsigned char>(text[i + k])) << (8 * k);
        }
        packed += std::to_string(static_cast<int32_t>(word)) + "x";
    }
    return packed;
}

// A tightly packed RGBA image of width * height pixels from `bytes`.
inline _Image* makeRGBA(int width, int height, const std::vector<unsigned char>& bytes) {
    _Image* image = create_image(width, height, 4, width * 4);
    for (size_t i = 0; i < bytes.size(); ++i) image->data[i] = bytes[i];
    return image;
}

// A fresh RGBA texture of the caller's, left unbound, tightly packed rows
// (unpack alignment stays 1, as filterpack leaves it); `pixels` may be null.
inline GLuint makeTexture(int width, int height, const void* pixels) {
    GLuint name = 0;
    glGenTextures(1, &name);
    glBindTexture(GL_TEXTURE_2D, name);
    glPixelStorei(GL_UNPACK_ALIGNMENT, 1);
    glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA, width, height, 0, GL_RGBA, GL_UNSIGNED_BYTE, pixels);
    glBindTexture(GL_TEXTURE_2D, 0);
    return name;
}

inline GLint glInteger(GLenum name) {
    GLint value = 0;
    glGetIntegerv(name, &value);
    return value;
}

inline std::vector<GLint> viewport() {
    std::vector<GLint> box(4);
    glGetIntegerv(GL_VIEWPORT, box.data());
    return box;
}

// Name of the texture on the bound framebuffer's colour attachment.
inline GLint colorAttachment() {
    GLint name = 0;
    glGetFramebufferAttachmentParameteriv(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_FRAMEBUFFER_ATTACHMENT_OBJECT_NAME,
                                          &name);
    return name;
}

// 2D textures bound on units first..last; the last one stays active.
inline std::vector<GLint> boundOnUnits(int first, int last) {
    std::vector<GLint> bound;
    for (int unit = first; unit <= last; ++unit) {
        glActiveTexture(GL_TEXTURE0 + unit);
        bound.push_back(glInteger(GL_TEXTURE_BINDING_2D));
    }
    return bound;
}

// Four texels, RGBA, first row is GL row 0 (the bottom): bottom-left red,
// bottom-right green, top-left blue, top-right white.
inline const std::vector<uint8_t>& quadrantTexels() {
    static const std::vector<uint8_t> texels = {255, 0, 0, 255, 0, 255, 0, 255, 0, 0, 255, 255, 255, 255, 255, 255};
    return texels;
}

// A texture that samples with `filter` and clamps, deleted with the object.
// The unpack alignment is left as the caller set it.
class ScopedTexture {
public:
    ScopedTexture(int width, int height, const void* rgba, GLenum filter = GL_NEAREST) {
        glGenTextures(1, &name_);
        glBindTexture(GL_TEXTURE_2D, name_);
        // Complete (no mipmap filter) before the storage is defined: some
        // drivers fix an EGLImage's source at that point.
        for (GLenum parameter : {GL_TEXTURE_MIN_FILTER, GL_TEXTURE_MAG_FILTER}) {
            glTexParameteri(GL_TEXTURE_2D, parameter, static_cast<GLint>(filter));
        }
        for (GLenum parameter : {GL_TEXTURE_WRAP_S, GL_TEXTURE_WRAP_T}) {
            glTexParameteri(GL_TEXTURE_2D, parameter, GL_CLAMP_TO_EDGE);
        }
        glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA, width, height, 0, GL_RGBA, GL_UNSIGNED_BYTE, rgba);
        glBindTexture(GL_TEXTURE_2D, 0);
    }
    ~ScopedTexture() { glDeleteTextures(1, &name_); }
    ScopedTexture(const ScopedTexture&) = delete;
    ScopedTexture& operator=(const ScopedTexture&) = delete;
    GLuint name() const { return name_; }

private:
    GLuint name_ = 0;
};

// RGBA of pixel (x, y) of a read-back of the given width.
inline std::vector<uint8_t> pixelAt(const std::vector<uint8_t>& rgba, int width, int x, int y) {
    const size_t offset = (static_cast<size_t>(y) * width + x) * 4;
    return {rgba.begin() + offset, rgba.begin() + offset + 4};
}

// RGBA bytes of a texture's level 0, read through a framebuffer of our own.
inline std::vector<unsigned char> readTexture(GLuint texture, int width, int height) {
    GLuint framebuffer = 0;
    glGenFramebuffers(1, &framebuffer);
    glBindFramebuffer(GL_FRAMEBUFFER, framebuffer);
    glFramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D, texture, 0);
    std::vector<unsigned char> pixels(static_cast<size_t>(width) * height * 4);
    glPixelStorei(GL_PACK_ALIGNMENT, 1);
    glReadPixels(0, 0, width, height, GL_RGBA, GL_UNSIGNED_BYTE, pixels.data());
    glBindFramebuffer(GL_FRAMEBUFFER, 0);
    glDeleteFramebuffers(1, &framebuffer);
    return pixels;
}

}  // namespace gltest

#endif  // IFC_TESTS_ENGINE_GL_GL_TEST_SUPPORT_H
