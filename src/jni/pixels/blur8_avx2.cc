// The recursive blur, AVX2: eight sweeps side by side in the 32-bit lanes.
// Column sweeps take 8 or 32 neighbouring columns at once; row sweeps take
// 8 rows at once, turned into lanes through a small column-major copy.
// Each step is the reference's v = b * (pixel << 8) + a * q, q = v >> 16,
// pixel = v >> 24, with b << 8 as one multiplier.
#include <immintrin.h>

#include <cstddef>
#include <vector>

#include "jni/pixels/blur8.h"

namespace ifc {

namespace {

struct Weights {
    __m256i a, b8;
};

// One step for 8 sweeps: pixels (0..255 per lane) in, new pixels out.
inline __m256i step8(__m256i pixels, __m256i& q, const Weights& w) {
    const __m256i v = _mm256_add_epi32(_mm256_mullo_epi32(pixels, w.b8), _mm256_mullo_epi32(q, w.a));
    q = _mm256_srli_epi32(v, 16);
    return _mm256_srli_epi32(v, 24);
}

inline __m256i load_bytes8(const uint8_t* p) {
    return _mm256_cvtepu8_epi32(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(p)));
}

// The 8 lanes (each 0..255) as 8 bytes at p.
inline void store_bytes8(__m256i v, uint8_t* p) {
    const __m256i words = _mm256_packus_epi32(v, v);
    const __m256i bytes = _mm256_packus_epi16(words, words);
    const __m128i lo = _mm256_castsi256_si128(bytes), hi = _mm256_extracti128_si256(bytes, 1);
    _mm_storel_epi64(reinterpret_cast<__m128i*>(p), _mm_unpacklo_epi32(lo, hi));
}

// Column sweeps of columns x..x+31 (four groups of 8), states in registers.
void columns32(uint8_t* T, int W, int H, int x, const Weights& w) {
    __m256i q[4];
    for (int k = 0; k < 4; ++k) q[k] = _mm256_slli_epi32(load_bytes8(T + x + 8 * k), 8);
    // Packed back in order: the packs interleave 4-lane quarters.
    const __m256i order = _mm256_setr_epi32(0, 4, 1, 5, 2, 6, 3, 7);
    auto row = [&](int y) {
        uint8_t* p = T + size_t(y) * W + x;
        __m256i out[4];
        for (int k = 0; k < 4; ++k) out[k] = step8(load_bytes8(p + 8 * k), q[k], w);
        const __m256i bytes =
            _mm256_packus_epi16(_mm256_packus_epi32(out[0], out[1]), _mm256_packus_epi32(out[2], out[3]));
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(p), _mm256_permutevar8x32_epi32(bytes, order));
    };
    for (int y = 0; y <= H - 2; ++y) row(y);
    for (int y = H - 1; y >= 1; --y) row(y);
}

void columns8(uint8_t* T, int W, int H, int x, const Weights& w) {
    __m256i q = _mm256_slli_epi32(load_bytes8(T + x), 8);
    auto row = [&](int y) {
        uint8_t* p = T + size_t(y) * W + x;
        store_bytes8(step8(load_bytes8(p), q, w), p);
    };
    for (int y = 0; y <= H - 2; ++y) row(y);
    for (int y = H - 1; y >= 1; --y) row(y);
}

// 4 x 4 bytes of each 128-bit half transposed.
inline __m256i transpose4x4(__m256i v) {
    return _mm256_shuffle_epi8(v, _mm256_broadcastsi128_si256(
                                      _mm_setr_epi8(0, 4, 8, 12, 1, 5, 9, 13, 2, 6, 10, 14, 3, 7, 11, 15)));
}

inline __m128i load64(const uint8_t* p) { return _mm_loadl_epi64(reinterpret_cast<const __m128i*>(p)); }

// Bytes x..x+7 of rows 0..7 (rows W apart) into lanes[(x + k) * 8 + r].
void rows_to_lanes(const uint8_t* T, int W, int x, uint32_t* lanes) {
    auto rows = [&](int r0, int r1, int r4, int r5) {
        return _mm256_setr_m128i(_mm_unpacklo_epi64(load64(T + size_t(r0) * W + x), load64(T + size_t(r1) * W + x)),
                                 _mm_unpacklo_epi64(load64(T + size_t(r4) * W + x), load64(T + size_t(r5) * W + x)));
    };
    // Halves: rows 0..3 and 4..7; dwords are 4-byte runs of one row.
    const __m256 v0 = _mm256_castsi256_ps(rows(0, 1, 4, 5)), v1 = _mm256_castsi256_ps(rows(2, 3, 6, 7));
    const __m256i first = transpose4x4(_mm256_castps_si256(_mm256_shuffle_ps(v0, v1, _MM_SHUFFLE(2, 0, 2, 0))));
    const __m256i second = transpose4x4(_mm256_castps_si256(_mm256_shuffle_ps(v0, v1, _MM_SHUFFLE(3, 1, 3, 1))));
    // Each dword now holds one column of 4 rows; pair the halves' dwords.
    const __m256i order = _mm256_setr_epi32(0, 4, 1, 5, 2, 6, 3, 7);
    __m256i* out = reinterpret_cast<__m256i*>(lanes + size_t(x) * 8);
    const __m256i halves[2] = {_mm256_permutevar8x32_epi32(first, order), _mm256_permutevar8x32_epi32(second, order)};
    for (int h = 0; h < 2; ++h) {
        const __m128i lo = _mm256_castsi256_si128(halves[h]), hi = _mm256_extracti128_si256(halves[h], 1);
        _mm256_storeu_si256(out + 4 * h + 0, _mm256_cvtepu8_epi32(lo));
        _mm256_storeu_si256(out + 4 * h + 1, _mm256_cvtepu8_epi32(_mm_srli_si128(lo, 8)));
        _mm256_storeu_si256(out + 4 * h + 2, _mm256_cvtepu8_epi32(hi));
        _mm256_storeu_si256(out + 4 * h + 3, _mm256_cvtepu8_epi32(_mm_srli_si128(hi, 8)));
    }
}

// The inverse: lanes of columns x..x+7 back into bytes of rows 0..7.
void lanes_to_rows(const uint32_t* lanes, uint8_t* T, int W, int x) {
    const __m256i* in = reinterpret_cast<const __m256i*>(lanes + size_t(x) * 8);
    auto pack4 = [&](int k) {
        // Columns k..k+3: rows 0..3 in the low half, 4..7 in the high half,
        // column-major, then row-major after the transpose.
        const __m256i words01 = _mm256_packus_epi32(_mm256_loadu_si256(in + k), _mm256_loadu_si256(in + k + 1));
        const __m256i words23 = _mm256_packus_epi32(_mm256_loadu_si256(in + k + 2), _mm256_loadu_si256(in + k + 3));
        return transpose4x4(_mm256_packus_epi16(words01, words23));
    };
    const __m256i left = pack4(0), right = pack4(4);
    const __m256i rows01 = _mm256_unpacklo_epi32(left, right), rows23 = _mm256_unpackhi_epi32(left, right);
    auto store_pair = [&](__m128i v, int r) {
        _mm_storel_epi64(reinterpret_cast<__m128i*>(T + size_t(r) * W + x), v);
        _mm_storel_epi64(reinterpret_cast<__m128i*>(T + size_t(r + 1) * W + x), _mm_srli_si128(v, 8));
    };
    store_pair(_mm256_castsi256_si128(rows01), 0);
    store_pair(_mm256_castsi256_si128(rows23), 2);
    store_pair(_mm256_extracti128_si256(rows01, 1), 4);
    store_pair(_mm256_extracti128_si256(rows23, 1), 6);
}

// Row sweeps of 8 rows from T (W >= 2); lanes holds W * 8 words.
void rows8(uint8_t* T, int W, uint32_t* lanes, const Weights& w) {
    int x = 0;
    for (; x + 8 <= W; x += 8) rows_to_lanes(T, W, x, lanes);
    for (; x < W; ++x)
        for (int r = 0; r < 8; ++r) lanes[size_t(x) * 8 + r] = T[size_t(r) * W + x];
    __m256i* v = reinterpret_cast<__m256i*>(lanes);
    __m256i q = _mm256_slli_epi32(_mm256_loadu_si256(v), 8);
    for (x = 1; x < W; ++x) _mm256_storeu_si256(v + x, step8(_mm256_loadu_si256(v + x), q, w));
    for (x = W - 1; x >= 1; --x) _mm256_storeu_si256(v + x, step8(_mm256_loadu_si256(v + x), q, w));
    for (x = 0; x + 8 <= W; x += 8) lanes_to_rows(lanes, T, W, x);
    for (; x < W; ++x)
        for (int r = 0; r < 8; ++r) T[size_t(r) * W + x] = static_cast<uint8_t>(lanes[size_t(x) * 8 + r]);
}

}  // namespace

void blur8_filter_avx2(uint8_t* T, int W, int H, int A) {
    const uint32_t a = static_cast<uint32_t>(A);
    const Weights w{_mm256_set1_epi32(static_cast<int>(a)), _mm256_set1_epi32(static_cast<int>((a ^ 0xFFFF) << 8))};
    if (W >= 2) {
        int y = 0;
        if (H >= 8) {
            std::vector<uint32_t> lanes(size_t(W) * 8);
            for (; y + 8 <= H; y += 8) rows8(T + size_t(y) * W, W, lanes.data(), w);
        }
        blur8_rows_c(T, W, y, H, A);
    }
    if (H >= 2) {
        int x = 0;
        for (; x + 32 <= W; x += 32) columns32(T, W, H, x, w);
        for (; x + 8 <= W; x += 8) columns8(T, W, H, x, w);
        blur8_columns_c(T, W, H, x, W, A);
    }
}

}  // namespace ifc
