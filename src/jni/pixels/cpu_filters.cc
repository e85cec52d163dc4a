// Exported CPU filters: source to destination of the same geometry, rows
// taken as contiguous, bytes 0..2 of each pixel written, byte 3 never.
#include <algorithm>
#include <cstdint>

#include "image/image_internal.h"
#include "image_filter/filters.h"
#include "jni/pixels/pixel_kernels.h"
#include "jni/pixels/qimage_pixels.h"

namespace {

int64_t pixel_count(const _Image* image) { return int64_t{image->width} * image->height; }

// Bytes a filter may touch. A constructed image owns exactly `size` bytes,
// whatever its width, height and stride say; a header over a caller's
// buffer promises its pixels taken as contiguous, or more when its rows
// say the buffer is larger.
int64_t buffer_bytes(const _Image* image) {
    if (image->size > 0) return image->size;
    if (image->width <= 0 || image->height <= 0) return 0;
    const int64_t promised = std::max<int64_t>(pixel_count(image) * image->channels,
                                               static_cast<int64_t>(ifc::image_capacity(image)));
    // No buffer of this ABI holds more than its size_t counts.
    return static_cast<int64_t>(ifc::heldBytes(promised, 1));
}

// Runs row(src, dst, n) over the pixels whose bytes 0..2 (the source's
// channels apart) lie in both buffers: fast(...) over those whose every byte
// does, reference(...) over the rest. With fewer than three channels a
// pixel's bytes run into its neighbours'; only the last pixels, whose bytes
// would fall past the end, are left out.
template <typename Fast, typename Reference>
void filter_pixels(const _Image* source, _Image* destination, Fast fast, Reference reference) {
    if (!source || !destination || !source->data || !destination->data || source->width <= 0 ||
        source->height <= 0 || source->channels <= 0)
        return;
    const int64_t channels = source->channels;
    const int64_t room = std::min(buffer_bytes(source), buffer_bytes(destination));
    const int64_t count = std::min(pixel_count(source), room < 3 ? 0 : (room - 3) / channels + 1);
    const int64_t whole = std::min(count, room / channels);
    // Rows count pixels in an int: an image past 2^31 pixels goes in slices.
    constexpr int64_t kSlice = int64_t{1} << 30;
    for (int64_t done = 0; done < whole; done += kSlice) {
        fast(source->data + done * channels, destination->data + done * channels,
             static_cast<int>(std::min(kSlice, whole - done)));
    }
    reference(source->data + whole * channels, destination->data + whole * channels, static_cast<int>(count - whole));
}

// The smoothing reads and writes one byte per pixel inside the image, rows
// taken as the source's width x channels bytes apart in both buffers.
bool fits(const _Image* source, const _Image* destination) {
    return source && destination && source->data && destination->data && source->width > 0 &&
           source->height > 0 && source->channels >= 1 && destination->channels >= source->channels &&
           pixel_count(destination) >= pixel_count(source) &&
           std::min(buffer_bytes(source), buffer_bytes(destination)) >= pixel_count(source) * source->channels;
}

}  // namespace

extern "C" {

void image_filter_gray(const _Image* source, _Image* destination) {
    const ifc::PixelKernels& k = ifc::g_yuv_tables_ready ? ifc::pixel_kernels() : ifc::scalar_kernels();
    const int channels = source ? source->channels : 0;
    filter_pixels(
        source, destination, [&](const uint8_t* s, uint8_t* d, int n) { k.gray_row(s, d, n, channels); },
        [&](const uint8_t* s, uint8_t* d, int n) { ifc::gray_row_c(s, d, n, channels); });
}

void image_filter_curve(const _Image* source, _Image* destination, const unsigned char* curve) {
    if (!curve) return;
    const int channels = source ? source->channels : 0;
    filter_pixels(
        source, destination,
        [&](const uint8_t* s, uint8_t* d, int n) { ifc::pixel_kernels().curve_row(s, d, n, channels, curve); },
        [&](const uint8_t* s, uint8_t* d, int n) { ifc::curve_row_c(s, d, n, channels, curve); });
}

void image_filter_gauss_channel(const _Image* source, _Image* destination, int channel) {
    if (!fits(source, destination) || channel < 0 || channel >= source->channels) return;
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
    if (!m) return;
    const int channels = source ? source->channels : 0;
    const ifc::MatrixFixed fixed = ifc::matrix_to_fixed(m);
    filter_pixels(
        source, destination,
        [&](const uint8_t* s, uint8_t* d, int n) { ifc::pixel_kernels().matrix_row(s, d, n, channels, fixed); },
        [&](const uint8_t* s, uint8_t* d, int n) { ifc::matrix_row_c(s, d, n, channels, fixed); });
}

}  // extern "C"
