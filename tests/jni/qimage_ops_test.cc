#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <climits>
#include <cstdlib>
#include <utility>
#include <vector>

#include "image/image_test_util.h"
#include "jni/pixels/camera_frames.h"
#include "jni/qimage/qimage_ops.h"

using ::testing::ElementsAre;

namespace {

// Buffer byte i holds i + 1, padding included.
_Image* counting(int width, int height, int channels, int stride) {
    _Image* image = create_image(width, height, channels, stride);
    for (uint32_t i = 0; i < image->size; ++i) image->data[i] = static_cast<unsigned char>(i + 1);
    return image;
}

}  // namespace

TEST(QImageOps, SubImageStepsSourceRowsByWidthNotStride) {
    ImagePtr source(counting(3, 3, 1, 4));  // padded rows, read 3 bytes apart
    ImagePtr crop(ifc::cropSubImage(source.get(), 1, 1, 5, 5));
    ASSERT_NE(crop.get(), nullptr);
    EXPECT_THAT((std::vector<int>{crop->width, crop->height, crop->stride}), ElementsAre(2, 2, 2));
    EXPECT_THAT(bytesOf(crop->data, 4), ElementsAre(5, 6, 8, 9));
    EXPECT_EQ(ifc::cropSubImage(source.get(), 3, 0, 1, 1), nullptr);
}

TEST(QImageOps, MirroredRowsOverlapForThreeChannels) {
    ImagePtr image(counting(2, 2, 3, 6));  // 12 bytes; 16 are read, the rest as 0
    ASSERT_EQ(ifc::colorIntBytes(image.get(), true), 2 * 3 + 2 * 4);
    EXPECT_EQ(ifc::colorIntBytes(image.get(), false), 16);
    std::vector<unsigned char> out(14, 0xAA);
    ifc::writeColorInts(image.get(), out.data(), true, false);
    // Row 1 starts at byte 6 and overwrites the end of row 0; its last pixel lies past the buffer.
    EXPECT_THAT(bytesOf(out.data(), 14), ElementsAre(5, 6, 7, 8, 1, 2, 0, 0, 0, 0, 9, 10, 11, 12));
}

// Sampling and packing are checked through ToBitmap; here the read past a short pixel.
TEST(QImageOps, Rgb565OfOneChannelReadsMissingBytesAsZero) {
    ImagePtr gray(create_image(1, 1, 1, 1));
    gray->data[0] = 0xFF;
    uint16_t out[1] = {};
    ifc::sampleToRGB565(gray.get(), out, 1, 1, 1);
    EXPECT_EQ(out[0], 0xF800);
}

TEST(QImageOps, MoveMarkersFreesTheOldList) {
    ImagePtr to(create_image(1, 1, 4, 0));
    ImagePtr from(create_image(1, 1, 4, 0));
    to->markers = create_marker();
    to->markers->data = static_cast<unsigned char*>(malloc(3));
    from->markers = create_marker();
    _ImageMarker* moved = from->markers;
    ifc::moveMarkers(to.get(), from.get());
    EXPECT_EQ(to->markers, moved);
    EXPECT_EQ(from->markers, nullptr);
    ifc::moveMarkers(to.get(), nullptr);
    EXPECT_EQ(to->markers, nullptr);  // leaks would show under LeakSanitizer
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
