// RGB565 reference row. The 5- and 6-bit fields are stored as they are
// (0..31, 0..63, 0..31), not widened to 8 bits: callers rely on that.
#include "jni/pixels/pixel_kernels.h"

namespace ifc {

void rgb565_to_rgba_row_c(const uint8_t* src, uint8_t* dst, int width) {
    for (int x = 0; x < width; ++x) {
        const unsigned v = src[2 * x] | (src[2 * x + 1] << 8);
        uint8_t* out = dst + 4 * x;
        out[0] = static_cast<uint8_t>(v >> 11);
        out[1] = static_cast<uint8_t>((v & 0x7E0) >> 5);
        out[2] = static_cast<uint8_t>(v & 0x1F);
        out[3] = 255;
    }
}

}  // namespace ifc
