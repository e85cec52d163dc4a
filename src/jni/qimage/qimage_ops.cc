// The pixel work behind the QImage natives.
#include "jni/qimage/qimage_ops.h"

#include <algorithm>
#include <cstring>
#include <vector>

#include "image/image_internal.h"

namespace ifc {

namespace {

int64_t clippedSize(int origin, int size, int limit) {
    int64_t far = static_cast<int64_t>(origin) + size;
    return far > limit ? static_cast<int64_t>(limit) - origin : size;
}

// The image's bytes, or a zero-padded copy when fewer than `needed` exist:
// reads past the buffer see zeros. Null when the copy could not be
// addressed on this ABI.
const unsigned char* readableBytes(const _Image* image, int64_t needed, std::vector<unsigned char>* scratch) {
    int64_t extent = imageExtent(image);
    if (extent >= needed) return image->data;
    if (tooLarge(byteCount(needed))) return nullptr;
    scratch->assign(static_cast<size_t>(needed), 0);
    if (extent > 0) std::memcpy(scratch->data(), image->data, static_cast<size_t>(extent));
    return scratch->data();
}

inline void putPixel(unsigned char* to, const unsigned char* from, bool swapRB) {
    to[0] = from[swapRB ? 2 : 0];
    to[1] = from[1];
    to[2] = from[swapRB ? 0 : 2];
    to[3] = from[3];
}

}  // namespace

_Image* cropSubImage(const _Image* image, int x, int y, int w, int h) {
    if (image == nullptr) return nullptr;
    int x0 = std::max(x, 0);
    int y0 = std::max(y, 0);
    int64_t width = clippedSize(x0, w, image->width);
    int64_t height = clippedSize(y0, h, image->height);
    if (width < 1 || height < 1) return nullptr;
    int64_t channels = image->channels;
    _Image* crop = create_image(static_cast<int>(width), static_cast<int>(height),
                                static_cast<unsigned int>(channels), static_cast<int>(width * channels));
    if (crop == nullptr) return nullptr;
    // Source rows are width x channels bytes apart; the stride is not used.
    int64_t sourceRow = static_cast<int64_t>(image->width) * channels;
    int64_t rowBytes = width * channels;
    int64_t extent = imageExtent(image);
    for (int64_t r = 0; r < height; ++r) {
        int64_t from = (y0 + r) * sourceRow + x0 * channels;
        unsigned char* to = crop->data + r * rowBytes;
        if (spanInside(from, rowBytes, extent)) {
            std::memcpy(to, image->data + from, static_cast<size_t>(rowBytes));
        } else {
            std::memset(to, 0, static_cast<size_t>(rowBytes));
        }
    }
    return crop;
}

_Image* duplicateImage(const _Image* image) {
    if (image == nullptr) return nullptr;
    _Image* copy = create_image(image->width, image->height, static_cast<unsigned int>(image->channels),
                                image->stride);
    if (copy == nullptr) return nullptr;
    std::memset(copy->data, 0, copy->size);
    copyImagePrefix(image, copy->size, copy->data, copy->size);
    return copy;
}

int64_t colorIntBytes(const _Image* image, bool mirror) {
    if (image == nullptr || image->width <= 0 || image->height <= 0) return 0;
    int64_t w = image->width, h = image->height;
    if (!mirror) return w * h * 4;
    return (h - 1) * w * std::max(image->channels, 0) + w * 4;
}

bool writeColorInts(const _Image* image, unsigned char* out, bool mirror, bool swapRB) {
    if (colorIntBytes(image, mirror) == 0 || out == nullptr) return true;
    int64_t w = image->width, h = image->height;
    std::vector<unsigned char> scratch;
    // Source pixels are 4 bytes whatever the channel count.
    const unsigned char* source = readableBytes(image, w * h * 4, &scratch);
    if (source == nullptr) return false;
    if (!mirror) {
        for (int64_t i = 0; i < w * h; ++i) putPixel(out + i * 4, source + i * 4, swapRB);
        return true;
    }
    int64_t outRow = w * image->channels;  // bytes, not ints, on purpose
    for (int64_t y = 0; y < h; ++y) {
        const unsigned char* from = source + y * w * 4;
        unsigned char* to = out + y * outRow;
        for (int64_t x = 0; x < w; ++x) putPixel(to + (w - 1 - x) * 4, from + x * 4, swapRB);
    }
    return true;
}

size_t copyImagePrefix(const _Image* image, size_t bytes, void* pixels, size_t capacity) {
    if (image == nullptr || pixels == nullptr) return 0;
    size_t count = std::min({bytes, heldBytes(imageExtent(image), 1), capacity});
    if (count > 0) std::memcpy(pixels, image->data, count);
    return count;
}

void sampleToRGB565(const _Image* image, uint16_t* out, int bitmapWidth, int bitmapHeight, int64_t outRowPixels) {
    if (image == nullptr || out == nullptr || bitmapWidth < 1 || bitmapHeight < 1) return;
    int64_t ry = image->height / bitmapHeight;
    int64_t rx = image->width / bitmapWidth;
    int64_t channels = image->channels;
    int64_t extent = imageExtent(image);
    for (int64_t j = 0; j < bitmapHeight; ++j) {
        int64_t row = j * ry * image->width * channels;  // width x channels per image row
        for (int64_t i = 0; i < bitmapWidth; ++i) {
            int64_t at = row + i * rx * channels;
            unsigned char rgb[3] = {0, 0, 0};
            for (int k = 0; k < 3; ++k) {
                if (at + k >= 0 && at + k < extent) rgb[k] = image->data[at + k];
            }
            out[j * outRowPixels + i] = static_cast<uint16_t>((rgb[0] >> 3) << 11 | ((rgb[1] << 3) & 0x7E0) | (rgb[2] >> 3));
        }
    }
}

int rotationRemainder(int degrees) {
    return static_cast<int>((static_cast<int64_t>(degrees) + 360) % 360);
}

void moveMarkers(_Image* to, _Image* from) {
    if (to == nullptr) return;
    if (to->markers != nullptr) free_marker(to->markers);
    to->markers = nullptr;
    if (from == nullptr) return;
    to->markers = from->markers;
    from->markers = nullptr;
}

}  // namespace ifc
