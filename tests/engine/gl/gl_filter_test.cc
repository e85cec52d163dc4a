#include <cmath>
#include <cstdlib>

#include "engine/gl/gl_filter.h"
#include "gl_test_support.h"
#include "support/gl_fixture.h"

namespace {

using HFGLFilterTest = GLTest;
using gltest::kSwapFragment;
using gltest::kUniformFragment;
using gltest::kVertex;

constexpr const char* kSecondInputFragment =
    "precision mediump float; varying vec2 uv; uniform sampler2D inputImageTexture;\n"
    "uniform sampler2D inputImageTexture2;\n"
    "void main(){ gl_FragColor = texture2D(inputImageTexture2, uv); }\n";

// Declares no "inputImageTexture": input 0 falls back to "inputImageTexture1".
constexpr const char* kNumberedFragment =
    "precision mediump float; varying vec2 uv; uniform sampler2D inputImageTexture1;\n"
    "void main(){ gl_FragColor = texture2D(inputImageTexture1, uv); }\n";

GLuint programOf(const shared_ptr<HFGLFilter>& filter, int pass = 0) { return filter->program(pass)->program; }

float uniformFloat(GLuint program, const char* name) {
    float value = NAN;
    glGetUniformfv(program, glGetUniformLocation(program, name), &value);
    return value;
}

GLint uniformInt(GLuint program, const char* name) {
    GLint value = -7;
    glGetUniformiv(program, glGetUniformLocation(program, name), &value);
    return value;
}

GLint textureBoundOnUnit(int unit) {
    GLint name = -1;
    glActiveTexture(GL_TEXTURE0 + unit);
    glGetIntegerv(GL_TEXTURE_BINDING_2D, &name);
    return name;
}

shared_ptr<IHFTexture> solidTexture(int width, int height, unsigned char r, unsigned char g, unsigned char b) {
    std::vector<unsigned char> bytes;
    for (int i = 0; i < width * height; ++i) bytes.insert(bytes.end(), {r, g, b, 255});
    _Image* image = gltest::makeRGBA(width, height, bytes);
    shared_ptr<IHFTexture> texture = HFGLTexture::createTexture(image);
    free_image(&image);
    return texture;
}

TEST_F(HFGLFilterTest, FactoriesTakeTheFragmentFirstAndBuildOnePass) {
    shared_ptr<HFGLFilter> filter = HFGLFilter::createFilter(kSwapFragment, kVertex);
    GLint linked = 0;
    glGetProgramiv(programOf(filter), GL_LINK_STATUS, &linked);
    EXPECT_EQ(GL_TRUE, linked);
    EXPECT_EQ(1, filter->programCount());

    shared_ptr<HFGLFilter> fromVectors = HFGLFilter::createFilter(
        std::vector<std::string>{kSwapFragment, kSecondInputFragment, kNumberedFragment},
        std::vector<std::string>{kVertex, kVertex, kVertex});
    EXPECT_EQ(1, fromVectors->programCount());
    EXPECT_FALSE(fromVectors->program(1));
    glGetProgramiv(programOf(fromVectors), GL_LINK_STATUS, &linked);
    EXPECT_EQ(GL_TRUE, linked);
}

TEST_F(HFGLFilterTest, VectorConstructorGivesEachPassItsOwnSamplerSlot) {
    HFGLFilter filter(std::vector<std::string>{kVertex, kVertex},
                      std::vector<std::string>{kSwapFragment, kSecondInputFragment});
    EXPECT_EQ(2, filter.programCount());
    const GLuint second = filter.program(1)->program;
    EXPECT_EQ(glGetUniformLocation(second, "inputImageTexture"), filter.samplerLocation(1));
    EXPECT_GE(filter.samplerLocation(0), 0);
}

TEST_F(HFGLFilterTest, UniformsLandInProgramZeroOnly) {
    HFGLFilter filter(std::vector<std::string>{kVertex, kVertex},
                      std::vector<std::string>{kUniformFragment, kUniformFragment});
    float tint[4] = {0.25f, 0.5f, 0.75f, 1.0f};
    float matrix[16];
    for (int i = 0; i < 16; ++i) matrix[i] = static_cast<float>(i);
    float curve[256] = {};
    curve[1] = 0.5f;
    curve[255] = 1.0f;
    filter.setFloat("amount", 0.75f);
    filter.setVec4("tint", tint);
    filter.setMatrix4("colorMatrix", matrix);
    filter.setFloatArray("toneCurve", curve, 256);
    filter.setInputTextureSize(HFSize{640, 480});

    const GLuint first = filter.program(0)->program;
    const GLuint second = filter.program(1)->program;
    EXPECT_EQ(0.75f, uniformFloat(first, "amount"));
    EXPECT_EQ(0.0f, uniformFloat(second, "amount"));
    float readTint[4];
    glGetUniformfv(first, glGetUniformLocation(first, "tint"), readTint);
    EXPECT_EQ(0.5f, readTint[1]);
    EXPECT_EQ(1.0f, readTint[3]);
    float readMatrix[16];
    glGetUniformfv(first, glGetUniformLocation(first, "colorMatrix"), readMatrix);
    EXPECT_EQ(13.0f, readMatrix[13]);
    EXPECT_EQ(0.5f, uniformFloat(first, "toneCurve[1]"));
    EXPECT_EQ(1.0f, uniformFloat(first, "toneCurve[255]"));
    EXPECT_EQ(640, uniformInt(first, "width"));
    EXPECT_EQ(480, uniformInt(first, "height"));
    EXPECT_EQ(static_cast<float>(1.0 / 640), uniformFloat(first, "horStep"));
    EXPECT_EQ(static_cast<float>(1.0 / 480), uniformFloat(first, "verStep"));
    EXPECT_EQ(0, uniformInt(second, "width"));

    // A zero width is still sent: its step becomes infinite.
    filter.setInputTextureSize(HFSize{0, 480});
    EXPECT_TRUE(std::isinf(uniformFloat(first, "horStep")));
}

TEST_F(HFGLFilterTest, InputsBindToUnitsTwoToFiveThroughTheirSamplers) {
    shared_ptr<HFGLFilter> filter = HFGLFilter::createFilter(kUniformFragment, kVertex);
    shared_ptr<IHFTexture> base = solidTexture(4, 4, 10, 20, 30);
    shared_ptr<IHFTexture> extra = solidTexture(4, 4, 40, 50, 60);
    filter->setInputTexture(base, 0);
    filter->setInputTexture(extra, 1);
    EXPECT_EQ(HFSize({4, 4}), filter->inputTextureSize());
    EXPECT_EQ(glGetUniformLocation(programOf(filter), "inputImageTexture2"), filter->samplerLocation(1));

    filter->render(nullptr);
    EXPECT_EQ(static_cast<GLint>(static_cast<HFGLTexture*>(base.get())->glTexture()), textureBoundOnUnit(2));
    EXPECT_EQ(static_cast<GLint>(static_cast<HFGLTexture*>(extra.get())->glTexture()), textureBoundOnUnit(3));
    EXPECT_EQ(2, uniformInt(programOf(filter), "inputImageTexture"));
    EXPECT_EQ(3, uniformInt(programOf(filter), "inputImageTexture2"));
    EXPECT_EQ(GL_NO_ERROR, glGetError());

    shared_ptr<HFGLFilter> numbered = HFGLFilter::createFilter(kNumberedFragment, kVertex);
    EXPECT_EQ(-1, numbered->samplerLocation(0));
    numbered->setInputTexture(base, 0);
    EXPECT_EQ(glGetUniformLocation(programOf(numbered), "inputImageTexture1"), numbered->samplerLocation(0));
}

TEST_F(HFGLFilterTest, RendersExactPixelsIntoItsOwnTarget) {
    const std::vector<unsigned char> bytes = {200, 100, 50, 255, 1, 2, 3, 4, 0, 255, 128, 64, 9, 8, 7, 6};
    _Image* input = gltest::makeRGBA(2, 2, bytes);
    shared_ptr<HFGLFilter> filter = HFGLFilter::createFilter(kSwapFragment, kVertex);
    filter->setInputTextureImage(input, 0);
    free_image(&input);
    filter->setFrameBufferBlendMode(GL_ONE, GL_ONE);

    _Image* out = create_image(2, 2, 4, 8);
    filter->render(out);
    for (int p = 0; p < 4; ++p) {
        EXPECT_EQ(bytes[4 * p + 2], out->data[4 * p + 0]) << "pixel " << p;
        EXPECT_EQ(bytes[4 * p + 1], out->data[4 * p + 1]) << "pixel " << p;
        EXPECT_EQ(bytes[4 * p + 0], out->data[4 * p + 2]) << "pixel " << p;
        EXPECT_EQ(bytes[4 * p + 3], out->data[4 * p + 3]) << "pixel " << p;
    }
    EXPECT_FALSE(glIsEnabled(GL_BLEND));

    // The result stays in the output texture: read it back once more.
    glBindFramebuffer(GL_FRAMEBUFFER, 0);
    _Image* again = create_image(2, 2, 4, 8);
    filter->readOutput(again);
    EXPECT_EQ(0, memcmp(out->data, again->data, 16));
    HFGLTexture* output = static_cast<HFGLTexture*>(filter->outputTexture().get());
    EXPECT_EQ(HFSize({2, 2}), output->size());
    free_image(&out);
    free_image(&again);
}

TEST_F(HFGLFilterTest, TargetIsMadeLazilyAndRebuiltWhenTheInputSizeChanges) {
    shared_ptr<HFGLFilter> filter = HFGLFilter::createFilter(kSwapFragment, kVertex);
    filter->setInputTextureSize(HFSize{16, 8});
    EXPECT_FALSE(filter->filterFBO());
    filter->setFilterFBO();
    shared_ptr<GLFilterFBO> first = filter->filterFBO();
    ASSERT_TRUE(first);
    EXPECT_EQ(16, first->width);
    EXPECT_EQ(8, first->height);
    GLint bound = 0;
    glGetIntegerv(GL_FRAMEBUFFER_BINDING, &bound);
    EXPECT_EQ(static_cast<GLint>(first->framebuffer), bound);

    filter->setInputTextureSize(HFSize{16, 8});
    filter->setInputTextureSize(HFSize{0, 480});
    filter->setFilterFBO();
    EXPECT_EQ(first.get(), filter->filterFBO().get()) << "same or zero sizes keep the target";

    filter->setInputTextureSize(HFSize{32, 24});
    EXPECT_FALSE(filter->filterFBO());
    filter->setFilterFBO();
    ASSERT_TRUE(filter->filterFBO());
    EXPECT_NE(first.get(), filter->filterFBO().get());
    EXPECT_EQ(32, filter->filterFBO()->width);
    EXPECT_EQ(HFSize({32, 24}), static_cast<HFGLTexture*>(filter->outputTexture().get())->size());
}

TEST_F(HFGLFilterTest, OutputSizeFollowsTheTransformMatrix) {
    shared_ptr<HFGLFilter> filter = HFGLFilter::createFilter(kSwapFragment, kVertex);
    filter->setInputTextureSize(HFSize{640, 480});
    EXPECT_EQ(HFSize({640, 480}), filter->outputTextureSize());
    // A flip mirrors about 0.5, which moves the origin by 1: 640 becomes
    // |-640 + 1| = 639. Kept: the size formula has always done this.
    filter->setFlipMode(HFFlipModeHorizontal);
    EXPECT_EQ(HFSize({639, 480}), filter->outputTextureSize());
    filter->setFlipMode(HFFlipModeBoth);
    EXPECT_EQ(HFSize({639, 479}), filter->outputTextureSize());

    // Not a plain swap: the centring translations add 1 to x and 0 to y, so
    // width = |640 cos - 480 sin + 1| and height = |640 sin + 480 cos + 0|.
    filter->setFlipMode(HFFlipModeNone);
    filter->setRotation(static_cast<float>(M_PI / 2));
    EXPECT_EQ(HFSize({479, 640}), filter->outputTextureSize());

    filter->setRotation(0.0f);
    filter->setInputTextureSize(HFSize{101, 101});
    filter->setOutputScale(0.5f);
    EXPECT_EQ(HFSize({50, 50}), filter->sizeOfFBO());
    filter->setFilterFBO();
    EXPECT_EQ(50, filter->filterFBO()->width);
}

TEST_F(HFGLFilterTest, CurveBecomesAOneRowLuminanceTexture) {
    shared_ptr<HFGLFilter> filter = HFGLFilter::createFilter(kSecondInputFragment, kVertex);
    filter->setInputTexture(solidTexture(4, 1, 0, 0, 0), 0);
    // Truncated to bytes, low 8 bits kept: 64.9 -> 64, 300 -> 44.
    float curve[4] = {0.0f, 64.9f, 255.0f, 300.0f};
    filter->setFloatArray(1, curve, 4);
    shared_ptr<IHFTexture> lut = filter->getInputTexture(1);
    ASSERT_TRUE(lut);
    HFGLTexture* texture = static_cast<HFGLTexture*>(lut.get());
    EXPECT_EQ(HFSize({4, 1}), texture->size());
    EXPECT_EQ(static_cast<GLenum>(GL_LUMINANCE), texture->textureOptions().internalFormat);

    _Image* out = create_image(4, 1, 4, 16);
    filter->render(out);
    const unsigned char expected[4] = {0, 64, 255, 44};
    for (int i = 0; i < 4; ++i) {
        EXPECT_EQ(expected[i], out->data[4 * i]) << i;
        EXPECT_EQ(expected[i], out->data[4 * i + 2]) << i;
        EXPECT_EQ(255, out->data[4 * i + 3]) << i;
    }
    free_image(&out);
}

TEST_F(HFGLFilterTest, BadInputsAreIgnored) {
    shared_ptr<HFGLFilter> filter = HFGLFilter::createFilter(kSwapFragment, kVertex);
    filter->setInputTexture(solidTexture(2, 2, 1, 2, 3), 4);
    filter->setInputTexture(solidTexture(2, 2, 1, 2, 3), -1);
    EXPECT_FALSE(filter->getInputTexture(4));
    filter->setInputTextureImage(nullptr, 0);
    EXPECT_EQ(HFSize({0, 0}), filter->inputTextureSize());
    filter->setFloatArray(1, nullptr, 4);
    EXPECT_FALSE(filter->getInputTexture(1));

    // Images that cannot hold the read-back rows are left alone.
    filter->setInputTexture(solidTexture(2, 2, 1, 2, 3), 0);
    _Image* gray = create_image(2, 2, 1, 2);
    memset(gray->data, 0x5a, 4);
    filter->render(gray);
    filter->readOutput(nullptr);
    EXPECT_EQ(0x5a, gray->data[3]);
    free_image(&gray);
}

TEST_F(HFGLFilterTest, DestructionDeletesOwnedNamesOnly) {
    GLuint borrowed = 0;
    glGenTextures(1, &borrowed);
    glBindTexture(GL_TEXTURE_2D, borrowed);
    glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA, 2, 2, 0, GL_RGBA, GL_UNSIGNED_BYTE, nullptr);
    shared_ptr<HFGLTexture> caller = HFGLTexture::createTexture(borrowed);
    caller->resize(2, 2);

    shared_ptr<HFGLFilter> filter = HFGLFilter::createFilter(kSwapFragment, kVertex);
    filter->setInputTexture(caller, 0);
    filter->setFilterFBO();
    const GLuint output = static_cast<HFGLTexture*>(filter->outputTexture().get())->glTexture();
    const GLuint framebuffer = filter->filterFBO()->framebuffer;
    const GLuint program = programOf(filter);
    EXPECT_EQ(2, caller.use_count());

    filter.release();
    // The last pass stays current, which defers its deletion until unbound.
    glUseProgram(0);
    EXPECT_FALSE(glIsTexture(output));
    EXPECT_FALSE(glIsFramebuffer(framebuffer));
    EXPECT_FALSE(glIsProgram(program));
    EXPECT_EQ(1, caller.use_count());
    caller.release();
    EXPECT_TRUE(glIsTexture(borrowed));
    glDeleteTextures(1, &borrowed);
}

}  // namespace
