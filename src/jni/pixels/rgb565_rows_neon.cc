// RGB565 rows, NEON: 8 pixels per step.
#include <arm_neon.h>

#include "jni/pixels/pixel_kernels.h"

namespace ifc {

void rgb565_to_rgba_row_neon(const uint8_t* src, uint8_t* dst, int width) {
    int x = 0;
    for (; x + 8 <= width; x += 8) {
        const uint16x8_t v = vreinterpretq_u16_u8(vld1q_u8(src + 2 * x));
        uint8x8x4_t out;
        out.val[0] = vmovn_u16(vshrq_n_u16(v, 11));
        out.val[1] = vmovn_u16(vandq_u16(vshrq_n_u16(v, 5), vdupq_n_u16(0x3F)));
        out.val[2] = vmovn_u16(vandq_u16(v, vdupq_n_u16(0x1F)));
        out.val[3] = vdup_n_u8(255);
        vst4_u8(dst + 4 * x, out);
    }
    rgb565_to_rgba_row_c(src + 2 * x, dst + 4 * x, width - x);
}

}  // namespace ifc
