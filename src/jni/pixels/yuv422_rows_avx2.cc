// Packed 4:2:2 rows, AVX2: 32 pixels per step, the tail by the SSE2 row.
#include "jni/pixels/pixel_kernels.h"
#include "jni/pixels/yuv_core_avx2.h"

namespace ifc {

void yuv422_to_rgba_row_avx2(const uint8_t* vyuy, uint8_t* rgba, int width) {
    // Per 128-bit lane, groups V, Y0, U, Y1 become 8 luma bytes, then 4
    // chroma pairs (V, U).
    const __m256i split =
        _mm256_broadcastsi128_si256(_mm_setr_epi8(1, 3, 5, 7, 9, 11, 13, 15, 0, 2, 4, 6, 8, 10, 12, 14));
    int x = 0;
    for (; x + 32 <= width; x += 32) {
        const __m256i s0 =
            _mm256_shuffle_epi8(_mm256_loadu_si256(reinterpret_cast<const __m256i*>(vyuy + 2 * x)), split);
        const __m256i s1 =
            _mm256_shuffle_epi8(_mm256_loadu_si256(reinterpret_cast<const __m256i*>(vyuy + 2 * x + 32)), split);
        // Lanes hold pixels 0..7, 16..23 | 8..15, 24..31 and their pairs:
        // the in-lane arithmetic keeps each pixel with its pair.
        luma32_to_rgba_avx2(_mm256_unpacklo_epi64(s0, s1), chroma_terms_avx2(_mm256_unpackhi_epi64(s0, s1)),
                            rgba + 4 * x, true);
    }
    yuv422_to_rgba_row_sse2(vyuy + 2 * x, rgba + 4 * x, width - x);
}

}  // namespace ifc
