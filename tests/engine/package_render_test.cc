// Packages rendered end to end on Mesa: real GL leaves read from a bundle
// directory, pixels read back from the wrapper's output texture.
#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <string>

#include "engine/filter_wraper.h"
#include "engine/resource_loader.h"
#include "support/gl_fixture.h"

namespace {

const char* const kVertex =
    "attribute vec4 position; attribute vec2 inputTextureCoordinate; varying vec2 uv;"
    " void main(){ gl_Position = position; uv = inputTextureCoordinate; }";

std::string glDescription(const std::string& fragmentBody) {
    return "<glfilter><vertex>" + std::string(kVertex) +
           "</vertex><fragment>precision mediump float; varying vec2 uv; uniform sampler2D inputImageTexture;"
           " uniform sampler2D inputImageTexture2; uniform float amount; void main(){ " +
           fragmentBody + " }</fragment></glfilter>";
}

class PackageRenderTest : public GLTest {
protected:
    static void SetUpTestSuite() {
        char pattern[] = "/tmp/engine_bundle_XXXXXX";
        root = mkdtemp(pattern);
        write("filter/gl/e2e_invert.xml",
              glDescription("vec4 c = texture2D(inputImageTexture, uv); gl_FragColor = vec4(1.0 - c.rgb, 1.0);"));
        write("filter/gl/e2e_scale.xml",
              glDescription("vec4 c = texture2D(inputImageTexture, uv); gl_FragColor = vec4(c.rgb * amount, 1.0);"));
        write("filter/gl/e2e_second.xml", glDescription("gl_FragColor = texture2D(inputImageTexture2, uv);"));
        write("filter/e2e_invert/filter.xml", "<filter implement='e2e_invert'/>");
        write("filter/e2e_chain/filter.xml",
              "<model><filter include='e2e_invert'/>"
              "<filter implement='e2e_scale'><param><name>amount</name><float>0.5</float></param></filter>"
              "</model>");
        // The second child reads the package input at its input 1, not the
        // inverted image at input 0.
        write("filter/e2e_relation/filter.xml",
              "<model><filter include='e2e_invert'/><filter implement='e2e_second'/>"
              "<relation output='-1' input='1' index='1'/></model>");
        write("filter/e2e_cpu_last/filter.xml", "<filter implement='Curve2D' prefer='CPU'/>");
    }

    static void TearDownTestSuite() { std::system(("rm -rf " + root).c_str()); }

    static void write(const std::string& path, const std::string& text) {
        const std::string full = root + "/" + path;
        std::string directory = full.substr(0, full.rfind('/'));
        ASSERT_EQ(0, std::system(("mkdir -p " + directory).c_str()));
        std::ofstream(full) << text;
    }

    void SetUp() override {
        GLTest::SetUp();
        provider = std::make_unique<HFDirectoryResourceProvider>(root);
        previous = HFResourceLoader_setProvider(provider.get());
        input = solidTexture(4, 4, 11, 21, 31);
    }

    void TearDown() override {
        glDeleteTextures(1, &input);
        HFResourceLoader_setProvider(previous);
    }

    static GLuint solidTexture(int width, int height, unsigned char r, unsigned char g, unsigned char b) {
        std::vector<unsigned char> pixels;
        for (int i = 0; i < width * height; ++i) pixels.insert(pixels.end(), {r, g, b, 255});
        GLuint name = 0;
        glGenTextures(1, &name);
        glBindTexture(GL_TEXTURE_2D, name);
        glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA, width, height, 0, GL_RGBA, GL_UNSIGNED_BYTE, pixels.data());
        glBindTexture(GL_TEXTURE_2D, 0);
        return name;
    }

    // Top-left pixel of a texture, through a framebuffer of our own.
    static std::vector<unsigned char> firstPixel(GLuint texture) {
        GLuint framebuffer = 0;
        glGenFramebuffers(1, &framebuffer);
        glBindFramebuffer(GL_FRAMEBUFFER, framebuffer);
        glFramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D, texture, 0);
        std::vector<unsigned char> pixel = readPixels(0, 0, 1, 1);
        glBindFramebuffer(GL_FRAMEBUFFER, 0);
        glDeleteFramebuffers(1, &framebuffer);
        return pixel;
    }

    std::vector<unsigned char> renderPackage(const char* name) {
        HFFilterWraper wraper(name);
        EXPECT_TRUE(wraper.hasFilter()) << name;
        wraper.renderTexture(static_cast<int>(input), 4, 4);
        const int output = wraper.outputTexture();
        EXPECT_NE(0, output) << name;
        return output != 0 ? firstPixel(static_cast<GLuint>(output)) : std::vector<unsigned char>();
    }

    static std::string root;
    std::unique_ptr<HFDirectoryResourceProvider> provider;
    HFResourceProvider* previous = nullptr;
    GLuint input = 0;
};

std::string PackageRenderTest::root;

using Pixel = std::vector<unsigned char>;

TEST_F(PackageRenderTest, LeafPackageRendersTheCallerTexture) {
    EXPECT_EQ((Pixel{244, 234, 224, 255}), renderPackage("e2e_invert"));
    // The caller's pixels survive and its sampling is now linear/clamped.
    EXPECT_EQ((Pixel{11, 21, 31, 255}), firstPixel(input));
    GLint wrap = 0;
    glBindTexture(GL_TEXTURE_2D, input);
    glGetTexParameteriv(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, &wrap);
    glBindTexture(GL_TEXTURE_2D, 0);
    EXPECT_EQ(GL_CLAMP_TO_EDGE, wrap);
}

GLint integer(GLenum name) {
    GLint value = 0;
    glGetIntegerv(name, &value);
    return value;
}

GLint boundOnUnit(GLenum unit) {
    glActiveTexture(unit);
    return integer(GL_TEXTURE_BINDING_2D);
}

// What a frame leaves bound: inputs on units 2 up, the last upload/resize on
// unit 3, the filter's own framebuffer and viewport, blending off.
TEST_F(PackageRenderTest, FrameLeavesTheFilterTargetAndInputUnitsBound) {
    HFFilterWraper wraper("e2e_invert");
    glEnable(GL_BLEND);
    for (int frame = 0; frame < 2; ++frame) {
        SCOPED_TRACE(frame);
        wraper.renderTexture(static_cast<int>(input), 4, 4);
        const GLint output = wraper.outputTexture();
        EXPECT_EQ(GL_TEXTURE2, integer(GL_ACTIVE_TEXTURE));
        EXPECT_FALSE(glIsEnabled(GL_BLEND));
        GLint viewport[4] = {};
        glGetIntegerv(GL_VIEWPORT, viewport);
        EXPECT_EQ(4, viewport[2]);
        EXPECT_EQ(4, viewport[3]);
        EXPECT_NE(0, integer(GL_FRAMEBUFFER_BINDING));
        GLint attached = 0;
        glGetFramebufferAttachmentParameteriv(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0,
                                              GL_FRAMEBUFFER_ATTACHMENT_OBJECT_NAME, &attached);
        EXPECT_EQ(output, attached);
        EXPECT_EQ(0, boundOnUnit(GL_TEXTURE0));
        EXPECT_EQ(0, boundOnUnit(GL_TEXTURE1));
        EXPECT_EQ(static_cast<GLint>(input), boundOnUnit(GL_TEXTURE2));
        // The first frame sizes the output last; later frames only record the
        // caller's size, which binds the caller's texture there.
        EXPECT_EQ(frame == 0 ? output : static_cast<GLint>(input), boundOnUnit(GL_TEXTURE3));
    }
    glBindFramebuffer(GL_FRAMEBUFFER, 0);
    glActiveTexture(GL_TEXTURE0);
    EXPECT_EQ(GLenum(GL_NO_ERROR), glGetError());
}

TEST_F(PackageRenderTest, ModelChainsLeavesWithTheirParameters) {
    EXPECT_EQ((Pixel{122, 117, 112, 255}), renderPackage("e2e_chain"));
}

TEST_F(PackageRenderTest, RelationFeedsThePackageInputToALaterChild) {
    EXPECT_EQ((Pixel{11, 21, 31, 255}), renderPackage("e2e_relation"));
}

TEST_F(PackageRenderTest, CPULastFilterHasNoGLOutput) {
    HFFilterWraper wraper("e2e_cpu_last");
    ASSERT_TRUE(wraper.hasFilter());
    wraper.renderTexture(static_cast<int>(input), 4, 4);
    EXPECT_EQ(0, wraper.outputTexture());
}

TEST_F(PackageRenderTest, ManyCyclesLeaveNoTextureBehind) {
    std::vector<GLuint> outputs;
    for (int cycle = 0; cycle < 1000; ++cycle) {
        HFFilterWraper wraper("e2e_chain");
        wraper.renderTexture(static_cast<int>(input), 4, 4);
        if (cycle % 100 == 0) outputs.push_back(static_cast<GLuint>(wraper.outputTexture()));
    }
    for (GLuint name : outputs) EXPECT_FALSE(glIsTexture(name)) << name;
    EXPECT_TRUE(glIsTexture(input));
    EXPECT_EQ(GLenum(GL_NO_ERROR), glGetError());
}

}  // namespace
