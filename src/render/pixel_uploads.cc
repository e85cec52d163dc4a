#include "render/pixel_uploads.h"

#include <climits>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <vector>

#include "gl/tight_rgba_rows.h"
#include "image/image_internal.h"
#include "jni/pixels/qimage_pixels.h"
#include "render/gl_utils.h"

namespace {

constexpr int kCurveRows = 16;

void setNearestClamp() {
    glTexParameterf(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_NEAREST);
    glTexParameterf(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_NEAREST);
    glTexParameterf(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_CLAMP_TO_EDGE);
    glTexParameterf(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, GL_CLAMP_TO_EDGE);
}

}  // namespace

size_t unpackedByteCount(int width, int height, int bytesPerPixel) {
    if (width <= 0 || height <= 0) return 0;
    GLint alignment = 4;
    glGetIntegerv(GL_UNPACK_ALIGNMENT, &alignment);
    return ifc::paddedRowsBytes(width, height, bytesPerPixel, alignment);
}

// height x 1.5 truncated toward zero, done in integers: the double product
// of a height near the int limits does not fit back into an int.
int previewRows(int height) {
    const int64_t rows = static_cast<int64_t>(height) * 3 / 2;
    if (rows > INT32_MAX) return INT32_MAX;
    if (rows < INT32_MIN) return INT32_MIN;
    return static_cast<int>(rows);
}

void uploadPreviewFrame(const void* data, GLuint texture, int width, int height) {
    glActiveTexture(GL_TEXTURE0);
    glBindTexture(GL_TEXTURE_2D, texture);
    glTexImage2D(GL_TEXTURE_2D, 0, GL_ALPHA, width, previewRows(height), 0, GL_ALPHA, GL_UNSIGNED_BYTE, data);
    setNearestClamp();
}

void uploadPreviewRGBA(const void* data, GLuint texture, int width, int height) {
    glActiveTexture(GL_TEXTURE0);
    glBindTexture(GL_TEXTURE_2D, texture);
    glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA, width, height, 0, GL_RGBA, GL_UNSIGNED_BYTE, data);
}

void uploadCurveTexture(const int32_t* curve, int n, GLuint texture) {
    const size_t bytes = ifc::byteCount(n, kCurveRows, 4);
    if (n < 1 || ifc::tooLarge(bytes)) return;
    std::vector<uint8_t> texels(bytes, 0);
    const size_t rowBytes = bytes / kCurveRows;
    for (int row = 0; row < kCurveRows; ++row) {
        uint8_t* texel = texels.data() + row * rowBytes;
        for (size_t i = 0; i < static_cast<size_t>(n); ++i) {
            auto value = static_cast<uint8_t>(curve[i]);
            texel[i * 4 + 0] = value;
            texel[i * 4 + 1] = value;
            texel[i * 4 + 2] = value;
        }
    }
    glBindTexture(GL_TEXTURE_2D, texture);
    TightRgbaRows tight(GL_UNPACK_ALIGNMENT);
    glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA, n, kCurveRows, 0, GL_RGBA, GL_UNSIGNED_BYTE, texels.data());
}

void uploadImageTexture(const _Image* image, GLuint texture) {
    glActiveTexture(GL_TEXTURE0);
    glBindTexture(GL_TEXTURE_2D, texture);
    GLenum format = image->channels == 4 ? GL_RGBA : image->channels == 3 ? GL_RGB : 0;
    if (format == 0) return;
    const void* pixels = image->data;
    size_t needed = unpackedByteCount(image->width, image->height, image->channels);
    if (ifc::tooLarge(needed)) return;  // GL would read past any buffer this ABI has
    // Never more than the rows hold: a turned image keeps its old, larger size.
    size_t available = ifc::image_capacity(image);
    std::vector<uint8_t> padded;
    if (needed > available) {
        padded.assign(needed, 0);
        memcpy(padded.data(), image->data, available);
        pixels = padded.data();
    }
    glTexImage2D(GL_TEXTURE_2D, 0, format, image->width, image->height, 0, format, GL_UNSIGNED_BYTE, pixels);
}

void flipRows(const uint32_t* bottomUp, uint32_t* topDown, int width, int height) {
    for (int y = 0; y < height; ++y) {
        memcpy(topDown + static_cast<size_t>(height - 1 - y) * width, bottomUp + static_cast<size_t>(y) * width,
               static_cast<size_t>(width) * 4);
    }
}

void updateScaleBitmap(const uint32_t* src, int srcWidth, int srcHeight, const uint32_t* mask,
                       int maskWidth, int maskHeight, uint32_t* dst, int offY, int offX) {
    for (int r = 0; r < maskHeight; ++r) {
        for (int c = 0; c < maskWidth; ++c) {
            size_t i = static_cast<size_t>(r) * maskWidth + c;
            if (mask[i] == kMaskCleared) {
                dst[i] = 0;
                continue;
            }
            int64_t sy = static_cast<int64_t>(r) + offY;
            int64_t sx = static_cast<int64_t>(c) + offX;
            bool outside = sy < 0 || sx < 0 || sy >= srcHeight || sx >= srcWidth;
            dst[i] = outside ? kScaleBackground : src[sy * srcWidth + sx];
        }
    }
}
