// An image-backed texture: the output (and the input) of CPU filters.
#ifndef IFC_ENGINE_CPU_CPU_TEXTURE_H
#define IFC_ENGINE_CPU_CPU_TEXTURE_H

#include "engine/texture.h"

class IFC_API HFCPUTexture : public IHFTexture {
public:
    // Keeps its own copy of image (which may be null).
    explicit HFCPUTexture(_Image* image);
    ~HFCPUTexture() override;
    HFCPUTexture(const HFCPUTexture&) = delete;
    HFCPUTexture& operator=(const HFCPUTexture&) = delete;

    static shared_ptr<IHFTexture> createTexture(_Image* image);
    // Takes ownership of image (no copy); it is freed with the texture.
    static shared_ptr<IHFTexture> adoptImage(_Image* image);

    HFSize size() const { return imageSize; }
    void setImage(_Image* source) override;
    _Image* image() override { return pixels; }
    // Hands the held image to the caller; the texture is left empty.
    _Image* releaseImage();
    void* userData() override { return nullptr; }

private:
    HFCPUTexture() : imageSize{0, 0}, pixels(nullptr) {}

    HFSize imageSize;
    _Image* pixels;
};

#endif  // IFC_ENGINE_CPU_CPU_TEXTURE_H
