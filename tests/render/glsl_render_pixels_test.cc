#include <cmath>
#include <numeric>

#include "render/brightness_curve.h"
#include "render/pixel_uploads.h"
#include "render/tiles.h"
#include "render_gl_helpers.h"
#include "support/gl_fixture.h"

namespace {

TEST(Tiles, CountsFitTheLimitAndLastTileTakesRemainder) {
    EXPECT_EQ(2, tileCountForWidth(5000, 4096));
    EXPECT_EQ(1, tileCountForWidth(4096, 4096));
    EXPECT_EQ(1, tileCountForHeight(3000, 4096));
    EXPECT_EQ(3, tileCountForHeight(9000, 4096));  // 4500 does not fit, 3002 does
    EXPECT_EQ(7, tileCountForWidth(7, 0));         // no limit known: stops at 1-pixel tiles

    TileRect tile;
    ASSERT_TRUE(tileRect(1001, 10, 1, 0, 2, 1, &tile));
    EXPECT_EQ(500, tile.x);
    EXPECT_EQ(501, tile.width);
    ASSERT_TRUE(tileRect(1001, 10, 0, 0, 2, 1, &tile));
    EXPECT_EQ(500, tile.width);
    EXPECT_FALSE(tileRect(1001, 10, 2, 0, 2, 1, &tile));
    EXPECT_FALSE(tileRect(1001, 10, 0, 0, 0, 1, &tile));
}

TEST(Tiles, RgbTileRoundTripsThroughRgba) {
    // 5 x 3 RGB image, tile (1, 1) of a 2 x 2 grid: x 2..4, y 1..2.
    std::vector<uint8_t> pixels(5 * 3 * 3);
    std::iota(pixels.begin(), pixels.end(), 0);
    _Image image{pixels.data(), static_cast<uint32_t>(pixels.size()), 5, 3, 3, 15, 0, 0, nullptr};
    TileRect tile;
    ASSERT_TRUE(tileRect(5, 3, 1, 1, 2, 2, &tile));
    ASSERT_EQ(3, tile.width);
    ASSERT_EQ(2, tile.height);
    std::vector<uint8_t> packed(3 * 2 * 4);
    ASSERT_TRUE(packTileRGBA(&image, tile, packed.data()));
    EXPECT_EQ(rgba(21, 22, 23, 255), pixelAt(packed, 3, 0, 0));  // row 1, x 2
    EXPECT_EQ(rgba(42, 43, 44, 255), pixelAt(packed, 3, 2, 1));  // row 2, x 4

    std::vector<uint8_t> copy(pixels.size(), 0);
    _Image target = image;
    target.data = copy.data();
    unpackTileRGBA(packed.data(), tile, &target);
    EXPECT_EQ(0, copy[20]);   // x 1 of row 1 stays outside the tile
    EXPECT_EQ(21, copy[21]);
    EXPECT_EQ(44, copy[44]);
}

TEST(ScaleBitmap, MaskClearsSourceOrBackground) {
    const uint32_t src[4] = {1, 2, 3, 4};  // 2 x 2
    const uint32_t mask[6] = {0, kMaskCleared, 0, 0, 0, 0};  // 3 x 2
    uint32_t dst[6];
    updateScaleBitmap(src, 2, 2, mask, 3, 2, dst, 0, 1);
    // Row 0: sx 1 -> 2, cleared, sx 3 outside; row 1: 4, outside, outside.
    const uint32_t expected[6] = {2, 0, kScaleBackground, 4, kScaleBackground, kScaleBackground};
    EXPECT_EQ(0, memcmp(expected, dst, sizeof dst));
    updateScaleBitmap(src, 2, 2, mask, 3, 2, dst, -1, 0);
    EXPECT_EQ(kScaleBackground, dst[0]);  // negative offY: whole first row background
    EXPECT_EQ(kScaleBackground, dst[2]);
    EXPECT_EQ(1u, dst[3]);
    const uint8_t* bytes = reinterpret_cast<const uint8_t*>(&kScaleBackground);
    EXPECT_EQ(0x24, bytes[0]);
}

class CurveTest : public ::testing::Test {
protected:
    static constexpr int kFrames = 3;
    CurveParams params{0.05f, 0.95f, 1.0f, 0.0f};
    std::vector<int32_t> history = std::vector<int32_t>(kFrames * kCurveBins, 77);
    BrightnessCurve curve;

    static std::vector<int32_t> frameAt(int bin, int32_t count) {
        std::vector<int32_t> frame(kCurveBins, 0);
        frame[bin] = count;
        return frame;
    }
};

TEST_F(CurveTest, IdentityUntilEnoughFramesThenResetOnSceneChange) {
    curve.reset(history.data(), kFrames);
    EXPECT_EQ(std::vector<int32_t>(kFrames * kCurveBins, 0), history);
    // 100 pixels of a flat 150 frame: 300 counts, change 3 per pixel.
    auto frame = frameAt(150, 300);
    EXPECT_EQ(BrightnessCurve::Step::Identity, curve.addFrame(frame.data(), 100, history.data(), kFrames, 0, params));
    EXPECT_EQ(BrightnessCurve::Step::Identity, curve.addFrame(frame.data(), 100, history.data(), kFrames, 1, params));
    EXPECT_EQ(300, history[kCurveBins + 150]);
    EXPECT_EQ(600, curve.runningHistogram()[150]);
    EXPECT_EQ(42, curve.lut()[42]);
    // Third frame: enough frames, but a single bin gives norm 0, below the
    // threshold: table kept.
    params.threshold = 0.1f;
    EXPECT_EQ(BrightnessCurve::Step::Kept, curve.addFrame(frame.data(), 100, history.data(), kFrames, 2, params));
    // Replacing slot 0 by a bin-10 frame changes 600 counts: 6 per pixel.
    auto dark = frameAt(10, 300);
    EXPECT_EQ(BrightnessCurve::Step::Reset, curve.addFrame(dark.data(), 100, history.data(), kFrames, 0, params));
    EXPECT_EQ(0, curve.framesSinceReset());
    EXPECT_EQ(0, history[10]);
}

// An empty frame divides by zero in float: a ring slot that held counts is an
// infinite change (a new scene), an empty one is NaN (no change).
TEST_F(CurveTest, EmptyFrameChangesSceneOnlyWhenItsSlotHeldCounts) {
    curve.reset(history.data(), kFrames);
    auto empty = frameAt(0, 0);
    EXPECT_EQ(BrightnessCurve::Step::Identity, curve.addFrame(empty.data(), 0, history.data(), kFrames, 0, params));
    EXPECT_EQ(1, curve.framesSinceReset());
    auto frame = frameAt(150, 3);
    curve.addFrame(frame.data(), 1, history.data(), kFrames, 1, params);
    EXPECT_EQ(BrightnessCurve::Step::Reset, curve.addFrame(empty.data(), 0, history.data(), kFrames, 1, params));
}

TEST_F(CurveTest, GammaCurveFromRunningHistogram) {
    int32_t* running = curve.mutableRunningHistogram();
    // 100 counts at bins 20, 100 and 200: low 20, high 200, mean 106.
    running[20] = running[100] = running[200] = 100;
    params.lowFrac = 0.2f;
    params.highFrac = 0.8f;
    ASSERT_TRUE(curve.computeCurve(params));
    float norm = (106.0f - 20.0f) / 180.0f;
    float gamma = static_cast<float>(log(0.5) / log(norm));
    EXPECT_EQ(0, curve.lut()[19]);
    EXPECT_EQ(0, curve.lut()[20]);
    for (int k : {1, 50, 179}) {
        double expected = pow(static_cast<float>(k) / 180.0f, static_cast<double>(gamma)) * 255.0;
        EXPECT_EQ(static_cast<uint8_t>(expected), curve.lut()[20 + k]) << k;
    }
    EXPECT_EQ(255, curve.lut()[200]);

    // Everything below bin 100: the table stays as it was.
    BrightnessCurve dark;
    dark.mutableRunningHistogram()[50] = 10;
    dark.mutableRunningHistogram()[99] = 10;
    EXPECT_FALSE(dark.computeCurve(params));
    EXPECT_EQ(77, dark.lut()[77]);
    BrightnessCurve empty;
    EXPECT_FALSE(empty.computeCurve(params));
}

using UploadTest = GLTest;

// Reads a texture back through a framebuffer.
std::vector<uint8_t> readTexture(GLuint texture, int width, int height) {
    GLuint framebuffer = 0;
    glGenFramebuffers(1, &framebuffer);
    glBindFramebuffer(GL_FRAMEBUFFER, framebuffer);
    glFramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D, texture, 0);
    std::vector<uint8_t> pixels(static_cast<size_t>(width) * height * 4);
    glPixelStorei(GL_PACK_ALIGNMENT, 1);
    glReadPixels(0, 0, width, height, GL_RGBA, GL_UNSIGNED_BYTE, pixels.data());
    glBindFramebuffer(GL_FRAMEBUFFER, 0);
    glDeleteFramebuffers(1, &framebuffer);
    return pixels;
}

TEST_F(UploadTest, CurveTextureHoldsCurveInSixteenRows) {
    ScopedTexture texture(1, 1, nullptr);
    const int32_t curve[3] = {0x105, 7, 255};
    uploadCurveTexture(curve, 3, texture.name());
    auto pixels = readTexture(texture.name(), 3, 16);
    for (int row : {0, 15}) {
        EXPECT_EQ(5, pixelAt(pixels, 3, 0, row)[0]);  // low byte only
        EXPECT_EQ(7, pixelAt(pixels, 3, 1, row)[1]);
        EXPECT_EQ(255, pixelAt(pixels, 3, 2, row)[2]);
    }
    EXPECT_EQ(GL_NO_ERROR, glGetError());
}

TEST_F(UploadTest, PreviewFrameUploadsOneAndAHalfRowsAndNeededBytesFollowAlignment) {
    EXPECT_EQ(720, previewRows(480));
    EXPECT_EQ(4, previewRows(3));
    glPixelStorei(GL_UNPACK_ALIGNMENT, 4);
    EXPECT_EQ(8u * 3 + 6, unpackedByteCount(6, 4, 1));  // rows padded to 8 but the last
    EXPECT_EQ(6u * 4 * 4, unpackedByteCount(6, 4, 4));
    EXPECT_EQ(0u, unpackedByteCount(0, 4, 4));
    glPixelStorei(GL_UNPACK_ALIGNMENT, 1);
    std::vector<uint8_t> frame(4 * 6, 9);
    frame[4 * 5] = 200;  // first chroma row
    ScopedTexture texture(1, 1, nullptr);
    uploadPreviewFrame(frame.data(), texture.name(), 4, 4);
    EXPECT_EQ(GL_NO_ERROR, glGetError());
    GLint filter = 0;
    glGetTexParameteriv(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, &filter);
    EXPECT_EQ(GL_NEAREST, filter);
    glPixelStorei(GL_UNPACK_ALIGNMENT, 4);
}

TEST_F(UploadTest, RgbImageUploadNeverReadsPastItsBytes) {
    // 3 x 2 RGB under alignment 4: GL reads 12 + 9 bytes from an 18-byte image.
    std::vector<uint8_t> pixels = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16, 17, 18};
    _Image image{pixels.data(), 18, 3, 2, 3, 9, 0, 0, nullptr};
    ScopedTexture texture(1, 1, nullptr);
    glPixelStorei(GL_UNPACK_ALIGNMENT, 4);
    uploadImageTexture(&image, texture.name());
    auto read = readTexture(texture.name(), 3, 2);
    EXPECT_EQ(rgba(13, 14, 15, 255), pixelAt(read, 3, 0, 1));  // second row starts at byte 12
    EXPECT_EQ(rgba(0, 0, 0, 255), pixelAt(read, 3, 2, 1));     // beyond the image: zero
}

}  // namespace
