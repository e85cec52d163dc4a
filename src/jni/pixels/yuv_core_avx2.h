// AVX2 building blocks of the YUV rows.
//
// Every table term is one byte multiply-add (10 y, 28 v, 34 u) and the high
// half of one 16-bit product; these constants give the tables' values
// exactly over all 256 inputs (the exhaustive YUV test holds them to it).
#ifndef IFC_JNI_YUV_CORE_AVX2_H
#define IFC_JNI_YUV_CORE_AVX2_H

#include <immintrin.h>

#include <cstdint>

namespace ifc {

// Multipliers of the high halves: y_term = (10 y) * 61047 >> 16 (unsigned),
// v_to_r = (28 v) * 29885 >> 16, v_to_g = (28 v) * -15222 >> 16,
// u_to_g = (34 u) * -6041 >> 16, u_to_b = (34 u) * 31106 >> 16, with y the
// luma less 16 (0 below) and v, u the chroma less 128.
constexpr int kYuvLumaWeight = 10, kYuvVWeight = 28, kYuvUWeight = 34;
constexpr int16_t kYuvLumaScale = -4489;  // 61047 as an unsigned word
constexpr int16_t kYuvVToR = 29885, kYuvVToG = -15222, kYuvUToG = -6041, kYuvUToB = 31106;

// Word weights (first byte, second byte) for maddubs.
inline __m256i byte_weights_avx2(int first, int second) {
    return _mm256_set1_epi16(static_cast<int16_t>((second << 8) | first));
}

// Interleaves four planes of 32 bytes into 32 pixels at out.
inline void store_interleaved4_avx2(__m256i p0, __m256i p1, __m256i p2, __m256i p3, uint8_t* out) {
    const __m256i a_lo = _mm256_unpacklo_epi8(p0, p1), a_hi = _mm256_unpackhi_epi8(p0, p1);
    const __m256i b_lo = _mm256_unpacklo_epi8(p2, p3), b_hi = _mm256_unpackhi_epi8(p2, p3);
    // Lane 0 holds pixels 0..15, lane 1 pixels 16..31, each in groups of 4.
    const __m256i q0 = _mm256_unpacklo_epi16(a_lo, b_lo);  // 0..3 | 16..19
    const __m256i q1 = _mm256_unpackhi_epi16(a_lo, b_lo);  // 4..7 | 20..23
    const __m256i q2 = _mm256_unpacklo_epi16(a_hi, b_hi);  // 8..11 | 24..27
    const __m256i q3 = _mm256_unpackhi_epi16(a_hi, b_hi);  // 12..15 | 28..31
    __m256i* dst = reinterpret_cast<__m256i*>(out);
    _mm256_storeu_si256(dst + 0, _mm256_permute2x128_si256(q0, q1, 0x20));
    _mm256_storeu_si256(dst + 1, _mm256_permute2x128_si256(q2, q3, 0x20));
    _mm256_storeu_si256(dst + 2, _mm256_permute2x128_si256(q0, q1, 0x31));
    _mm256_storeu_si256(dst + 3, _mm256_permute2x128_si256(q2, q3, 0x31));
}

// 32 pixels R, G, B, 255 from channel planes whose lane 0 holds pixels
// 0..3, 8..11, 16..19, 24..27 and lane 1 the other quarters: the in-lane
// unpacks then leave whole runs of 8 pixels, no lane permutes.
inline void store_rgba_quarters_avx2(__m256i r, __m256i g, __m256i b, uint8_t* out) {
    const __m256i rg_lo = _mm256_unpacklo_epi8(r, g), rg_hi = _mm256_unpackhi_epi8(r, g);
    const __m256i ba_lo = _mm256_unpacklo_epi8(b, _mm256_set1_epi8(-1));
    const __m256i ba_hi = _mm256_unpackhi_epi8(b, _mm256_set1_epi8(-1));
    __m256i* dst = reinterpret_cast<__m256i*>(out);
    _mm256_storeu_si256(dst + 0, _mm256_unpacklo_epi16(rg_lo, ba_lo));
    _mm256_storeu_si256(dst + 1, _mm256_unpackhi_epi16(rg_lo, ba_lo));
    _mm256_storeu_si256(dst + 2, _mm256_unpacklo_epi16(rg_hi, ba_hi));
    _mm256_storeu_si256(dst + 3, _mm256_unpackhi_epi16(rg_hi, ba_hi));
}

// 32-bit groups (4 luma bytes or 2 chroma pairs) 0, 2, 4, 6 | 1, 3, 5, 7:
// the order store_rgba_quarters_avx2 wants.
inline __m256i quarters_in_store_order(__m256i x) {
    return _mm256_permutevar8x32_epi32(x, _mm256_setr_epi32(0, 2, 4, 6, 1, 3, 5, 7));
}

// Chroma terms (red, green, blue, in eighths) of 16 chroma pairs (V, U),
// one word per pair in the pairs' order.
struct ChromaTerms32 {
    __m256i red, green, blue;
};

inline ChromaTerms32 chroma_terms_avx2(__m256i vu) {
    const __m256i c = _mm256_xor_si256(vu, _mm256_set1_epi8(-128));
    const __m256i v = _mm256_maddubs_epi16(byte_weights_avx2(kYuvVWeight, 0), c);
    const __m256i u = _mm256_maddubs_epi16(byte_weights_avx2(0, kYuvUWeight), c);
    return {_mm256_mulhi_epi16(v, _mm256_set1_epi16(kYuvVToR)),
            _mm256_add_epi16(_mm256_mulhi_epi16(v, _mm256_set1_epi16(kYuvVToG)),
                             _mm256_mulhi_epi16(u, _mm256_set1_epi16(kYuvUToG))),
            _mm256_mulhi_epi16(u, _mm256_set1_epi16(kYuvUToB))};
}

// 32 pixels from 32 luma bytes and the terms of their 16 pairs, both in the
// order of quarters_in_store_order. The even and odd pixels of the pairs
// are worked out apart (word k is pair k's) and meet again in the byte
// shuffle after the packs.
inline void luma32_to_rgba_avx2(__m256i y, const ChromaTerms32& t, uint8_t* out) {
    const __m256i ys = _mm256_subs_epu8(y, _mm256_set1_epi8(16));  // y < 16 counts as 16
    const __m256i scale = _mm256_set1_epi16(kYuvLumaScale);
    const __m256i even = _mm256_mulhi_epu16(_mm256_maddubs_epi16(ys, byte_weights_avx2(kYuvLumaWeight, 0)), scale);
    const __m256i odd = _mm256_mulhi_epu16(_mm256_maddubs_epi16(ys, byte_weights_avx2(0, kYuvLumaWeight)), scale);
    const __m256i pixel_order =
        _mm256_broadcastsi128_si256(_mm_setr_epi8(0, 8, 1, 9, 2, 10, 3, 11, 4, 12, 5, 13, 6, 14, 7, 15));
    auto channel = [&](__m256i term) {
        return _mm256_shuffle_epi8(_mm256_packus_epi16(_mm256_srai_epi16(_mm256_add_epi16(even, term), 3),
                                                       _mm256_srai_epi16(_mm256_add_epi16(odd, term), 3)),
                                   pixel_order);
    };
    store_rgba_quarters_avx2(channel(t.red), channel(t.green), channel(t.blue), out);
}

// 32 pixels from 32 luma bytes and 16 chroma pairs (V, U), both in order.
inline void yuv32_to_rgba_avx2(__m256i y, __m256i vu, uint8_t* out) {
    luma32_to_rgba_avx2(quarters_in_store_order(y), chroma_terms_avx2(quarters_in_store_order(vu)), out);
}

}  // namespace ifc

#endif  // IFC_JNI_YUV_CORE_AVX2_H
