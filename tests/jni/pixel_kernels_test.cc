// Every SIMD kernel against the reference rows, byte for byte, on widths
// around the SIMD blocks and buffers that end at a guard page; the NV21
// kernels also over all 2^24 (Y, U, V) triples, the overlay blend at every
// edge of the image.
#include <gtest/gtest.h>

#include <cstring>
#include <random>
#include <vector>

#include "guarded_buffer.h"
#include "image_filter/filters.h"
#include "jni/pixels/camera_frames.h"
#include "jni/pixels/pixel_kernels.h"
#include "jni/pixels/qimage_pixels.h"
#include "jni/pixels/streaming_stores.h"

using ifc::PixelKernels;

namespace {

class PixelKernelsTest : public ::testing::Test {
protected:
    void SetUp() override { image_filter_initialize(); }
};

// Runs `row` with the reference kernels and with every SIMD set into fresh
// guarded outputs. Conversions write every byte: their outputs start from
// different sentinels so that an unwritten byte shows.
template <typename Row>
void expect_variants_match(const char* kernel, int width, size_t out_bytes, Row row, bool writes_all = false) {
    GuardedBuffer want(out_bytes, 1);
    row(ifc::scalar_kernels(), want.data());
    for (const PixelKernels& k : ifc::kernel_variants()) {
        GuardedBuffer got(out_bytes, writes_all ? 101 : 1);
        row(k, got.data());
        EXPECT_TRUE(want == got) << k.name << " " << kernel << " width " << width;
    }
}

}  // namespace

TEST_F(PixelKernelsTest, SimdRowsMatchReference) {
    // Identity, a saturating and negative mix with offsets, huge coefficients
    // that saturate and wrap, NaN; sepia, red and blue swapped, and outputs
    // led by blue with offsets (the sums that cannot wrap, their weights of
    // one half and more on red and green only, on blue only, or both).
    const float matrices[][16] = {
        {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1},
        {-1.5f, 2.25f, 0.5f, 0, 3, -0.75f, 1, 0, 0.1f, 0.2f, -2, 0, 0.5f, -0.25f, 1.0f, 0},
        {40000, -40000, 1e9f, 0, 300.5f, 7, -123.25f, 0, -1e9f, 0.0001f, 2, 0, 1e6f, -3e5f, 16, 0},
        {__builtin_nanf(""), 1, 1, 0, 1, 1, 1, 0, 1, 1, 1, 0, 0, 0, 0, 0},
        {0.393f, 0.349f, 0.272f, 0, 0.769f, 0.686f, 0.534f, 0, 0.189f, 0.168f, 0.131f, 0, 0, 0, 0, 1},
        {0, 0, 1, 0, 0, 1, 0, 0, 1, 0, 0, 0, 0, 0, 0, 1},
        {0.3f, 0.3f, 0.3f, 0, 0.1f, 0.2f, 0.4f, 0, 0.9f, 1.2f, -0.7f, 0, 0.25f, -0.5f, 0, 0},
    };
    std::vector<ifc::MatrixFixed> fixed;
    for (const auto& m : matrices) fixed.push_back(ifc::matrix_to_fixed(m));
    // Red and green weights whose sum over 255, 255 reaches INT32_MAX or
    // INT32_MIN exactly, and one past it (wraps).
    for (int32_t offset : {127, 128, -128, -129}) {
        const int32_t k = offset > 0 ? 4210752 : -4210752;
        fixed.push_back({{k, k, k, k, k, k, 0, 0, 0, offset, offset, offset}});
    }
    std::mt19937 random(5);  // and arbitrary fixed-point coefficients
    for (int i = 0; i < 8; ++i) {
        fixed.emplace_back();
        for (int32_t& k : fixed.back().k) k = static_cast<int32_t>(random());
    }
    std::vector<uint8_t> curve(768);
    std::mt19937 curve_random(9);
    for (uint8_t& entry : curve) entry = static_cast<uint8_t>(curve_random());
    for (int width : {1, 2, 3, 7, 8, 9, 16, 17, 18, 25, 31, 33, 40, 255, 256, 257, 640, 1921}) {
        const size_t w = width;
        GuardedBuffer y(w), vu((w + 1) / 2 * 2), packed(2 * w + (w & 1)), rgb565(2 * w);
        y.randomize(width);
        vu.randomize(width + 1);
        packed.randomize(width + 2);
        rgb565.randomize(width + 3);
        expect_variants_match("nv21_to_rgba", width, 4 * w, [&](const PixelKernels& k, uint8_t* out) {
            k.nv21_to_rgba_row(y.data(), vu.data(), out, width);
        }, true);
        // Two luma rows over one chroma row (the second taken from `packed`).
        expect_variants_match("nv21_to_rgba_row_pair", width, 8 * w, [&](const PixelKernels& k, uint8_t* out) {
            k.nv21_to_rgba_row_pair(y.data(), packed.data(), vu.data(), out, out + 4 * w, width);
        }, true);
        expect_variants_match("nv21_to_yuva", width, 4 * w, [&](const PixelKernels& k, uint8_t* out) {
            k.nv21_to_yuva_row(y.data(), vu.data(), out, width);
        }, true);
        expect_variants_match("yuv422_to_rgba", width, 4 * w, [&](const PixelKernels& k, uint8_t* out) {
            k.yuv422_to_rgba_row(packed.data(), out, width);
        }, true);
        expect_variants_match("rgb565_to_rgba", width, 4 * w, [&](const PixelKernels& k, uint8_t* out) {
            k.rgb565_to_rgba_row(rgb565.data(), out, width);
        }, true);

        // Saturated rows: sixteen times 255 must not spill into the next byte.
        for (bool saturated : {false, true}) {
            for (int channels : {1, 3, 4}) {
                const size_t row = w * channels;
                GuardedBuffer src(3 * row);
                src.randomize(width * channels);
                if (saturated) std::memset(src.data(), 255, src.size());
                const uint8_t* above = src.data();
                for (int channel = 0; channel < channels; ++channel) {
                    expect_variants_match("smooth3x3", width, row, [&](const PixelKernels& k, uint8_t* out) {
                        k.smooth3x3_row(above, above + row, above + 2 * row, out, width, channels, channel);
                    });
                }
                if (channels == 1) continue;  // gray and matrix write bytes 0..2 of every pixel
                const uint8_t* pixels = src.data() + 2 * row;
                expect_variants_match("gray", width, row, [&](const PixelKernels& k, uint8_t* out) {
                    k.gray_row(pixels, out, width, channels);
                });
                for (const ifc::MatrixFixed& f : fixed) {
                    expect_variants_match("matrix", width, row, [&](const PixelKernels& k, uint8_t* out) {
                        k.matrix_row(pixels, out, width, channels, f);
                    });
                }
                expect_variants_match("curve", width, row, [&](const PixelKernels& k, uint8_t* out) {
                    k.curve_row(pixels, out, width, channels, curve.data());
                });
                if (channels != 4) continue;
                // The overlay from the first row, the image from the last,
                // blended in place.
                expect_variants_match("alpha_mix", width, row, [&](const PixelKernels& k, uint8_t* out) {
                    std::memcpy(out, pixels, row);
                    k.alpha_mix_row(above, out, width);
                });
            }
        }

        // The recursive blur over planes of this width: heights around the
        // 8-row blocks, the weakest and strongest weights.
        for (int height : {1, 2, 7, 9, 17}) {
            const size_t bytes = w * height;
            GuardedBuffer plane(bytes);
            plane.randomize(width * 7 + height);
            for (int a : {9226, 53868, 65535}) {
                expect_variants_match("blur8", width, bytes, [&](const PixelKernels& k, uint8_t* out) {
                    std::memcpy(out, plane.data(), bytes);
                    k.blur8_filter(out, width, height, a);
                });
            }
        }

        // A padded 3-byte layout read 4 bytes per pixel: the last pixels of
        // the buffer do not fit and are skipped, not over-read.
        for (int height : {1, 2, 5}) {
            const int stride = width * 3 + 1;
            GuardedBuffer pixels(size_t(stride) * height);
            pixels.randomize(width * height);
            const ifc::HistogramSource src{pixels.data(), stride, width, height, pixels.size()};
            std::vector<uint32_t> want(768), got(768);
            ifc::histogram_c(src, want.data());
            ifc::histogram_fast(src, got.data());
            EXPECT_TRUE(want == got) << "histogram " << width << "x" << height;
            ifc::histogram_channels_c(src, want.data());
            ifc::histogram_channels_fast(src, got.data());
            EXPECT_TRUE(want == got) << "channel histogram " << width << "x" << height;
        }
    }
}

// A conversion whose output is past the caches switches to streaming
// stores after a lead of ordinary ones that depends on where the output
// starts: every start within a cache line, odd multiples of 4 included.
TEST_F(PixelKernelsTest, RowsPastTheCachesMatchReference) {
    const int side = 2050;  // a whole NV21 frame of side x side too, below
    const int width = side * side + 67;
    ASSERT_TRUE(ifc::past_caches(int64_t{side} * side * 4));
    std::vector<uint8_t> packed(2 * size_t(width) + 2), rgb565(2 * size_t(width));
    std::mt19937 random(11);
    for (uint8_t& b : packed) b = static_cast<uint8_t>(random());
    for (uint8_t& b : rgb565) b = static_cast<uint8_t>(random());
    const size_t bytes = 4 * size_t(width);
    std::vector<uint8_t> want422(bytes), want565(bytes), got(bytes + 128);
    ifc::yuv422_to_rgba_row_c(packed.data(), want422.data(), width);
    ifc::rgb565_to_rgba_row_c(rgb565.data(), want565.data(), width);
    uint8_t* line = got.data() + (64 - reinterpret_cast<uintptr_t>(got.data()) % 64);
    for (int offset : {0, 4, 8, 12, 32, 60, 2}) {
        for (const PixelKernels& k : ifc::kernel_variants()) {
            k.yuv422_to_rgba_row(packed.data(), line + offset, width);
            EXPECT_EQ(0, std::memcmp(want422.data(), line + offset, bytes)) << k.name << " 4:2:2 at +" << offset;
            k.rgb565_to_rgba_row(rgb565.data(), line + offset, width);
            EXPECT_EQ(0, std::memcmp(want565.data(), line + offset, bytes)) << k.name << " RGB565 at +" << offset;
        }
    }
    // A whole NV21 frame of that size goes one row at a time (no pairs).
    const uint8_t* chroma = packed.data() + side * side;
    for (int r = 0; r < side; ++r) {
        ifc::nv21_to_rgba_row_c(packed.data() + r * side, chroma + r / 2 * side, want422.data() + 4 * r * side, side);
    }
    ifc::nv21_to_rgba(packed.data(), side, side, line + 4);
    EXPECT_EQ(0, std::memcmp(want422.data(), line + 4, 4 * side * side)) << "NV21 frame";
}

// The overlay blend, whose SIMD rows take only the pixels wholly inside the
// buffer, against the per-byte formula at placements that cross every edge.
TEST_F(PixelKernelsTest, AlphaMixMatchesFormulaAtEveryEdge) {
    constexpr int kW = 45, kH = 12, kOw = 37, kOh = 9;
    GuardedBuffer overlay(size_t(kOw) * kOh * 4);
    overlay.randomize(3);
    struct Placement {
        int x, y;
        uint32_t capacity;  // of the image buffer: less than the pixels for a short header
    };
    const Placement placements[] = {
        {0, kH / 2, kW * kH * 4},  {-30, 0, kW * kH * 4},   {20, 10, kW * kH * 4},
        {-50, 3, kW * kH * 4},     {5, 6, kW * kH * 4 - 13}, {3, 8, 41 * 4 + 2}, {kW, 4, kW * kH * 4},
    };
    for (const Placement& p : placements) {
        GuardedBuffer want(p.capacity), got(p.capacity);
        want.randomize(p.x + 100);
        std::memcpy(got.data(), want.data(), p.capacity);
        _Image image{got.data(), p.capacity, kW, kH, 4, kW * 4, 0x01020304, 0, nullptr};
        ifc::alpha_mix_overlay(&image, overlay.data(), kOw, kOh, p.x, p.y);
        const int top = p.y - kOh / 2;
        for (int i = 0; i < kOh && top + i < kH; ++i) {
            for (int j = 0; j < kOw && p.x + j < kW; ++j) {
                const int64_t at = (int64_t{top + i} * kW + p.x + j) * 4;
                const uint8_t* s = overlay.data() + (i * kOw + j) * 4;
                for (int c = 0; c < 3; ++c) {
                    if (at < 0 || at + c >= p.capacity) continue;
                    uint8_t& d = want.data()[at + c];
                    d = static_cast<uint8_t>((d * (255 - s[3]) + s[c] * 255) / 255);
                }
            }
        }
        EXPECT_TRUE(want == got) << "overlay at " << p.x << ", " << p.y << " capacity " << p.capacity;
    }
}

TEST_F(PixelKernelsTest, EveryYuvTripleMatchesFormula) {
    auto clamp = [](int x) { return static_cast<uint8_t>(x < 0 ? 0 : x > 255 ? 255 : x); };
    // One row per (V, U): luma 0..255 with that chroma in every pair, as
    // NV21 planes and as packed V, Y0, U, Y1 groups.
    GuardedBuffer y(256), vu(256), packed(512), want(1024), got(1024);
    for (int i = 0; i < 256; ++i) y.data()[i] = packed.data()[2 * i + 1] = static_cast<uint8_t>(i);
    const std::vector<PixelKernels> variants = ifc::kernel_variants();
    int mismatches = 0;
    for (int v = 0; v < 256; ++v) {
        for (int u = 0; u < 256; ++u) {
            for (int i = 0; i < 256; i += 2) {
                vu.data()[i] = static_cast<uint8_t>(v);
                vu.data()[i + 1] = static_cast<uint8_t>(u);
                packed.data()[2 * i] = static_cast<uint8_t>(v);
                packed.data()[2 * i + 2] = static_cast<uint8_t>(u);
            }
            ifc::nv21_to_rgba_row_c(y.data(), vu.data(), want.data(), 256);
            for (int i = 0; i < 256; ++i) {
                const int luma = i < 16 ? 0 : (76309 * (i - 16)) >> 13;
                const uint8_t formula[4] = {
                    clamp((luma + ((104597 * (v - 128)) >> 13)) >> 3),
                    clamp((luma + ((-53278 * (v - 128)) >> 13) + ((-25674 * (u - 128)) >> 13)) >> 3),
                    clamp((luma + ((132201 * (u - 128)) >> 13)) >> 3), 255};
                mismatches += std::memcmp(formula, want.data() + 4 * i, 4) != 0;
            }
            for (const PixelKernels& k : variants) {
                k.nv21_to_rgba_row(y.data(), vu.data(), got.data(), 256);
                mismatches += !(want == got);
                k.yuv422_to_rgba_row(packed.data(), got.data(), 256);
                mismatches += !(want == got);
            }
        }
    }
    EXPECT_EQ(0, mismatches);
}
