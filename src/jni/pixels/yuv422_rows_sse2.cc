// Packed 4:2:2 rows, SSE2: groups V, Y0, U, Y1 split into a luma plane and
// NV21-style chroma pairs, then the shared YUV core.
#include "jni/pixels/pixel_kernels.h"
#include "jni/pixels/yuv_core_sse2.h"

namespace ifc {

void yuv422_to_rgba_row_sse2(const uint8_t* vyuy, uint8_t* rgba, int width) {
    const __m128i low_byte = _mm_set1_epi16(0xFF);
    int x = 0;
    for (; x + 16 <= width; x += 16) {
        // Words V | Y0 << 8 and U | Y1 << 8.
        const __m128i w0 = _mm_loadu_si128(reinterpret_cast<const __m128i*>(vyuy + 2 * x));
        const __m128i w1 = _mm_loadu_si128(reinterpret_cast<const __m128i*>(vyuy + 2 * x + 16));
        const __m128i y = _mm_packus_epi16(_mm_srli_epi16(w0, 8), _mm_srli_epi16(w1, 8));
        const __m128i vu = _mm_packus_epi16(_mm_and_si128(w0, low_byte), _mm_and_si128(w1, low_byte));
        yuv16_to_rgba_sse2(y, vu, rgba + 4 * x);
    }
    yuv422_to_rgba_row_c(vyuy + 2 * x, rgba + 4 * x, width - x);
}

}  // namespace ifc
