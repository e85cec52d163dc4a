// Reference rows of the CPU filters: gray, curve, colour matrix and 3x3
// smoothing of one channel.
#include <cmath>
#include <cstring>
#include <limits>

#include "jni/pixels/pixel_kernels.h"

namespace ifc {

void gray_row_c(const uint8_t* src, uint8_t* dst, int count, int channels) {
    for (int i = 0; i < count; ++i, src += channels, dst += channels) {
        // Weights 0.299, 0.587, 0.114 in 16.16 (7471 = 241 * 31); they sum to 65535.
        const uint8_t g = clamp_byte((19595 * src[0] + 38469 * src[1] + 7471 * src[2]) >> 16);
        dst[0] = dst[1] = dst[2] = g;
    }
}

void curve_row_c(const uint8_t* src, uint8_t* dst, int count, int channels, const uint8_t* curve) {
    for (int i = 0; i < count; ++i, src += channels, dst += channels) {
        const uint8_t r = curve[3 * src[0]];
        const uint8_t g = curve[3 * src[1] + 1];
        const uint8_t b = curve[3 * src[2] + 2];
        dst[0] = r;
        dst[1] = g;
        dst[2] = b;
    }
}

void curve_row_words(const uint8_t* src, uint8_t* dst, int count, int channels, const uint8_t* curve) {
#if defined(__BYTE_ORDER__) && __BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__
    // Below a few hundred pixels building the tables costs more than it saves.
    if (channels == 4 && count >= 256) {
        uint32_t red[256], green[256], blue[256];
        for (int v = 0; v < 256; ++v) {
            red[v] = curve[3 * v];
            green[v] = uint32_t{curve[3 * v + 1]} << 8;
            blue[v] = uint32_t{curve[3 * v + 2]} << 16;
        }
        for (int i = 0; i < count; ++i, src += 4, dst += 4) {
            uint32_t keep;
            std::memcpy(&keep, dst, 4);
            const uint32_t out = red[src[0]] | green[src[1]] | blue[src[2]] | (keep & 0xFF000000u);
            std::memcpy(dst, &out, 4);
        }
        return;
    }
#endif
    curve_row_c(src, dst, count, channels, curve);
}

namespace {

// float -> 16.16 truncated; out-of-range values saturate and NaN gives 0, as
// the ARM conversion instruction does.
int32_t to_fixed(float value) {
    const float scaled = value * 65536.0f;
    if (std::isnan(scaled)) return 0;
    if (scaled >= 2147483648.0f) return std::numeric_limits<int32_t>::max();
    if (scaled <= -2147483648.0f) return std::numeric_limits<int32_t>::min();
    return static_cast<int32_t>(scaled);
}

// 0 below 1.0 (65536), else the integer part capped at 255.
inline uint8_t matrix_out(uint32_t sum) {
    const int32_t out = static_cast<int32_t>(sum);
    return out < 65536 ? 0 : static_cast<uint8_t>(out >> 16 > 255 ? 255 : out >> 16);
}

}  // namespace

MatrixFixed matrix_to_fixed(const float* m) {
    MatrixFixed f;
    for (int col = 0; col < 3; ++col)
        for (int row = 0; row < 3; ++row) f.k[col * 3 + row] = to_fixed(m[col * 4 + row]);
    // The offset column counts 256 levels per 1.0.
    for (int row = 0; row < 3; ++row)
        f.k[9 + row] = static_cast<int32_t>(static_cast<uint32_t>(to_fixed(m[12 + row])) << 8);
    return f;
}

void matrix_split_words(const MatrixFixed& f, int c, int16_t low[4], int16_t high[4]) {
    const int32_t k[4] = {f.k[c], f.k[3 + c], f.k[6 + c], f.k[9 + c]};
    for (int j = 0; j < 4; ++j) {
        low[j] = static_cast<int16_t>(k[j] & 0xFFFF);
        high[j] = static_cast<int16_t>((static_cast<uint32_t>(k[j]) - static_cast<uint32_t>(low[j])) >> 16);
    }
}

void matrix_row_c(const uint8_t* src, uint8_t* dst, int count, int channels, const MatrixFixed& f) {
    // Sums wrap in 32 bits like the device's integer arithmetic.
    const uint32_t* k = reinterpret_cast<const uint32_t*>(f.k);
    for (int i = 0; i < count; ++i, src += channels, dst += channels) {
        const uint32_t r = src[0], g = src[1], b = src[2];
        const uint8_t o0 = matrix_out(r * k[0] + g * k[3] + b * k[6] + k[9]);
        const uint8_t o1 = matrix_out(r * k[1] + g * k[4] + b * k[7] + k[10]);
        const uint8_t o2 = matrix_out(r * k[2] + g * k[5] + b * k[8] + k[11]);
        dst[0] = o0;
        dst[1] = o1;
        dst[2] = o2;
    }
}

void smooth3x3_row_c(const uint8_t* above, const uint8_t* row, const uint8_t* below, uint8_t* dst,
                     int width, int channels, int channel) {
    above += channel;
    row += channel;
    below += channel;
    dst += channel;
    for (int x = 1; x < width - 1; ++x) {
        const int l = (x - 1) * channels, c = x * channels, r = (x + 1) * channels;
        const int sum = above[l] + 2 * above[c] + above[r] + 2 * row[l] + 4 * row[c] + 2 * row[r] +
                        below[l] + 2 * below[c] + below[r];
        dst[c] = static_cast<uint8_t>(sum >> 4);
    }
}

}  // namespace ifc
