// Overlay blend rows, SSE2: 4 pixels per step. (d * keep + s * 255) / 255
// is s + d * keep / 255; d * keep fits a word and its quotient by 255 is
// (d * keep * 0x8081) >> 23 for every product of two bytes. The byte add
// wraps as the reference's byte store does.
#include <emmintrin.h>

#include "jni/pixels/pixel_kernels.h"

namespace ifc {

void alpha_mix_row_sse2(const uint8_t* overlay, uint8_t* image, int count) {
    const __m128i zero = _mm_setzero_si128();
    const __m128i byte3 = _mm_set1_epi32(static_cast<int>(0xFF000000u));
    const __m128i div255 = _mm_set1_epi16(static_cast<short>(0x8081));
    int i = 0;
    for (; i + 4 <= count; i += 4) {
        const __m128i s = _mm_loadu_si128(reinterpret_cast<const __m128i*>(overlay + 4 * i));
        __m128i* at = reinterpret_cast<__m128i*>(image + 4 * i);
        const __m128i d = _mm_loadu_si128(at);
        // 255 - alpha in both words of each pixel's 32-bit lane.
        const __m128i keep32 = _mm_sub_epi32(_mm_set1_epi32(255), _mm_srli_epi32(s, 24));
        const __m128i keep = _mm_or_si128(keep32, _mm_slli_epi32(keep32, 16));
        auto quotient = [&](__m128i bytes, __m128i k) {
            return _mm_srli_epi16(_mm_mulhi_epu16(_mm_mullo_epi16(bytes, k), div255), 7);
        };
        const __m128i q = _mm_packus_epi16(quotient(_mm_unpacklo_epi8(d, zero), _mm_unpacklo_epi32(keep, keep)),
                                           quotient(_mm_unpackhi_epi8(d, zero), _mm_unpackhi_epi32(keep, keep)));
        const __m128i mixed = _mm_add_epi8(s, q);
        _mm_storeu_si128(at, _mm_or_si128(_mm_andnot_si128(byte3, mixed), _mm_and_si128(byte3, d)));
    }
    alpha_mix_row_c(overlay + 4 * i, image + 4 * i, count - i);
}

}  // namespace ifc
