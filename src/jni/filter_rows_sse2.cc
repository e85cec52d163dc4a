// CPU filter rows, SSE2, for 4-byte pixels (other layouts take the
// reference rows). Byte 3 of the destination is read back and kept.
#include <emmintrin.h>
#include <xmmintrin.h>

#include "jni/pixel_kernels.h"

namespace ifc {

namespace {

inline __m128i load(const uint8_t* p) { return _mm_loadu_si128(reinterpret_cast<const __m128i*>(p)); }
inline void store(uint8_t* p, __m128i v) { _mm_storeu_si128(reinterpret_cast<__m128i*>(p), v); }

// Bytes 0..2 from rgb, byte 3 from the destination as it was.
inline void store_keep_byte3(uint8_t* dst, __m128i rgb) {
    const __m128i high = _mm_set1_epi32(static_cast<int>(0xFF000000u));
    store(dst, _mm_or_si128(_mm_andnot_si128(high, rgb), _mm_and_si128(high, load(dst))));
}

// [x0, y0, x1, y1], [x2, y2, x3, y3] -> [x0 + y0, ..., x3 + y3].
inline __m128i add_pairs(__m128i a, __m128i b) {
    const __m128 fa = _mm_castsi128_ps(a), fb = _mm_castsi128_ps(b);
    return _mm_add_epi32(_mm_castps_si128(_mm_shuffle_ps(fa, fb, _MM_SHUFFLE(2, 0, 2, 0))),
                         _mm_castps_si128(_mm_shuffle_ps(fa, fb, _MM_SHUFFLE(3, 1, 3, 1))));
}

}  // namespace

void gray_row_sse2(const uint8_t* src, uint8_t* dst, int count, int channels) {
    if (channels != 4) return gray_row_c(src, dst, count, channels);
    const __m128i zero = _mm_setzero_si128();
    // 38469 does not fit a signed word: it is split as 19235 + 19234.
    const __m128i w1 = _mm_setr_epi16(19595, 19235, 7471, 0, 19595, 19235, 7471, 0);
    const __m128i w2 = _mm_setr_epi16(0, 19234, 0, 0, 0, 19234, 0, 0);
    int i = 0;
    for (; i + 4 <= count; i += 4) {
        const __m128i px = load(src + 4 * i);
        const __m128i lo = _mm_unpacklo_epi8(px, zero), hi = _mm_unpackhi_epi8(px, zero);
        const __m128i sum = add_pairs(_mm_add_epi32(_mm_madd_epi16(lo, w1), _mm_madd_epi16(lo, w2)),
                                      _mm_add_epi32(_mm_madd_epi16(hi, w1), _mm_madd_epi16(hi, w2)));
        // At most 254: no clamping needed once the table is built.
        const __m128i g = _mm_srli_epi32(sum, 16);
        const __m128i g8 = _mm_packus_epi16(_mm_packs_epi32(g, zero), zero);
        const __m128i g16 = _mm_unpacklo_epi8(g8, g8);
        store_keep_byte3(dst + 4 * i, _mm_unpacklo_epi16(g16, g16));
    }
    gray_row_c(src + 4 * i, dst + 4 * i, count - i, channels);
}

void matrix_row_sse2(const uint8_t* src, uint8_t* dst, int count, int channels, const MatrixFixed& f) {
    if (channels != 4) return matrix_row_c(src, dst, count, channels, f);
    // Pixels become words (R, G, B, 1) and each 32-bit coefficient k is split
    // into k = high * 65536 + low with signed 16-bit halves, so that
    // madd(low) + (madd(high) << 16) is the wrapped 32-bit sum of products.
    __m128i low[3], high[3];
    for (int c = 0; c < 3; ++c) {
        int16_t l[4], h[4];
        matrix_split_words(f, c, l, h);
        low[c] = _mm_setr_epi16(l[0], l[1], l[2], l[3], l[0], l[1], l[2], l[3]);
        high[c] = _mm_setr_epi16(h[0], h[1], h[2], h[3], h[0], h[1], h[2], h[3]);
    }
    const __m128i zero = _mm_setzero_si128();
    const __m128i one_in_byte3 = _mm_set1_epi32(0x01000000);
    const __m128i rgb_mask = _mm_set1_epi32(0x00FFFFFF);
    int i = 0;
    for (; i + 4 <= count; i += 4) {
        const __m128i px = _mm_or_si128(_mm_and_si128(load(src + 4 * i), rgb_mask), one_in_byte3);
        const __m128i lo = _mm_unpacklo_epi8(px, zero), hi = _mm_unpackhi_epi8(px, zero);
        __m128i out[3];
        for (int c = 0; c < 3; ++c) {
            const __m128i a = _mm_add_epi32(_mm_madd_epi16(lo, low[c]), _mm_slli_epi32(_mm_madd_epi16(lo, high[c]), 16));
            const __m128i b = _mm_add_epi32(_mm_madd_epi16(hi, low[c]), _mm_slli_epi32(_mm_madd_epi16(hi, high[c]), 16));
            // Below 1.0 (including negative) gives 0, above 255 gives 255:
            // exactly the signed-then-unsigned saturating packs below.
            out[c] = _mm_srai_epi32(add_pairs(a, b), 16);
        }
        const __m128i planar = _mm_packus_epi16(_mm_packs_epi32(out[0], out[1]), _mm_packs_epi32(out[2], zero));
        const __m128i c01 = _mm_unpacklo_epi8(planar, _mm_srli_si128(planar, 4));
        const __m128i c2z = _mm_unpacklo_epi8(_mm_srli_si128(planar, 8), zero);
        store_keep_byte3(dst + 4 * i, _mm_unpacklo_epi16(c01, c2z));
    }
    matrix_row_c(src + 4 * i, dst + 4 * i, count - i, channels, f);
}

void smooth3x3_row_sse2(const uint8_t* above, const uint8_t* row, const uint8_t* below, uint8_t* dst,
                        int width, int channels, int channel) {
    if (channels != 4) return smooth3x3_row_c(above, row, below, dst, width, channels, channel);
    const int shift = 8 * channel;
    const __m128i byte = _mm_set1_epi32(0xFF);
    const __m128i keep = _mm_set1_epi32(~(0xFF << shift));
    const __m128i count_shift = _mm_cvtsi32_si128(shift);
    // Column sums above + 2 * row + below of the channel, 4 pixels from x.
    auto column = [&](int x) {
        auto ch = [&](const uint8_t* p) { return _mm_and_si128(_mm_srl_epi32(load(p + 4 * x), count_shift), byte); };
        return _mm_add_epi32(_mm_add_epi32(ch(above), ch(below)), _mm_slli_epi32(ch(row), 1));
    };
    int x = 1;
    for (; x + 4 <= width - 1; x += 4) {
        const __m128i sum = _mm_add_epi32(_mm_add_epi32(column(x - 1), column(x + 1)), _mm_slli_epi32(column(x), 1));
        const __m128i value = _mm_sll_epi32(_mm_srli_epi32(sum, 4), count_shift);
        uint8_t* out = dst + 4 * x;
        store(out, _mm_or_si128(_mm_and_si128(load(out), keep), value));
    }
    // The reference row starts at its own x = 1: hand it the window from x - 1.
    const int done = x - 1;
    smooth3x3_row_c(above + 4 * done, row + 4 * done, below + 4 * done, dst + 4 * done, width - done, channels,
                    channel);
}

}  // namespace ifc
