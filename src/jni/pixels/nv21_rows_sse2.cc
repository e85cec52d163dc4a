// NV21 rows, SSE2: 16 pixels per step, the tail by the reference row.
#include "jni/pixels/pixel_kernels.h"
#include "jni/pixels/yuv_core_sse2.h"

namespace ifc {

namespace {

inline __m128i load16(const uint8_t* p) { return _mm_loadu_si128(reinterpret_cast<const __m128i*>(p)); }

}  // namespace

void nv21_to_rgba_row_sse2(const uint8_t* y, const uint8_t* vu, uint8_t* rgba, int width) {
    int x = 0;
    for (; x + 16 <= width; x += 16) yuv16_to_rgba_sse2(load16(y + x), load16(vu + x), rgba + 4 * x);
    nv21_to_rgba_row_c(y + x, vu + x, rgba + 4 * x, width - x);
}

void nv21_to_yuva_row_sse2(const uint8_t* y, const uint8_t* vu, uint8_t* yuva, int width) {
    const __m128i low_byte = _mm_set1_epi16(0xFF);
    int x = 0;
    for (; x + 16 <= width; x += 16) {
        const __m128i c = load16(vu + x);
        const __m128i u = _mm_srli_epi16(c, 8);
        const __m128i v = _mm_and_si128(c, low_byte);
        // Each pair's byte repeated for both of its pixels.
        store_interleaved4_sse2(load16(y + x), _mm_or_si128(u, _mm_slli_epi16(u, 8)),
                                _mm_or_si128(v, _mm_slli_epi16(v, 8)), _mm_set1_epi8(-1), yuva + 4 * x);
    }
    nv21_to_yuva_row_c(y + x, vu + x, yuva + 4 * x, width - x);
}

}  // namespace ifc
