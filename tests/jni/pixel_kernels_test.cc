// Every SIMD kernel against the reference rows, byte for byte, on odd and
// even widths, unaligned starts and buffers that end at a guard page; the
// YUV kernels also over all 2^24 (Y, U, V) triples.
#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "guarded_buffer.h"
#include "image_filter/filters.h"
#include "jni/pixel_kernels.h"

using ifc::PixelKernels;

namespace {

const int kWidths[] = {1, 2, 3, 7, 16, 33, 640, 1921};

class PixelKernelsTest : public ::testing::Test {
protected:
    void SetUp() override { image_filter_initialize(); }

    // Outputs start from different sentinels so that an unwritten byte shows.
    static void expect_same(const GuardedBuffer& want, const GuardedBuffer& got, const PixelKernels& k,
                            const char* kernel, int width) {
        EXPECT_TRUE(want == got) << k.name << " " << kernel << " width " << width;
    }
};

// Table-free definition of one RGBA pixel.
void formula_pixel(int y, int u, int v, uint8_t* out) {
    auto clamp = [](int x) { return static_cast<uint8_t>(x < 0 ? 0 : x > 255 ? 255 : x); };
    const int luma = y < 16 ? 0 : (76309 * (y - 16)) >> 13;
    out[0] = clamp((luma + ((104597 * (v - 128)) >> 13)) >> 3);
    out[1] = clamp((luma + ((-53278 * (v - 128)) >> 13) + ((-25674 * (u - 128)) >> 13)) >> 3);
    out[2] = clamp((luma + ((132201 * (u - 128)) >> 13)) >> 3);
    out[3] = 255;
}

}  // namespace

TEST_F(PixelKernelsTest, YuvRowsMatchReference) {
    for (const PixelKernels& k : ifc::kernel_variants()) {
        for (int width : kWidths) {
            const size_t chroma = size_t(width + 1) / 2 * 2;
            GuardedBuffer y(width), vu(chroma), packed(2 * size_t(width) + (width & 1));
            y.randomize(width);
            vu.randomize(width + 1);
            packed.randomize(width + 2);
            GuardedBuffer want(4 * size_t(width), 1), got(4 * size_t(width), 101);

            ifc::nv21_to_rgba_row_c(y.data(), vu.data(), want.data(), width);
            k.nv21_to_rgba_row(y.data(), vu.data(), got.data(), width);
            expect_same(want, got, k, "nv21_to_rgba", width);

            ifc::nv21_to_yuva_row_c(y.data(), vu.data(), want.data(), width);
            k.nv21_to_yuva_row(y.data(), vu.data(), got.data(), width);
            expect_same(want, got, k, "nv21_to_yuva", width);

            ifc::yuv422_to_rgba_row_c(packed.data(), want.data(), width);
            k.yuv422_to_rgba_row(packed.data(), got.data(), width);
            expect_same(want, got, k, "yuv422_to_rgba", width);

            GuardedBuffer rgb565(2 * size_t(width));
            rgb565.randomize(width + 3);
            ifc::rgb565_to_rgba_row_c(rgb565.data(), want.data(), width);
            k.rgb565_to_rgba_row(rgb565.data(), got.data(), width);
            expect_same(want, got, k, "rgb565_to_rgba", width);
        }
    }
}

TEST_F(PixelKernelsTest, EveryYuvTripleMatchesFormula) {
    // One row per (V, U): luma 0..255 with that chroma in every pair.
    GuardedBuffer y(256), vu(256), want(1024), got(1024);
    for (int i = 0; i < 256; ++i) y.data()[i] = static_cast<uint8_t>(i);
    const std::vector<PixelKernels> variants = ifc::kernel_variants();
    int mismatches = 0;
    for (int v = 0; v < 256; ++v) {
        for (int u = 0; u < 256; ++u) {
            for (int i = 0; i < 256; i += 2) {
                vu.data()[i] = static_cast<uint8_t>(v);
                vu.data()[i + 1] = static_cast<uint8_t>(u);
            }
            ifc::nv21_to_rgba_row_c(y.data(), vu.data(), want.data(), 256);
            uint8_t formula[4];
            for (int i = 0; i < 256; ++i) {
                formula_pixel(i, u, v, formula);
                mismatches += std::memcmp(formula, want.data() + 4 * i, 4) != 0;
            }
            for (const PixelKernels& k : variants) {
                k.nv21_to_rgba_row(y.data(), vu.data(), got.data(), 256);
                mismatches += !(want == got);
            }
        }
    }
    EXPECT_EQ(0, mismatches);
}

TEST_F(PixelKernelsTest, ReferencePixels) {
    uint8_t out[4];
    ifc::yuv_to_rgba_pixel(16, 128, 128, out);
    EXPECT_EQ(std::string("\x00\x00\x00\xff", 4), std::string(reinterpret_cast<char*>(out), 4));
    ifc::yuv_to_rgba_pixel(235, 128, 128, out);  // luma term 2039, >> 3 = 254
    EXPECT_EQ(std::string("\xfe\xfe\xfe\xff", 4), std::string(reinterpret_cast<char*>(out), 4));
    ifc::yuv_to_rgba_pixel(0, 128, 128, out);  // below 16 adds nothing
    EXPECT_EQ(0, out[0]);
    EXPECT_EQ(0, ifc::g_yuv_tables.y_term[15]);
    EXPECT_EQ(2039, ifc::g_yuv_tables.y_term[235]);

    const uint8_t white565[2] = {0xFF, 0xFF};
    ifc::rgb565_to_rgba_row_c(white565, out, 1);
    EXPECT_EQ(std::string("\x1f\x3f\x1f\xff", 4), std::string(reinterpret_cast<char*>(out), 4));
}

TEST_F(PixelKernelsTest, FilterRowsMatchReference) {
    // Identity, a saturating and negative mix, offsets, huge coefficients
    // that wrap, NaN.
    const float matrices[][16] = {
        {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1},
        {0.393f, 0.349f, 0.272f, 0, 0.769f, 0.686f, 0.534f, 0, 0.189f, 0.168f, 0.131f, 0, 0, 0, 0, 1},
        {-1.5f, 2.25f, 0.5f, 0, 3, -0.75f, 1, 0, 0.1f, 0.2f, -2, 0, 0.5f, -0.25f, 1.0f, 0},
        {40000, -40000, 1e9f, 0, 300.5f, 7, -123.25f, 0, -1e9f, 0.0001f, 2, 0, 1e6f, -3e5f, 16, 0},
        {__builtin_nanf(""), 1, 1, 0, 1, 1, 1, 0, 1, 1, 1, 0, 0, 0, 0, 0},
    };
    for (const PixelKernels& k : ifc::kernel_variants()) {
        for (int width : kWidths) {
            for (int channels : {3, 4}) {
                const size_t bytes = size_t(width) * channels;
                GuardedBuffer src(bytes), want(bytes), got(bytes);
                src.randomize(width * channels);
                want.randomize(7);
                got.randomize(7);
                ifc::gray_row_c(src.data(), want.data(), width, channels);
                k.gray_row(src.data(), got.data(), width, channels);
                expect_same(want, got, k, "gray", width);
                for (const auto& m : matrices) {
                    const ifc::MatrixFixed fixed = ifc::matrix_to_fixed(m);
                    ifc::matrix_row_c(src.data(), want.data(), width, channels, fixed);
                    k.matrix_row(src.data(), got.data(), width, channels, fixed);
                    expect_same(want, got, k, "matrix", width);
                }
            }
        }
    }
}

TEST_F(PixelKernelsTest, MatrixKernelsWrapLikeReference) {
    std::mt19937 random(5);
    GuardedBuffer src(4 * 67), want(4 * 67), got(4 * 67);
    src.randomize(11);
    for (int round = 0; round < 200; ++round) {
        ifc::MatrixFixed fixed;
        for (int32_t& k : fixed.k) k = static_cast<int32_t>(random());
        for (const PixelKernels& k : ifc::kernel_variants()) {
            ifc::matrix_row_c(src.data(), want.data(), 67, 4, fixed);
            k.matrix_row(src.data(), got.data(), 67, 4, fixed);
            expect_same(want, got, k, "matrix (random fixed)", 67);
        }
    }
}

// Widths around the 4-, 8- and 16-pixel blocks, random and saturated rows
// (sixteen times 255 must not spill into the neighbouring byte).
TEST_F(PixelKernelsTest, SmoothingRowsMatchReference) {
    for (const PixelKernels& k : ifc::kernel_variants()) {
        for (int width : {1, 2, 3, 7, 8, 9, 15, 16, 17, 18, 24, 25, 33, 640, 1921}) {
            for (int channels : {1, 3, 4}) for (bool saturated : {false, true}) {
                const size_t row = size_t(width) * channels;
                GuardedBuffer src(3 * row), want(row), got(row);
                src.randomize(width);
                if (saturated) std::memset(src.data(), 255, 3 * row);
                want.randomize(9);
                got.randomize(9);
                for (int channel = 0; channel < channels; ++channel) {
                    ifc::smooth3x3_row_c(src.data(), src.data() + row, src.data() + 2 * row, want.data(), width,
                                         channels, channel);
                    k.smooth3x3_row(src.data(), src.data() + row, src.data() + 2 * row, got.data(), width,
                                    channels, channel);
                    expect_same(want, got, k, "smooth3x3", width);
                }
            }
        }
    }
}

TEST_F(PixelKernelsTest, FastHistogramsCountLikeReference) {
    for (int width : kWidths) {
        for (int height : {1, 2, 5}) {
            // A padded 3-byte layout read 4 bytes per pixel: the last pixels
            // of the buffer do not fit and are skipped, not over-read.
            const int stride = width * 3 + 1;
            GuardedBuffer pixels(size_t(stride) * height);
            pixels.randomize(width * height);
            const ifc::HistogramSource src{pixels.data(), stride, width, height, pixels.size()};
            std::vector<uint32_t> want(768), got(768);
            ifc::histogram_c(src, want.data());
            ifc::histogram_fast(src, got.data());
            EXPECT_EQ(want, got) << width << "x" << height;
            ifc::histogram_channels_c(src, want.data());
            ifc::histogram_channels_fast(src, got.data());
            EXPECT_EQ(want, got) << width << "x" << height;
        }
    }
}

TEST_F(PixelKernelsTest, MatrixCoefficientsTruncateAndSaturate) {
    const float m[16] = {1.0f, -0.5f, 1.99999f, 0, 1e10f, -1e10f, 0, 0, 0, 0, 0, 0, 1.0f, -1.0f, 0.5f, 0};
    const ifc::MatrixFixed f = ifc::matrix_to_fixed(m);
    EXPECT_EQ(65536, f.k[0]);
    EXPECT_EQ(-32768, f.k[1]);
    EXPECT_EQ(131071, f.k[2]);
    EXPECT_EQ(INT32_MAX, f.k[3]);
    EXPECT_EQ(INT32_MIN, f.k[4]);
    EXPECT_EQ(65536 << 8, f.k[9]);  // an offset of 1.0 adds 256 levels
    EXPECT_EQ(-(65536 << 8), f.k[10]);
}
