// Helpers shared by the image library's files; not exported.
#ifndef IFC_IMAGE_IMAGE_INTERNAL_H
#define IFC_IMAGE_IMAGE_INTERNAL_H

#include <cstdint>
#include <cstring>

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

// malloc for pixel buffers: null for a negative or >4 GiB request (the size
// field is 32-bit); a zero-byte request still yields a valid pointer.
unsigned char* allocatePixels(int64_t bytes);

// Scaling rounding: v + 0.5 truncated toward zero (2.5 -> 3, -1.7 -> -1),
// saturated to the int range, NaN -> 0.
int roundHalfUp(double v);

}  // namespace ifc

#endif  // IFC_IMAGE_IMAGE_INTERNAL_H
