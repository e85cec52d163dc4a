// The recursive blur, NEON: four sweeps side by side in the 32-bit lanes.
// Column sweeps take 8 neighbouring columns at once; row sweeps take 4 rows
// at once through a small column-major copy. Each step is the reference's
// v = b * (pixel << 8) + a * q, q = v >> 16, pixel = v >> 24.
#include <arm_neon.h>

#include <cstddef>
#include <vector>

#include "jni/pixels/blur8.h"

namespace ifc {

void blur8_filter_neon(uint8_t* T, int W, int H, int A) {
    const uint32_t a = static_cast<uint32_t>(A);
    const uint32_t b8 = (a ^ 0xFFFF) << 8;
    auto step = [&](uint32x4_t pixels, uint32x4_t& q) {
        const uint32x4_t v = vmlaq_n_u32(vmulq_n_u32(pixels, b8), q, a);
        q = vshrq_n_u32(v, 16);
        return vshrq_n_u32(v, 24);
    };
    if (W >= 2) {
        int y = 0;
        if (H >= 4) {
            std::vector<uint32_t> lanes(size_t(W) * 4);
            for (; y + 4 <= H; y += 4) {
                uint8_t* rows = T + size_t(y) * W;
                for (int x = 0; x < W; ++x)
                    for (int r = 0; r < 4; ++r) lanes[size_t(x) * 4 + r] = rows[size_t(r) * W + x];
                uint32_t* v = lanes.data();
                uint32x4_t q = vshlq_n_u32(vld1q_u32(v), 8);
                for (int x = 1; x < W; ++x) vst1q_u32(v + 4 * x, step(vld1q_u32(v + 4 * x), q));
                for (int x = W - 1; x >= 1; --x) vst1q_u32(v + 4 * x, step(vld1q_u32(v + 4 * x), q));
                for (int x = 1; x < W; ++x)
                    for (int r = 0; r < 4; ++r) rows[size_t(r) * W + x] = static_cast<uint8_t>(v[4 * x + r]);
            }
        }
        blur8_rows_c(T, W, y, H, A);
    }
    if (H >= 2) {
        int x = 0;
        for (; x + 8 <= W; x += 8) {
            const uint16x8_t first = vmovl_u8(vld1_u8(T + x));
            uint32x4_t q0 = vshll_n_u16(vget_low_u16(first), 8), q1 = vshll_n_u16(vget_high_u16(first), 8);
            auto row = [&](int y) {
                uint8_t* p = T + size_t(y) * W + x;
                const uint16x8_t w = vmovl_u8(vld1_u8(p));
                const uint32x4_t lo = step(vmovl_u16(vget_low_u16(w)), q0);
                const uint32x4_t hi = step(vmovl_u16(vget_high_u16(w)), q1);
                vst1_u8(p, vmovn_u16(vcombine_u16(vmovn_u32(lo), vmovn_u32(hi))));
            };
            for (int y = 0; y <= H - 2; ++y) row(y);
            for (int y = H - 1; y >= 1; --y) row(y);
        }
        blur8_columns_c(T, W, H, x, W, A);
    }
}

}  // namespace ifc
