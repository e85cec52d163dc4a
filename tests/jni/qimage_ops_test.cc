#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <vector>

#include "jni/qimage_ops.h"

using ::testing::ElementsAre;

namespace {

struct Owned {
    _Image* image;
    explicit Owned(_Image* i) : image(i) {}
    ~Owned() { free_image(&image); }
};

// Buffer byte i holds i + 1, padding included.
_Image* counting(int width, int height, int channels, int stride) {
    _Image* image = create_image(width, height, channels, stride);
    for (uint32_t i = 0; i < image->size; ++i) image->data[i] = static_cast<unsigned char>(i + 1);
    return image;
}

std::vector<int> bytes(const unsigned char* p, size_t n) { return std::vector<int>(p, p + n); }

}  // namespace

TEST(QImageOps, SubImageStepsSourceRowsByWidthNotStride) {
    Owned source(counting(3, 3, 1, 4));  // padded rows, read 3 bytes apart
    Owned crop(ifc::cropSubImage(source.image, 1, 1, 5, 5));
    ASSERT_NE(crop.image, nullptr);
    EXPECT_EQ(crop.image->width, 2);
    EXPECT_EQ(crop.image->height, 2);
    EXPECT_EQ(crop.image->stride, 2);
    EXPECT_THAT(bytes(crop.image->data, 4), ElementsAre(5, 6, 8, 9));
    EXPECT_EQ(ifc::cropSubImage(source.image, 3, 0, 1, 1), nullptr);
    Owned left(ifc::cropSubImage(source.image, -4, 0, 3, 1));  // x clamps to 0, w stays 3
    EXPECT_EQ(left.image->width, 3);
}

TEST(QImageOps, ColorIntsSwapRedAndBlueOnly) {
    Owned image(counting(2, 2, 4, 0));
    std::vector<unsigned char> out(16, 0);
    ifc::writeColorInts(image.image, out.data(), false, true);
    EXPECT_THAT(bytes(out.data(), 8), ElementsAre(3, 2, 1, 4, 7, 6, 5, 8));
    ifc::writeColorInts(image.image, out.data(), true, false);
    EXPECT_THAT(bytes(out.data(), 16), ElementsAre(5, 6, 7, 8, 1, 2, 3, 4, 13, 14, 15, 16, 9, 10, 11, 12));
}

TEST(QImageOps, MirroredRowsOverlapForThreeChannels) {
    Owned image(counting(2, 2, 3, 6));  // 12 bytes; 16 are read, the rest as 0
    ASSERT_EQ(ifc::colorIntBytes(image.image, true), 2 * 3 + 2 * 4);
    EXPECT_EQ(ifc::colorIntBytes(image.image, false), 16);
    std::vector<unsigned char> out(14, 0xAA);
    ifc::writeColorInts(image.image, out.data(), true, false);
    // Row 1 starts at byte 6 and overwrites the end of row 0; its last pixel lies past the buffer.
    EXPECT_THAT(bytes(out.data(), 14), ElementsAre(5, 6, 7, 8, 1, 2, 0, 0, 0, 0, 9, 10, 11, 12));
}

TEST(QImageOps, Rgb565SamplingAndPacking) {
    Owned image(create_image(4, 3, 3, 12));
    for (int i = 0; i < 36; ++i) image.image->data[i] = static_cast<unsigned char>(i * 7);
    uint16_t out[4] = {};
    ifc::sampleToRGB565(image.image, out, 2, 1, 2);  // rx 2, ry 3: pixels (0,0) and (2,0)
    auto pack = [](int r, int g, int b) { return (r >> 3) << 11 | ((g << 3) & 0x7E0) | (b >> 3); };
    EXPECT_EQ(out[0], pack(0, 7, 14));
    EXPECT_EQ(out[1], pack(42, 49, 56));

    Owned gray(create_image(1, 1, 1, 1));  // one byte: G and B lie past the buffer and read 0
    gray.image->data[0] = 0xFF;
    ifc::sampleToRGB565(gray.image, out, 1, 1, 1);
    EXPECT_EQ(out[0], 0xF800);
}

TEST(QImageOps, RotationRemainderKeepsDividendSign) {
    EXPECT_EQ(ifc::rotationRemainder(-90), 270);
    EXPECT_EQ(ifc::rotationRemainder(-450), -90);
    EXPECT_EQ(ifc::rotationRemainder(720), 0);
    EXPECT_EQ(ifc::rotationRemainder(2147483647), (2147483647LL + 360) % 360);
}

TEST(QImageOps, MoveMarkersFreesTheOldList) {
    Owned to(create_image(1, 1, 4, 0));
    Owned from(create_image(1, 1, 4, 0));
    to.image->markers = create_marker();
    to.image->markers->data = static_cast<unsigned char*>(malloc(3));
    from.image->markers = create_marker();
    _ImageMarker* moved = from.image->markers;
    ifc::moveMarkers(to.image, from.image);
    EXPECT_EQ(to.image->markers, moved);
    EXPECT_EQ(from.image->markers, nullptr);
    ifc::moveMarkers(to.image, nullptr);
    EXPECT_EQ(to.image->markers, nullptr);  // leaks would show under LeakSanitizer
    ifc::moveMarkers(to.image, to.image);
}
