// CPU filter rows, NEON, for 4-byte pixels (other layouts take the
// reference rows). Byte 3 of the destination is read back and kept.
#include <arm_neon.h>

#include "jni/pixels/pixel_kernels.h"

namespace ifc {

void gray_row_neon(const uint8_t* src, uint8_t* dst, int count, int channels) {
    if (channels != 4) return gray_row_c(src, dst, count, channels);
    int i = 0;
    for (; i + 8 <= count; i += 8) {
        const uint8x8x4_t p = vld4_u8(src + 4 * i);
        auto weighted = [&](auto half) {
            uint32x4_t sum = vmull_n_u16(half(vmovl_u8(p.val[0])), 19595);
            sum = vmlal_n_u16(sum, half(vmovl_u8(p.val[1])), 38469);
            sum = vmlal_n_u16(sum, half(vmovl_u8(p.val[2])), 7471);
            return vshrn_n_u32(sum, 16);
        };
        // At most 254: no clamping needed once the table is built.
        const uint8x8_t g = vmovn_u16(vcombine_u16(weighted([](uint16x8_t v) { return vget_low_u16(v); }),
                                                   weighted([](uint16x8_t v) { return vget_high_u16(v); })));
        uint8x8x4_t out = vld4_u8(dst + 4 * i);
        out.val[0] = out.val[1] = out.val[2] = g;
        vst4_u8(dst + 4 * i, out);
    }
    gray_row_c(src + 4 * i, dst + 4 * i, count - i, channels);
}

void matrix_row_neon(const uint8_t* src, uint8_t* dst, int count, int channels, const MatrixFixed& f) {
    if (channels != 4) return matrix_row_c(src, dst, count, channels, f);
    const uint32_t* k = reinterpret_cast<const uint32_t*>(f.k);
    int i = 0;
    for (; i + 8 <= count; i += 8) {
        const uint8x8x4_t p = vld4_u8(src + 4 * i);
        const uint16x8_t r = vmovl_u8(p.val[0]), g = vmovl_u8(p.val[1]), b = vmovl_u8(p.val[2]);
        uint8x8x4_t out = vld4_u8(dst + 4 * i);
        for (int c = 0; c < 3; ++c) {
            // Wrapping 32-bit sums; the saturating narrows give 0 below 1.0
            // and 255 above 255.
            auto sum = [&](uint16x4_t rr, uint16x4_t gg, uint16x4_t bb) {
                uint32x4_t s = vmlaq_n_u32(vdupq_n_u32(k[9 + c]), vmovl_u16(rr), k[c]);
                s = vmlaq_n_u32(s, vmovl_u16(gg), k[3 + c]);
                s = vmlaq_n_u32(s, vmovl_u16(bb), k[6 + c]);
                return vqmovn_s32(vshrq_n_s32(vreinterpretq_s32_u32(s), 16));
            };
            out.val[c] = vqmovun_s16(vcombine_s16(sum(vget_low_u16(r), vget_low_u16(g), vget_low_u16(b)),
                                                  sum(vget_high_u16(r), vget_high_u16(g), vget_high_u16(b))));
        }
        vst4_u8(dst + 4 * i, out);
    }
    matrix_row_c(src + 4 * i, dst + 4 * i, count - i, channels, f);
}

void smooth3x3_row_neon(const uint8_t* above, const uint8_t* row, const uint8_t* below, uint8_t* dst,
                        int width, int channels, int channel) {
    if (channels != 4) return smooth3x3_row_c(above, row, below, dst, width, channels, channel);
    // Column sums above + 2 * row + below of the channel, 8 pixels from x,
    // each computed once; the horizontal neighbours come from the next block.
    auto column = [&](int x) {
        const uint8x8_t a = vld4_u8(above + 4 * x).val[channel];
        const uint8x8_t m = vld4_u8(row + 4 * x).val[channel];
        const uint8x8_t b = vld4_u8(below + 4 * x).val[channel];
        return vaddq_u16(vaddl_u8(a, b), vshll_n_u8(m, 1));
    };
    int x = 0;
    uint16x8_t left = width >= 16 ? column(0) : vdupq_n_u16(0);
    // Sums of pixels x..x+15 give outputs x+1..x+8.
    for (; x + 16 <= width; x += 8) {
        const uint16x8_t next = column(x + 8);
        const uint16x8_t centre = vextq_u16(left, next, 1), right = vextq_u16(left, next, 2);
        const uint16x8_t sum = vaddq_u16(vaddq_u16(left, right), vshlq_n_u16(centre, 1));
        uint8_t* out = dst + 4 * (x + 1);
        uint8x8x4_t pixels = vld4_u8(out);
        pixels.val[channel] = vshrn_n_u16(sum, 4);
        vst4_u8(out, pixels);
        left = next;
    }
    // The reference row starts at its own x = 1: hand it the window from x.
    smooth3x3_row_c(above + 4 * x, row + 4 * x, below + 4 * x, dst + 4 * x, width - x, channels, channel);
}

}  // namespace ifc
