// RGB565 rows, AVX2: 16 pixels per step, the tail by the SSE2 row. Outputs
// past the caches are written with streaming stores.
#include <immintrin.h>

#include "jni/pixels/pixel_kernels.h"
#include "jni/pixels/streaming_rows_x86.h"

namespace ifc {

namespace {

template <bool kStreaming>
void convert(const uint8_t* src, uint8_t* dst, int width) {
    const __m256i six_bits = _mm256_set1_epi16(0x3F);
    const __m256i five_bits = _mm256_set1_epi16(0x1F);
    const __m256i alpha = _mm256_set1_epi16(static_cast<short>(0xFF00));
    int x = 0;
    for (; x + 16 <= width; x += 16) {
        // Quarters 0, 2 | 1, 3: the in-lane unpacks below then give pixels
        // 0..7 and 8..15 in order.
        const __m256i v =
            _mm256_permute4x64_epi64(_mm256_loadu_si256(reinterpret_cast<const __m256i*>(src + 2 * x)), 0xD8);
        // Words byte0 | byte1 << 8 and byte2 | 255 << 8 of each pixel.
        const __m256i rg = _mm256_or_si256(_mm256_srli_epi16(v, 11),
                                           _mm256_slli_epi16(_mm256_and_si256(_mm256_srli_epi16(v, 5), six_bits), 8));
        const __m256i ba = _mm256_or_si256(_mm256_and_si256(v, five_bits), alpha);
        __m256i* out = reinterpret_cast<__m256i*>(dst + 4 * x);
        if (kStreaming) {
            _mm256_stream_si256(out, _mm256_unpacklo_epi16(rg, ba));
            _mm256_stream_si256(out + 1, _mm256_unpackhi_epi16(rg, ba));
        } else {
            _mm256_storeu_si256(out, _mm256_unpacklo_epi16(rg, ba));
            _mm256_storeu_si256(out + 1, _mm256_unpackhi_epi16(rg, ba));
        }
    }
    rgb565_to_rgba_row_sse2(src + 2 * x, dst + 4 * x, width - x);
}

}  // namespace

void rgb565_to_rgba_row_avx2(const uint8_t* src, uint8_t* dst, int width) {
    convert_streaming_past_caches<convert<false>, rgb565_to_rgba_row_sse2, convert<true>>(src, dst, width, 32, 1);
}

}  // namespace ifc
