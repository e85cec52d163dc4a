// Uploads of client pixels to GL textures and CPU pixel moves used by the
// GLSLRender natives. GL thread only.
#ifndef IFC_RENDER_PIXEL_UPLOADS_H
#define IFC_RENDER_PIXEL_UPLOADS_H

#include <GLES2/gl2.h>

#include <cstddef>
#include <cstdint>

#include "image_filter/image.h"

// Bytes glTexImage2D reads for width x height pixels of bytesPerPixel under
// the current GL_UNPACK_ALIGNMENT; 0 for empty sizes, SIZE_MAX (no buffer is
// that large) when the count does not fit this ABI's size_t.
size_t unpackedByteCount(int width, int height, int bytesPerPixel);

// Rows of a camera frame with 4:2:0 semi-planar chroma: height x 1.5,
// truncated, clamped to the int range.
int previewRows(int height);
// The frame as a GL_ALPHA texture of width x previewRows(height), nearest
// filtering set after the upload.
void uploadPreviewFrame(const void* data, GLuint texture, int width, int height);
// width x height RGBA texels, no parameters set.
void uploadPreviewRGBA(const void* data, GLuint texture, int width, int height);
// A curve of n entries as an n x 16 RGBA texture on the current unit: R, G and
// B of texel i hold the low byte of curve[i]; alpha is never read and left 0.
void uploadCurveTexture(const int32_t* curve, int n, GLuint texture);
// The image as GL_RGBA (4 channels) or GL_RGB (3); other counts do nothing.
// The unpack alignment stays as the caller set it; when that makes GL read
// past the image's bytes, the upload comes from a zero-padded copy.
void uploadImageTexture(const _Image* image, GLuint texture);

// Row y of a bottom-up read becomes row height-1-y.
void flipRows(const uint32_t* bottomUp, uint32_t* topDown, int width, int height);

constexpr uint32_t kScaleBackground = 0xFF1F2124;  // R 0x24, G 0x21, B 0x1F, A 0xFF in memory
constexpr uint32_t kMaskCleared = 0xFFFFFFFF;

// dst[r * maskWidth + c] for every mask pixel: 0 where the mask word is all
// ones, else the source pixel at (r + offY, c + offX) or the background when
// that lies outside the source.
void updateScaleBitmap(const uint32_t* src, int srcWidth, int srcHeight, const uint32_t* mask,
                       int maskWidth, int maskHeight, uint32_t* dst, int offY, int offX);

#endif  // IFC_RENDER_PIXEL_UPLOADS_H
