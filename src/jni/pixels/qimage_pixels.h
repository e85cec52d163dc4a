// Plain C++ behind the QImage pixel natives, callable without a JVM.
#ifndef IFC_JNI_QIMAGE_PIXELS_H
#define IFC_JNI_QIMAGE_PIXELS_H

#include <cstddef>
#include <cstdint>

#include "image_filter/image.h"

namespace ifc {

// Bytes of `image`'s buffer that may be read or written: `size` for an owning
// image, stride x height for a header over a bitmap (size 0).
size_t image_capacity(const _Image* image);

// The image a camera frame of width x height is converted into: `current`
// when it has the same pixel count (its own width and height are kept) and
// room for 4 bytes per pixel; otherwise `current` is released and a new
// width x height RGBA image is created.
_Image* frame_image_for(_Image* current, int width, int height);

// Blends a premultiplied RGBA overlay (ow x oh, rows ow * 4 bytes apart) onto
// image bytes 0..2 with its left edge at x and its vertical centre at y.
// Pixels are placed at (row * width + column) * channels; bytes that fall
// outside the buffer are skipped.
void alpha_mix_overlay(_Image* image, const uint8_t* overlay, int ow, int oh, int x, int y);

// Histogram of bytes 0..2 of pixels 4 bytes apart (whatever the channel
// count), rows through the stride: 256 combined bins or 768 per channel.
void image_histogram(const _Image* image, uint32_t* bins, bool per_channel);

}  // namespace ifc

#endif  // IFC_JNI_QIMAGE_PIXELS_H
