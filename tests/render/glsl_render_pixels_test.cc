// The renderer's CPU-side algorithms. Their pixels through the natives are
// checked from Java (tile round trips, curve against a reference, uploads).
#include <climits>

#include "engine/gl/gl_test_support.h"
#include "render/brightness_curve.h"
#include "render/pixel_uploads.h"
#include "render/tiles.h"
#include "support/gl_fixture.h"

namespace {

using gltest::ScopedTexture;
using gltest::pixelAt;

TEST(Tiles, CountsFitTheLimitAndLastTileTakesRemainder) {
    EXPECT_EQ(2, tileCountForWidth(5000, 4096));
    EXPECT_EQ(1, tileCountForWidth(4096, 4096));
    EXPECT_EQ(1, tileCountForHeight(3000, 4096));
    EXPECT_EQ(3, tileCountForHeight(9000, 4096));  // 4500 does not fit, 3002 does
    EXPECT_EQ(7, tileCountForWidth(7, 0));         // no limit known: stops at 1-pixel tiles

    TileRect first, last;
    ASSERT_TRUE(tileRect(1001, 10, 0, 0, 2, 1, &first) && tileRect(1001, 10, 1, 0, 2, 1, &last));
    EXPECT_EQ((std::vector<int>{0, 500, 500, 501}), (std::vector<int>{first.x, first.width, last.x, last.width}));
    TileRect tile;
    EXPECT_FALSE(tileRect(1001, 10, 2, 0, 2, 1, &tile));
    EXPECT_FALSE(tileRect(1001, 10, 0, 0, 0, 1, &tile));
}

// Tiles walk rows width x channels apart: an RGB tile goes up with alpha 255
// and comes back without it, and a record whose stride promises fewer bytes
// than that walk spans is neither read nor written.
TEST(Tiles, PackAndUnpackStayInsideTheRecord) {
    std::vector<uint8_t> pixels(3 * 4 * 3);
    for (size_t i = 0; i < pixels.size(); ++i) pixels[i] = static_cast<uint8_t>(i);
    _Image* image = create_image_header(4, 3, 3, 12);
    image->data = pixels.data();
    const TileRect tile{1, 1, 3, 2};
    std::vector<uint8_t> rgba(3 * 2 * 4);
    ASSERT_TRUE(packTileRGBA(image, tile, rgba.data()));
    EXPECT_EQ((std::vector<uint8_t>{15, 16, 17, 255, 18, 19, 20, 255}), std::vector<uint8_t>(rgba.begin(), rgba.begin() + 8));
    EXPECT_EQ((std::vector<uint8_t>{33, 34, 35, 255}), std::vector<uint8_t>(rgba.end() - 4, rgba.end()));
    for (uint8_t& b : rgba) b = static_cast<uint8_t>(b + 100);
    ASSERT_TRUE(unpackTileRGBA(rgba.data(), tile, image));
    EXPECT_EQ(115, pixels[15]);
    EXPECT_EQ(14, pixels[14]);  // left of the tile

    const std::vector<uint8_t> before = pixels;
    image->stride = 11;  // rows 12 bytes apart would end past 33 bytes
    EXPECT_FALSE(packTileRGBA(image, tile, rgba.data()));
    EXPECT_FALSE(unpackTileRGBA(rgba.data(), tile, image));
    EXPECT_EQ(before, pixels);
    image->data = nullptr;
    free_image_header(&image);
}

// Java's height of a preview frame, times 1.5 truncated toward zero, in
// integers: near the int limits the product saturates instead of an
// undefined cast.
TEST(PreviewRows, HeightTimesOneAndAHalfClampedToInt) {
    const int heights[] = {0, 3, 720, -3, INT32_MAX, INT32_MIN, 1431655765};
    const int rows[] = {0, 4, 1080, -4, INT32_MAX, INT32_MIN, INT32_MAX};
    for (size_t i = 0; i < sizeof heights / sizeof heights[0]; ++i) EXPECT_EQ(rows[i], previewRows(heights[i])) << i;
}

// An empty frame divides by zero in float: a ring slot that held counts is an
// infinite change (a new scene), an empty one is NaN (no change). An empty
// running histogram gives no curve.
TEST(BrightnessCurve, EmptyFramesAndEmptyHistograms) {
    constexpr int kFrames = 3;
    CurveParams params{0.05f, 0.95f, 1.0f, 0.0f};
    std::vector<int32_t> history(kFrames * kCurveBins, 77);
    BrightnessCurve curve;
    curve.reset(history.data(), kFrames);
    EXPECT_EQ(std::vector<int32_t>(kFrames * kCurveBins, 0), history);

    std::vector<int32_t> empty(kCurveBins, 0), frame(kCurveBins, 0);
    frame[150] = 3;
    EXPECT_EQ(BrightnessCurve::Step::Identity, curve.addFrame(empty.data(), 0, history.data(), kFrames, 0, params));
    EXPECT_EQ(1, curve.framesSinceReset());
    curve.addFrame(frame.data(), 1, history.data(), kFrames, 1, params);
    EXPECT_EQ(BrightnessCurve::Step::Reset, curve.addFrame(empty.data(), 0, history.data(), kFrames, 1, params));

    BrightnessCurve none;
    EXPECT_FALSE(none.computeCurve(params));
    EXPECT_EQ(77, none.lut()[77]);
}

using UploadTest = GLTest;

TEST_F(UploadTest, RgbImageUploadNeverReadsPastItsBytes) {
    glPixelStorei(GL_UNPACK_ALIGNMENT, 4);
    EXPECT_EQ(8u * 3 + 6, unpackedByteCount(6, 4, 1));  // rows padded to 8 but the last
    EXPECT_EQ(0u, unpackedByteCount(0, 4, 4));

    // 3 x 2 RGB under alignment 4: GL reads 12 + 9 bytes from an 18-byte image.
    std::vector<uint8_t> pixels = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16, 17, 18};
    _Image image{pixels.data(), 18, 3, 2, 3, 9, 0, 0, nullptr};
    ScopedTexture texture(1, 1, nullptr);
    uploadImageTexture(&image, texture.name());

    GLuint framebuffer = 0;
    glGenFramebuffers(1, &framebuffer);
    glBindFramebuffer(GL_FRAMEBUFFER, framebuffer);
    glFramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D, texture.name(), 0);
    auto read = readPixels(0, 0, 3, 2);
    glBindFramebuffer(GL_FRAMEBUFFER, 0);
    EXPECT_EQ((std::vector<uint8_t>{13, 14, 15, 255}), pixelAt(read, 3, 0, 1));  // second row starts at byte 12
    EXPECT_EQ((std::vector<uint8_t>{0, 0, 0, 255}), pixelAt(read, 3, 2, 1));     // beyond the image: zero

    // A turned 3 x 2 image keeps its size 24 but its rows hold 2 x 3 x 3 =
    // 18 bytes (the 0xEE tail is not the image's); GL reads 8 + 8 + 6: the
    // last row's second half is padding.
    std::vector<uint8_t> turnedPixels(24, 0xEE);
    for (int i = 0; i < 18; ++i) turnedPixels[i] = static_cast<uint8_t>(i + 1);
    _Image turned{turnedPixels.data(), 24, 2, 3, 3, 6, 0, 0, nullptr};
    uploadImageTexture(&turned, texture.name());
    glBindFramebuffer(GL_FRAMEBUFFER, framebuffer);
    read = readPixels(0, 0, 2, 3);
    glBindFramebuffer(GL_FRAMEBUFFER, 0);
    glDeleteFramebuffers(1, &framebuffer);
    EXPECT_EQ((std::vector<uint8_t>{17, 18, 0, 255}), pixelAt(read, 2, 0, 2));
    EXPECT_EQ((std::vector<uint8_t>{0, 0, 0, 255}), pixelAt(read, 2, 1, 2));
}

}  // namespace
