#include "engine/cpu/cpu_texture.h"

#include "engine/cpu/image_copy.h"

HFCPUTexture::HFCPUTexture(_Image* source) : imageSize{0, 0}, pixels(nullptr) { setImage(source); }

HFCPUTexture::~HFCPUTexture() { free_image(&pixels); }

shared_ptr<IHFTexture> HFCPUTexture::createTexture(_Image* source) {
    return shared_ptr<IHFTexture>(new HFCPUTexture(source));
}

// A held image is freed before it is replaced, so repeated uploads do not leak.
void HFCPUTexture::setImage(_Image* source) {
    free_image(&pixels);
    if (source == nullptr) {
        imageSize = HFSize{0, 0};
        return;
    }
    imageSize = HFSize{source->width, source->height};
    pixels = copyOfImage(source);
}
