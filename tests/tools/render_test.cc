// render: exact pixels of a small package, the same pixels as the app's own
// sequence of wrapper calls for a sample package, and clean failures.
#include <GLES2/gl2.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "engine/filter_wraper.h"
#include "support/gl_fixture.h"
#include "image_files.h"
#include "package_render.h"
#include "seal.h"
#include "tools/tool_test_support.h"

namespace {

using filterpack::RgbaImage;

// Inverts the channels the mask selects; 8-bit values map back exactly.
const char kInvertFragment[] =
    "precision mediump float;\n"
    "varying vec2 uv;\n"
    "uniform sampler2D inputImageTexture;\n"
    "uniform vec4 mask;\n"
    "void main() {\n"
    "  vec4 c = texture2D(inputImageTexture, uv);\n"
    "  gl_FragColor = vec4(abs(mask.rgb - c.rgb), c.a);\n"
    "}\n";

std::string sealed(filterpack::SealForm form, const std::string& plain) {
    std::string text;
    std::string error;
    filterpack::sealShaderSource(form, plain, &text, &error);
    return text;
}

RgbaImage picture(int width, int height) {
    RgbaImage image{width, height, std::vector<uint8_t>(static_cast<size_t>(width) * height * 4)};
    for (size_t i = 0; i < image.pixels.size(); ++i) image.pixels[i] = static_cast<uint8_t>((i * 37 + 11) % 256);
    for (size_t i = 3; i < image.pixels.size(); i += 4) image.pixels[i] = 255;
    return image;
}

class RenderTest : public GLTest {};

TEST_F(RenderTest, SealedLeafPackageGivesExactPixels) {
    tooltest::ScratchBundle bundle;
    bundle.write("filter/gl/invert_mask.xml",
                 tooltest::glDescription(sealed(filterpack::SealForm::kIos, kInvertFragment)));
    bundle.write("filter/render_invert/filter.xml",
                 "<filter implement=\"invert_mask\"><param><name>mask</name><vector4f>"
                 "<number>1</number><number>0</number><number>1</number><number>0</number></vector4f></param></filter>");
    filterpack::BundleDirectory directory(bundle.root());
    const filterpack::InstalledBundle installed(&directory);

    const RgbaImage input = picture(3, 2);
    RgbaImage output;
    ASSERT_TRUE(filterpack::renderPackage("render_invert", input, &output));
    ASSERT_EQ(output.width, 3);
    ASSERT_EQ(output.height, 2);
    for (size_t i = 0; i < input.pixels.size(); i += 4) {
        EXPECT_EQ(output.pixels[i], 255 - input.pixels[i]) << "pixel " << i / 4;
        EXPECT_EQ(output.pixels[i + 1], input.pixels[i + 1]) << "pixel " << i / 4;
        EXPECT_EQ(output.pixels[i + 2], 255 - input.pixels[i + 2]) << "pixel " << i / 4;
        EXPECT_EQ(output.pixels[i + 3], 255) << "pixel " << i / 4;
    }
}

// The app's path: nativeInitialWithString, nativeRenderContext on its own
// texture, nativeGetOutputText, then a read-back of that texture.
RgbaImage renderLikeTheApp(const char* package, const RgbaImage& input) {
    GLuint texture = 0;
    glGenTextures(1, &texture);
    glBindTexture(GL_TEXTURE_2D, texture);
    glPixelStorei(GL_UNPACK_ALIGNMENT, 1);
    glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA, input.width, input.height, 0, GL_RGBA, GL_UNSIGNED_BYTE,
                 input.pixels.data());
    RgbaImage output{input.width, input.height, std::vector<uint8_t>(input.pixels.size())};
    {
        HFFilterWraper wraper(package);
        wraper.renderTexture(static_cast<int>(texture), input.width, input.height);
        GLuint framebuffer = 0;
        glGenFramebuffers(1, &framebuffer);
        glBindFramebuffer(GL_FRAMEBUFFER, framebuffer);
        glFramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D,
                               static_cast<GLuint>(wraper.outputTexture()), 0);
        glPixelStorei(GL_PACK_ALIGNMENT, 1);
        glReadPixels(0, 0, input.width, input.height, GL_RGBA, GL_UNSIGNED_BYTE, output.pixels.data());
        glBindFramebuffer(GL_FRAMEBUFFER, 0);
        glDeleteFramebuffers(1, &framebuffer);
    }
    glDeleteTextures(1, &texture);
    return output;
}

TEST_F(RenderTest, CommandMatchesTheAppPathOnSamplePackages) {
    tooltest::ScratchBundle scratch;
    const RgbaImage input = picture(48, 32);
    std::string error;
    ASSERT_TRUE(filterpack::writePngFile(scratch.root() + "/in.png", input, &error)) << error;

    filterpack::BundleDirectory samples(SAMPLE_BUNDLE);
    const filterpack::InstalledBundle installed(&samples);
    for (const char* package : {"dreamy", "film_grain", "fade_curve"}) {
        const std::string out = scratch.root() + "/" + package + ".png";
        const tooltest::CommandResult result = tooltest::runFilterpack(std::string("render ") + SAMPLE_BUNDLE + " " +
                                                                       package + " " + scratch.root() + "/in.png " + out);
        ASSERT_EQ(result.status, 0) << result.output;
        RgbaImage written;
        ASSERT_TRUE(filterpack::readImageFile(out, &written, &error)) << error;
        const RgbaImage expected = renderLikeTheApp(package, input);
        ASSERT_EQ(written.width, expected.width);
        ASSERT_EQ(written.height, expected.height);
        EXPECT_EQ(written.pixels, expected.pixels) << package;
        EXPECT_NE(written.pixels, input.pixels) << package << " changed nothing";
    }
}

TEST_F(RenderTest, BrokenPackageFailsWithTheEngineReason) {
    tooltest::ScratchBundle scratch;
    std::string error;
    ASSERT_TRUE(filterpack::writePngFile(scratch.root() + "/in.png", picture(4, 4), &error));
    scratch.write("filter/half/filter.xml", "<model><filter implement=\"x\"/><relation output=\"0\"/></model>");

    const tooltest::CommandResult missing =
        tooltest::runFilterpack("render " + scratch.root() + " absent " + scratch.root() + "/in.png " +
                                scratch.root() + "/out.png");
    EXPECT_EQ(missing.status, 1);
    EXPECT_NE(missing.output.find("filter package absent (filter/absent/filter.xml): cannot be read"),
              std::string::npos)
        << missing.output;
    const tooltest::CommandResult half = tooltest::runFilterpack(
        "render " + scratch.root() + " half " + scratch.root() + "/in.png " + scratch.root() + "/out.png");
    EXPECT_EQ(half.status, 1);
    EXPECT_NE(half.output.find("relation needs"), std::string::npos) << half.output;
    const tooltest::CommandResult unreadable = tooltest::runFilterpack(
        "render " + scratch.root() + " half " + scratch.root() + "/none.png " + scratch.root() + "/out.png");
    EXPECT_EQ(unreadable.status, 1);
}

TEST_F(RenderTest, BenchReportsMillisecondsPerFrame) {
    const tooltest::CommandResult result = tooltest::runFilterpack(std::string("bench ") + SAMPLE_BUNDLE + " mono 64x48 3");
    ASSERT_EQ(result.status, 0) << result.output;
    EXPECT_NE(result.output.find("mono 64x48: "), std::string::npos) << result.output;
    EXPECT_NE(result.output.find(" ms/frame over 3 frames"), std::string::npos);
    EXPECT_EQ(tooltest::runFilterpack(std::string("bench ") + SAMPLE_BUNDLE + " mono 64 3").status, 2);
}

}  // namespace
