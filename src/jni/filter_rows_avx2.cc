// Colour matrix and 3x3 smoothing rows, AVX2: the SSE2 arithmetic on 8
// pixels.
#include <immintrin.h>

#include "jni/pixel_kernels.h"

namespace ifc {

// The colour matrix steps stay inside their 128-bit lanes, so pixels come
// out in order.
void matrix_row_avx2(const uint8_t* src, uint8_t* dst, int count, int channels, const MatrixFixed& f) {
    if (channels != 4) return matrix_row_c(src, dst, count, channels, f);
    __m256i low[3], high[3];
    for (int c = 0; c < 3; ++c) {
        int16_t l[4], h[4];
        matrix_split_words(f, c, l, h);
        low[c] = _mm256_setr_epi16(l[0], l[1], l[2], l[3], l[0], l[1], l[2], l[3], l[0], l[1], l[2], l[3], l[0],
                                   l[1], l[2], l[3]);
        high[c] = _mm256_setr_epi16(h[0], h[1], h[2], h[3], h[0], h[1], h[2], h[3], h[0], h[1], h[2], h[3], h[0],
                                    h[1], h[2], h[3]);
    }
    const __m256i zero = _mm256_setzero_si256();
    const __m256i one_in_byte3 = _mm256_set1_epi32(0x01000000);
    const __m256i rgb_mask = _mm256_set1_epi32(0x00FFFFFF);
    const __m256i high_byte = _mm256_set1_epi32(static_cast<int>(0xFF000000u));
    auto add_pairs = [](__m256i a, __m256i b) {
        const __m256 fa = _mm256_castsi256_ps(a), fb = _mm256_castsi256_ps(b);
        return _mm256_add_epi32(_mm256_castps_si256(_mm256_shuffle_ps(fa, fb, _MM_SHUFFLE(2, 0, 2, 0))),
                                _mm256_castps_si256(_mm256_shuffle_ps(fa, fb, _MM_SHUFFLE(3, 1, 3, 1))));
    };
    int i = 0;
    for (; i + 8 <= count; i += 8) {
        const __m256i in = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(src + 4 * i));
        const __m256i px = _mm256_or_si256(_mm256_and_si256(in, rgb_mask), one_in_byte3);
        const __m256i lo = _mm256_unpacklo_epi8(px, zero), hi = _mm256_unpackhi_epi8(px, zero);
        __m256i out[3];
        for (int c = 0; c < 3; ++c) {
            const __m256i a = _mm256_add_epi32(_mm256_madd_epi16(lo, low[c]),
                                               _mm256_slli_epi32(_mm256_madd_epi16(lo, high[c]), 16));
            const __m256i b = _mm256_add_epi32(_mm256_madd_epi16(hi, low[c]),
                                               _mm256_slli_epi32(_mm256_madd_epi16(hi, high[c]), 16));
            out[c] = _mm256_srai_epi32(add_pairs(a, b), 16);
        }
        const __m256i planar =
            _mm256_packus_epi16(_mm256_packs_epi32(out[0], out[1]), _mm256_packs_epi32(out[2], zero));
        const __m256i c01 = _mm256_unpacklo_epi8(planar, _mm256_srli_si256(planar, 4));
        const __m256i c2z = _mm256_unpacklo_epi8(_mm256_srli_si256(planar, 8), zero);
        const __m256i rgb = _mm256_unpacklo_epi16(c01, c2z);
        __m256i* d = reinterpret_cast<__m256i*>(dst + 4 * i);
        _mm256_storeu_si256(d, _mm256_or_si256(rgb, _mm256_and_si256(high_byte, _mm256_loadu_si256(d))));
    }
    matrix_row_sse2(src + 4 * i, dst + 4 * i, count - i, channels, f);
}

namespace {

inline __m256i load8(const uint8_t* p) { return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(p)); }

// One pixel per 32-bit lane with channel C left at its own byte (byte 3 is
// moved down so that sums of 16 times a byte cannot overflow).
template <int C>
struct ChannelLanes {
    static __m256i mask() { return _mm256_set1_epi32(static_cast<int>(0xFFu << (8 * C))); }
    static __m256i pick(const uint8_t* p) {
        return C == 3 ? _mm256_srli_epi32(load8(p), 24) : _mm256_and_si256(load8(p), mask());
    }
    static __m256i place(__m256i sum) {
        const __m256i value = _mm256_srli_epi32(sum, 4);
        return C == 3 ? _mm256_slli_epi32(value, 24) : _mm256_and_si256(value, mask());
    }
};

// Vertical sums of 8 pixels once each; the horizontal neighbours come from
// the block and the next one, shifted across the 128-bit lanes.
template <int C>
void smooth_rgba_row(const uint8_t* above, const uint8_t* row, const uint8_t* below, uint8_t* dst, int width) {
    using L = ChannelLanes<C>;
    auto column = [&](int x) {
        const __m256i m = L::pick(row + 4 * x);
        return _mm256_add_epi32(_mm256_add_epi32(L::pick(above + 4 * x), L::pick(below + 4 * x)),
                                _mm256_add_epi32(m, m));
    };
    int x = 0;
    __m256i left = width >= 16 ? column(0) : _mm256_setzero_si256();
    // Sums of pixels x..x+15 give outputs x+1..x+8.
    for (; x + 16 <= width; x += 8) {
        const __m256i next = column(x + 8);
        const __m256i middle = _mm256_permute2x128_si256(left, next, 0x21);
        const __m256i centre = _mm256_alignr_epi8(middle, left, 4);
        const __m256i right = _mm256_alignr_epi8(middle, left, 8);
        const __m256i sum = _mm256_add_epi32(_mm256_add_epi32(left, right), _mm256_add_epi32(centre, centre));
        __m256i* out = reinterpret_cast<__m256i*>(dst + 4 * (x + 1));
        _mm256_storeu_si256(out, _mm256_or_si256(_mm256_andnot_si256(L::mask(), _mm256_loadu_si256(out)),
                                                 L::place(sum)));
        left = next;
    }
    smooth3x3_row_sse2(above + 4 * x, row + 4 * x, below + 4 * x, dst + 4 * x, width - x, 4, C);
}

}  // namespace

void smooth3x3_row_avx2(const uint8_t* above, const uint8_t* row, const uint8_t* below, uint8_t* dst,
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
