// The filterpack commands as a designer runs them: broken packages make
// every command fail with a reason, bench refuses what it cannot time, and
// render's outputs hold exactly the pixels the package makes.
#include <gtest/gtest.h>

#include <fstream>
#include <string>
#include <vector>

#include "glsl_check.h"
#include "image_files.h"
#include "support/gl_fixture.h"
#include "tools/tool_test_support.h"

namespace {

using filterpack::RgbaImage;

// out = vec4(1 - rgb, a) * scale + offset: exact on 8-bit values for the
// scales used below.
const char kInvertFragment[] =
    "<![CDATA[precision highp float; varying vec2 uv; uniform sampler2D inputImageTexture;\n"
    "uniform float scale; uniform vec4 offset;\n"
    "void main() { vec4 c = texture2D(inputImageTexture, uv);\n"
    "  gl_FragColor = vec4(1.0 - c.rgb, c.a) * scale + offset; }]]>";

const char kInvertPackage[] =
    "<filter implement=\"invert\"><param><name>scale</name><float>1</float></param>"
    "<param><name>offset</name><vector4f><number>0</number><number>0</number><number>0</number>"
    "<number>0</number></vector4f></param></filter>";

// A 2x2 picture with distinct, exactly halvable values.
RgbaImage picture() { return RgbaImage{2, 2, {0, 64, 128, 255, 32, 96, 160, 255, 200, 100, 50, 255, 250, 2, 4, 255}}; }

class FilterpackCommand : public GLTest {
protected:
    void SetUp() override {
        GLTest::SetUp();
        bundle.write("filter/gl/invert.xml", tooltest::glDescription(kInvertFragment));
        bundle.write("filter/invert/filter.xml", kInvertPackage);
        std::string error;
        ASSERT_TRUE(filterpack::writePngFile(path("in.png"), picture(), &error)) << error;
    }

    std::string path(const std::string& name) const { return bundle.root() + "/" + name; }

    // Runs filterpack; the status must be `status` and the output must hold
    // each of `lines`.
    std::string run(const std::string& arguments, int status, const std::vector<std::string>& lines = {}) const {
        const tooltest::CommandResult result = tooltest::runFilterpack(arguments);
        EXPECT_EQ(result.status, status) << arguments << "\n" << result.output;
        for (const std::string& line : lines) {
            EXPECT_NE(result.output.find(line), std::string::npos) << arguments << "\n" << result.output;
        }
        return result.output;
    }

    RgbaImage read(const std::string& name) const {
        RgbaImage image;
        std::string error;
        EXPECT_TRUE(filterpack::readImageFile(path(name), &image, &error)) << error;
        return image;
    }

    tooltest::ScratchBundle bundle;
};

// A broken or missing package: lint, render and bench all exit with 1 and
// say why (each kind of finding is lint's own test); bench prints no time
// for a package that never ran.
TEST_F(FilterpackCommand, EveryCommandFailsOnABrokenPackage) {
    bundle.write("filter/gl/broken.xml", tooltest::glDescription("precision mediump float; void main() { oops; }"));
    bundle.write("filter/shader/filter.xml", "<filter implement=\"broken\"/>");
    const struct {
        const char* package;
        std::vector<std::string> reasons;
    } cases[] = {
        {"shader",
         {filterpack::GlslProgramCheck::available()
              ? "filter/gl/broken.xml:3: error: <fragment>: glslang: 'oops' : undeclared identifier"
              : "filter/gl/broken.xml:3: error: <fragment>: the GL driver ("}},
        {"absent", {"missing from the bundle"}},
    };
    for (const auto& c : cases) {
        const std::string name = c.package;
        run("lint " + bundle.root() + " " + name, 1, c.reasons);
        std::vector<std::string> rendered = c.reasons;
        rendered.push_back("run filterpack lint for all of them");
        run("render " + bundle.root() + " " + name + " " + path("in.png") + " " + path("out.png"), 1, rendered);
        const std::string bench = run("bench " + bundle.root() + " " + name + " 8x8 2", 1, c.reasons);
        EXPECT_EQ(bench.find("ms/frame"), std::string::npos) << bench;
    }
    // With no package named, lint checks every package of the bundle.
    run("lint " + bundle.root(), 1, {"invert: 0 error(s)", "shader: 2 error(s)"});
    run("render " + bundle.root() + " invert " + path("none.png") + " " + path("out.png"), 1, {"none.png"});
}

TEST_F(FilterpackCommand, BenchRefusesWhatItCannotTimeAndNamesTheRenderer) {
    GLint limit = 0;
    glGetIntegerv(GL_MAX_TEXTURE_SIZE, &limit);
    const std::string renderer = reinterpret_cast<const char*>(glGetString(GL_RENDERER));
    const std::string bench = "bench " + bundle.root() + " invert ";
    run(bench + std::to_string(limit + 1) + "x32 2", 1,
        {"is larger than " + renderer + " allows: GL_MAX_TEXTURE_SIZE is " + std::to_string(limit)});
    run(bench + "32x" + std::to_string(limit + 1) + " 2", 1, {"GL_MAX_TEXTURE_SIZE"});
    run(bench + "100000x100000 2", 1, {"GL_MAX_TEXTURE_SIZE"});
    run(bench + "12x8 3", 0, {"invert 12x8 on " + renderer + ": ", " ms/frame over 3 frames", "pass 1 invert/invert"});
    run(bench + "12x8 3 --param scale=2,2", 2, {"--param scale has 2 numbers"});
}

// --compare: before | after | |after - before| x 4; --param replaces the
// XML's value through the same uniform setters.
TEST_F(FilterpackCommand, RenderWritesComparisonsAndTakesParameters) {
    const std::string render = "render " + bundle.root() + " invert " + path("in.png") + " ";
    run(render + path("plain.png"), 0);
    run(render + path("sheet.png") + " --compare", 0);
    run(render + path("half.png") + " --param scale=0.5 --param offset=0.25,0,0,0", 0);
    const RgbaImage input = picture();
    const RgbaImage plain = read("plain.png");
    const RgbaImage sheet = read("sheet.png");
    const RgbaImage half = read("half.png");
    ASSERT_EQ(plain.pixels.size(), input.pixels.size());
    ASSERT_EQ(half.pixels.size(), input.pixels.size());
    ASSERT_EQ(sheet.width, 6);
    ASSERT_EQ(sheet.height, 2);
    for (size_t i = 0; i < input.pixels.size(); ++i) {
        const bool alpha = i % 4 == 3;
        const int inverted = alpha ? input.pixels[i] : 255 - input.pixels[i];
        EXPECT_EQ(plain.pixels[i], inverted) << i;
        const int halved = alpha ? 128 : inverted / 2 + (i % 4 == 0 ? 64 : 0);
        EXPECT_NEAR(half.pixels[i], halved, 1) << i;
        const size_t y = i / 8, x = i % 8;
        EXPECT_EQ(sheet.pixels[y * 24 + x], input.pixels[i]) << i;
        EXPECT_EQ(sheet.pixels[y * 24 + 8 + x], inverted) << i;
        const int difference = alpha ? 255 : std::min(255, std::abs(inverted - input.pixels[i]) * 4);
        EXPECT_EQ(sheet.pixels[y * 24 + 16 + x], difference) << i;
    }
    // The format follows the extension: JPEG is written, anything else refused.
    run(render + path("out.jpg"), 0);
    std::ifstream jpeg(path("out.jpg"), std::ios::binary);
    EXPECT_EQ(jpeg.get(), 0xFF);
    EXPECT_EQ(jpeg.get(), 0xD8);
    run(render + path("out.gif"), 1, {"out.gif: the output format follows the extension: .png, .jpg or .jpeg"});
    run(render + path("out.png") + " --param scael=1", 1,
        {"--param scael: no GL filter of package invert has a uniform scael; did you mean scale?"});
    run(render + path("out.png") + " --param offset=1", 1, {"--param offset is a float, uniform offset is a vec4"});
}

}  // namespace
