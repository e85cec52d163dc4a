// NV21 rows, NEON: 16 pixels per step, the tail by the reference row.
#include "jni/pixels/pixel_kernels.h"
#include "jni/pixels/yuv_core_neon.h"

namespace ifc {

void nv21_to_rgba_row_neon(const uint8_t* y, const uint8_t* vu, uint8_t* rgba, int width) {
    int x = 0;
    for (; x + 16 <= width; x += 16) {
        const uint8x8x2_t c = vld2_u8(vu + x);
        yuv16_to_rgba_neon(vld1q_u8(y + x), c.val[0], c.val[1], rgba + 4 * x);
    }
    nv21_to_rgba_row_c(y + x, vu + x, rgba + 4 * x, width - x);
}

void nv21_to_yuva_row_neon(const uint8_t* y, const uint8_t* vu, uint8_t* yuva, int width) {
    int x = 0;
    for (; x + 16 <= width; x += 16) {
        const uint8x8x2_t c = vld2_u8(vu + x);
        const uint8x8x2_t u = vzip_u8(c.val[1], c.val[1]);
        const uint8x8x2_t v = vzip_u8(c.val[0], c.val[0]);
        uint8x16x4_t out;
        out.val[0] = vld1q_u8(y + x);
        out.val[1] = vcombine_u8(u.val[0], u.val[1]);
        out.val[2] = vcombine_u8(v.val[0], v.val[1]);
        out.val[3] = vdupq_n_u8(255);
        vst4q_u8(yuva + 4 * x, out);
    }
    nv21_to_yuva_row_c(y + x, vu + x, yuva + 4 * x, width - x);
}

}  // namespace ifc
