#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <string>

#include "image_test_util.h"

using ::testing::_;
using ::testing::ElementsAre;

// The record layouts are asserted where they are defined and read word by
// word in record_words_test; MPoint is two ints.
static_assert(sizeof(MPoint) == 8);

TEST(ImageRecord, CreateImagePadsDerivedStridesOnlyAndRefusesHugeBuffers) {
    EXPECT_THAT(shapeOf(*ImagePtr(create_image(3, 2, 3, 0))), ElementsAre(3, 2, 3, 12, 24));
    EXPECT_THAT(shapeOf(*ImagePtr(create_image(3, 2, 3, -1))), ElementsAre(3, 2, 3, 12, 24));
    EXPECT_THAT(shapeOf(*ImagePtr(create_image(3, 2, 3, 9))), ElementsAre(3, 2, 3, 9, 18));
    EXPECT_EQ(ImagePtr(create_image(5, 1, 1, 2))->stride, 2);  // positive strides are not checked

    EXPECT_NE(ImagePtr(create_image(0, 1, 1, 0))->data, nullptr);  // zero bytes still get a buffer
    EXPECT_EQ(create_image(100000, 100000, 4, 0), nullptr);
    EXPECT_EQ(create_image(-1, 5, 4, 0), nullptr);
}

TEST(ImageRecord, HeaderHasNoBufferAndFreesOnlyTheRecord) {
    _Image* header = create_image_header(3, 2, 4, -1);
    EXPECT_EQ(header->data, nullptr);
    EXPECT_THAT(shapeOf(*header), ElementsAre(3, 2, 4, 12, 0));
    unsigned char borrowed[24];
    header->data = borrowed;
    free_image_header(&header);  // a freed borrowed buffer would abort under ASan
    EXPECT_EQ(header, nullptr);
    free_image_header(&header);
}

TEST(ImageRecord, InitAndCreateImage2KeepLayoutTag) {
    _Image* image = create_empty_image();
    image->layout = 0x01020304;
    image->width = 9;
    image_init(image);
    EXPECT_EQ(image->width, 0);
    EXPECT_EQ(image->layout, 0x01020304u);

    _ImageMarker marker{};
    image->markers = &marker;
    create_image2(image, 3, 2, 3);
    EXPECT_THAT(shapeOf(*image), ElementsAre(3, 2, 3, 9, 18));  // never padded
    EXPECT_EQ(image->layout, 0x01020304u);
    EXPECT_EQ(image->markers, &marker);
    image->markers = nullptr;
    free_image(&image);
    EXPECT_EQ(image, nullptr);
    free_image(&image);
}

TEST(ImageRecord, SameImageAndClonesCopyHeaderPackedOrWholeBuffer) {
    ImagePtr source = indexedImage(3, 2, 3);  // stride 12, 24 bytes
    source->layout = 0x01020304;

    FilledRecord same, clone;
    create_same_image(&same.image, source.get());
    EXPECT_THAT(shapeOf(same.image), ElementsAre(3, 2, 3, 12, 24));
    EXPECT_EQ(same.image.layout, 0x01020304u);
    clone_image(&clone.image, source.get());
    EXPECT_EQ(clone.image.layout, 0x01020304u);
    EXPECT_EQ(bytesOf(clone.image.data, 18), bytesOf(source->data, 18));

    EXPECT_EQ(bytesOf(ImagePtr(clone_image_ex(source.get()))->data, 24), bytesOf(source->data, 24));
    EXPECT_EQ(bytesOf(ImagePtr(clone_image2(source.get()))->data, 18), bytesOf(source->data, 18));
}

TEST(ImageRecord, ClearFillsOnlyThePackedPrefixAndDestroyKeepsSizes) {
    ImagePtr image(create_image(3, 2, 3, 0));
    std::memset(image->data, 7, image->size);
    clear_image(image.get(), 1);
    EXPECT_EQ(bytesOf(image->data, 18), std::vector<int>(18, 1));
    EXPECT_EQ(bytesOf(image->data + 18, 6), std::vector<int>(6, 7));

    destroy_image(image.get());  // keeps size and stride
    EXPECT_EQ(image->data, nullptr);
    EXPECT_THAT(shapeOf(*image), ElementsAre(0, _, _, 12, 24));
}

TEST(ImageRecord, CopyImageKeepsDestinationBuffer) {
    ImagePtr source = indexedImage(2, 2, 1);  // stride 4
    ImagePtr destination(create_image(4, 4, 1, 0));
    unsigned char* buffer = destination->data;
    copy_image(destination.get(), source.get());
    EXPECT_EQ(destination->data, buffer);
    EXPECT_THAT(shapeOf(*destination), ElementsAre(2, 2, 1, 4, 8));
    EXPECT_EQ(bytesOf(buffer, 8), bytesOf(source->data, 8));

    // A bare record over the caller's own buffer gets the whole padded source.
    unsigned char own[8] = {};
    _Image bare{};
    bare.data = own;
    copy_image(&bare, source.get());
    EXPECT_EQ(bare.data, own);
    EXPECT_EQ(bytesOf(own, 8), bytesOf(source->data, 8));

    // The source's stride x height, not the destination's: a narrow record
    // (stride 1 x 2 rows) over a 16-byte buffer still takes all 24 bytes of
    // a 3 x 2 RGB source; a buffer smaller than that takes its size only.
    ImagePtr wide = indexedImage(3, 2, 3, 12);
    ImagePtr narrow(create_image(1, 2, 1, 1));
    narrow->data = static_cast<unsigned char*>(std::realloc(narrow->data, 24));
    narrow->size = 24;
    copy_image(narrow.get(), wide.get());
    EXPECT_EQ(bytesOf(narrow->data, 24), bytesOf(wide->data, 24));
    EXPECT_THAT(shapeOf(*narrow), ElementsAre(3, 2, 3, 12, 24));
    ImagePtr small(create_image(2, 2, 1, 5));  // size 10
    std::memset(small->data, 0xEE, 10);
    copy_image(small.get(), wide.get());
    EXPECT_EQ(bytesOf(small->data, 10), bytesOf(wide->data, 10));
}

TEST(ImageRecord, CopyRoiUsesEachSidesChannelsAndCloneRoiIsUnpadded) {
    ImagePtr source = indexedImage(4, 3, 1);  // stride 4: byte = y * 4 + x
    ImagePtr destination(create_image(4, 4, 2, 0));
    std::memset(destination->data, 0, destination->size);
    MRect region{1, 1, 2, 2};
    copy_image_roi(source.get(), destination.get(), &region, MPoint{1, 2});
    // Two bytes per row (2 pixels x 1 source channel) at byte 1 x 2 of rows 2, 3.
    EXPECT_THAT(bytesOf(destination->data + 16, 16), ElementsAre(0, 0, 5, 6, 0, 0, 0, 0, 0, 0, 9, 10, 0, 0, 0, 0));

    std::memset(destination->data, 0, destination->size);
    MRect flat{0, 0, 4, 0};
    copy_image_roi(source.get(), destination.get(), &flat, MPoint{0, 0});
    EXPECT_EQ(bytesOf(destination->data, 32), std::vector<int>(32, 0));

    ImagePtr wide = indexedImage(5, 3, 1);  // stride 8; the clone is unpadded
    MRect middle{1, 1, 3, 2};
    FilledRecord roi;
    clone_image_roi(&roi.image, wide.get(), &middle);
    EXPECT_EQ(roi.image.stride, 3);
    EXPECT_THAT(bytesOf(roi.image.data, 6), ElementsAre(9, 10, 11, 17, 18, 19));
}

TEST(ImageRecord, LoadFromRawReadsPaddedRows) {
    std::string path = testing::TempDir() + "raw_image.bin";
    std::FILE* file = std::fopen(path.c_str(), "wb");
    for (int i = 0; i < 8; ++i) std::fputc(i + 1, file);
    std::fclose(file);
    ImagePtr image(load_image_from_raw(path.c_str(), 3, 2, 1));
    EXPECT_EQ(image->stride, 4);
    EXPECT_THAT(bytesOf(image->data, 8), ElementsAre(1, 2, 3, 4, 5, 6, 7, 8));
    std::remove(path.c_str());
    EXPECT_EQ(load_image_from_raw(path.c_str(), 3, 2, 1), nullptr);
}
