// NV21 rows, AVX2: 32 pixels per step, the tail by the SSE2 row. Row pairs
// that share a chroma row work out its terms once.
#include "jni/pixels/pixel_kernels.h"
#include "jni/pixels/yuv_core_avx2.h"

namespace ifc {

namespace {

inline __m256i load32(const uint8_t* p) { return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(p)); }

}  // namespace

void nv21_to_rgba_row_avx2(const uint8_t* y, const uint8_t* vu, uint8_t* rgba, int width) {
    int x = 0;
    for (; x + 32 <= width; x += 32) yuv32_to_rgba_avx2(load32(y + x), load32(vu + x), rgba + 4 * x);
    nv21_to_rgba_row_sse2(y + x, vu + x, rgba + 4 * x, width - x);
}

void nv21_to_rgba_row_pair_avx2(const uint8_t* y0, const uint8_t* y1, const uint8_t* vu, uint8_t* rgba0,
                                uint8_t* rgba1, int width) {
    int x = 0;
    for (; x + 32 <= width; x += 32) {
        const ChromaTerms32 terms = chroma_terms_avx2(quarters_in_store_order(load32(vu + x)));
        luma32_to_rgba_avx2(quarters_in_store_order(load32(y0 + x)), terms, rgba0 + 4 * x);
        luma32_to_rgba_avx2(quarters_in_store_order(load32(y1 + x)), terms, rgba1 + 4 * x);
    }
    nv21_to_rgba_row_sse2(y0 + x, vu + x, rgba0 + 4 * x, width - x);
    nv21_to_rgba_row_sse2(y1 + x, vu + x, rgba1 + 4 * x, width - x);
}

void nv21_to_yuva_row_avx2(const uint8_t* y, const uint8_t* vu, uint8_t* yuva, int width) {
    const __m256i low_byte = _mm256_set1_epi16(0xFF);
    int x = 0;
    for (; x + 32 <= width; x += 32) {
        const __m256i c = load32(vu + x);
        const __m256i u = _mm256_srli_epi16(c, 8);
        const __m256i v = _mm256_and_si256(c, low_byte);
        store_interleaved4_avx2(load32(y + x), _mm256_or_si256(u, _mm256_slli_epi16(u, 8)),
                                _mm256_or_si256(v, _mm256_slli_epi16(v, 8)), _mm256_set1_epi8(-1), yuva + 4 * x);
    }
    nv21_to_yuva_row_sse2(y + x, vu + x, yuva + 4 * x, width - x);
}

}  // namespace ifc
