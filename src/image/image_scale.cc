// Nearest-neighbour scaling.
#include <algorithm>
#include <cstdlib>

#include "image/borrowed_pixels.h"
#include "image/image_internal.h"

namespace {

// Fills `out` (already created with the new size) from `source`; output rows
// are `outRowBytes` apart.
void sampleNearest(const _Image* source, _Image* out, int width, int height, int64_t outRowBytes) {
    if (out == nullptr || out->data == nullptr || source->data == nullptr) return;
    if (source->width < 1 || source->height < 1) return;
    double ry = static_cast<double>(source->height) / height;
    double rx = static_cast<double>(source->width) / width;
    int64_t channels = source->channels;
    int64_t sourceExtent = ifc::imageExtent(source);
    for (int y = 0; y < height; ++y) {
        int sy = std::min(ifc::roundHalfUp(y * ry), source->height - 1);
        unsigned char* to = out->data + y * outRowBytes;
        for (int x = 0; x < width; ++x) {
            int sx = std::min(ifc::roundHalfUp(x * rx), source->width - 1);
            int64_t from = static_cast<int64_t>(sy) * source->stride + sx * channels;
            if (ifc::spanInside(from, channels, sourceExtent)) {
                std::memcpy(to + x * channels, source->data + from, static_cast<size_t>(channels));
            }
        }
    }
}

}  // namespace

extern "C" {

IFC_API _Image* scale_image_ptr(const _Image* source, int width, int height) {
    if (source == nullptr) return nullptr;
    _Image* out = create_image(width, height, static_cast<unsigned int>(source->channels), -1);
    if (out != nullptr) sampleNearest(source, out, width, height, out->stride);
    return out;
}

IFC_API _Image* scale_image2(_Image* out, const _Image* source, int width, int height) {
    if (out == nullptr || source == nullptr) return out;
    create_image2(out, width, height, source->channels);
    sampleNearest(source, out, width, height, static_cast<int64_t>(width) * source->channels);
    return out;
}

IFC_API void scale_image(_Image* image, int width, int height) {
    if (image == nullptr) return;
    _Image scaled{};  // layout and markers end up 0: the old marker list is dropped, not freed
    scale_image2(&scaled, image, width, height);
    // A bound bitmap's pixels stay with the bitmap; the record owns the new buffer.
    if (!ifc::pixelsBorrowed(image)) std::free(image->data);
    ifc::forgetBorrowedPixels(image);
    *image = scaled;
}

}  // extern "C"
