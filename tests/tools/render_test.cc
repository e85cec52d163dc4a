// render: the same pixels as the app's own sequence of wrapper calls for
// sample packages, and clean failures.
#include <GLES2/gl2.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "engine/filter_wraper.h"
#include "engine/gl/gl_test_support.h"
#include "image_files.h"
#include "support/gl_fixture.h"
#include "tools/tool_test_support.h"

namespace {

using filterpack::RgbaImage;

RgbaImage picture(int width, int height) {
    RgbaImage image{width, height, std::vector<uint8_t>(static_cast<size_t>(width) * height * 4)};
    for (size_t i = 0; i < image.pixels.size(); ++i) image.pixels[i] = static_cast<uint8_t>((i * 37 + 11) % 256);
    for (size_t i = 3; i < image.pixels.size(); i += 4) image.pixels[i] = 255;
    return image;
}

// The app's path: nativeInitialWithString, nativeRenderContext on its own
// texture, nativeGetOutputText, then a read-back of that texture.
std::vector<uint8_t> renderLikeTheApp(const char* package, const RgbaImage& input) {
    const GLuint texture = gltest::makeTexture(input.width, input.height, input.pixels.data());
    std::vector<uint8_t> output;
    {
        HFFilterWraper wraper(package);
        wraper.renderTexture(static_cast<int>(texture), input.width, input.height);
        output = gltest::readTexture(static_cast<GLuint>(wraper.outputTexture()), input.width, input.height);
    }
    glDeleteTextures(1, &texture);
    return output;
}

class RenderTest : public GLTest {
protected:
    void SetUp() override {
        GLTest::SetUp();
        std::string error;
        ASSERT_TRUE(filterpack::writePngFile(scratch.root() + "/in.png", input, &error)) << error;
    }

    tooltest::CommandResult render(const std::string& bundle, const std::string& package, const std::string& in) {
        return tooltest::runFilterpack("render " + bundle + " " + package + " " + scratch.root() + "/" + in + " " +
                                       scratch.root() + "/" + package + ".png");
    }

    tooltest::ScratchBundle scratch;
    const RgbaImage input = picture(48, 32);
};

TEST_F(RenderTest, CommandMatchesTheAppPathOnSamplePackages) {
    filterpack::BundleDirectory samples(SAMPLE_BUNDLE);
    const filterpack::InstalledBundle installed(&samples);
    for (const char* package : {"dreamy", "film_grain", "fade_curve"}) {
        const tooltest::CommandResult result = render(SAMPLE_BUNDLE, package, "in.png");
        ASSERT_EQ(result.status, 0) << result.output;
        RgbaImage written;
        std::string error;
        ASSERT_TRUE(filterpack::readImageFile(scratch.root() + "/" + package + ".png", &written, &error)) << error;
        ASSERT_EQ(std::make_pair(written.width, written.height), std::make_pair(input.width, input.height));
        EXPECT_EQ(written.pixels, renderLikeTheApp(package, input)) << package;
        EXPECT_NE(written.pixels, input.pixels) << package << " changed nothing";
    }
}

TEST_F(RenderTest, BrokenPackageFailsWithTheEngineReason) {
    scratch.write("filter/half/filter.xml", "<model><filter implement=\"x\"/><relation output=\"0\"/></model>");
    const tooltest::CommandResult missing = render(scratch.root(), "absent", "in.png");
    EXPECT_EQ(missing.status, 1);
    EXPECT_NE(missing.output.find("filter package absent (filter/absent/filter.xml): cannot be read"),
              std::string::npos)
        << missing.output;
    const tooltest::CommandResult half = render(scratch.root(), "half", "in.png");
    EXPECT_EQ(half.status, 1);
    EXPECT_NE(half.output.find("relation needs"), std::string::npos) << half.output;
    EXPECT_EQ(render(scratch.root(), "half", "none.png").status, 1);
}

}  // namespace
