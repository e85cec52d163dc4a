// RGB565 rows, SSE2: 8 pixels per step.
#include <emmintrin.h>

#include "jni/pixels/pixel_kernels.h"

namespace ifc {

void rgb565_to_rgba_row_sse2(const uint8_t* src, uint8_t* dst, int width) {
    const __m128i six_bits = _mm_set1_epi16(0x3F);
    const __m128i five_bits = _mm_set1_epi16(0x1F);
    const __m128i alpha = _mm_set1_epi16(static_cast<short>(0xFF00));
    int x = 0;
    for (; x + 8 <= width; x += 8) {
        const __m128i v = _mm_loadu_si128(reinterpret_cast<const __m128i*>(src + 2 * x));
        // Words byte0 | byte1 << 8 and byte2 | 255 << 8 of each pixel.
        const __m128i rg = _mm_or_si128(_mm_srli_epi16(v, 11),
                                        _mm_slli_epi16(_mm_and_si128(_mm_srli_epi16(v, 5), six_bits), 8));
        const __m128i ba = _mm_or_si128(_mm_and_si128(v, five_bits), alpha);
        __m128i* out = reinterpret_cast<__m128i*>(dst + 4 * x);
        _mm_storeu_si128(out, _mm_unpacklo_epi16(rg, ba));
        _mm_storeu_si128(out + 1, _mm_unpackhi_epi16(rg, ba));
    }
    rgb565_to_rgba_row_c(src + 2 * x, dst + 4 * x, width - x);
}

}  // namespace ifc
