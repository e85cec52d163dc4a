#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "image_test_util.h"

using ::testing::_;
using ::testing::ElementsAre;

namespace {

// One-channel image whose pixel (x, y) holds y * 10 + x.
ImagePtr gridImage(int width, int height, int stride = 0) {
    ImagePtr image(create_image(width, height, 1, stride));
    std::memset(image->data, 0xEE, image->size);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) image->data[y * image->stride + x] = static_cast<unsigned char>(y * 10 + x);
    return image;
}

std::vector<int> row(const _Image* image, int y, int rowBytes) {
    return bytesOf(image->data + y * rowBytes, rowBytes);
}

}  // namespace

TEST(ImageCrop, EveryRowLandsOnTheBufferStart) {
    ImagePtr source = gridImage(4, 3);
    MRect rect{1, 0, 2, 3};
    FilledRecord out;
    crop_image(&out.image, source.get(), &rect);
    EXPECT_THAT(shapeOf(out.image), ElementsAre(2, 3, 0, 0, static_cast<int>(source->size)));
    EXPECT_THAT(bytesOf(out.image.data, 2), ElementsAre(21, 22));  // the last row copied

    ImagePtr padded = indexedImage(3, 2, 1);  // stride 4, bytes 0..7: rows step by width
    MRect second{0, 1, 3, 1};
    FilledRecord row1;
    crop_image(&row1.image, padded.get(), &second);
    EXPECT_THAT(bytesOf(row1.image.data, 3), ElementsAre(3, 4, 5));
}

TEST(ImageCrop, WithAngleKeepsOnlyTheLastPixel) {
    ImagePtr source = gridImage(4, 3);
    MRect rect{1, 1, 2, 2};
    FilledRecord out;
    crop_image_with_angle(&out.image, source.get(), &rect);
    EXPECT_EQ(out.image.channels, 0);
    EXPECT_EQ(out.image.data[0], 22);
}

TEST(ImageScale, DownAndUpSampleByRoundedRatio) {
    ImagePtr source = gridImage(4, 4);
    ImagePtr half(scale_image_ptr(source.get(), 2, 2));
    EXPECT_EQ(half->stride, 4);
    EXPECT_THAT(bytesOf(half->data, 6), ElementsAre(0, 2, _, _, 20, 22));

    ImagePtr twice(scale_image_ptr(source.get(), 8, 8));
    EXPECT_THAT(row(twice.get(), 0, 8), ElementsAre(0, 1, 1, 2, 2, 3, 3, 3));
    std::vector<int> column;
    for (int y = 0; y < 8; ++y) column.push_back(twice->data[y * 8]);
    EXPECT_THAT(column, ElementsAre(0, 10, 10, 20, 20, 30, 30, 30));
}

TEST(ImageScale, ReadsSourceThroughItsStrideAndPadsOnlyThePtrVariant) {
    ImagePtr source(create_image(2, 2, 3, 0));  // stride 8
    const unsigned char pixels[] = {1, 2, 3, 4, 5, 6, 0, 0, 7, 8, 9, 10, 11, 12, 0, 0};
    std::memcpy(source->data, pixels, sizeof pixels);

    ImagePtr padded(scale_image_ptr(source.get(), 3, 2));
    EXPECT_EQ(padded->stride, 12);
    EXPECT_THAT(bytesOf(padded->data + 12, 9), ElementsAre(7, 8, 9, 10, 11, 12, 10, 11, 12));

    FilledRecord packed;
    scale_image2(&packed.image, source.get(), 3, 2);
    EXPECT_EQ(packed.image.stride, 9);
    EXPECT_THAT(bytesOf(packed.image.data + 9, 9), ElementsAre(7, 8, 9, 10, 11, 12, 10, 11, 12));
}

TEST(ImageScale, InPlaceDropsLayoutAndMarkers) {
    ImagePtr image = gridImage(4, 4);
    image->layout = 0x01020304;
    _ImageMarker marker{};
    image->markers = &marker;
    scale_image(image.get(), 2, 1);
    EXPECT_THAT(shapeOf(*image), ElementsAre(2, 1, 1, 2, 2));
    EXPECT_TRUE(image->layout == 0 && image->markers == nullptr);
    EXPECT_THAT(bytesOf(image->data, 2), ElementsAre(0, 2));
}

TEST(ImagePyramid, SkipsColumnZeroAndReadsOneFactorPastEachRow) {
    ImagePtr source = gridImage(8, 4);
    ImagePtr out(buildPyramid(source.get(), 2));
    EXPECT_THAT(shapeOf(*out), ElementsAre(4, 2, _, _, _));
    // Columns 2, 4, 6, 8 (= the next row's first pixel) of rows 0 and 2.
    EXPECT_THAT(row(out.get(), 0, 4), ElementsAre(2, 4, 6, 10));
    EXPECT_THAT(row(out.get(), 1, 4), ElementsAre(22, 24, 26, 30));
}

TEST(ImagePyramid, SamplesPastTheBufferReadAsZeroAndOddFactors) {
    ImagePtr source = gridImage(4, 2);
    ImagePtr out(buildPyramid(source.get(), 1));
    EXPECT_THAT(row(out.get(), 0, 4), ElementsAre(1, 2, 3, 10));
    EXPECT_THAT(row(out.get(), 1, 4), ElementsAre(11, 12, 13, 0));

    EXPECT_EQ(buildPyramid(source.get(), 0), nullptr);
}

TEST(ImagePyramid, CopiesWordsButKeepsThreeChannelPixels) {
    ImagePtr source(create_image(4, 1, 3, 0));  // stride 12
    for (int i = 0; i < 12; ++i) source->data[i] = static_cast<unsigned char>(i + 1);
    ImagePtr out(buildPyramid(source.get(), 1));
    // Columns 1, 2, 3 and then past the end (0).
    EXPECT_THAT(bytesOf(out->data, 12), ElementsAre(4, 5, 6, 7, 8, 9, 10, 11, 12, 0, 0, 0));
}

TEST(ImageGray, WeightsByteTwoAsRedAndTruncates) {
    const unsigned char pixels[] = {0, 0, 255, 99, 10, 20, 30, 99, 255, 255, 255, 0, 1, 1, 1, 0};
    FilledRecord gray;
    convert_image_gray(&gray.image, pixels, 12345, 2, 2, 4);
    EXPECT_THAT(shapeOf(gray.image), ElementsAre(2, 2, 1, 2, _));
    // 0.299 * 30 + 0.587 * 20 + 0.114 * 10 = 21.85; the weights of (1, 1, 1) sum just below 1.
    EXPECT_THAT(bytesOf(gray.image.data, 4), ElementsAre(76, 21, 255, 0));
}

TEST(ImageRotate, ClockwiseTurnsOverPackedRowsKeepingTheSize) {
    struct Case {
        int angle, stride, width;
        std::vector<int> bytes;
    };
    const Case cases[] = {
        {90, 3, 2, {10, 0, 11, 1, 12, 2}},  // first row: the old first column read bottom to top
        {180, 3, 3, {12, 11, 10, 2, 1, 0}},
        {-90, 3, 3, {0, 1, 2, 10, 11, 12}},
        {45, 3, 3, {0, 1, 2, 10, 11, 12}},
        {90, 4, 2, {0xEE, 0, 10, 1, 11, 2}},  // padded rows are still read 3 bytes apart
    };
    for (const Case& c : cases) {
        ImagePtr image = gridImage(3, 2, c.stride);
        int size = static_cast<int>(image->size);
        rotateImage(image.get(), c.angle);
        EXPECT_THAT(shapeOf(*image), ElementsAre(c.width, 6 / c.width, 1, _, size)) << c.angle;
        EXPECT_EQ(bytesOf(image->data, 6), c.bytes) << c.angle << " stride " << c.stride;
    }
}

TEST(ImageRotate, EmptyImageStillSwapsDimensions) {
    // A header has no buffer at all: the new, empty one is installed all the same.
    for (_Image* raw : {create_image(3, 0, 4, 0), create_image_header(3, 0, 4, 0)}) {
        ImagePtr image(raw);
        rotateImage(image.get(), 90);
        EXPECT_THAT(shapeOf(*image), ElementsAre(0, 3, 4, _, _));
        EXPECT_NE(image->data, nullptr);
    }
}

TEST(ImageFlip, VerticalThenHorizontalOnWholePixels) {
    ImagePtr image(create_image(3, 3, 2, 6));
    for (int i = 0; i < 18; ++i) image->data[i] = static_cast<unsigned char>(i);
    flipImage(image.get(), 0, 1);
    EXPECT_THAT(bytesOf(image->data, 18),
                ElementsAre(12, 13, 14, 15, 16, 17, 6, 7, 8, 9, 10, 11, 0, 1, 2, 3, 4, 5));
    flipImage(image.get(), 1, 0);
    EXPECT_THAT(bytesOf(image->data, 12), ElementsAre(16, 17, 14, 15, 12, 13, 10, 11, 8, 9, 6, 7));
}
