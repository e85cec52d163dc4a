// The exported CPU filters, the histograms and the down-sampled blur on
// real images.
#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <random>
#include <vector>

#include "guarded_buffer.h"
#include "image_filter/filters.h"
#include "jni/blur8.h"
#include "jni/pixel_kernels.h"
#include "jni/qimage_pixels.h"

namespace {

struct ImageDeleter {
    void operator()(_Image* image) const { free_image(&image); }
};
using ImagePtr = std::unique_ptr<_Image, ImageDeleter>;

ImagePtr random_image(int width, int height, int channels, uint32_t seed) {
    ImagePtr image(create_image(width, height, channels, -1));
    std::mt19937 random(seed);
    for (int i = 0; i < image->stride * height; ++i) image->data[i] = static_cast<uint8_t>(random());
    return image;
}

ImagePtr copy_of(const _Image* source) { return ImagePtr(clone_image_ex(source)); }

class CpuFiltersTest : public ::testing::Test {
protected:
    void SetUp() override { image_filter_initialize(); }
};

}  // namespace

TEST_F(CpuFiltersTest, GrayWeightsByteZeroAsRedAndKeepsByteThree) {
    ImagePtr image(create_image(2, 1, 4, -1));
    const uint8_t pixels[8] = {255, 0, 0, 7, 0, 0, 255, 9};
    std::memcpy(image->data, pixels, 8);
    ImagePtr out = random_image(2, 1, 4, 1);
    const uint8_t alpha0 = out->data[3], alpha1 = out->data[7];
    image_filter_gray(image.get(), out.get());
    EXPECT_EQ(76, out->data[0]);  // 19595 * 255 >> 16
    EXPECT_EQ(76, out->data[2]);
    EXPECT_EQ(29, out->data[4]);  // 7471 * 255 >> 16
    EXPECT_EQ(alpha0, out->data[3]);
    EXPECT_EQ(alpha1, out->data[7]);
}

TEST_F(CpuFiltersTest, CurvePicksEachChannelFromItsColumn) {
    std::vector<uint8_t> curve(768);
    for (int i = 0; i < 256; ++i) {
        curve[3 * i] = static_cast<uint8_t>(255 - i);
        curve[3 * i + 1] = static_cast<uint8_t>(i / 2);
        curve[3 * i + 2] = static_cast<uint8_t>(i ^ 0x55);
    }
    ImagePtr image = random_image(5, 3, 3, 2);
    ImagePtr source = copy_of(image.get());
    image_filter_curve(image.get(), image.get(), curve.data());  // in place
    for (int i = 0; i < 15; ++i) {
        const uint8_t* s = source->data + 3 * i;
        const uint8_t* d = image->data + 3 * i;
        EXPECT_EQ(255 - s[0], d[0]);
        EXPECT_EQ(s[1] / 2, d[1]);
        EXPECT_EQ(s[2] ^ 0x55, d[2]);
    }
}

TEST_F(CpuFiltersTest, GaussSmoothsInteriorOfOneChannelOnly) {
    ImagePtr source(create_image(4, 3, 4, -1));
    std::memset(source->data, 0, 48);
    source->data[4 * (1 * 4 + 1) + 1] = 160;  // channel 1 of pixel (1, 1)
    ImagePtr out(create_image(4, 3, 4, -1));
    std::memset(out->data, 7, 48);
    image_filter_gauss_channel(source.get(), out.get(), 1);
    auto at = [&](int x, int y, int c) { return out->data[4 * (y * 4 + x) + c]; };
    EXPECT_EQ(40, at(1, 1, 1));  // 4 * 160 >> 4
    EXPECT_EQ(20, at(2, 1, 1));  // 2 * 160 >> 4
    EXPECT_EQ(7, at(0, 1, 1));   // border column untouched
    EXPECT_EQ(7, at(1, 0, 1));   // border row untouched
    EXPECT_EQ(7, at(1, 1, 0));   // other channels untouched

    ImagePtr two_rows = random_image(8, 2, 4, 3);
    ImagePtr before = copy_of(two_rows.get());
    image_filter_gauss_channel(before.get(), two_rows.get(), 0);
    EXPECT_EQ(0, std::memcmp(before->data, two_rows->data, 64));
}

TEST_F(CpuFiltersTest, InPlaceGaussReadsRowsAlreadyWritten) {
    // In place, each row sees the smoothed row above it: the SIMD path must
    // not be taken there.
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

TEST_F(CpuFiltersTest, MatrixMapsColumnsAndOffsets) {
    ImagePtr image = random_image(9, 5, 4, 5);
    ImagePtr out = copy_of(image.get());
    const float identity[16] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
    image_filter_matrix(image.get(), out.get(), identity);
    EXPECT_EQ(0, std::memcmp(image->data, out->data, 9 * 5 * 4));

    // Swap bytes 0 and 2, darken byte 1 by an offset of -0.25 (64 levels).
    const float swap[16] = {0, 0, 1, 0, 0, 1, 0, 0, 1, 0, 0, 0, 0, -0.25f, 0, 0};
    image_filter_matrix(image.get(), out.get(), swap);
    for (int i = 0; i < 45; ++i) {
        const uint8_t* s = image->data + 4 * i;
        const uint8_t* d = out->data + 4 * i;
        EXPECT_EQ(s[2], d[0]);
        EXPECT_EQ(s[1] < 64 ? 0 : s[1] - 64, d[1]);
        EXPECT_EQ(s[0], d[2]);
        EXPECT_EQ(s[3], d[3]);
    }
}

TEST_F(CpuFiltersTest, FiltersIgnoreUnusableImages) {
    ImagePtr rgb = random_image(4, 4, 3, 6);
    ImagePtr gray = random_image(4, 4, 1, 7);
    ImagePtr before = copy_of(gray.get());
    image_filter_gauss_channel(gray.get(), gray.get(), 1);  // no such channel
    image_filter_matrix(rgb.get(), gray.get(), nullptr);
    image_filter_curve(nullptr, gray.get(), nullptr);
    EXPECT_EQ(0, std::memcmp(before->data, gray->data, 16));
    EXPECT_EQ(7, image_filter_uninitialize(7));
}

TEST_F(CpuFiltersTest, HistogramsCountThreeBytesOfFourBytePixels) {
    ImagePtr image(create_image(1, 1, 4, -1));
    const uint8_t p[4] = {10, 10, 200, 99};
    std::memcpy(image->data, p, 4);
    std::vector<uint32_t> bins(768);
    ifc::image_histogram(image.get(), bins.data(), false);
    EXPECT_EQ(2u, bins[10]);
    EXPECT_EQ(1u, bins[200]);
    EXPECT_EQ(0u, bins[99]);
    std::fill(bins.begin(), bins.end(), 0);
    ifc::image_histogram(image.get(), bins.data(), true);
    EXPECT_EQ(1u, bins[10]);
    EXPECT_EQ(1u, bins[266]);
    EXPECT_EQ(1u, bins[712]);
    EXPECT_EQ(3u, bins[10] + bins[266] + bins[712] + bins[99] + bins[200]);
}

TEST_F(CpuFiltersTest, BlurWeights) {
    EXPECT_EQ(9226, ifc::blur8_weight(1));
    EXPECT_EQ(24590, ifc::blur8_weight(2));
    EXPECT_EQ(44278, ifc::blur8_weight(5));
    EXPECT_EQ(53868, ifc::blur8_weight(10));
    EXPECT_EQ(0, ifc::blur8_weight(0));
    EXPECT_EQ(0, ifc::blur8_weight(-3));
}

TEST_F(CpuFiltersTest, BlurWithoutFilteringIsTheDownsampledChannelWrittenContiguously) {
    // 3 channels, W = 3: the stride is padded to 12, but the samples land
    // 3 bytes apart through the whole buffer.
    ImagePtr source = random_image(6, 4, 3, 8);
    _Image* result = ifc::blur8_image(source.get(), 2, 0);
    ASSERT_NE(nullptr, result);
    EXPECT_EQ(3, result->width);
    EXPECT_EQ(2, result->height);
    EXPECT_EQ(12, result->stride);
    for (int i = 0; i < 6; ++i) {
        const int x = 2 * (i % 3), y = 2 * (i / 3);
        EXPECT_EQ(source->data[(6 * y + x) * 3], result->data[3 * i]) << i;
        EXPECT_EQ(0, result->data[3 * i + 1]);
    }
    for (int i = 18; i < 24; ++i) EXPECT_EQ(0, result->data[i]);
    free_image(&result);
}

TEST_F(CpuFiltersTest, BlurPassesAreAsymmetric) {
    // One row: only the horizontal pass runs and column 0 keeps its value.
    uint8_t row[5] = {200, 0, 0, 0, 0};
    ifc::blur8_filter(row, 5, 1, ifc::blur8_weight(2));
    EXPECT_EQ(200, row[0]);
    EXPECT_GT(row[1], 0);
    // One column: the vertical pass runs from row 0, which the state of row
    // 0 itself rewrites (200 -> 199 from the 8.8 rounding).
    uint8_t column[3] = {200, 200, 200};
    ifc::blur8_filter(column, 1, 3, ifc::blur8_weight(2));
    EXPECT_EQ(199, column[0]);
    // A constant image stays close to constant under both passes.
    std::vector<uint8_t> flat(64 * 48, 90);
    ifc::blur8_filter(flat.data(), 64, 48, ifc::blur8_weight(5));
    for (uint8_t v : flat) ASSERT_NEAR(90, v, 4);
}

// With one byte per pixel each pixel's bytes 0..2 overlap the next pixels';
// the filters walk them in order, in place, up to the end of the buffer.
TEST_F(CpuFiltersTest, OneChannelImagesWalkOverlappingPixelsInOrder) {
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
    EXPECT_EQ(want, std::vector<uint8_t>(image->data, image->data + 8));
}

// A destination of fewer bytes than the source's layout: the pixels whose
// bytes 0..2 fit are written (the last one by the reference row), nothing
// past the buffer is touched.
TEST_F(CpuFiltersTest, FiltersStopAtTheEndOfAShortDestination) {
    ImagePtr source = random_image(9, 1, 4, 6);
    GuardedBuffer buffer(35, 0xEE);
    _Image destination{buffer.data(), 0, 5, 1, 7, 0, 0, 0, nullptr};
    const float identity[16] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
    image_filter_matrix(source.get(), &destination, identity);
    for (int i = 0; i < 35; ++i) {
        const bool written = i % 4 != 3;
        EXPECT_EQ(written ? source->data[i] : 0xEE, buffer.data()[i]) << i;
    }
    image_filter_gray(source.get(), &destination);
    EXPECT_EQ(buffer.data()[32], buffer.data()[34]);
}
