// Exported CPU filters: source to destination of the same geometry, rows
// taken as contiguous, bytes 0..2 of each pixel written, byte 3 never.
#include <cstdint>

#include "image_filter/filters.h"
#include "jni/pixel_kernels.h"

namespace {

int64_t pixel_count(const _Image* image) { return int64_t{image->width} * image->height; }

// Calls that would write past the destination do nothing: it must hold at
// least the source's pixels and channels.
bool fits(const _Image* source, const _Image* destination, int min_channels) {
    return source && destination && source->data && destination->data && source->width > 0 &&
           source->height > 0 && source->channels >= min_channels &&
           destination->channels >= source->channels &&
           pixel_count(destination) >= pixel_count(source);
}

int count_of(const _Image* source) { return static_cast<int>(pixel_count(source)); }

}  // namespace

extern "C" {

void image_filter_gray(const _Image* source, _Image* destination) {
    if (!fits(source, destination, 3)) return;
    const ifc::PixelKernels& k = ifc::g_yuv_tables_ready ? ifc::pixel_kernels() : ifc::scalar_kernels();
    k.gray_row(source->data, destination->data, count_of(source), source->channels);
}

void image_filter_curve(const _Image* source, _Image* destination, const unsigned char* curve) {
    if (!curve || !fits(source, destination, 3)) return;
    ifc::curve_row_c(source->data, destination->data, count_of(source), source->channels, curve);
}

void image_filter_gauss_channel(const _Image* source, _Image* destination, int channel) {
    if (!fits(source, destination, 1) || channel < 0 || channel >= source->channels) return;
    if (source->height - 1 < 2) return;
    // Reading rows that were already written would differ from a SIMD block,
    // so in-place smoothing takes the reference row.
    const bool in_place = source->data == destination->data;
    const auto row_kernel = in_place ? ifc::scalar_kernels().smooth3x3_row : ifc::pixel_kernels().smooth3x3_row;
    const ptrdiff_t row_bytes = ptrdiff_t{source->width} * source->channels;
    for (int y = 1; y < source->height - 1; ++y) {
        const uint8_t* row = source->data + y * row_bytes;
        row_kernel(row - row_bytes, row, row + row_bytes, destination->data + y * row_bytes, source->width,
                   source->channels, channel);
    }
}

void image_filter_matrix(const _Image* source, _Image* destination, const float* m) {
    if (!m || !fits(source, destination, 3)) return;
    ifc::pixel_kernels().matrix_row(source->data, destination->data, count_of(source), source->channels,
                                    ifc::matrix_to_fixed(m));
}

}  // extern "C"
