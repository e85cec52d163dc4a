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

    HFSize size() const { return imageSize; }
    void setImage(_Image* source) override;
    _Image* image() override { return pixels; }
    void* userData() override { return nullptr; }

private:
    HFSize imageSize;
    _Image* pixels;
};

#endif  // IFC_ENGINE_CPU_CPU_TEXTURE_H
