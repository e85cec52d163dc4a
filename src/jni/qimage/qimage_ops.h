// The pixel work behind the QImage natives, callable without a JVM.
#ifndef IFC_JNI_QIMAGE_OPS_H
#define IFC_JNI_QIMAGE_OPS_H

#include <cstddef>
#include <cstdint>

#include "image_filter/image.h"

namespace ifc {

// createSubImage: x and y are clamped at 0 but w and h are not reduced by
// that clamp; only the far edges are clipped. Null when nothing is left.
_Image* cropSubImage(const _Image* image, int x, int y, int w, int h);

// Deep copy with the same width, height, channels and stride.
_Image* duplicateImage(const _Image* image);

// Bytes that CopyPixels writes into the int array. Mirrored rows start
// width x channels bytes apart, so non-RGBA images overlap their rows.
int64_t colorIntBytes(const _Image* image, bool mirror);

// CopyPixels / CopyPixelsRGB: 4-byte pixels into `out` (colorIntBytes long);
// swapRB stores bytes (2, 1, 0, 3): RGBA becomes a little-endian 0xAARRGGBB.
// Mirrored rows are written right to left. False, with nothing written, when
// the image is too short and its zero-padded copy too large for this ABI.
bool writeColorInts(const _Image* image, unsigned char* out, bool mirror, bool swapRB);

// Copies the first min(bytes, what the image holds, capacity) bytes of the
// image into `pixels`; returns the count.
size_t copyImagePrefix(const _Image* image, size_t bytes, void* pixels, size_t capacity);

// ToBitmap into RGB_565: bitmap pixel (i, j) takes image pixel
// (i x (W / bw), j x (H / bh)) with integer ratios; bitmap rows are
// `outRowPixels` apart.
void sampleToRGB565(const _Image* image, uint16_t* out, int bitmapWidth, int bitmapHeight, int64_t outRowPixels);

// nativeRotate's angle: (degrees + 360) remainder 360 with the dividend's sign.
int rotationRemainder(int degrees);

// WrapExif: `to` drops its own list and takes `from`'s (null from = none).
void moveMarkers(_Image* to, _Image* from);

}  // namespace ifc

#endif  // IFC_JNI_QIMAGE_OPS_H
