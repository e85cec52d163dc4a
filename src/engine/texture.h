// Textures of the filter engine: the abstract IHFTexture and its OpenGL ES 2.0
// implementation HFGLTexture (a texture name plus its sampling options).
#ifndef IFC_ENGINE_TEXTURE_H
#define IFC_ENGINE_TEXTURE_H

#include <GLES2/gl2.h>

#include <cstdint>

#include "engine/shared_ptr.h"
#include "image_filter/image.h"

struct HFSize {
    int32_t width;
    int32_t height;
};

inline bool operator==(HFSize a, HFSize b) { return a.width == b.width && a.height == b.height; }
inline bool operator!=(HFSize a, HFSize b) { return !(a == b); }

class IFC_API IHFTexture {
public:
    virtual ~IHFTexture();
    virtual void setImage(_Image* image) = 0;
    // The CPU image behind the texture; null for a GL texture.
    virtual _Image* image() = 0;
    // Always null; kept for the interface's shape.
    virtual void* userData() = 0;
};

struct HFGLTextureOptions {
    GLenum minFilter;
    GLenum magFilter;
    GLenum wrapS;
    GLenum wrapT;
    GLenum internalFormat;
    GLenum format;
    GLenum type;
};

// Linear filtering, clamp-to-edge wrapping, RGBA bytes.
extern IFC_API const HFGLTextureOptions defaultTextureOptions;

class IFC_API HFGLTexture : public IHFTexture {
public:
    // A non-zero name is borrowed (never deleted); 0 generates an owned name.
    HFGLTexture(unsigned int texture, HFGLTextureOptions options);
    // Generates an owned name and uploads the image into it.
    HFGLTexture(_Image* image, HFGLTextureOptions options);
    ~HFGLTexture() override;

    HFGLTexture(const HFGLTexture&) = delete;
    HFGLTexture& operator=(const HFGLTexture&) = delete;

    static shared_ptr<HFGLTexture> createTexture(unsigned int texture,
                                                 HFGLTextureOptions options = defaultTextureOptions);
    static shared_ptr<HFGLTexture> createTexture(_Image* image,
                                                 HFGLTextureOptions options = defaultTextureOptions);

    unsigned int glTexture() const { return texture; }
    HFSize size() const { return recordedSize; }
    bool ownsName() const { return ownsTexture; }
    const HFGLTextureOptions& textureOptions() const { return options; }

    void resize(int width, int height);

    void setImage(_Image* image) override;
    _Image* image() override { return nullptr; }
    void* userData() override { return nullptr; }

private:
    void setupParameters();

    unsigned int texture;
    bool ownsTexture;
    // The size as last recorded (the method size() takes the plain name).
    HFSize recordedSize;
    HFGLTextureOptions options;
};

#endif  // IFC_ENGINE_TEXTURE_H
