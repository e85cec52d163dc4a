// Quarter turns and flips in place. Rows are taken as width x channels bytes
// apart; the stride is ignored (and rewritten by a turn).
#include <cstdlib>
#include <utility>

#include "image/borrowed_pixels.h"
#include "image/image_internal.h"

namespace {

int64_t packedBytes(const _Image* image) {
    return static_cast<int64_t>(image->width) * image->channels * image->height;
}

// True when the packed width x channels x height pixels lie in the buffer;
// an image without pixels fits whatever its buffer.
bool packedFits(const _Image* image) {
    if (image->width < 0 || image->height < 0 || image->channels < 0) return false;
    int64_t packed = packedBytes(image);
    return packed == 0 || (image->data != nullptr && packed <= ifc::imageExtent(image));
}

// Clockwise: source pixel (x, y) goes to row x, column height - 1 - y.
void turnClockwise(_Image* image) {
    int64_t w = image->width, h = image->height, c = image->channels;
    unsigned char* turned = ifc::allocatePixels(w * h * c);
    if (turned == nullptr) return;
    // Without pixels (a zero size) only the dimensions change.
    int64_t rows = packedBytes(image) > 0 ? h : 0;
    for (int64_t y = 0; y < rows; ++y) {
        for (int64_t x = 0; x < w; ++x) {
            std::memcpy(turned + (x * h + (h - 1 - y)) * c, image->data + (y * w + x) * c, static_cast<size_t>(c));
        }
    }
    // A bound bitmap keeps its pixels, untouched; the turned buffer is the
    // image's own from now on.
    if (!ifc::pixelsBorrowed(image)) std::free(image->data);
    image->data = turned;
    image->width = static_cast<int32_t>(h);
    image->height = static_cast<int32_t>(w);
    image->stride = static_cast<int32_t>(c * h);  // size is left as it was
}

}  // namespace

extern "C" {

IFC_API void flipImage(_Image* image, int horizontal, int vertical) {
    if (image == nullptr || !packedFits(image)) return;
    int64_t rowBytes = static_cast<int64_t>(image->width) * image->channels;
    int64_t c = image->channels;
    if (vertical > 0 && rowBytes > 0) {
        unsigned char* row = ifc::allocatePixels(rowBytes);
        if (row == nullptr) return;
        for (int64_t i = 0; i < image->height / 2; ++i) {
            unsigned char* top = image->data + i * rowBytes;
            unsigned char* bottom = image->data + (image->height - 1 - i) * rowBytes;
            std::memcpy(row, top, static_cast<size_t>(rowBytes));
            std::memcpy(top, bottom, static_cast<size_t>(rowBytes));
            std::memcpy(bottom, row, static_cast<size_t>(rowBytes));
        }
        std::free(row);
    }
    if (horizontal > 0 && image->height >= 1) {
        for (int64_t i = 0; i < image->height; ++i) {
            unsigned char* line = image->data + i * rowBytes;
            for (int64_t j = 0; j < image->width / 2; ++j) {
                for (int64_t k = 0; k < c; ++k) {
                    std::swap(line[j * c + k], line[(image->width - 1 - j) * c + k]);
                }
            }
        }
    }
}

IFC_API void rotateImage(_Image* image, int degrees) {
    if (image == nullptr || !packedFits(image)) return;
    switch (degrees) {
        case 90:
            turnClockwise(image);
            break;
        case 180:
            flipImage(image, 1, 1);
            break;
        case 270:
            turnClockwise(image);
            flipImage(image, 1, 1);
            break;
        default:
            break;
    }
}

}  // extern "C"
