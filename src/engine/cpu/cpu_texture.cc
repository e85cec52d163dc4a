#include "engine/cpu/cpu_texture.h"

#include "engine/cpu/image_copy.h"

HFCPUTexture::HFCPUTexture(_Image* source) : imageSize{0, 0}, pixels(nullptr) { setImage(source); }

HFCPUTexture::~HFCPUTexture() { free_image(&pixels); }

shared_ptr<IHFTexture> HFCPUTexture::createTexture(_Image* source) {
    return shared_ptr<IHFTexture>(new HFCPUTexture(source));
}

shared_ptr<IHFTexture> HFCPUTexture::adoptImage(_Image* image) {
    HFCPUTexture* texture = new HFCPUTexture();
    shared_ptr<IHFTexture> handle(texture);
    if (image != nullptr) texture->imageSize = HFSize{image->width, image->height};
    texture->pixels = image;
    return handle;
}

_Image* HFCPUTexture::releaseImage() {
    _Image* image = pixels;
    pixels = nullptr;
    imageSize = HFSize{0, 0};
    return image;
}

// The copy is taken before the held image is freed: the source may be that
// very image (what image() returned).
void HFCPUTexture::setImage(_Image* source) {
    _Image* copy = copyOfImage(source);
    imageSize = source != nullptr ? HFSize{source->width, source->height} : HFSize{0, 0};
    free_image(&pixels);
    pixels = copy;
}
