// Pixel kernels of the camera-frame conversions and the CPU filters.
//
// Every kernel works on raw pointers. The *_c functions are the reference
// definitions; the SIMD variants (*_sse2, *_avx2, *_neon) must produce the
// same bytes and are reached only through pixel_kernels(), which picks them
// once by CPU feature. A SIMD row processes whole blocks and hands its tail
// to the reference row.
#ifndef IFC_JNI_PIXEL_KERNELS_H
#define IFC_JNI_PIXEL_KERNELS_H

#include <cstddef>
#include <cstdint>
#include <vector>

namespace ifc {

// Conversion tables, built once when the library loads (image_filter_initialize).
// The YUV terms are eighths (three fractional bits) of BT.601 studio range.
struct YuvTables {
    uint8_t clamp[1280];  // clamp[512 + k] = clamp(k, 0, 255) for k in -512..767
    int32_t y_term[256];  // 0 below 16, else (76309 * (k - 16)) >> 13
    int16_t v_to_r[256];  // (104597 * (k - 128)) >> 13
    int16_t v_to_g[256];  // (-53278 * (k - 128)) >> 13
    int16_t u_to_g[256];  // (-25674 * (k - 128)) >> 13
    int16_t u_to_b[256];  // (132201 * (k - 128)) >> 13
};

extern YuvTables g_yuv_tables;
// True once the tables are built; SIMD kernels compute the same values from
// the formulas, so they may only stand in for the tables after that.
extern bool g_yuv_tables_ready;

inline uint8_t clamp_byte(int k) { return g_yuv_tables.clamp[512 + k]; }

// One pixel R, G, B, 255 from Y, U, V through the tables.
inline void yuv_to_rgba_pixel(int y, int u, int v, uint8_t* out) {
    const YuvTables& t = g_yuv_tables;
    const int luma = t.y_term[y];
    out[0] = clamp_byte((luma + t.v_to_r[v]) >> 3);
    out[1] = clamp_byte((luma + t.v_to_g[v] + t.u_to_g[u]) >> 3);
    out[2] = clamp_byte((luma + t.u_to_b[u]) >> 3);
    out[3] = 255;
}

// --- Rows. `width` is the pixel count; chroma pairs are V, U and serve two
// pixels each, an odd last pixel still reads both bytes of its pair.
void nv21_to_rgba_row_c(const uint8_t* y, const uint8_t* vu, uint8_t* rgba, int width);
void nv21_to_rgba_row_sse2(const uint8_t* y, const uint8_t* vu, uint8_t* rgba, int width);
void nv21_to_rgba_row_avx2(const uint8_t* y, const uint8_t* vu, uint8_t* rgba, int width);
void nv21_to_rgba_row_neon(const uint8_t* y, const uint8_t* vu, uint8_t* rgba, int width);
// Two stream rows that read the same chroma row: the chroma terms are worked
// out once for both. Same bytes as two calls of the row kernel.
void nv21_to_rgba_row_pair_avx2(const uint8_t* y0, const uint8_t* y1, const uint8_t* vu, uint8_t* rgba0,
                                uint8_t* rgba1, int width);
template <void (*Row)(const uint8_t*, const uint8_t*, uint8_t*, int)>
void nv21_rows_one_by_one(const uint8_t* y0, const uint8_t* y1, const uint8_t* vu, uint8_t* out0, uint8_t* out1,
                          int width) {
    Row(y0, vu, out0, width);
    Row(y1, vu, out1, width);
}

// Packed Y, U, V, 255 per pixel (U is the pair's second byte).
void nv21_to_yuva_row_c(const uint8_t* y, const uint8_t* vu, uint8_t* yuva, int width);
void nv21_to_yuva_row_sse2(const uint8_t* y, const uint8_t* vu, uint8_t* yuva, int width);
void nv21_to_yuva_row_avx2(const uint8_t* y, const uint8_t* vu, uint8_t* yuva, int width);
void nv21_to_yuva_row_neon(const uint8_t* y, const uint8_t* vu, uint8_t* yuva, int width);

// Packed 4:2:2 groups V, Y0, U, Y1 to RGBA; pixel n lives in group n / 2.
void yuv422_to_rgba_row_c(const uint8_t* vyuy, uint8_t* rgba, int width);
void yuv422_to_rgba_row_sse2(const uint8_t* vyuy, uint8_t* rgba, int width);
void yuv422_to_rgba_row_avx2(const uint8_t* vyuy, uint8_t* rgba, int width);
void yuv422_to_rgba_row_avx512(const uint8_t* vyuy, uint8_t* rgba, int width);
void yuv422_to_rgba_row_neon(const uint8_t* vyuy, uint8_t* rgba, int width);

// Little-endian RGB565 to bytes (r5, g6, b5, 255); fields are not widened.
void rgb565_to_rgba_row_c(const uint8_t* src, uint8_t* dst, int width);
void rgb565_to_rgba_row_sse2(const uint8_t* src, uint8_t* dst, int width);
void rgb565_to_rgba_row_avx2(const uint8_t* src, uint8_t* dst, int width);
void rgb565_to_rgba_row_neon(const uint8_t* src, uint8_t* dst, int width);

// Filters over `count` pixels `channels` bytes apart; bytes 0..2 written.
void gray_row_c(const uint8_t* src, uint8_t* dst, int count, int channels);
void gray_row_sse2(const uint8_t* src, uint8_t* dst, int count, int channels);
void gray_row_avx2(const uint8_t* src, uint8_t* dst, int count, int channels);
void gray_row_neon(const uint8_t* src, uint8_t* dst, int count, int channels);

void curve_row_c(const uint8_t* src, uint8_t* dst, int count, int channels, const uint8_t* curve);
// Same bytes through three tables of whole pixels built per call (4-byte
// pixels on a little-endian CPU; otherwise the reference row).
void curve_row_words(const uint8_t* src, uint8_t* dst, int count, int channels, const uint8_t* curve);

// Premultiplied overlay pixels onto image pixels, both 4 bytes apart:
// image[c] = (image[c] * (255 - overlay[3]) + overlay[c] * 255) / 255 for
// c = 0..2, stored as a byte; byte 3 kept.
void alpha_mix_row_c(const uint8_t* overlay, uint8_t* image, int count);
void alpha_mix_row_sse2(const uint8_t* overlay, uint8_t* image, int count);
void alpha_mix_row_avx2(const uint8_t* overlay, uint8_t* image, int count);
void alpha_mix_row_neon(const uint8_t* overlay, uint8_t* image, int count);

// Colour matrix in 16.16 fixed point: k[0..2] weights of byte 0 for outputs
// 0..2, k[3..5] of byte 1, k[6..8] of byte 2, k[9..11] the offsets (<< 8 done).
struct MatrixFixed {
    int32_t k[12];
};
MatrixFixed matrix_to_fixed(const float* m);
// For 16-bit multiply-add kernels: output c's coefficients (byte 0, 1, 2
// weights and the offset) split as k = high * 65536 + low, both signed 16-bit;
// low + (high << 16) products reproduce the wrapped 32-bit sums.
void matrix_split_words(const MatrixFixed& f, int c, int16_t low[4], int16_t high[4]);
void matrix_row_c(const uint8_t* src, uint8_t* dst, int count, int channels, const MatrixFixed& k);
void matrix_row_sse2(const uint8_t* src, uint8_t* dst, int count, int channels, const MatrixFixed& k);
void matrix_row_avx2(const uint8_t* src, uint8_t* dst, int count, int channels, const MatrixFixed& k);
void matrix_row_neon(const uint8_t* src, uint8_t* dst, int count, int channels, const MatrixFixed& k);

// 3x3 binomial smoothing of byte `channel` of one interior row: x from 1 to
// width - 2, rows `row_bytes` apart, `above`/`below` the neighbouring rows.
void smooth3x3_row_c(const uint8_t* above, const uint8_t* row, const uint8_t* below, uint8_t* dst,
                     int width, int channels, int channel);
void smooth3x3_row_sse2(const uint8_t* above, const uint8_t* row, const uint8_t* below, uint8_t* dst,
                        int width, int channels, int channel);
void smooth3x3_row_avx2(const uint8_t* above, const uint8_t* row, const uint8_t* below, uint8_t* dst,
                        int width, int channels, int channel);
void smooth3x3_row_neon(const uint8_t* above, const uint8_t* row, const uint8_t* below, uint8_t* dst,
                        int width, int channels, int channel);

// Histograms of bytes 0..2 of pixels 4 bytes apart, rows `stride` bytes
// apart, over at most `extent` readable bytes (a pixel whose bytes 0..2 lie
// beyond it is not counted). Combined: 256 bins, three counts per pixel;
// per channel: 768 bins, byte c counted in bins 256 * c + value. Bins are
// added to.
struct HistogramSource {
    const uint8_t* data;
    ptrdiff_t stride;
    int width;
    int height;
    size_t extent;
};
void histogram_c(const HistogramSource& src, uint32_t* bins256);
void histogram_channels_c(const HistogramSource& src, uint32_t* bins768);
void histogram_fast(const HistogramSource& src, uint32_t* bins256);
void histogram_channels_fast(const HistogramSource& src, uint32_t* bins768);

// The kernels chosen for this CPU.
struct PixelKernels {
    const char* name;
    void (*nv21_to_rgba_row)(const uint8_t*, const uint8_t*, uint8_t*, int);
    void (*nv21_to_rgba_row_pair)(const uint8_t*, const uint8_t*, const uint8_t*, uint8_t*, uint8_t*, int);
    void (*nv21_to_yuva_row)(const uint8_t*, const uint8_t*, uint8_t*, int);
    void (*yuv422_to_rgba_row)(const uint8_t*, uint8_t*, int);
    void (*rgb565_to_rgba_row)(const uint8_t*, uint8_t*, int);
    void (*gray_row)(const uint8_t*, uint8_t*, int, int);
    void (*curve_row)(const uint8_t*, uint8_t*, int, int, const uint8_t*);
    void (*alpha_mix_row)(const uint8_t*, uint8_t*, int);
    void (*matrix_row)(const uint8_t*, uint8_t*, int, int, const MatrixFixed&);
    void (*smooth3x3_row)(const uint8_t*, const uint8_t*, const uint8_t*, uint8_t*, int, int, int);
    // The recursive blur of a W x H byte plane (see blur8.h).
    void (*blur8_filter)(uint8_t*, int, int, int);
};

// Reference kernels only.
const PixelKernels& scalar_kernels();
// Every SIMD kernel set this CPU can run, best last (defined once per
// architecture); tests compare each with the reference.
std::vector<PixelKernels> kernel_variants();
// Best kernels for this CPU.
const PixelKernels& pixel_kernels();

}  // namespace ifc

#endif  // IFC_JNI_PIXEL_KERNELS_H
