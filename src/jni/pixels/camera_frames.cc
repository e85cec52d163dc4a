#include "jni/pixels/camera_frames.h"

#include <algorithm>
#include <climits>

#include "jni/pixels/pixel_kernels.h"
#include "jni/pixels/streaming_stores.h"

namespace ifc {

namespace {

using Nv21Row = void (*)(const uint8_t*, const uint8_t*, uint8_t*, int);
using Nv21RowPair = void (*)(const uint8_t*, const uint8_t*, const uint8_t*, uint8_t*, uint8_t*, int);

// The YUV kernels stand in for the tables only once these are built;
// before that the reference rows give the zero-table result.
const PixelKernels& yuv_kernels() { return g_yuv_tables_ready ? pixel_kernels() : scalar_kernels(); }

// NV21 walk: luma and output advance together over the stream; stream row r
// of 2 * ceil(width / 2) pixels reads chroma row r / 2. Whole even/odd row
// pairs go through `pair` (null: one row at a time).
void walk_nv21(const uint8_t* frame, int width, int height, uint8_t* out, Nv21Row row, Nv21RowPair pair) {
    const int64_t total = int64_t{width} * height;
    const int64_t row_pixels = 2 * ((int64_t{width} + 1) / 2);
    const uint8_t* chroma = frame + total;
    for (int64_t r = 0, start = 0; start < total; ++r, start += row_pixels) {
        const uint8_t* vu = chroma + (r >> 1) * width;
        if (pair != nullptr && (r & 1) == 0 && start + 2 * row_pixels <= total) {
            const int count = static_cast<int>(row_pixels);
            pair(frame + start, frame + start + row_pixels, vu, out + 4 * start, out + 4 * (start + row_pixels),
                 count);
            ++r;
            start += row_pixels;
            continue;
        }
        const int count = static_cast<int>(std::min(row_pixels, total - start));
        row(frame + start, vu, out + 4 * start, count);
    }
}

}  // namespace

int64_t nv21_bytes_read(int width, int height) {
    const int64_t total = int64_t{width} * height;
    if (width <= 0 || height <= 0) return 0;
    const int64_t row_pixels = 2 * ((int64_t{width} + 1) / 2);
    const int64_t last = (total - 1) / row_pixels;
    const int64_t last_count = total - last * row_pixels;
    // An odd last stream row shares its chroma row with a full one.
    const int64_t chroma_used = (last & 1) ? row_pixels : (last_count + 1) / 2 * 2;
    return std::max(total, total + (last >> 1) * width + chroma_used);
}

int64_t yuv422_bytes_read(int width, int height) {
    if (width <= 0 || height <= 0) return 0;
    const int64_t total = int64_t{width} * height;
    // Pixel n reads group n / 2: bytes V, U and its own Y.
    return 2 * total + (total & 1);
}

int64_t rgb565_bytes_read(int width, int height) {
    return width <= 0 || height <= 0 ? 0 : 2 * int64_t{width} * height;
}

int64_t nv21_decimated_bytes_read(int width, int height, int step) {
    if (step <= 0 || width <= 0 || height <= 0) return 0;
    const int64_t w = width / step, h = height / step;
    if (w == 0 || h == 0) return 0;
    const int64_t luma = (h - 1) * step * width + (w - 1) * step + 1;
    const int64_t chroma = int64_t{width} * height + (h - 1) * width * (step / 2) + (w - 1) * step + 2;
    return std::max(luma, chroma);
}

void nv21_to_rgba(const uint8_t* frame, int width, int height, uint8_t* out) {
    // Row pairs save chroma work while the frame stays in cache; past that
    // the conversion is bound by memory and two output streams cost more
    // than they save (measured: +10% at 1080p, -25% at 4000x3000).
    const PixelKernels& kernels = yuv_kernels();
    const bool paired = !past_caches(int64_t{width} * height * 4);
    walk_nv21(frame, width, height, out, kernels.nv21_to_rgba_row, paired ? kernels.nv21_to_rgba_row_pair : nullptr);
}

void nv21_to_yuva(const uint8_t* frame, int width, int height, uint8_t* out) {
    walk_nv21(frame, width, height, out, pixel_kernels().nv21_to_yuva_row, nullptr);
}

void yuv422_to_rgba(const uint8_t* frame, int width, int height, uint8_t* out) {
    if (width <= 0 || height <= 0) return;
    yuv_kernels().yuv422_to_rgba_row(frame, out, width * height);
}

void rgb565_to_rgba(const uint8_t* frame, int width, int height, uint8_t* out) {
    if (width <= 0 || height <= 0) return;
    pixel_kernels().rgb565_to_rgba_row(frame, out, width * height);
}

// INT_MAX cannot be raised without overflow; it is kept: no frame is that
// wide or high (width x height x 4 fits an int), so it decimates to nothing
// as 2^31 would.
int even_step(int step) { return step > 0 && (step & 1) && step < INT_MAX ? step + 1 : step; }

void nv21_to_yuva_decimated(const uint8_t* frame, int width, int height, int step, uint8_t* out) {
    const int w = width / step, h = height / step;
    // No output pixels: nothing to walk (a zero width with a tall frame
    // would otherwise spin through every empty row).
    if (w <= 0 || h <= 0) return;
    const int half = step / 2;
    for (int j = 0; j < h; ++j) {
        const uint8_t* luma = frame + int64_t{j} * step * width;
        const uint8_t* chroma = frame + int64_t{width} * height + int64_t{j} * width * half;
        for (int i = 0; i < w; ++i, out += 4) {
            out[0] = luma[i * step];
            out[1] = chroma[i * step + 1];
            out[2] = chroma[i * step];
            out[3] = 255;
        }
    }
}

}  // namespace ifc
