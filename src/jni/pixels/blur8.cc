#include "jni/pixels/blur8.h"

#include <cmath>
#include <cstring>
#include <vector>

#include "jni/pixels/pixel_kernels.h"

namespace ifc {

int blur8_weight(int sigma) {
    const float s = static_cast<float>(sigma);
    const float a = static_cast<float>(std::exp(-std::log(2.0) * std::sqrt(2.0) / s));
    if (!(a > 0.0f) || a >= 1.0f) return 0;
    return static_cast<int>(a * (a * 65536.0f));
}

void blur8_downsample(const uint8_t* source, int source_width, int channels, int scale, int W, int H,
                      uint8_t* T) {
    for (int j = 0; j < H; ++j)
        for (int i = 0; i < W; ++i)
            T[j * W + i] = source[(size_t(source_width) * j * scale + size_t(i) * scale) * channels];
}

namespace {

// One step of the first-order recursion in 8.8 fixed point.
inline void step(uint8_t& pixel, uint32_t& q, uint32_t a, uint32_t b) {
    const uint32_t v = b * (uint32_t{pixel} << 8) + a * q;
    q = v >> 16;
    pixel = static_cast<uint8_t>(v >> 24);
}

}  // namespace

void blur8_rows_c(uint8_t* T, int W, int y0, int y1, int A) {
    const uint32_t a = static_cast<uint32_t>(A);
    const uint32_t b = a ^ 0xFFFF;
    for (int y = y0; y < y1; ++y) {
        uint8_t* row = T + size_t(y) * W;
        uint32_t q = uint32_t{row[0]} << 8;
        for (int x = 1; x < W; ++x) step(row[x], q, a, b);
        for (int x = W - 1; x >= 1; --x) step(row[x], q, a, b);
    }
}

void blur8_columns_c(uint8_t* T, int W, int H, int x0, int x1, int A) {
    const uint32_t a = static_cast<uint32_t>(A);
    const uint32_t b = a ^ 0xFFFF;
    // Unlike the rows, the forward sweep starts at row 0 and stops before
    // the last row; kept, results depend on it. Columns are independent,
    // so they advance together row by row (one state per column).
    std::vector<uint32_t> q(T + x0, T + x1);
    for (uint32_t& state : q) state <<= 8;
    for (int y = 0; y <= H - 2; ++y)
        for (int x = x0; x < x1; ++x) step(T[size_t(y) * W + x], q[x - x0], a, b);
    for (int y = H - 1; y >= 1; --y)
        for (int x = x0; x < x1; ++x) step(T[size_t(y) * W + x], q[x - x0], a, b);
}

void blur8_filter_c(uint8_t* T, int W, int H, int A) {
    if (W >= 2) blur8_rows_c(T, W, 0, H, A);
    if (H >= 2) blur8_columns_c(T, W, H, 0, W, A);
}

void blur8_filter(uint8_t* T, int W, int H, int A) { pixel_kernels().blur8_filter(T, W, H, A); }

_Image* blur8_image(const _Image* source, int scale, int sigma) {
    // A record without channels holds no pixels, however large it claims to be.
    if (!source || !source->data || scale < 1 || source->width < 0 || source->height < 0 || source->channels < 1)
        return nullptr;
    const int W = source->width / scale;
    const int H = source->height / scale;
    _Image* result = create_image(W, H, source->channels, -1);
    if (!result) return nullptr;
    if (result->data) std::memset(result->data, 0, size_t(result->stride) * H);
    // Heap, not stack: a full camera frame does not fit a thread's stack.
    std::vector<uint8_t> T(size_t(W) * H);
    blur8_downsample(source->data, source->width, source->channels, scale, W, H, T.data());
    if (const int A = blur8_weight(sigma)) blur8_filter(T.data(), W, H, A);
    for (size_t i = 0; i < T.size(); ++i) result->data[i * source->channels] = T[i];
    return result;
}

}  // namespace ifc
