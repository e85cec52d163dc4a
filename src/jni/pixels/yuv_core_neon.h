// NEON building blocks of the YUV rows: the same split multipliers as the
// SSE2 core (see yuv_core_sse2.h); the high half of a 16-bit product is a
// widening multiply narrowed by an arithmetic >> 16.
#ifndef IFC_JNI_YUV_CORE_NEON_H
#define IFC_JNI_YUV_CORE_NEON_H

#include <arm_neon.h>

#include <cstdint>

namespace ifc {

inline int16x8_t mulhi_neon(int16x8_t a, int16_t b) {
    return vcombine_s16(vshrn_n_s32(vmull_n_s16(vget_low_s16(a), b), 16),
                        vshrn_n_s32(vmull_n_s16(vget_high_s16(a), b), 16));
}

// 16 pixels R, G, B, 255 from 16 luma bytes and 8 V and 8 U bytes.
inline void yuv16_to_rgba_neon(uint8x16_t y, uint8x8_t v, uint8x8_t u, uint8_t* out) {
    const uint8x16_t ys = vqsubq_u8(y, vdupq_n_u8(16));
    const int16x8_t y8lo = vreinterpretq_s16_u16(vshll_n_u8(vget_low_u8(ys), 3));
    const int16x8_t y8hi = vreinterpretq_s16_u16(vshll_n_u8(vget_high_u8(ys), 3));
    const int16x8_t luma_lo = vaddq_s16(y8lo, mulhi_neon(y8lo, 10773));
    const int16x8_t luma_hi = vaddq_s16(y8hi, mulhi_neon(y8hi, 10773));

    const int16x8_t vs = vreinterpretq_s16_u16(vsubl_u8(v, vdup_n_u8(128)));
    const int16x8_t us = vreinterpretq_s16_u16(vsubl_u8(u, vdup_n_u8(128)));
    const int16x8_t v8 = vshlq_n_s16(vs, 3);
    const int16x8_t u8 = vshlq_n_s16(us, 3);
    const int16x8_t vr = vaddq_s16(vshlq_n_s16(vs, 4), mulhi_neon(v8, -26475));
    const int16x8_t uvg = vsubq_s16(vaddq_s16(mulhi_neon(v8, 12258), mulhi_neon(u8, -25674)), v8);
    const int16x8_t ub = vaddq_s16(vshlq_n_s16(us, 4), mulhi_neon(u8, 1129));

    auto channel = [&](int16x8_t term) {
        const int16x8x2_t both = vzipq_s16(term, term);
        return vcombine_u8(vqmovun_s16(vshrq_n_s16(vaddq_s16(luma_lo, both.val[0]), 3)),
                           vqmovun_s16(vshrq_n_s16(vaddq_s16(luma_hi, both.val[1]), 3)));
    };
    uint8x16x4_t rgba;
    rgba.val[0] = channel(vr);
    rgba.val[1] = channel(uvg);
    rgba.val[2] = channel(ub);
    rgba.val[3] = vdupq_n_u8(255);
    vst4q_u8(out, rgba);
}

}  // namespace ifc

#endif  // IFC_JNI_YUV_CORE_NEON_H
