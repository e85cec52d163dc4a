// Helpers shared by the image library's files and the natives that size
// buffers from Java or file input; not exported.
#ifndef IFC_IMAGE_IMAGE_INTERNAL_H
#define IFC_IMAGE_IMAGE_INTERNAL_H

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>

#include "image_filter/image.h"

namespace ifc {

// Bytes the rows of an image span (stride x height); every constructor of
// this library allocates at least that much, so reads below it are safe.
inline int64_t imageExtent(const _Image* image) {
    if (image == nullptr || image->data == nullptr || image->stride <= 0 || image->height <= 0) return 0;
    return static_cast<int64_t>(image->stride) * image->height;
}

// True when [offset, offset + length) lies inside a buffer of `extent` bytes.
inline bool spanInside(int64_t offset, int64_t length, int64_t extent) {
    return offset >= 0 && length >= 0 && offset + length <= extent;
}

// Sizes from Java, files or GL (widths, heights, strides, channels, counts)
// multiplied into a byte count in 64 bits. A count this ABI's size_t cannot
// hold (4 GiB and up on 32-bit ABIs) or a negative factor gives the size_t
// maximum: no buffer or array is that large, so the size checks that follow
// refuse it instead of passing the wrapped remainder. `Size` stays size_t
// except in tests that ask what a 32-bit ABI gets.
template <typename Size = size_t>
constexpr Size byteCount(int64_t a, int64_t b = 1, int64_t c = 1) {
    constexpr Size kTooLarge = std::numeric_limits<Size>::max();
    int64_t ab = 0, abc = 0;
    if (a < 0 || b < 0 || c < 0 || __builtin_mul_overflow(a, b, &ab) || __builtin_mul_overflow(ab, c, &abc) ||
        static_cast<uint64_t>(abc) >= static_cast<uint64_t>(kTooLarge)) {
        return kTooLarge;
    }
    return static_cast<Size>(abc);
}

// True when byteCount refused the size: the work it sizes is not done.
template <typename Size = size_t>
constexpr bool tooLarge(Size bytes) {
    return bytes == std::numeric_limits<Size>::max();
}

// Bytes glTexImage2D or glReadPixels touch for `rows` rows of `width` pixels
// of bytesPerPixel under a pack or unpack alignment: every row but the last
// is padded to it. 0 for empty sizes, byteCount's too-large answer when the
// total does not fit.
template <typename Size = size_t>
constexpr Size paddedRowsBytes(int64_t width, int64_t rows, int64_t bytesPerPixel, int64_t alignment) {
    if (width <= 0 || rows <= 0) return 0;
    if (alignment < 1) alignment = 1;
    const Size row = byteCount<Size>(width, bytesPerPixel);
    if (tooLarge<Size>(row)) return row;
    const int64_t padded = (static_cast<int64_t>(row) + alignment - 1) / alignment * alignment;
    const Size above = byteCount<Size>(padded, rows - 1);
    if (tooLarge<Size>(above)) return above;
    return byteCount<Size>(static_cast<int64_t>(above) + static_cast<int64_t>(row));
}

// The bytes a record claims to hold (stride x rows), for bounding reads and
// writes: 0 when this ABI cannot address that many, as no buffer here can
// be that large, so nothing is touched instead of a wrapped remainder.
template <typename Size = size_t>
constexpr Size heldBytes(int64_t stride, int64_t rows) {
    if (stride <= 0 || rows <= 0) return 0;
    const Size bytes = byteCount<Size>(stride, rows);
    return tooLarge<Size>(bytes) ? 0 : bytes;
}

// malloc for pixel buffers: null for a negative or >4 GiB request (the size
// field is 32-bit); a zero-byte request still yields a valid pointer.
unsigned char* allocatePixels(int64_t bytes);

// Scaling rounding: v + 0.5 truncated toward zero (2.5 -> 3, -1.7 -> -1),
// saturated to the int range, NaN -> 0.
int roundHalfUp(double v);

}  // namespace ifc

#endif  // IFC_IMAGE_IMAGE_INTERNAL_H
