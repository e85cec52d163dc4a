// Packed 4:2:2 rows, AVX2: 32 pixels per step, the tail by the SSE2 row.
//
// Each group V, Y0, U, Y1 stays in its 32-bit lane: the words V | Y0 << 8
// and U | Y1 << 8 are the group's two pixels. The table terms are those of
// yuv_core_avx2.h; both chroma products come from one multiply-add, the red
// and blue terms from one high half, the two green terms from another. (Split
// into luma bytes and pairs as NV21 rows, the same step takes longer here.)
#include "jni/pixels/pixel_kernels.h"
#include "jni/pixels/yuv_core_avx2.h"

namespace ifc {

namespace {

// Two signed words (first, second) in every 32-bit lane.
inline __m256i word_pair(int first, int second) {
    return _mm256_set1_epi32(static_cast<int>((static_cast<uint32_t>(second) << 16) | (first & 0xFFFF)));
}

// A byte shuffle repeating one pattern of two words in every 32-bit lane.
inline __m256i words_of_lane(int first, int second) {
    const auto a = static_cast<char>(2 * first), b = static_cast<char>(2 * second);
    const __m128i lane = _mm_setr_epi8(a, a + 1, b, b + 1, a + 4, a + 5, b + 4, b + 5, a + 8, a + 9, b + 8, b + 9,
                                       a + 12, a + 13, b + 12, b + 13);
    return _mm256_broadcastsi128_si256(lane);
}

}  // namespace

void yuv422_to_rgba_row_avx2(const uint8_t* vyuy, uint8_t* rgba, int width) {
    const __m256i chroma_sign = _mm256_set1_epi16(0x80);
    const __m256i luma_floor = byte_weights_avx2(0, 16), luma_weight = byte_weights_avx2(0, kYuvLumaWeight);
    const __m256i luma_scale = _mm256_set1_epi16(kYuvLumaScale);
    const __m256i chroma_weights = word_pair(kYuvVWeight, kYuvUWeight);
    const __m256i red_blue = word_pair(kYuvVToR, kYuvUToB), greens = word_pair(kYuvVToG, kYuvUToG);
    const __m256i first_word = words_of_lane(0, 0), second_word = words_of_lane(1, 1), swapped = words_of_lane(1, 0);
    int x = 0;
    for (; x + 32 <= width; x += 32) {
        // Quarters (4 pixels each) q0..q3 of each half reordered q0, q2 |
        // q1, q3: after the packs lane 0 holds pixels 0..3, 8..11, 16..19,
        // 24..27, lane 1 the others, as store_rgba_quarters_avx2 wants.
        const __m256i g0 =
            _mm256_permute4x64_epi64(_mm256_loadu_si256(reinterpret_cast<const __m256i*>(vyuy + 2 * x)), 0xD8);
        const __m256i g1 =
            _mm256_permute4x64_epi64(_mm256_loadu_si256(reinterpret_cast<const __m256i*>(vyuy + 2 * x + 32)), 0xD8);

        // (28 v, 34 u) per group, v and u the chroma bytes less 128.
        const __m256i p0 = _mm256_maddubs_epi16(chroma_weights, _mm256_xor_si256(g0, chroma_sign));
        const __m256i p1 = _mm256_maddubs_epi16(chroma_weights, _mm256_xor_si256(g1, chroma_sign));
        const __m256i rb0 = _mm256_mulhi_epi16(p0, red_blue), rb1 = _mm256_mulhi_epi16(p1, red_blue);
        __m256i green0 = _mm256_mulhi_epi16(p0, greens), green1 = _mm256_mulhi_epi16(p1, greens);
        green0 = _mm256_add_epi16(green0, _mm256_shuffle_epi8(green0, swapped));
        green1 = _mm256_add_epi16(green1, _mm256_shuffle_epi8(green1, swapped));

        // y_term per pixel word; luma below 16 counts as 16.
        const __m256i l0 = _mm256_mulhi_epu16(
            _mm256_maddubs_epi16(_mm256_subs_epu8(g0, luma_floor), luma_weight), luma_scale);
        const __m256i l1 = _mm256_mulhi_epu16(
            _mm256_maddubs_epi16(_mm256_subs_epu8(g1, luma_floor), luma_weight), luma_scale);
        auto channel = [&](__m256i term0, __m256i term1) {
            return _mm256_packus_epi16(_mm256_srai_epi16(_mm256_add_epi16(l0, term0), 3),
                                       _mm256_srai_epi16(_mm256_add_epi16(l1, term1), 3));
        };
        const __m256i r = channel(_mm256_shuffle_epi8(rb0, first_word), _mm256_shuffle_epi8(rb1, first_word));
        const __m256i g = channel(green0, green1);
        const __m256i b = channel(_mm256_shuffle_epi8(rb0, second_word), _mm256_shuffle_epi8(rb1, second_word));

        store_rgba_quarters_avx2(r, g, b, rgba + 4 * x);
    }
    yuv422_to_rgba_row_sse2(vyuy + 2 * x, rgba + 4 * x, width - x);
}

}  // namespace ifc
