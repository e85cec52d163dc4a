#include "jni/pixels/qimage_pixels.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

#include "image/image_internal.h"
#include "jni/pixels/pixel_kernels.h"

namespace ifc {

size_t image_capacity(const _Image* image) {
    if (!image || !image->data || image->stride <= 0 || image->height <= 0) return 0;
    const size_t rows = heldBytes(image->stride, image->height);
    return image->size == 0 ? rows : std::min<size_t>(image->size, rows);
}

_Image* frame_image_for(_Image* current, int width, int height) {
    const int64_t pixels = int64_t{width} * height;
    if (current) {
        // The channel count is not compared; only the room for the pixels.
        if (int64_t{current->width} * current->height == pixels && image_capacity(current) >= byteCount(pixels, 4))
            return current;
        free_image(&current);  // a bound bitmap's pixels stay the bitmap's
    }
    // A row of more than INT_MAX bytes cannot be described (even with no rows).
    if (width < 0 || height < 0 || width > INT32_MAX / 4) return nullptr;
    return create_image(width, height, 4, width * 4);
}

void alpha_mix_overlay(_Image* image, const uint8_t* overlay, int ow, int oh, int x, int y) {
    const int64_t iw = image->width, ih = image->height, channels = image->channels;
    // A record without channels holds no pixels.
    if (channels < 1) return;
    // x names the left edge but y the vertical centre; intended. Edges are
    // computed wide: Java may pass any int position and any image size.
    const int64_t top = int64_t{y} - (oh >> 1);
    const int64_t columns = x + int64_t{ow} > iw ? iw - x : ow;
    const int64_t rows = top + oh > ih ? ih - top : oh;
    // Only the right and bottom edges are clipped: a pixel left of the image
    // lands at the end of the row above, as it always has. Bytes outside the
    // buffer are skipped.
    const int64_t capacity = static_cast<int64_t>(image_capacity(image));
    const auto mix_row = pixel_kernels().alpha_mix_row;
    for (int i = 0; i < rows; ++i) {
        const uint8_t* s = overlay + size_t(i) * ow * 4;
        const int64_t base = ((int64_t{top} + i) * iw + x) * channels;
        auto mix_pixel = [&](int j) {
            const int64_t at = base + int64_t{j} * channels;
            if (at < 0) return;
            const uint8_t* sp = s + 4 * j;
            const int keep = 255 - sp[3];
            // Stored as a byte: an overlay brighter than its alpha wraps.
            for (int c = 0; c < 3 && at + c < capacity; ++c) {
                uint8_t& d = image->data[at + c];
                d = static_cast<uint8_t>((d * keep + sp[c] * 255) / 255);
            }
        };
        // 4-byte pixels wholly inside the buffer go through the row kernel.
        int first = 0, last = 0;
        if (channels == 4 && columns > 0) {
            first = static_cast<int>(std::min<int64_t>(columns, base >= 0 ? 0 : (3 - base) / 4));
            last = static_cast<int>(std::clamp<int64_t>(capacity - base < 0 ? 0 : (capacity - base) / 4, first, columns));
        }
        for (int j = 0; j < first; ++j) mix_pixel(j);
        if (last > first) mix_row(s + 4 * first, image->data + (base + 4 * first), last - first);
        for (int j = last; j < columns; ++j) mix_pixel(j);
    }
}

void image_histogram(const _Image* image, uint32_t* bins, bool per_channel) {
    const HistogramSource src{image->data, image->stride, image->width, image->height, image_capacity(image)};
    if (per_channel)
        histogram_channels_fast(src, bins);
    else
        histogram_fast(src, bins);
}

}  // namespace ifc
