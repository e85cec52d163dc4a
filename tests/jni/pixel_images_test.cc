// Whole frames, the overlay blend, the exported CPU filters and the blur,
// through the plain C++ the natives call: the edges that Java cannot reach
// (guard pages, missing tables, buffers shorter than their records).
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "guarded_buffer.h"
#include "image/image_test_util.h"
#include "image_filter/filters.h"
#include "jni/pixels/blur8.h"
#include "jni/pixels/camera_frames.h"
#include "jni/pixels/pixel_kernels.h"
#include "jni/pixels/qimage_pixels.h"

namespace {

ImagePtr random_image(int width, int height, int channels, uint32_t seed) {
    ImagePtr image(create_image(width, height, channels, -1));
    std::mt19937 random(seed);
    for (int i = 0; i < image->stride * height; ++i) image->data[i] = static_cast<uint8_t>(random());
    return image;
}

ImagePtr filled_image(int width, int height, int channels, uint8_t value) {
    ImagePtr image(create_image(width, height, channels, -1));
    std::memset(image->data, value, image->size);
    return image;
}

ImagePtr copy_of(const _Image* source) { return ImagePtr(clone_image_ex(source)); }

std::string pixel(const uint8_t* p) { return std::string(reinterpret_cast<const char*>(p), 4); }

class PixelImagesTest : public ::testing::Test {
protected:
    void SetUp() override { image_filter_initialize(); }
};

}  // namespace

// Inputs exactly as long as the conversion says it reads, outputs exactly
// width x height pixels, both ending at a guard page; each pixel from the
// input bytes its format's walk names.
TEST_F(PixelImagesTest, FrameConversionsTakeEachPixelFromItsBytes) {
    for (int width : {1, 2, 3, 7, 33, 640, 1921}) {
        for (int height : {1, 2, 3}) {
            SCOPED_TRACE(testing::Message() << width << "x" << height);
            const size_t pixels = size_t(width) * height;
            GuardedBuffer nv21(ifc::nv21_bytes_read(width, height)), rgba(4 * pixels), yuva(4 * pixels);
            nv21.randomize(width + height);
            ifc::nv21_to_rgba(nv21.data(), width, height, rgba.data());
            ifc::nv21_to_yuva(nv21.data(), width, height, yuva.data());
            // One V, U pair per two pixels of a continuous stream cut into rows
            // of ceil(width / 2) pairs, one chroma row per two of those rows.
            const uint8_t* f = nv21.data();
            const size_t row = (width + 1) / 2 * 2;
            int walk = 0, mismatches = 0;
            for (size_t n = 0; n < pixels; ++n) {
                const size_t chroma = pixels + n / row / 2 * width + (n % row & ~size_t{1});
                const uint8_t yuv[4] = {f[n], f[chroma + 1], f[chroma], 255};
                walk += pixel(yuv) != pixel(yuva.data() + 4 * n);
                uint8_t want[4];  // the RGBA walk takes the same Y, U, V
                ifc::yuv_to_rgba_pixel(yuv[0], yuv[1], yuv[2], want);
                mismatches += pixel(want) != pixel(rgba.data() + 4 * n);
            }
            EXPECT_EQ(0, walk);
            EXPECT_EQ(0, mismatches);

            // 4:2:2 groups V, Y0, U, Y1 and RGB565 words run on across rows.
            GuardedBuffer packed(ifc::yuv422_bytes_read(width, height)), rgb565(ifc::rgb565_bytes_read(width, height));
            packed.randomize(width * 3 + height);
            rgb565.randomize(width * 5 + height);
            std::vector<uint8_t> want(4 * pixels);
            ifc::yuv422_to_rgba(packed.data(), width, height, rgba.data());
            ifc::yuv422_to_rgba_row_c(packed.data(), want.data(), static_cast<int>(pixels));
            EXPECT_EQ(0, std::memcmp(want.data(), rgba.data(), want.size()));
            ifc::rgb565_to_rgba(rgb565.data(), width, height, rgba.data());
            for (size_t n = 0; n < pixels; ++n) {
                const int v = rgb565.data()[2 * n] | rgb565.data()[2 * n + 1] << 8;
                const uint8_t fields[4] = {uint8_t(v >> 11), uint8_t((v & 0x7E0) >> 5), uint8_t(v & 0x1F), 255};
                std::memcpy(&want[4 * n], fields, 4);
            }
            EXPECT_EQ(0, std::memcmp(want.data(), rgba.data(), want.size()));

            // Every step-th luma byte of every step-th row, its chroma pair
            // step / 2 chroma rows down per output row.
            for (int step : {2, 4}) {
                const int w = width / step, h = height / step;
                GuardedBuffer frame(ifc::nv21_decimated_bytes_read(width, height, step));
                frame.randomize(step);
                GuardedBuffer decimated(4 * size_t(w) * size_t(h));
                ifc::nv21_to_yuva_decimated(frame.data(), width, height, step, decimated.data());
                int wrong = 0;
                for (int j = 0; j < h; ++j) {
                    for (int i = 0; i < w; ++i) {
                        const uint8_t* c = frame.data() + pixels + size_t(j) * width * (step / 2) + size_t(i) * step;
                        const uint8_t yuv[4] = {frame.data()[size_t(j) * step * width + size_t(i) * step], c[1], c[0], 255};
                        wrong += pixel(yuv) != pixel(decimated.data() + 4 * (size_t(j) * w + i));
                    }
                }
                EXPECT_EQ(0, wrong) << "step " << step;
            }
        }
    }
}

TEST_F(PixelImagesTest, ConversionsWithoutTablesGiveOpaqueBlack) {
    const ifc::YuvTables saved = ifc::g_yuv_tables;
    std::memset(&ifc::g_yuv_tables, 0, sizeof ifc::g_yuv_tables);
    ifc::g_yuv_tables_ready = false;
    GuardedBuffer frame(ifc::nv21_bytes_read(40, 2)), rgba(4 * 80);
    frame.randomize(1);
    ifc::nv21_to_rgba(frame.data(), 40, 2, rgba.data());
    ImagePtr image = random_image(17, 1, 4, 2);
    const uint8_t alpha = image->data[3];
    image_filter_gray(image.get(), image.get());
    ifc::g_yuv_tables = saved;
    ifc::g_yuv_tables_ready = true;
    for (int n = 0; n < 80; ++n) ASSERT_EQ(std::string("\0\0\0\xff", 4), pixel(rgba.data() + 4 * n));
    EXPECT_EQ(std::string(3, '\0') + char(alpha), pixel(image->data));
}

TEST_F(PixelImagesTest, AlphaMixClipsOnlyTheFarEdgesAndWrapsBytes) {
    // Overlay bytes past 255 after blending are stored modulo 256:
    // (100 * 155 + 200 * 255) / 255 = 260 -> 4. Above the top edge nothing
    // is written; only overlay (1, 1) lands inside, on (0, 0).
    const uint8_t overlay[16] = {255, 0, 0, 255, 0, 0, 0, 0, 64, 64, 64, 128, 200, 0, 0, 100};
    ImagePtr small = filled_image(2, 2, 4, 100);
    ifc::alpha_mix_overlay(small.get(), overlay, 2, 2, -1, 0);
    EXPECT_EQ(std::string("\x04\x3c\x3c\x64", 4), pixel(small->data));
    for (int i = 4; i < 16; ++i) {
        EXPECT_EQ(100, small->data[i]) << i;
    }
    // Left of the image is not clipped: overlay column 0 at x = -1 on row 1
    // lands on the last pixel of row 0.
    ImagePtr image = filled_image(3, 3, 4, 100);
    ifc::alpha_mix_overlay(image.get(), overlay, 2, 1, -1, 1);
    EXPECT_EQ(std::string("\xff\x00\x00\x64", 4), pixel(image->data + 4 * 2));
    EXPECT_EQ(std::string(4, '\x64'), pixel(image->data + 4 * 3));  // transparent black
    // One byte per pixel: each pixel's three bytes overlap its neighbours';
    // the blend walks them in order and stops at the end of the buffer:
    // (100 * 127 + 128 * 255) / 255 = 177 on bytes 2 and 3.
    ImagePtr gray = filled_image(4, 1, 1, 100);
    const uint8_t half[8] = {128, 128, 128, 128, 0, 0, 0, 0};
    ifc::alpha_mix_overlay(gray.get(), half, 2, 1, 2, 0);
    EXPECT_EQ(std::string("\x64\x64\xb1\xb1", 4), pixel(gray->data));
}

TEST_F(PixelImagesTest, GrayCurveAndMatrixWriteBytesZeroToTwo) {
    ImagePtr image(create_image(2, 1, 4, -1));
    const uint8_t pixels[8] = {255, 0, 0, 7, 0, 0, 255, 9};
    std::memcpy(image->data, pixels, 8);
    ImagePtr gray = random_image(2, 1, 4, 1);
    const uint8_t alpha0 = gray->data[3];
    image_filter_gray(image.get(), gray.get());
    // Byte 0 weighs as red (19595 * 255 >> 16), byte 2 as blue (7471 * 255 >> 16).
    EXPECT_EQ(std::string("\x4c\x4c\x4c", 3) + char(alpha0), pixel(gray->data));
    EXPECT_EQ(29, gray->data[4]);

    std::vector<uint8_t> curve(768);
    for (int i = 0; i < 256; ++i) {
        curve[3 * i] = static_cast<uint8_t>(255 - i);
        curve[3 * i + 1] = static_cast<uint8_t>(i / 2);
        curve[3 * i + 2] = static_cast<uint8_t>(i ^ 0x55);
    }
    ImagePtr rgb = random_image(5, 3, 3, 2);
    ImagePtr source = copy_of(rgb.get());
    image_filter_curve(rgb.get(), rgb.get(), curve.data());  // in place
    for (int i = 0; i < 45; i += 3) {
        const uint8_t* s = source->data + i;
        EXPECT_EQ(std::string({char(255 - s[0]), char(s[1] / 2), char(s[2] ^ 0x55)}),
                  std::string(reinterpret_cast<char*>(rgb->data + i), 3));
    }

    // Bytes 0 and 2 swap, +0.5 on byte 0 saturates; byte 1 halves with
    // truncation, then loses 64 levels.
    const float m[16] = {0, 0, 1, 0, 0, 0.5f, 0, 0, 1, 0, 0, 0, 0.5f, -0.25f, 0, 0};
    ImagePtr rgba = random_image(9, 5, 4, 5);
    ImagePtr out = copy_of(rgba.get());
    image_filter_matrix(rgba.get(), out.get(), m);
    for (int i = 0; i < 180; i += 4) {
        const uint8_t* s = rgba->data + i;
        const char want[4] = {char(std::min(255, s[2] + 128)), char(std::max(0, s[1] / 2 - 64)), char(s[0]),
                              char(s[3])};
        EXPECT_EQ(std::string(want, 4), pixel(out->data + i)) << i;
    }
}

TEST_F(PixelImagesTest, GaussSmoothsTheInteriorOfOneChannel) {
    ImagePtr source = filled_image(4, 3, 4, 0);
    source->data[4 * (1 * 4 + 1) + 1] = 160;  // channel 1 of pixel (1, 1)
    ImagePtr out = filled_image(4, 3, 4, 7);
    image_filter_gauss_channel(source.get(), out.get(), 1);
    auto at = [&](int x, int y, int c) { return out->data[4 * (y * 4 + x) + c]; };
    EXPECT_EQ(40, at(1, 1, 1));  // 4 * 160 >> 4
    EXPECT_EQ(20, at(2, 1, 1));  // 2 * 160 >> 4
    EXPECT_EQ(7, at(0, 1, 1));   // border column, border row and other channels untouched
    EXPECT_EQ(7, at(1, 0, 1));
    EXPECT_EQ(7, at(1, 1, 0));

    // In place, each row sees the smoothed row above it.
    ImagePtr image = random_image(37, 9, 4, 4);
    ImagePtr expected = copy_of(image.get());
    const int row = 37 * 4;
    for (int y = 1; y < 8; ++y) {
        uint8_t* r = expected->data + y * row;
        ifc::smooth3x3_row_c(r - row, r, r + row, r, 37, 4, 2);
    }
    image_filter_gauss_channel(image.get(), image.get(), 2);
    EXPECT_EQ(0, std::memcmp(expected->data, image->data, 9 * row));
}

TEST_F(PixelImagesTest, FiltersIgnoreUnusableImages) {
    ImagePtr rgb = random_image(4, 4, 3, 6);
    ImagePtr gray = random_image(4, 4, 1, 7);
    ImagePtr two_rows = random_image(8, 2, 4, 3);
    ImagePtr before = copy_of(gray.get()), rows_before = copy_of(two_rows.get());
    image_filter_gauss_channel(gray.get(), gray.get(), 1);  // no such channel
    image_filter_gauss_channel(rows_before.get(), two_rows.get(), 0);  // no interior row
    image_filter_matrix(rgb.get(), gray.get(), nullptr);
    image_filter_curve(nullptr, gray.get(), nullptr);
    EXPECT_EQ(0, std::memcmp(before->data, gray->data, 16));
    EXPECT_EQ(0, std::memcmp(rows_before->data, two_rows->data, 64));
    EXPECT_EQ(7, image_filter_uninitialize(7));
}

// With one byte per pixel each pixel's bytes 0..2 overlap the next pixels';
// the filters walk them in order, in place, up to the end of the buffer.
TEST_F(PixelImagesTest, OneChannelImagesWalkOverlappingPixelsInOrder) {
    uint8_t curve[768];
    for (int i = 0; i < 768; ++i) curve[i] = static_cast<uint8_t>(i / 3 + i % 3 + 1);
    ImagePtr image = random_image(6, 1, 1, 5);  // stride 8: pixel 5 reads the padding
    std::vector<uint8_t> want(image->data, image->data + 8);
    for (int i = 0; i < 6; ++i) {
        uint8_t* p = want.data() + i;
        const uint8_t r = curve[3 * p[0]], g = curve[3 * p[1] + 1], b = curve[3 * p[2] + 2];
        p[0] = r;
        p[1] = g;
        p[2] = b;
    }
    image_filter_curve(image.get(), image.get(), curve);
    EXPECT_TRUE(want == std::vector<uint8_t>(image->data, image->data + 8));
}

// A destination of fewer bytes than the source's layout: the pixels whose
// bytes 0..2 fit are written (the last one by the reference row), nothing
// past the buffer is touched.
TEST_F(PixelImagesTest, FiltersStopAtTheEndOfAShortDestination) {
    ImagePtr source = random_image(9, 1, 4, 6);
    GuardedBuffer buffer(35, 0xEE);
    _Image destination{buffer.data(), 0, 5, 1, 7, 0, 0, 0, nullptr};
    const float identity[16] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
    image_filter_matrix(source.get(), &destination, identity);
    for (int i = 0; i < 35; ++i) {
        EXPECT_EQ(i % 4 != 3 ? source->data[i] : 0xEE, buffer.data()[i]) << i;
    }
    image_filter_gray(source.get(), &destination);
    EXPECT_EQ(buffer.data()[32], buffer.data()[34]);
}

TEST_F(PixelImagesTest, BlurWeightsAndUnfilteredDownsampling) {
    EXPECT_EQ(9226, ifc::blur8_weight(1));
    EXPECT_EQ(24590, ifc::blur8_weight(2));
    EXPECT_EQ(44278, ifc::blur8_weight(5));
    EXPECT_EQ(53868, ifc::blur8_weight(10));
    EXPECT_EQ(0, ifc::blur8_weight(0));
    EXPECT_EQ(0, ifc::blur8_weight(-1));

    // 3 channels, W = 3: the stride is padded to 12, but the samples land
    // 3 bytes apart through the whole buffer, the rest stays zero.
    ImagePtr source = random_image(6, 4, 3, 8);
    ImagePtr result(ifc::blur8_image(source.get(), 2, 0));
    ASSERT_TRUE(result != nullptr);
    EXPECT_EQ(12, result->stride);
    std::vector<uint8_t> want(24, 0);
    for (int i = 0; i < 6; ++i) want[3 * i] = source->data[(6 * 2 * (i / 3) + 2 * (i % 3)) * 3];
    EXPECT_TRUE(want == std::vector<uint8_t>(result->data, result->data + 24));

    // A sigma runs the reference sweeps at its weight over those samples.
    ImagePtr blurred(ifc::blur8_image(source.get(), 2, 5));
    ASSERT_TRUE(blurred != nullptr);
    uint8_t plane[6];
    for (int i = 0; i < 6; ++i) plane[i] = want[3 * i];
    ifc::blur8_filter_c(plane, 3, 2, ifc::blur8_weight(5));
    for (int i = 0; i < 6; ++i) want[3 * i] = plane[i];
    EXPECT_TRUE(want == std::vector<uint8_t>(blurred->data, blurred->data + 24));
}
