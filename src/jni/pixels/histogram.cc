// Colour histograms of bytes 0..2, pixels 4 bytes apart whatever the
// channel count (callers rely on it).
#include <cstring>

#include "jni/pixels/pixel_kernels.h"

namespace ifc {

namespace {

// Pixels of row `y` whose bytes 0..2 lie inside the readable extent.
int readable_pixels(const HistogramSource& src, int y) {
    const ptrdiff_t start = y * src.stride;
    if (start < 0 || static_cast<size_t>(start) + 3 > src.extent) return 0;
    const size_t fit = (src.extent - static_cast<size_t>(start) - 3) / 4 + 1;
    return fit < static_cast<size_t>(src.width) ? static_cast<int>(fit) : src.width;
}

template <typename RowFn>
void for_each_row(const HistogramSource& src, RowFn row_fn) {
    if (!src.data || src.width <= 0) return;
    for (int y = 0; y < src.height; ++y) {
        const int n = readable_pixels(src, y);
        // Rows only move further out of the buffer: a tall image over a
        // small buffer stops here instead of walking every empty row.
        if (n == 0) return;
        row_fn(src.data + y * src.stride, n);
    }
}

}  // namespace

void histogram_c(const HistogramSource& src, uint32_t* bins) {
    for_each_row(src, [bins](const uint8_t* p, int n) {
        for (int x = 0; x < n; ++x, p += 4) {
            ++bins[p[0]];
            ++bins[p[1]];
            ++bins[p[2]];
        }
    });
}

void histogram_channels_c(const HistogramSource& src, uint32_t* bins) {
    for_each_row(src, [bins](const uint8_t* p, int n) {
        for (int x = 0; x < n; ++x, p += 4) {
            ++bins[p[0]];
            ++bins[256 + p[1]];
            ++bins[512 + p[2]];
        }
    });
}

// Counting into separate tables breaks the store-to-load chains on runs of
// equal values; the tables are summed at the end.
void histogram_fast(const HistogramSource& src, uint32_t* bins) {
    uint32_t part[4][256];
    std::memset(part, 0, sizeof part);
    for_each_row(src, [&part](const uint8_t* p, int n) {
        int x = 0;
        for (; x + 2 <= n; x += 2, p += 8) {
            ++part[0][p[0]];
            ++part[1][p[1]];
            ++part[2][p[2]];
            ++part[3][p[4]];
            ++part[0][p[5]];
            ++part[1][p[6]];
        }
        if (x < n) {
            ++part[2][p[0]];
            ++part[3][p[1]];
            ++part[0][p[2]];
        }
    });
    for (int i = 0; i < 256; ++i) bins[i] += part[0][i] + part[1][i] + part[2][i] + part[3][i];
}

void histogram_channels_fast(const HistogramSource& src, uint32_t* bins) {
    uint32_t part[2][768];
    std::memset(part, 0, sizeof part);
    for_each_row(src, [&part](const uint8_t* p, int n) {
        int x = 0;
        for (; x + 2 <= n; x += 2, p += 8) {
            ++part[0][p[0]];
            ++part[0][256 + p[1]];
            ++part[0][512 + p[2]];
            ++part[1][p[4]];
            ++part[1][256 + p[5]];
            ++part[1][512 + p[6]];
        }
        if (x < n) {
            ++part[0][p[0]];
            ++part[0][256 + p[1]];
            ++part[0][512 + p[2]];
        }
    });
    for (int i = 0; i < 768; ++i) bins[i] += part[0][i] + part[1][i];
}

}  // namespace ifc
