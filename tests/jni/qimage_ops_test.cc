#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <climits>
#include <cstdlib>
#include <utility>
#include <vector>

#include "jni/pixels/camera_frames.h"
#include "jni/qimage/qimage_ops.h"

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
    EXPECT_THAT((std::vector<int>{crop.image->width, crop.image->height, crop.image->stride}), ElementsAre(2, 2, 2));
    EXPECT_THAT(bytes(crop.image->data, 4), ElementsAre(5, 6, 8, 9));
    EXPECT_EQ(ifc::cropSubImage(source.image, 3, 0, 1, 1), nullptr);
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

// Sampling and packing are checked through ToBitmap; here the read past a short pixel.
TEST(QImageOps, Rgb565OfOneChannelReadsMissingBytesAsZero) {
    Owned gray(create_image(1, 1, 1, 1));
    gray.image->data[0] = 0xFF;
    uint16_t out[1] = {};
    ifc::sampleToRGB565(gray.image, out, 1, 1, 1);
    EXPECT_EQ(out[0], 0xF800);
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
}

// Sizes and steps that come from Java never overflow on the way in.
TEST(QImageOps, JavaStepsAndTurnsSaturateInsteadOfOverflowing) {
    const std::vector<std::pair<int, int>> steps = {
        {1, 2}, {3, 4}, {4, 4}, {0, 0}, {-3, -3}, {INT_MAX - 1, INT_MAX - 1}, {INT_MAX, INT_MAX}};
    for (auto [given, even] : steps) EXPECT_EQ(ifc::even_step(given), even) << given;
    const std::vector<std::pair<int, int>> turns = {
        {-450, -90}, {-90, 270}, {720, 0}, {INT_MAX, (INT_MAX % 360 + 360) % 360}, {INT_MIN, INT_MIN % 360}};
    for (auto [degrees, turn] : turns) EXPECT_EQ(ifc::rotationRemainder(degrees), turn) << degrees;
}
