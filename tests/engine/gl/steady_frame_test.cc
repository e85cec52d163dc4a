// The cost of a steady frame, counted: after the first frame of a package at
// a given size, a frame makes no glGet* call, sets no uniform twice, binds
// nothing twice, allocates nothing, and stays within 1.25 times the GL calls
// of the same passes written by hand. Also: the remembered state never
// outlives a frame, and a changed value or input still reaches GL.
#include <GLES2/gl2.h>
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "engine/filter_wraper.h"
#include "engine/gl/gl_filter.h"
#include "engine/gl/gl_uniform_cache.h"
#include "gl_test_support.h"
#include "support/counting.h"
#include "support/gl_fixture.h"
#include "support/three_pass_package.h"

namespace {

using counting::Cost;
using counting::costOf;
using gltest::glInteger;

constexpr int kSize = 8;

std::vector<unsigned char> ramp(int width, int height, int step) {
    std::vector<unsigned char> pixels(static_cast<size_t>(width) * height * 4);
    for (size_t i = 0; i < pixels.size(); ++i) pixels[i] = static_cast<unsigned char>(i * step);
    return pixels;
}

class SteadyFrameTest : public GLTest {
protected:
    void SetUp() override {
        GLTest::SetUp();
        previous = HFResourceLoader_setProvider(&bundle);
    }
    void TearDown() override {
        HFResourceLoader_setProvider(previous);
        for (GLuint texture : textures) glDeleteTextures(1, &texture);
    }

    GLuint texture(int width, int height, int step) {
        const std::vector<unsigned char> pixels = ramp(width, height, step);
        textures.push_back(threepass::makeTexture(width, height, pixels.data()));
        return textures.back();
    }

    static std::vector<unsigned char> engineFrame(HFFilterWraper& wraper, GLuint input, int width, int height) {
        wraper.renderTexture(static_cast<int>(input), width, height);
        return gltest::readTexture(static_cast<GLuint>(wraper.outputTexture()), width, height);
    }

    static std::vector<unsigned char> rawFrame(GLuint input, int width, int height) {
        const threepass::RawPasses raw(width, height);
        raw.frame(input);
        return gltest::readTexture(raw.output(), width, height);
    }

    threepass::Bundle bundle;
    HFResourceProvider* previous = nullptr;
    std::vector<GLuint> textures;
};

TEST_F(SteadyFrameTest, ThreePassFrameCostsNoMoreThanHandWrittenGL) {
    const GLuint input = texture(kSize, kSize, 7);
    HFFilterWraper wraper(threepass::kPackage);
    ASSERT_TRUE(wraper.hasFilter());
    wraper.renderTexture(static_cast<int>(input), kSize, kSize);

    const Cost engine = costOf([&] { wraper.renderTexture(static_cast<int>(input), kSize, kSize); });
    const std::vector<unsigned char> engineOutput =
        gltest::readTexture(static_cast<GLuint>(wraper.outputTexture()), kSize, kSize);

    const threepass::RawPasses raw(kSize, kSize);
    raw.frame(input);
    const Cost hand = costOf([&] { raw.frame(input); });
    EXPECT_EQ(gltest::readTexture(raw.output(), kSize, kSize), engineOutput);

    const std::string calls = "engine: " + engine.gl.describe() + "\nhand: " + hand.gl.describe();
    EXPECT_LE(engine.gl.total() * 4, hand.gl.total() * 5) << calls;
    EXPECT_EQ(0, engine.gl.gets()) << calls;
    EXPECT_EQ(0, engine.allocations);
    // One program and one input texture per pass; the caller's texture keeps
    // its wrapper and sampling options.
    EXPECT_EQ(3, engine.gl.of(counting::k_glUseProgram)) << calls;
    EXPECT_EQ(3, engine.gl.of(counting::k_glBindTexture)) << calls;
    EXPECT_EQ(0, engine.gl.of(counting::k_glTexParameteri) + engine.gl.of(counting::k_glUniform1i) +
                     engine.gl.of(counting::k_glUniform1f))
        << calls;
}

// Whatever the caller changes between frames, the next frame sets again:
// nothing remembered during one frame is trusted in the next.
TEST_F(SteadyFrameTest, CallerStateBetweenFramesIsNotTrusted) {
    const GLuint input = texture(kSize, kSize, 7);
    const GLuint other = texture(kSize, kSize, 3);
    const std::vector<unsigned char> expected = rawFrame(input, kSize, kSize);
    HFFilterWraper wraper(threepass::kPackage);
    engineFrame(wraper, input, kSize, kSize);
    const GLint lastProgram = glInteger(GL_CURRENT_PROGRAM);
    ASSERT_NE(0, lastProgram);

    const std::vector<std::pair<const char*, std::function<void()>>> disturbances = {
        {"program 0", [] { glUseProgram(0); }},
        {"other texture on every input unit",
         [&] {
             for (int unit = 0; unit < 8; ++unit) {
                 glActiveTexture(GL_TEXTURE0 + unit);
                 glBindTexture(GL_TEXTURE_2D, other);
             }
         }},
        {"unit 0 active", [] { glActiveTexture(GL_TEXTURE0); }},
        {"white clear colour and blending", [] {
             glClearColor(1, 1, 1, 1);
             glBlendFunc(GL_ONE, GL_ONE);
             glEnable(GL_BLEND);
         }}};
    for (const auto& disturbance : disturbances) {
        SCOPED_TRACE(disturbance.first);
        disturbance.second();
        EXPECT_EQ(expected, engineFrame(wraper, input, kSize, kSize));
        EXPECT_EQ(lastProgram, glInteger(GL_CURRENT_PROGRAM));
        EXPECT_EQ(GL_TEXTURE2, glInteger(GL_ACTIVE_TEXTURE));
        EXPECT_FALSE(glIsEnabled(GL_BLEND));
    }
}

// A new name, new pixels under the same name or a new size are all seen; a
// value set between frames reaches the uniform once.
TEST_F(SteadyFrameTest, ChangedInputsAndValuesReachTheNextFrame) {
    const GLuint first = texture(kSize, kSize, 7);
    const GLuint second = texture(kSize, kSize, 5);
    const GLuint wide = texture(2 * kSize, kSize, 11);
    HFFilterWraper wraper(threepass::kPackage);
    struct Frame {
        const char* what;
        GLuint input;
        int width;
    };
    for (const Frame& frame : {Frame{"first", first, kSize}, Frame{"second name", second, kSize},
                               Frame{"wider (horStep changes)", wide, 2 * kSize},
                               Frame{"first again", first, kSize}}) {
        SCOPED_TRACE(frame.what);
        EXPECT_EQ(rawFrame(frame.input, frame.width, kSize), engineFrame(wraper, frame.input, frame.width, kSize));
    }

    bundle.add("filter/gl/scaled_copy.xml",
               std::string("<glfilter><vertex>") + threepass::kVertex +
                   "</vertex><fragment>precision mediump float; varying vec2 uv; uniform sampler2D "
                   "inputImageTexture; uniform float amount; void main(){ gl_FragColor = "
                   "vec4(texture2D(inputImageTexture, uv).rgb * amount, 1.0); }</fragment></glfilter>");
    bundle.add("filter/scaled_copy/filter.xml",
               "<filter implement='scaled_copy'><param><name>amount</name><float>1</float></param></filter>");
    HFFilterWraper scaled("scaled_copy");
    ASSERT_TRUE(scaled.hasFilter());
    auto* leaf = static_cast<HFGLFilter*>(scaled.filter.get());
    const GLuint white = texture(1, 1, 0);
    const unsigned char full[4] = {255, 255, 255, 255};
    glBindTexture(GL_TEXTURE_2D, white);
    glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA, 1, 1, 0, GL_RGBA, GL_UNSIGNED_BYTE, full);
    EXPECT_EQ(255, engineFrame(scaled, white, 1, 1)[0]);

    const Cost change = costOf([&] { leaf->setFloat("amount", 0.0f); });
    EXPECT_EQ(1, change.gl.of(counting::k_glUniform1f));
    EXPECT_EQ(0, engineFrame(scaled, white, 1, 1)[0]);
    const Cost same = costOf([&] { leaf->setFloat("amount", 0.0f); });
    EXPECT_EQ(0, same.gl.of(counting::k_glUniform1f) + same.gl.gets());
    EXPECT_EQ(0, engineFrame(scaled, white, 1, 1)[0]);
}

}  // namespace

namespace {

// What the per-program value cache lets through, step by step: equal bytes
// of the same kind are held back; array and element writes may overlap, so
// each makes the other's remembered values untrusted.
TEST(UniformValueCacheTest, SendsOnlyWhatMayHaveChanged) {
    const float one = 1.0f, two = 2.0f, four[4] = {1, 2, 3, 4};
    struct Step {
        const char* what;
        GLint location;
        GLenum kind;
        const void* values;
        size_t size;
        bool send;
    };
    const Step steps[] = {
        {"first value", 3, GL_FLOAT, &one, 4, true},
        {"same value", 3, GL_FLOAT, &one, 4, false},
        {"same bytes, other kind", 3, GL_INT, &one, 4, true},
        {"array", 5, GL_FLOAT, four, 16, true},
        {"same array", 5, GL_FLOAT, four, 16, false},
        {"element write elsewhere", 6, GL_FLOAT, &two, 4, true},
        {"array after an element write", 5, GL_FLOAT, four, 16, true},
        {"element after an array write", 3, GL_INT, &one, 4, true},
        {"missing uniform", -1, GL_FLOAT, &one, 4, false},
        {"null values", 4, GL_FLOAT, nullptr, 4, true},
        {"null values again", 4, GL_FLOAT, nullptr, 4, true},
    };
    GLUniformCache cache;
    for (const Step& step : steps) {
        EXPECT_EQ(step.send, cache.changed(step.location, step.kind, step.values, step.size)) << step.what;
    }
}

}  // namespace
