// AVX2 building blocks of the YUV rows: the arithmetic of yuv_core_sse2.h
// on 32 pixels. Unpacks work inside 128-bit lanes, so the interleaved
// output is put back in pixel order by whole-lane permutes at the store.
#ifndef IFC_JNI_YUV_CORE_AVX2_H
#define IFC_JNI_YUV_CORE_AVX2_H

#include <immintrin.h>

#include <cstdint>

namespace ifc {

// Interleaves four planes of 32 bytes into 32 pixels at out. With `split`
// the planes' 128-bit lanes hold pixels 0..7, 16..23 | 8..15, 24..31 (the
// order in-lane packs leave) rather than 0..15 | 16..31.
inline void store_interleaved4_avx2(__m256i p0, __m256i p1, __m256i p2, __m256i p3, uint8_t* out,
                                    bool split = false) {
    const __m256i a_lo = _mm256_unpacklo_epi8(p0, p1), a_hi = _mm256_unpackhi_epi8(p0, p1);
    const __m256i b_lo = _mm256_unpacklo_epi8(p2, p3), b_hi = _mm256_unpackhi_epi8(p2, p3);
    // Lane 0 holds pixels 0..15, lane 1 pixels 16..31, each in groups of 4.
    const __m256i q0 = _mm256_unpacklo_epi16(a_lo, b_lo);  // 0..3 | 16..19
    const __m256i q1 = _mm256_unpackhi_epi16(a_lo, b_lo);  // 4..7 | 20..23
    const __m256i q2 = _mm256_unpacklo_epi16(a_hi, b_hi);  // 8..11 | 24..27
    const __m256i q3 = _mm256_unpackhi_epi16(a_hi, b_hi);  // 12..15 | 28..31
    __m256i* dst = reinterpret_cast<__m256i*>(out);
    if (split) {  // q0..q3 hold 0..3 | 8..11, 4..7 | 12..15, 16..19 | 24..27, 20..23 | 28..31
        _mm256_storeu_si256(dst + 0, _mm256_permute2x128_si256(q0, q1, 0x20));
        _mm256_storeu_si256(dst + 1, _mm256_permute2x128_si256(q0, q1, 0x31));
        _mm256_storeu_si256(dst + 2, _mm256_permute2x128_si256(q2, q3, 0x20));
        _mm256_storeu_si256(dst + 3, _mm256_permute2x128_si256(q2, q3, 0x31));
        return;
    }
    _mm256_storeu_si256(dst + 0, _mm256_permute2x128_si256(q0, q1, 0x20));
    _mm256_storeu_si256(dst + 1, _mm256_permute2x128_si256(q2, q3, 0x20));
    _mm256_storeu_si256(dst + 2, _mm256_permute2x128_si256(q0, q1, 0x31));
    _mm256_storeu_si256(dst + 3, _mm256_permute2x128_si256(q2, q3, 0x31));
}

// Chroma terms (red, green, blue, in eighths) of 16 chroma pairs (V, U),
// each widened to the 32 pixels that share them. Pairs 0..7 / 8..15 sit in
// the lanes of pixels 0..15 / 16..31, so the in-lane unpacks line them up
// with the luma words.
struct ChromaTerms32 {
    __m256i r_lo, r_hi, g_lo, g_hi, b_lo, b_hi;
};

inline ChromaTerms32 chroma_terms_avx2(__m256i vu) {
    const __m256i c = _mm256_xor_si256(vu, _mm256_set1_epi8(-128));
    const __m256i v = _mm256_srai_epi16(_mm256_slli_epi16(c, 8), 8);
    const __m256i u = _mm256_srai_epi16(c, 8);
    const __m256i v8 = _mm256_slli_epi16(v, 3);
    const __m256i u8 = _mm256_slli_epi16(u, 3);
    const __m256i vr =
        _mm256_add_epi16(_mm256_slli_epi16(v, 4), _mm256_mulhi_epi16(v8, _mm256_set1_epi16(-26475)));
    const __m256i uvg = _mm256_sub_epi16(_mm256_add_epi16(_mm256_mulhi_epi16(v8, _mm256_set1_epi16(12258)),
                                                          _mm256_mulhi_epi16(u8, _mm256_set1_epi16(-25674))),
                                         v8);
    const __m256i ub =
        _mm256_add_epi16(_mm256_slli_epi16(u, 4), _mm256_mulhi_epi16(u8, _mm256_set1_epi16(1129)));
    return {_mm256_unpacklo_epi16(vr, vr),   _mm256_unpackhi_epi16(vr, vr),   _mm256_unpacklo_epi16(uvg, uvg),
            _mm256_unpackhi_epi16(uvg, uvg), _mm256_unpacklo_epi16(ub, ub), _mm256_unpackhi_epi16(ub, ub)};
}

// 32 pixels from 32 luma bytes and the chroma terms they share (`split`:
// luma and chroma in the lane order of store_interleaved4_avx2).
inline void luma32_to_rgba_avx2(__m256i y, const ChromaTerms32& t, uint8_t* out, bool split = false) {
    const __m256i zero = _mm256_setzero_si256();
    const __m256i ys = _mm256_subs_epu8(y, _mm256_set1_epi8(16));
    const __m256i y8lo = _mm256_slli_epi16(_mm256_unpacklo_epi8(ys, zero), 3);
    const __m256i y8hi = _mm256_slli_epi16(_mm256_unpackhi_epi8(ys, zero), 3);
    const __m256i k_y = _mm256_set1_epi16(10773);
    const __m256i luma_lo = _mm256_add_epi16(y8lo, _mm256_mulhi_epi16(y8lo, k_y));
    const __m256i luma_hi = _mm256_add_epi16(y8hi, _mm256_mulhi_epi16(y8hi, k_y));
    auto channel = [&](__m256i lo_term, __m256i hi_term) {
        const __m256i lo = _mm256_srai_epi16(_mm256_add_epi16(luma_lo, lo_term), 3);
        const __m256i hi = _mm256_srai_epi16(_mm256_add_epi16(luma_hi, hi_term), 3);
        return _mm256_packus_epi16(lo, hi);
    };
    store_interleaved4_avx2(channel(t.r_lo, t.r_hi), channel(t.g_lo, t.g_hi), channel(t.b_lo, t.b_hi),
                            _mm256_set1_epi8(-1), out, split);
}

// 32 pixels from 32 luma bytes and 16 chroma pairs (V, U), both in order.
inline void yuv32_to_rgba_avx2(__m256i y, __m256i vu, uint8_t* out) {
    luma32_to_rgba_avx2(y, chroma_terms_avx2(vu), out);
}

}  // namespace ifc

#endif  // IFC_JNI_YUV_CORE_AVX2_H
