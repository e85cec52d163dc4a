// Packed 4:2:2 rows, AVX2: 32 pixels per step, the tail by the SSE2 row.
#include "jni/pixel_kernels.h"
#include "jni/yuv_core_avx2.h"

namespace ifc {

void yuv422_to_rgba_row_avx2(const uint8_t* vyuy, uint8_t* rgba, int width) {
    const __m256i low_byte = _mm256_set1_epi16(0xFF);
    int x = 0;
    for (; x + 32 <= width; x += 32) {
        const __m256i w0 = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(vyuy + 2 * x));
        const __m256i w1 = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(vyuy + 2 * x + 32));
        // The in-lane pack yields quarters 0, 2, 1, 3; 0xD8 restores the order.
        const __m256i y = _mm256_permute4x64_epi64(
            _mm256_packus_epi16(_mm256_srli_epi16(w0, 8), _mm256_srli_epi16(w1, 8)), 0xD8);
        const __m256i vu = _mm256_permute4x64_epi64(
            _mm256_packus_epi16(_mm256_and_si256(w0, low_byte), _mm256_and_si256(w1, low_byte)), 0xD8);
        yuv32_to_rgba_avx2(y, vu, rgba + 4 * x);
    }
    yuv422_to_rgba_row_sse2(vyuy + 2 * x, rgba + 4 * x, width - x);
}

}  // namespace ifc
