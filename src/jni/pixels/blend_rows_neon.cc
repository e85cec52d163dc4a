// Overlay blend rows, NEON: 8 pixels per step. (d * keep + s * 255) / 255
// is s + d * keep / 255, and for a product of two bytes the quotient is
// (p + 1 + (p >> 8)) >> 8; the byte add wraps as the reference's store does.
#include <arm_neon.h>

#include "jni/pixels/pixel_kernels.h"

namespace ifc {

void alpha_mix_row_neon(const uint8_t* overlay, uint8_t* image, int count) {
    int i = 0;
    for (; i + 8 <= count; i += 8) {
        const uint8x8x4_t s = vld4_u8(overlay + 4 * i);
        uint8x8x4_t d = vld4_u8(image + 4 * i);
        const uint8x8_t keep = vmvn_u8(s.val[3]);
        for (int c = 0; c < 3; ++c) {
            const uint16x8_t p = vmull_u8(d.val[c], keep);
            const uint16x8_t q = vshrq_n_u16(vaddq_u16(vaddq_u16(p, vdupq_n_u16(1)), vshrq_n_u16(p, 8)), 8);
            d.val[c] = vadd_u8(s.val[c], vmovn_u16(q));
        }
        vst4_u8(image + 4 * i, d);
    }
    alpha_mix_row_c(overlay + 4 * i, image + 4 * i, count - i);
}

}  // namespace ifc
