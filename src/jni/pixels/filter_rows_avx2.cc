// Gray, colour matrix and 3x3 smoothing rows, AVX2, 8 pixels per step
// (other layouts take the reference rows). Byte 3 of the destination is
// read back and kept.
#include <immintrin.h>

#include "jni/pixels/pixel_kernels.h"

namespace ifc {

namespace {

inline __m256i load8(const uint8_t* p) { return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(p)); }

// Per 128-bit lane, 4 pixels become one 32-bit lane each holding two words.
inline __m256i lane_bytes(int b0, int b1, int b2, int b3) {
    const __m128i lane = _mm_setr_epi8(b0, b1, b2, b3, b0 + 4, b1 + 4, b2 + 4, b3 + 4, b0 + 8, b1 + 8, b2 + 8, b3 + 8,
                                       b0 + 12, b1 + 12, b2 + 12, b3 + 12);
    return _mm256_broadcastsi128_si256(lane);
}

// Two signed words (first, second) in every 32-bit lane.
inline __m256i word_pair(int first, int second) {
    return _mm256_set1_epi32(static_cast<int>((static_cast<uint32_t>(second) << 16) | (first & 0xFFFF)));
}

// Bytes 0..2 from rgb (byte 3 zero), byte 3 from the destination as it was.
inline void store_keep_byte3(uint8_t* dst, __m256i rgb) {
    const __m256i high = _mm256_set1_epi32(static_cast<int>(0xFF000000u));
    __m256i* d = reinterpret_cast<__m256i*>(dst);
    _mm256_storeu_si256(d, _mm256_or_si256(rgb, _mm256_and_si256(high, _mm256_loadu_si256(d))));
}

constexpr int kZero = -128;  // a shuffle index that gives 0

}  // namespace

// Each pixel's bytes become the word pairs (R, G) and (B, G): two
// multiply-adds give the whole weighted sum per pixel lane, G's weight
// 38469 split as 19235 + 19234 to fit signed words.
void gray_row_avx2(const uint8_t* src, uint8_t* dst, int count, int channels) {
    if (channels != 4) return gray_row_c(src, dst, count, channels);
    const __m256i rg = lane_bytes(0, kZero, 1, kZero), bg = lane_bytes(2, kZero, 1, kZero);
    const __m256i w_rg = word_pair(19595, 19235), w_bg = word_pair(7471, 19234);
    // The sum is below 2^24 and the gray level is its byte 2 (at most 254,
    // so no clamping is needed once the table is built).
    const __m256i spread = lane_bytes(2, 2, 2, kZero);
    int i = 0;
    for (; i + 8 <= count; i += 8) {
        const __m256i px = load8(src + 4 * i);
        const __m256i sum = _mm256_add_epi32(_mm256_madd_epi16(_mm256_shuffle_epi8(px, rg), w_rg),
                                             _mm256_madd_epi16(_mm256_shuffle_epi8(px, bg), w_bg));
        store_keep_byte3(dst + 4 * i, _mm256_shuffle_epi8(sum, spread));
    }
    gray_row_sse2(src + 4 * i, dst + 4 * i, count - i, channels);
}

namespace {

// Each pixel's bytes become the word pairs (R, G) and (B, 1). Every 32-bit
// coefficient is split as k = high * 65536 + low with signed 16-bit halves
// (the offset's pair pairs with the 1); per output,
// low sums + (high sums << 16) is the wrapped 32-bit sum of the reference.
struct MatrixWords {
    __m256i low_rg[3], low_b1[3], high_rg[3], high_b1[3];
    bool high_only_rg[3], high_only_b1[3];
    bool never_wraps = true;
};

MatrixWords matrix_words(const MatrixFixed& f) {
    MatrixWords w;
    for (int c = 0; c < 3; ++c) {
        int16_t l[4], h[4];
        matrix_split_words(f, c, l, h);
        w.low_rg[c] = word_pair(l[0], l[1]);
        w.low_b1[c] = word_pair(l[2], l[3]);
        w.high_rg[c] = word_pair(h[0], h[1]);
        w.high_b1[c] = word_pair(h[2], h[3]);
        w.high_only_rg[c] = h[2] == 0 && h[3] == 0;
        w.high_only_b1[c] = h[0] == 0 && h[1] == 0;
        int64_t lowest = f.k[9 + c], highest = f.k[9 + c];
        for (int i = 0; i < 3; ++i) (f.k[3 * i + c] < 0 ? lowest : highest) += int64_t{255} * f.k[3 * i + c];
        w.never_wraps = w.never_wraps && lowest >= INT32_MIN && highest <= INT32_MAX;
    }
    return w;
}

inline __m256i matrix_rg(__m256i px) { return _mm256_shuffle_epi8(px, lane_bytes(0, kZero, 1, kZero)); }
inline __m256i matrix_b1(__m256i px) {
    return _mm256_or_si256(_mm256_shuffle_epi8(px, lane_bytes(2, kZero, kZero, kZero)), _mm256_set1_epi32(0x10000));
}

// Three outputs of 8 pixels (32-bit lanes, in `slot` order) to bytes 0..2
// in output order; byte 3 from the destination.
inline void store_matrix_outputs(uint8_t* dst, const __m256i (&out)[3], __m256i interleave) {
    // Below 1.0 (including negative) gives 0, above 255 gives 255: exactly
    // the signed-then-unsigned saturating packs.
    const __m256i words01 = _mm256_packs_epi32(out[0], out[1]);
    const __m256i words2 = _mm256_packs_epi32(out[2], out[2]);
    store_keep_byte3(dst, _mm256_shuffle_epi8(_mm256_packus_epi16(words01, words2), interleave));
}

// After the packs a lane holds slot s of pixel p at byte 4 s + p; output c
// sits in slot slot_of[c].
__m256i matrix_interleave(const int (&slot_of)[3]) {
    alignas(16) int8_t lane[16];
    for (int p = 0; p < 4; ++p) {
        for (int c = 0; c < 3; ++c) lane[4 * p + c] = static_cast<int8_t>(4 * slot_of[c] + p);
        lane[4 * p + 3] = kZero;
    }
    return _mm256_broadcastsi128_si256(_mm_load_si128(reinterpret_cast<const __m128i*>(lane)));
}

// Sums that stay inside int32 for every pixel: the sum >> 16 is then the
// high sum plus the low sum >> 16, and when an output's high halves sit in
// one word pair, that high sum is one multiply-add. Slots 0..RgSlots-1
// take theirs from (R, G), the others from (B, 1).
template <int RgSlots>
void matrix_rows_unwrapped(const uint8_t* src, uint8_t* dst, int count, const __m256i (&low_rg)[3],
                           const __m256i (&low_b1)[3], const __m256i (&high)[3], __m256i interleave) {
    for (int i = 0; i + 8 <= count; i += 8) {
        const __m256i px = load8(src + 4 * i);
        const __m256i p_rg = matrix_rg(px), p_b1 = matrix_b1(px);
        auto slot = [&](int s) {
            const __m256i low = _mm256_add_epi32(_mm256_madd_epi16(p_rg, low_rg[s]), _mm256_madd_epi16(p_b1, low_b1[s]));
            return _mm256_add_epi32(_mm256_srai_epi32(low, 16), _mm256_madd_epi16(s < RgSlots ? p_rg : p_b1, high[s]));
        };
        // Spelled out: a loop over the slots is kept as one, through memory.
        store_matrix_outputs(dst + 4 * i, {slot(0), slot(1), slot(2)}, interleave);
    }
}

// Matrices whose every output takes its high halves from one word pair and
// whose sums cannot wrap (no offsets to speak of, weights in the usual
// ranges): the rows above, slots ordered (R, G) first. False for the rest.
bool matrix_rows_short(const uint8_t* src, uint8_t* dst, int count, const MatrixWords& w) {
    if (!w.never_wraps) return false;
    int order[3], n = 0;
    for (int c = 0; c < 3; ++c)
        if (w.high_only_rg[c]) order[n++] = c;
    const int rg_slots = n;
    for (int c = 0; c < 3; ++c)
        if (!w.high_only_rg[c]) {
            if (!w.high_only_b1[c]) return false;
            order[n++] = c;
        }
    int slot_of[3];
    __m256i low_rg[3], low_b1[3], high[3];
    for (int s = 0; s < 3; ++s) {
        const int c = order[s];
        slot_of[c] = s;
        low_rg[s] = w.low_rg[c];
        low_b1[s] = w.low_b1[c];
        high[s] = s < rg_slots ? w.high_rg[c] : w.high_b1[c];
    }
    const __m256i interleave = matrix_interleave(slot_of);
    switch (rg_slots) {
        case 0: matrix_rows_unwrapped<0>(src, dst, count, low_rg, low_b1, high, interleave); break;
        case 1: matrix_rows_unwrapped<1>(src, dst, count, low_rg, low_b1, high, interleave); break;
        case 2: matrix_rows_unwrapped<2>(src, dst, count, low_rg, low_b1, high, interleave); break;
        default: matrix_rows_unwrapped<3>(src, dst, count, low_rg, low_b1, high, interleave); break;
    }
    return true;
}

}  // namespace

void matrix_row_avx2(const uint8_t* src, uint8_t* dst, int count, int channels, const MatrixFixed& f) {
    if (channels != 4) return matrix_row_c(src, dst, count, channels, f);
    const MatrixWords w = matrix_words(f);
    const int whole = count & ~7;
    if (!matrix_rows_short(src, dst, whole, w)) {
        const int identity[3] = {0, 1, 2};
        const __m256i interleave = matrix_interleave(identity);
        for (int i = 0; i < whole; i += 8) {
            const __m256i px = load8(src + 4 * i);
            const __m256i p_rg = matrix_rg(px), p_b1 = matrix_b1(px);
            auto output = [&](int c) {
                const __m256i low =
                    _mm256_add_epi32(_mm256_madd_epi16(p_rg, w.low_rg[c]), _mm256_madd_epi16(p_b1, w.low_b1[c]));
                const __m256i high =
                    _mm256_add_epi32(_mm256_madd_epi16(p_rg, w.high_rg[c]), _mm256_madd_epi16(p_b1, w.high_b1[c]));
                return _mm256_srai_epi32(_mm256_add_epi32(low, _mm256_slli_epi32(high, 16)), 16);
            };
            store_matrix_outputs(dst + 4 * i, {output(0), output(1), output(2)}, interleave);
        }
    }
    matrix_row_sse2(src + 4 * whole, dst + 4 * whole, count - whole, channels, f);
}

namespace {

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
