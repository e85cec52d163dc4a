// Overlay blend rows, AVX2: the SSE2 arithmetic on 8 pixels.
#include <immintrin.h>

#include "jni/pixels/pixel_kernels.h"

namespace ifc {

void alpha_mix_row_avx2(const uint8_t* overlay, uint8_t* image, int count) {
    const __m256i byte3 = _mm256_set1_epi32(static_cast<int>(0xFF000000u));
    const __m256i div255 = _mm256_set1_epi16(static_cast<short>(0x8081));
    const __m256i all = _mm256_set1_epi16(255);
    // Each pixel's alpha byte into the four words of its pixel: pixels 0, 1
    // of a lane for the low unpack, 2, 3 for the high one.
    const __m256i alpha_lo = _mm256_broadcastsi128_si256(
        _mm_setr_epi8(3, -128, 3, -128, 3, -128, 3, -128, 7, -128, 7, -128, 7, -128, 7, -128));
    const __m256i alpha_hi = _mm256_broadcastsi128_si256(
        _mm_setr_epi8(11, -128, 11, -128, 11, -128, 11, -128, 15, -128, 15, -128, 15, -128, 15, -128));
    const __m256i zero = _mm256_setzero_si256();
    int i = 0;
    for (; i + 8 <= count; i += 8) {
        const __m256i s = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(overlay + 4 * i));
        __m256i* at = reinterpret_cast<__m256i*>(image + 4 * i);
        const __m256i d = _mm256_loadu_si256(at);
        auto quotient = [&](__m256i bytes, __m256i alpha) {
            const __m256i product = _mm256_mullo_epi16(bytes, _mm256_sub_epi16(all, alpha));
            return _mm256_srli_epi16(_mm256_mulhi_epu16(product, div255), 7);
        };
        const __m256i q = _mm256_packus_epi16(quotient(_mm256_unpacklo_epi8(d, zero), _mm256_shuffle_epi8(s, alpha_lo)),
                                              quotient(_mm256_unpackhi_epi8(d, zero), _mm256_shuffle_epi8(s, alpha_hi)));
        const __m256i mixed = _mm256_add_epi8(s, q);
        _mm256_storeu_si256(at, _mm256_blendv_epi8(mixed, d, byte3));
    }
    alpha_mix_row_sse2(overlay + 4 * i, image + 4 * i, count - i);
}

}  // namespace ifc
