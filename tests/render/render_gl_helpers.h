// Known textures and small GL objects for the renderer tests.
#ifndef IFC_TESTS_RENDER_GL_HELPERS_H
#define IFC_TESTS_RENDER_GL_HELPERS_H

#include <GLES2/gl2.h>

#include <cstdint>
#include <vector>

// Four texels, RGBA, first row is GL row 0 (the bottom): bottom-left red,
// bottom-right green, top-left blue, top-right white.
inline const std::vector<uint8_t>& quadrantTexels() {
    static const std::vector<uint8_t> texels = {255, 0, 0, 255, 0, 255, 0, 255,
                                                0, 0, 255, 255, 255, 255, 255, 255};
    return texels;
}

class ScopedTexture {
public:
    ScopedTexture(int width, int height, const void* rgba, GLenum filter = GL_NEAREST) {
        glGenTextures(1, &name_);
        glBindTexture(GL_TEXTURE_2D, name_);
        // Complete (no mipmap filter) before the storage is defined: some
        // drivers fix an EGLImage's source at that point.
        glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, filter);
        glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, filter);
        glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_CLAMP_TO_EDGE);
        glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, GL_CLAMP_TO_EDGE);
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

inline GLint currentInt(GLenum query) {
    GLint value = 0;
    glGetIntegerv(query, &value);
    return value;
}

// RGBA of one pixel of a read-back of the given width.
inline std::vector<uint8_t> pixelAt(const std::vector<uint8_t>& rgba, int width, int x, int y) {
    size_t offset = (static_cast<size_t>(y) * width + x) * 4;
    return {rgba[offset], rgba[offset + 1], rgba[offset + 2], rgba[offset + 3]};
}

inline std::vector<uint8_t> rgba(uint8_t r, uint8_t g, uint8_t b, uint8_t a) { return {r, g, b, a}; }

#endif  // IFC_TESTS_RENDER_GL_HELPERS_H
