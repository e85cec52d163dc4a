// Packed 4:2:2 rows, AVX-512BW: 64 pixels per step, the tail by the AVX2 row.
//
// The arithmetic is the AVX2 row's (yuv_core_avx2.h: one byte multiply-add
// and one high half per table term, exact over all inputs) on registers twice
// as wide: every step below works within 128-bit lanes, and the loads put
// into each lane the groups whose pixels its stores write. Outputs past the
// caches are written with streaming stores.
#include <immintrin.h>

#include "jni/pixels/pixel_kernels.h"
#include "jni/pixels/streaming_rows_x86.h"
#include "jni/pixels/yuv_core_avx2.h"

namespace ifc {

namespace {

// Full masks: the unmasked forms of these two intrinsics start from an
// undefined register, which GCC 12 warns about.
constexpr __mmask16 kAll16 = 0xFFFF;
constexpr __mmask8 kAll8 = 0xFF;

inline __m512i word_pair(int first, int second) {
    return _mm512_set1_epi32(static_cast<int>((static_cast<uint32_t>(second) << 16) | (first & 0xFFFF)));
}

// A byte shuffle repeating one pattern of two words in every 32-bit lane.
inline __m512i words_of_lane(int first, int second) {
    const auto a = static_cast<char>(2 * first), b = static_cast<char>(2 * second);
    return _mm512_maskz_broadcast_i32x4(kAll16, _mm_setr_epi8(a, a + 1, b, b + 1, a + 4, a + 5, b + 4, b + 5, a + 8, a + 9,
                                                b + 8, b + 9, a + 12, a + 13, b + 12, b + 13));
}

// 32 pixels (16 groups) with 128-bit lane L holding pixels 4L..4L+3 and
// 16+4L..16+4L+3: after the packs and unpacks of the step, lane L of each
// of the four stores then holds four consecutive pixels in store order.
inline __m512i load_groups(const uint8_t* vyuy) {
    return _mm512_maskz_permutexvar_epi64(kAll8, _mm512_setr_epi64(0, 4, 1, 5, 2, 6, 3, 7), _mm512_loadu_si512(vyuy));
}

template <bool kStreaming>
inline void store(uint8_t* out, __m512i pixels) {
    if (kStreaming) {
        _mm512_stream_si512(reinterpret_cast<__m512i*>(out), pixels);
    } else {
        _mm512_storeu_si512(out, pixels);
    }
}

template <bool kStreaming>
void convert(const uint8_t* vyuy, uint8_t* rgba, int width) {
    const __m512i chroma_sign = _mm512_set1_epi16(0x80);
    const __m512i luma_floor = _mm512_set1_epi16(16 << 8), luma_weight = _mm512_set1_epi16(kYuvLumaWeight << 8);
    const __m512i luma_scale = _mm512_set1_epi16(kYuvLumaScale);
    const __m512i chroma_weights = word_pair(kYuvVWeight, kYuvUWeight);
    const __m512i red_blue = word_pair(kYuvVToR, kYuvUToB), greens = word_pair(kYuvVToG, kYuvUToG);
    const __m512i first_word = words_of_lane(0, 0), second_word = words_of_lane(1, 1), swapped = words_of_lane(1, 0);
    const __m512i opaque = _mm512_set1_epi8(-1);
    int x = 0;
    for (; x + 64 <= width; x += 64) {
        const __m512i g0 = load_groups(vyuy + 2 * x), g1 = load_groups(vyuy + 2 * x + 64);

        // (28 v, 34 u) per group, v and u the chroma bytes less 128.
        const __m512i p0 = _mm512_maddubs_epi16(chroma_weights, _mm512_xor_si512(g0, chroma_sign));
        const __m512i p1 = _mm512_maddubs_epi16(chroma_weights, _mm512_xor_si512(g1, chroma_sign));
        const __m512i rb0 = _mm512_mulhi_epi16(p0, red_blue), rb1 = _mm512_mulhi_epi16(p1, red_blue);
        __m512i green0 = _mm512_mulhi_epi16(p0, greens), green1 = _mm512_mulhi_epi16(p1, greens);
        green0 = _mm512_add_epi16(green0, _mm512_shuffle_epi8(green0, swapped));
        green1 = _mm512_add_epi16(green1, _mm512_shuffle_epi8(green1, swapped));

        // y_term per pixel word; luma below 16 counts as 16.
        const __m512i l0 =
            _mm512_mulhi_epu16(_mm512_maddubs_epi16(_mm512_subs_epu8(g0, luma_floor), luma_weight), luma_scale);
        const __m512i l1 =
            _mm512_mulhi_epu16(_mm512_maddubs_epi16(_mm512_subs_epu8(g1, luma_floor), luma_weight), luma_scale);
        auto channel = [&](__m512i term0, __m512i term1) {
            return _mm512_packus_epi16(_mm512_srai_epi16(_mm512_add_epi16(l0, term0), 3),
                                       _mm512_srai_epi16(_mm512_add_epi16(l1, term1), 3));
        };
        const __m512i r = channel(_mm512_shuffle_epi8(rb0, first_word), _mm512_shuffle_epi8(rb1, first_word));
        const __m512i g = channel(green0, green1);
        const __m512i b = channel(_mm512_shuffle_epi8(rb0, second_word), _mm512_shuffle_epi8(rb1, second_word));

        const __m512i rg_lo = _mm512_unpacklo_epi8(r, g), rg_hi = _mm512_unpackhi_epi8(r, g);
        const __m512i ba_lo = _mm512_unpacklo_epi8(b, opaque), ba_hi = _mm512_unpackhi_epi8(b, opaque);
        uint8_t* out = rgba + 4 * x;
        store<kStreaming>(out, _mm512_unpacklo_epi16(rg_lo, ba_lo));
        store<kStreaming>(out + 64, _mm512_unpackhi_epi16(rg_lo, ba_lo));
        store<kStreaming>(out + 128, _mm512_unpacklo_epi16(rg_hi, ba_hi));
        store<kStreaming>(out + 192, _mm512_unpackhi_epi16(rg_hi, ba_hi));
    }
    yuv422_to_rgba_row_avx2(vyuy + 2 * x, rgba + 4 * x, width - x);
}

}  // namespace

void yuv422_to_rgba_row_avx512(const uint8_t* vyuy, uint8_t* rgba, int width) {
    // The lead stays whole groups of two pixels.
    convert_streaming_past_caches<convert<false>, yuv422_to_rgba_row_avx2, convert<true>>(vyuy, rgba, width, 64, 2);
}

}  // namespace ifc
