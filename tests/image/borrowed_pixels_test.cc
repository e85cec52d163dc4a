// Records marked as borrowing their pixels (a bound bitmap's) never have
// them freed, whichever library function drops or replaces the buffer. The
// borrowed buffer here is a stack array: freeing it aborts (glibc or ASan).
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "image/borrowed_pixels.h"
#include "image_test_util.h"

using ::testing::ElementsAre;

namespace {

struct Drop {
    std::string name;
    std::function<void(_Image**)> apply;
};

}  // namespace

TEST(BorrowedPixels, NoLibraryFunctionFreesThem) {
    const Drop drops[] = {
        {"free_image", [](_Image** image) { free_image(image); }},
        {"free_image_header", [](_Image** image) { free_image_header(image); }},
        {"destroy_image", [](_Image** image) { destroy_image(*image); free_image(image); }},
        {"scale_image", [](_Image** image) { scale_image(*image, 2, 2); free_image(image); }},
        {"rotateImage 90", [](_Image** image) { rotateImage(*image, 90); free_image(image); }},
        {"rotateImage 270", [](_Image** image) { rotateImage(*image, 270); free_image(image); }},
    };
    for (const Drop& drop : drops) {
        unsigned char pixels[3 * 2 * 4];
        for (unsigned i = 0; i < sizeof pixels; ++i) pixels[i] = static_cast<unsigned char>(i);
        _Image* header = create_image_header(3, 2, 4, -1);
        header->data = pixels;
        ASSERT_TRUE(ifc::markPixelsBorrowed(header)) << drop.name;
        EXPECT_TRUE(ifc::pixelsBorrowed(header)) << drop.name;
        drop.apply(&header);
        EXPECT_EQ(header, nullptr) << drop.name;
    }
}

TEST(BorrowedPixels, TurnedOrScaledImagesOwnTheirNewBuffers) {
    // 2 x 2 RGBA: pixel bytes p, p, p, p for p = 0..3.
    unsigned char pixels[16];
    for (int i = 0; i < 16; ++i) pixels[i] = static_cast<unsigned char>(i / 4);
    std::vector<int> before = bytesOf(pixels, 16);
    _Image* header = create_image_header(2, 2, 4, -1);
    header->data = pixels;
    ASSERT_TRUE(ifc::markPixelsBorrowed(header));
    rotateImage(header, 90);  // (x, y) -> row x, column 1 - y
    EXPECT_NE(header->data, pixels);
    EXPECT_FALSE(ifc::pixelsBorrowed(header));
    EXPECT_THAT(std::vector<int>({header->data[0], header->data[4], header->data[8], header->data[12]}),
                ElementsAre(2, 0, 3, 1));
    EXPECT_EQ(bytesOf(pixels, 16), before);
    free_image(&header);  // LSan sees the turned buffer freed
    header = create_image_header(2, 2, 4, -1);
    header->data = pixels;
    ASSERT_TRUE(ifc::markPixelsBorrowed(header));

    // A record whose data was replaced by a buffer of its own frees that one.
    scale_image(header, 1, 1);
    EXPECT_NE(header->data, pixels);
    EXPECT_FALSE(ifc::pixelsBorrowed(header));
    free_image(&header);  // LSan/ASan see the scaled buffer freed

    // A clone of a bound record owns its copy; the mark does not travel.
    _Image* bound = create_image_header(2, 2, 4, -1);
    bound->data = pixels;
    ASSERT_TRUE(ifc::markPixelsBorrowed(bound));
    ImagePtr copy(clone_image_ex(bound));
    FilledRecord same;
    clone_image(&same.image, bound);
    EXPECT_FALSE(ifc::pixelsBorrowed(copy.get()));
    EXPECT_FALSE(ifc::pixelsBorrowed(&same.image));
    free_image(&bound);
    EXPECT_EQ(bytesOf(copy->data, 16), bytesOf(pixels, 16));
}
