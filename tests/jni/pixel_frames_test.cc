// Whole-frame conversions, the frame image reuse, the overlay blend, the
// exported CPU filters, histograms and the blur, through the plain C++ the
// natives call.
#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <string>

#include "guarded_buffer.h"
#include "image_filter/filters.h"
#include "jni/blur8.h"
#include "jni/camera_frames.h"
#include "jni/pixel_kernels.h"
#include "jni/qimage_pixels.h"

namespace {

struct ImageDeleter {
    void operator()(_Image* image) const { free_image(&image); }
};
using ImagePtr = std::unique_ptr<_Image, ImageDeleter>;

ImagePtr make_image(int width, int height, int channels, uint32_t seed) {
    ImagePtr image(create_image(width, height, channels, -1));
    std::mt19937 random(seed);
    for (int i = 0; i < image->stride * height; ++i) image->data[i] = static_cast<uint8_t>(random());
    return image;
}

std::string pixel(const uint8_t* p) { return std::string(reinterpret_cast<const char*>(p), 4); }

class PixelFramesTest : public ::testing::Test {
protected:
    void SetUp() override { image_filter_initialize(); }
};

}  // namespace

TEST_F(PixelFramesTest, Nv21FrameFollowsTheStreamWalk) {
    // Odd widths included: stream row r of 2 * ceil(w / 2) pixels takes
    // chroma row r / 2, so later rows shift by one pixel.
    for (int width : {1, 2, 3, 7, 33, 640, 1921}) {
        for (int height : {1, 2, 3, 8}) {
            GuardedBuffer frame(ifc::nv21_bytes_read(width, height));
            frame.randomize(width * 31 + height);
            const int total = width * height, row_pixels = (width + 1) / 2 * 2;
            GuardedBuffer rgba(4 * size_t(total)), yuva(4 * size_t(total));
            ifc::nv21_to_rgba(frame.data(), width, height, rgba.data());
            ifc::nv21_to_yuva(frame.data(), width, height, yuva.data());
            int mismatches = 0;
            for (int n = 0; n < total; ++n) {
                const uint8_t* vu = frame.data() + total + (n / row_pixels / 2) * width + (n % row_pixels & ~1);
                uint8_t want[4];
                ifc::yuv_to_rgba_pixel(frame.data()[n], vu[1], vu[0], want);
                mismatches += pixel(want) != pixel(rgba.data() + 4 * n);
                const uint8_t yuv[4] = {frame.data()[n], vu[1], vu[0], 255};
                mismatches += pixel(yuv) != pixel(yuva.data() + 4 * n);
            }
            EXPECT_EQ(0, mismatches) << width << "x" << height;
        }
    }
}

TEST_F(PixelFramesTest, FrameSizesCoverEveryRead) {
    EXPECT_EQ(6 * 4 * 3 / 2, ifc::nv21_bytes_read(6, 4));
    EXPECT_EQ(6 * 3 + 6 * 2, ifc::nv21_bytes_read(6, 3));
    // Width 3: stream rows of 4 pixels read one chroma byte past their row.
    EXPECT_EQ(6 + 4, ifc::nv21_bytes_read(3, 2));
    EXPECT_EQ(0, ifc::nv21_bytes_read(0, 5));
    EXPECT_EQ(2 * 15 + 1, ifc::yuv422_bytes_read(5, 3));
    EXPECT_EQ(2 * 12, ifc::rgb565_bytes_read(4, 3));
    EXPECT_EQ(0, ifc::nv21_decimated_bytes_read(3, 3, 4));
    EXPECT_EQ(4, ifc::even_step(3));
    EXPECT_EQ(2, ifc::even_step(1));
    EXPECT_EQ(0, ifc::even_step(0));
}

TEST_F(PixelFramesTest, PackedFramesAreOneStream) {
    const int width = 5, height = 3;  // odd pixel count: last group half used
    GuardedBuffer packed(ifc::yuv422_bytes_read(width, height)), rgba(4 * width * height);
    packed.randomize(3);
    ifc::yuv422_to_rgba(packed.data(), width, height, rgba.data());
    for (int n = 0; n < width * height; ++n) {
        const uint8_t* g = packed.data() + 4 * (n / 2);
        uint8_t want[4];
        ifc::yuv_to_rgba_pixel(g[n % 2 ? 3 : 1], g[2], g[0], want);
        EXPECT_EQ(pixel(want), pixel(rgba.data() + 4 * n)) << n;
    }
    const uint8_t rgb565[4] = {0x00, 0xF8, 0xE0, 0x07};  // pure red, pure green
    uint8_t out[8];
    ifc::rgb565_to_rgba(rgb565, 2, 1, out);
    EXPECT_EQ(std::string("\x1f\x00\x00\xff\x00\x3f\x00\xff", 8), std::string(reinterpret_cast<char*>(out), 8));
}

TEST_F(PixelFramesTest, DecimatedFrameSamplesEveryStepPixels) {
    const int width = 8, height = 8, step = 4;
    GuardedBuffer frame(ifc::nv21_bytes_read(width, height));
    frame.randomize(8);
    uint8_t out[4 * 4];
    ifc::nv21_to_yuva_decimated(frame.data(), width, height, step, out);
    const uint8_t* f = frame.data();
    // Output (i, j): luma (4i, 4j); chroma row starts at j * width * 2.
    for (int j = 0; j < 2; ++j)
        for (int i = 0; i < 2; ++i) {
            const uint8_t* c = f + 64 + j * width * 2 + i * 4;
            const uint8_t want[4] = {f[j * 4 * width + i * 4], c[1], c[0], 255};
            EXPECT_EQ(pixel(want), pixel(out + 4 * (j * 2 + i)));
        }
}

TEST_F(PixelFramesTest, ConversionsWithoutTablesGiveOpaqueBlack) {
    const ifc::YuvTables saved = ifc::g_yuv_tables;
    std::memset(&ifc::g_yuv_tables, 0, sizeof ifc::g_yuv_tables);
    ifc::g_yuv_tables_ready = false;
    GuardedBuffer frame(ifc::nv21_bytes_read(40, 2)), rgba(4 * 80);
    frame.randomize(1);
    ifc::nv21_to_rgba(frame.data(), 40, 2, rgba.data());
    ImagePtr image = make_image(17, 1, 4, 2);
    const uint8_t alpha = image->data[3];
    image_filter_gray(image.get(), image.get());
    ifc::g_yuv_tables = saved;
    ifc::g_yuv_tables_ready = true;
    for (int n = 0; n < 80; ++n) ASSERT_EQ(std::string("\0\0\0\xff", 4), pixel(rgba.data() + 4 * n));
    EXPECT_EQ(std::string(3, '\0'), pixel(image->data).substr(0, 3));
    EXPECT_EQ(alpha, image->data[3]);
}

TEST_F(PixelFramesTest, FrameImageIsReusedForTheSamePixelCount) {
    _Image* image = create_image(4, 6, 4, -1);
    EXPECT_EQ(image, ifc::frame_image_for(image, 6, 4));
    EXPECT_EQ(4, image->width);  // not resized
    EXPECT_EQ(6, image->height);
    // Same pixel count but a single channel: too small for RGBA, replaced.
    _Image* gray = create_image(6, 4, 1, -1);
    _Image* replaced = ifc::frame_image_for(gray, 6, 4);
    EXPECT_EQ(24 * 4u, replaced->size);
    _Image* other = ifc::frame_image_for(image, 3, 3);
    EXPECT_EQ(3, other->width);
    EXPECT_EQ(12, other->stride);
    free_image(&replaced);
    free_image(&other);
}

TEST_F(PixelFramesTest, AlphaMixBlendsPremultipliedOverlayAroundVerticalCentre) {
    ImagePtr image(create_image(4, 4, 4, -1));
    std::memset(image->data, 100, 64);
    // 2x2 overlay: opaque red, transparent black, half-alpha grey, brighter than its alpha.
    const uint8_t overlay[16] = {255, 0, 0, 255, 0, 0, 0, 0, 64, 64, 64, 128, 200, 0, 0, 100};
    ifc::alpha_mix_overlay(image.get(), overlay, 2, 2, 1, 2);  // top = 2 - 1
    auto at = [&](int x, int y) { return pixel(image->data + 4 * (y * 4 + x)); };
    EXPECT_EQ(std::string("\xff\x00\x00\x64", 4), at(1, 1));
    EXPECT_EQ(std::string("\x64\x64\x64\x64", 4), at(2, 1));
    // (100 * 127 + 64 * 255) / 255 = 113
    EXPECT_EQ(std::string("\x71\x71\x71\x64", 4), at(1, 2));
    // (100 * 155 + 200 * 255) / 255 = 260, stored as a byte: 4
    EXPECT_EQ(4, image->data[4 * (2 * 4 + 2)]);
    EXPECT_EQ(std::string(4, '\x64'), at(1, 0));
    EXPECT_EQ(std::string(4, '\x64'), at(1, 3));
    // Past the top edge nothing outside the image is touched.
    ImagePtr small(create_image(2, 2, 4, -1));
    std::memset(small->data, 100, 16);
    ifc::alpha_mix_overlay(small.get(), overlay, 2, 2, -1, 0);
    // Only overlay (1, 1) lands inside, on (0, 0): (100 * 155 + 200 * 255) / 255 = 260 -> 4.
    EXPECT_EQ(std::string("\x04\x3c\x3c\x64", 4), pixel(small->data));
    for (int i = 4; i < 16; ++i) EXPECT_EQ(100, small->data[i]) << i;
}

TEST_F(PixelFramesTest, AlphaMixPastTheLeftEdgeWrapsToTheRowAbove) {
    // Left of the image is not clipped: overlay column 0 at x = -1 on row 1
    // lands on the last pixel of row 0.
    ImagePtr image(create_image(3, 3, 4, -1));
    std::memset(image->data, 100, 36);
    const uint8_t overlay[8] = {255, 0, 0, 255, 0, 255, 0, 255};
    ifc::alpha_mix_overlay(image.get(), overlay, 2, 1, -1, 1);
    EXPECT_EQ(std::string("\xff\x00\x00\x64", 4), pixel(image->data + 4 * 2));
    EXPECT_EQ(std::string("\x00\xff\x00\x64", 4), pixel(image->data + 4 * 3));
    for (int i = 0; i < 36; ++i) {
        if (i / 4 != 2 && i / 4 != 3) {
            EXPECT_EQ(100, image->data[i]) << i;
        }
    }
    // One byte per pixel: each pixel's three bytes overlap its neighbours';
    // the blend walks them in order and stops at the end of the buffer.
    ImagePtr gray(create_image(4, 1, 1, -1));
    std::memset(gray->data, 100, 4);
    const uint8_t half[8] = {128, 128, 128, 128, 0, 0, 0, 0};
    ifc::alpha_mix_overlay(gray.get(), half, 2, 1, 2, 0);
    // (100 * 127 + 128 * 255) / 255 = 177 on bytes 2 and 3; the second pixel
    // (transparent black) keeps byte 3 as it is.
    EXPECT_EQ(std::string("\x64\x64\xb1\xb1", 4), pixel(gray->data));
}
