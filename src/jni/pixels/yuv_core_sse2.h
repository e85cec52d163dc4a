// SSE2 building blocks of the YUV rows, shared by the NV21 and 4:2:2 files.
//
// The table values are floor(c * d / 8192) for d = y - 16 or chroma - 128.
// Each multiplier is split as c = m * 65536 + r with |r| < 32768, so that
// floor(c * d / 8192) = 8 * m * d + floor(r * 8d / 65536), the second term
// being exactly the signed high half of a 16-bit product (pmulhw).
#ifndef IFC_JNI_YUV_CORE_SSE2_H
#define IFC_JNI_YUV_CORE_SSE2_H

#include <emmintrin.h>

#include <cstdint>

namespace ifc {

// R, G, B bytes of 16 pixels from 16 luma bytes and 8 chroma pairs (V, U).
struct Rgb16 {
    __m128i r, g, b;
};

inline Rgb16 yuv16_to_rgb_sse2(__m128i y, __m128i vu) {
    const __m128i zero = _mm_setzero_si128();
    // Luma below 16 contributes 0: saturating subtract.
    const __m128i ys = _mm_subs_epu8(y, _mm_set1_epi8(16));
    const __m128i y8lo = _mm_slli_epi16(_mm_unpacklo_epi8(ys, zero), 3);
    const __m128i y8hi = _mm_slli_epi16(_mm_unpackhi_epi8(ys, zero), 3);
    const __m128i k_y = _mm_set1_epi16(10773);  // 76309 = 65536 + 10773
    const __m128i luma_lo = _mm_add_epi16(y8lo, _mm_mulhi_epi16(y8lo, k_y));
    const __m128i luma_hi = _mm_add_epi16(y8hi, _mm_mulhi_epi16(y8hi, k_y));

    // Chroma pairs as words V | U << 8, re-centred to signed.
    const __m128i c = _mm_xor_si128(vu, _mm_set1_epi8(-128));
    const __m128i v = _mm_srai_epi16(_mm_slli_epi16(c, 8), 8);
    const __m128i u = _mm_srai_epi16(c, 8);
    const __m128i v8 = _mm_slli_epi16(v, 3);
    const __m128i u8 = _mm_slli_epi16(u, 3);
    // 104597 = 2 * 65536 - 26475; -53278 = -65536 + 12258; -25674;
    // 132201 = 2 * 65536 + 1129.
    const __m128i vr = _mm_add_epi16(_mm_slli_epi16(v, 4), _mm_mulhi_epi16(v8, _mm_set1_epi16(-26475)));
    const __m128i uvg = _mm_sub_epi16(
        _mm_add_epi16(_mm_mulhi_epi16(v8, _mm_set1_epi16(12258)), _mm_mulhi_epi16(u8, _mm_set1_epi16(-25674))),
        v8);
    const __m128i ub = _mm_add_epi16(_mm_slli_epi16(u, 4), _mm_mulhi_epi16(u8, _mm_set1_epi16(1129)));

    // Each pair term serves two pixels; >> 3 drops the eighths and the
    // unsigned saturation is the clamp to 0..255.
    auto channel = [&](__m128i term) {
        const __m128i lo = _mm_srai_epi16(_mm_add_epi16(luma_lo, _mm_unpacklo_epi16(term, term)), 3);
        const __m128i hi = _mm_srai_epi16(_mm_add_epi16(luma_hi, _mm_unpackhi_epi16(term, term)), 3);
        return _mm_packus_epi16(lo, hi);
    };
    return {channel(vr), channel(uvg), channel(ub)};
}

// Interleaves four planes of 16 bytes into 16 pixels at out.
inline void store_interleaved4_sse2(__m128i p0, __m128i p1, __m128i p2, __m128i p3, uint8_t* out) {
    const __m128i a_lo = _mm_unpacklo_epi8(p0, p1), a_hi = _mm_unpackhi_epi8(p0, p1);
    const __m128i b_lo = _mm_unpacklo_epi8(p2, p3), b_hi = _mm_unpackhi_epi8(p2, p3);
    __m128i* dst = reinterpret_cast<__m128i*>(out);
    _mm_storeu_si128(dst + 0, _mm_unpacklo_epi16(a_lo, b_lo));
    _mm_storeu_si128(dst + 1, _mm_unpackhi_epi16(a_lo, b_lo));
    _mm_storeu_si128(dst + 2, _mm_unpacklo_epi16(a_hi, b_hi));
    _mm_storeu_si128(dst + 3, _mm_unpackhi_epi16(a_hi, b_hi));
}

inline void yuv16_to_rgba_sse2(__m128i y, __m128i vu, uint8_t* out) {
    const Rgb16 rgb = yuv16_to_rgb_sse2(y, vu);
    store_interleaved4_sse2(rgb.r, rgb.g, rgb.b, _mm_set1_epi8(-1), out);
}

}  // namespace ifc

#endif  // IFC_JNI_YUV_CORE_SSE2_H
