// CPU filter rows, SSE2, for 4-byte pixels (other layouts take the
// reference rows). Byte 3 of the destination is read back and kept.
#include <emmintrin.h>
#include <xmmintrin.h>

#include "jni/pixels/pixel_kernels.h"

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

namespace {

// One pixel per 32-bit lane with channel C left at its own byte (byte 3 is
// moved down so that sums of 16 times a byte cannot overflow).
template <int C>
struct ChannelLanes {
    static __m128i mask() { return _mm_set1_epi32(static_cast<int>(0xFFu << (8 * C))); }
    static __m128i pick(const uint8_t* p) {
        return C == 3 ? _mm_srli_epi32(load(p), 24) : _mm_and_si128(load(p), mask());
    }
    // sum >> 4 back at byte C.
    static __m128i place(__m128i sum) {
        const __m128i value = _mm_srli_epi32(sum, 4);
        return C == 3 ? _mm_slli_epi32(value, 24) : _mm_and_si128(value, mask());
    }
};

// Vertical sums above + 2 * row + below of 4 pixels, then the horizontal
// 1-2-1 from the block and the next one: each sum is computed once.
template <int C>
void smooth_rgba_row(const uint8_t* above, const uint8_t* row, const uint8_t* below, uint8_t* dst, int width) {
    using L = ChannelLanes<C>;
    auto column = [&](int x) {
        const __m128i m = L::pick(row + 4 * x);
        return _mm_add_epi32(_mm_add_epi32(L::pick(above + 4 * x), L::pick(below + 4 * x)), _mm_add_epi32(m, m));
    };
    int x = 0;
    __m128i left = width >= 8 ? column(0) : _mm_setzero_si128();
    // Sums of pixels x..x+7 give outputs x+1..x+4.
    for (; x + 8 <= width; x += 4) {
        const __m128i next = column(x + 4);
        const __m128i centre = _mm_or_si128(_mm_srli_si128(left, 4), _mm_slli_si128(next, 12));
        const __m128i right = _mm_or_si128(_mm_srli_si128(left, 8), _mm_slli_si128(next, 8));
        const __m128i sum = _mm_add_epi32(_mm_add_epi32(left, right), _mm_add_epi32(centre, centre));
        uint8_t* out = dst + 4 * (x + 1);
        store(out, _mm_or_si128(_mm_andnot_si128(L::mask(), load(out)), L::place(sum)));
        left = next;
    }
    // The reference row starts at its own x = 1: hand it the window from x.
    smooth3x3_row_c(above + 4 * x, row + 4 * x, below + 4 * x, dst + 4 * x, width - x, 4, C);
}

}  // namespace

void smooth3x3_row_sse2(const uint8_t* above, const uint8_t* row, const uint8_t* below, uint8_t* dst,
                        int width, int channels, int channel) {
    if (channels != 4) return smooth3x3_row_c(above, row, below, dst, width, channels, channel);
    switch (channel) {
        case 0: return smooth_rgba_row<0>(above, row, below, dst, width);
        case 1: return smooth_rgba_row<1>(above, row, below, dst, width);
        case 2: return smooth_rgba_row<2>(above, row, below, dst, width);
        default: return smooth_rgba_row<3>(above, row, below, dst, width);
    }
}

}  // namespace ifc
