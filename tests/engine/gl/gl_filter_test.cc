#include <cmath>
#include <cstring>

#include "engine/gl/gl_filter.h"
#include "gl_test_support.h"
#include "support/gl_fixture.h"

namespace {

using HFGLFilterTest = GLTest;
using gltest::kSecondInputFragment;
using gltest::kSwapFragment;
using gltest::kUniformFragment;
using gltest::kVertex;

GLuint programOf(const HFGLFilter& filter, int pass = 0) { return filter.program(pass)->program; }

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

GLuint nameOf(const shared_ptr<IHFTexture>& texture) { return static_cast<HFGLTexture*>(texture.get())->glTexture(); }

shared_ptr<IHFTexture> solidTexture(int width, int height, unsigned char r, unsigned char g, unsigned char b) {
    std::vector<unsigned char> bytes;
    for (int i = 0; i < width * height; ++i) bytes.insert(bytes.end(), {r, g, b, 255});
    _Image* image = gltest::makeRGBA(width, height, bytes);
    shared_ptr<IHFTexture> texture = HFGLTexture::createTexture(image);
    free_image(&image);
    return texture;
}

TEST_F(HFGLFilterTest, FactoriesTakeFragmentFirstAndBuildOnePass) {
    shared_ptr<HFGLFilter> filter = HFGLFilter::createFilter(
        std::vector<std::string>{kSwapFragment, kSecondInputFragment}, std::vector<std::string>{kVertex, kVertex});
    GLint linked = 0;
    glGetProgramiv(programOf(*filter), GL_LINK_STATUS, &linked);
    EXPECT_EQ(GL_TRUE, linked);
    EXPECT_EQ(1, filter->programCount());
    EXPECT_FALSE(filter->program(1));

    // The vector constructor builds every pass; pass i's sampler drives input i.
    HFGLFilter twoPass(std::vector<std::string>{kVertex, kVertex},
                       std::vector<std::string>{kSwapFragment, kSecondInputFragment});
    EXPECT_EQ(2, twoPass.programCount());
    EXPECT_EQ(glGetUniformLocation(programOf(twoPass, 1), "inputImageTexture"), twoPass.samplerLocation(1));
}

// Uniform values themselves are checked by pixels end to end; here only
// where they land and what the input size derives.
TEST_F(HFGLFilterTest, UniformsLandInProgramZeroOnly) {
    HFGLFilter filter(std::vector<std::string>{kVertex, kVertex},
                      std::vector<std::string>{kUniformFragment, kUniformFragment});
    filter.setFloat("amount", 0.75f);
    filter.setInputTextureSize(HFSize{640, 480});

    const GLuint first = programOf(filter), second = programOf(filter, 1);
    EXPECT_EQ(0.75f, uniformFloat(first, "amount"));
    EXPECT_EQ(0.0f, uniformFloat(second, "amount"));
    EXPECT_EQ(640, uniformInt(first, "width"));
    EXPECT_EQ(480, uniformInt(first, "height"));
    EXPECT_EQ(static_cast<float>(1.0 / 640), uniformFloat(first, "horStep"));
    EXPECT_EQ(static_cast<float>(1.0 / 480), uniformFloat(first, "verStep"));
    EXPECT_EQ(0, uniformInt(second, "width"));
    filter.setInputTextureSize(HFSize{0, 480});
    EXPECT_TRUE(std::isinf(uniformFloat(first, "horStep")));
}

TEST_F(HFGLFilterTest, InputsBindToUnitsTwoToFiveThroughTheirSamplers) {
    shared_ptr<HFGLFilter> filter = HFGLFilter::createFilter(kUniformFragment, kVertex);
    shared_ptr<IHFTexture> base = solidTexture(4, 4, 10, 20, 30), extra = solidTexture(4, 4, 40, 50, 60);
    filter->setInputTexture(base, 0);
    filter->setInputTexture(extra, 1);
    EXPECT_EQ(HFSize({4, 4}), filter->inputTextureSize());
    filter->render(nullptr);
    for (int unit : {2, 3}) {
        GLint bound = -1;
        glActiveTexture(GL_TEXTURE0 + unit);
        glGetIntegerv(GL_TEXTURE_BINDING_2D, &bound);
        EXPECT_EQ(static_cast<GLint>(nameOf(unit == 2 ? base : extra)), bound) << "unit " << unit;
    }
    EXPECT_EQ(2, uniformInt(programOf(*filter), "inputImageTexture"));
    EXPECT_EQ(3, uniformInt(programOf(*filter), "inputImageTexture2"));
    EXPECT_EQ(GL_NO_ERROR, glGetError());

    // Without "inputImageTexture", input 0 looks up "inputImageTexture1".
    shared_ptr<HFGLFilter> fallback = HFGLFilter::createFilter(
        "precision mediump float; varying vec2 uv; uniform sampler2D inputImageTexture1;\n"
        "void main(){ gl_FragColor = texture2D(inputImageTexture1, uv); }\n",
        kVertex);
    EXPECT_EQ(-1, fallback->samplerLocation(0));
    fallback->setInputTexture(base, 0);
    EXPECT_EQ(glGetUniformLocation(programOf(*fallback), "inputImageTexture1"), fallback->samplerLocation(0));
    EXPECT_GE(fallback->samplerLocation(0), 0);
}

TEST_F(HFGLFilterTest, RendersExactPixelsAndKeepsThemInTheOutput) {
    const std::vector<unsigned char> bytes = {200, 100, 50, 255, 1, 2, 3, 4, 0, 255, 128, 64, 9, 8, 7, 6};
    _Image* input = gltest::makeRGBA(2, 2, bytes);
    shared_ptr<HFGLFilter> filter = HFGLFilter::createFilter(kSwapFragment, kVertex);
    filter->setInputTextureImage(input, 0);
    filter->setFrameBufferBlendMode(GL_ONE, GL_ONE);
    _Image* out = create_image(2, 2, 4, 8);
    filter->render(out);
    for (int p = 0; p < 16; p += 4) {
        const unsigned char swapped[4] = {bytes[p + 2], bytes[p + 1], bytes[p], bytes[p + 3]};
        EXPECT_EQ(0, memcmp(swapped, out->data + p, 4)) << "pixel " << p / 4;
    }
    EXPECT_FALSE(glIsEnabled(GL_BLEND));

    glBindFramebuffer(GL_FRAMEBUFFER, 0);
    memset(input->data, 0, 16);
    filter->readOutput(input);
    EXPECT_EQ(0, memcmp(out->data, input->data, 16));
    // A gray image cannot hold RGBA rows: nothing is read into it.
    _Image* gray = create_image(2, 2, 1, 2);
    memset(gray->data, 0x5a, 4);
    filter->render(gray);
    EXPECT_EQ(0x5a, gray->data[3]);
    free_image(&gray);
    free_image(&input);
    free_image(&out);
}

TEST_F(HFGLFilterTest, CurveBecomesAOneRowLuminanceInput) {
    shared_ptr<HFGLFilter> filter = HFGLFilter::createFilter(kSecondInputFragment, kVertex);
    filter->setInputTexture(solidTexture(4, 1, 0, 0, 0), 0);
    float curve[4] = {0.0f, 64.9f, 255.0f, 300.0f};  // truncated, low 8 bits kept
    filter->setFloatArray(1, curve, 4);
    HFGLTexture* lut = static_cast<HFGLTexture*>(filter->getInputTexture(1).get());
    ASSERT_NE(nullptr, lut);
    EXPECT_EQ(HFSize({4, 1}), lut->size());
    EXPECT_EQ(static_cast<GLenum>(GL_LUMINANCE), lut->textureOptions().internalFormat);
    _Image* out = create_image(4, 1, 4, 16);
    filter->render(out);
    const unsigned char expected[4] = {0, 64, 255, 44};
    for (int i = 0; i < 4; ++i) {
        EXPECT_EQ(expected[i], out->data[4 * i]) << i;
        EXPECT_EQ(255, out->data[4 * i + 3]) << i;
    }
    free_image(&out);
    filter->setFloatArray(2, nullptr, 4);
    EXPECT_FALSE(filter->getInputTexture(2));
}

TEST_F(HFGLFilterTest, TargetIsMadeLazilyAndRebuiltOnlyForANewNonZeroSize) {
    shared_ptr<HFGLFilter> filter = HFGLFilter::createFilter(kSwapFragment, kVertex);
    filter->setInputTextureSize(HFSize{16, 8});
    EXPECT_FALSE(filter->filterFBO());
    filter->setFilterFBO();
    shared_ptr<GLFilterFBO> first = filter->filterFBO();
    ASSERT_TRUE(first);
    EXPECT_EQ(16, first->width);
    EXPECT_EQ(8, first->height);
    filter->setInputTextureSize(HFSize{16, 8});
    filter->setInputTextureSize(HFSize{0, 480});
    EXPECT_EQ(first.get(), filter->filterFBO().get());

    filter->setInputTextureSize(HFSize{32, 24});
    EXPECT_FALSE(filter->filterFBO());
    filter->setFilterFBO();
    EXPECT_EQ(32, filter->filterFBO()->width);
    EXPECT_EQ(HFSize({32, 24}), static_cast<HFGLTexture*>(filter->outputTexture().get())->size());
}

TEST_F(HFGLFilterTest, OutputSizeFollowsTheTransformMatrix) {
    shared_ptr<HFGLFilter> filter = HFGLFilter::createFilter(kSwapFragment, kVertex);
    filter->setInputTextureSize(HFSize{640, 480});
    EXPECT_EQ(HFSize({640, 480}), filter->outputTextureSize());
    // Mirroring about 0.5 moves the origin by 1: |-640 + 1| = 639. Intended.
    filter->setFlipMode(HFFlipModeHorizontal);
    EXPECT_EQ(HFSize({639, 480}), filter->outputTextureSize());
    filter->setFlipMode(HFFlipModeBoth);
    EXPECT_EQ(HFSize({639, 479}), filter->outputTextureSize());
    // Not a plain swap: |640 cos - 480 sin + 1| by |640 sin + 480 cos|.
    filter->setFlipMode(HFFlipModeNone);
    filter->setRotation(static_cast<float>(M_PI / 2));
    EXPECT_EQ(HFSize({479, 640}), filter->outputTextureSize());

    filter->setRotation(0.0f);
    filter->setInputTextureSize(HFSize{101, 101});
    filter->setOutputScale(0.5f);
    EXPECT_EQ(HFSize({50, 50}), filter->sizeOfFBO());
}

TEST_F(HFGLFilterTest, DestructionDeletesOwnedNamesOnly) {
    GLuint borrowed = 0;
    glGenTextures(1, &borrowed);
    shared_ptr<HFGLTexture> caller = HFGLTexture::createTexture(borrowed);
    shared_ptr<HFGLFilter> filter = HFGLFilter::createFilter(kSwapFragment, kVertex);
    filter->setInputTexture(caller, 0);
    filter->setInputTexture(caller, 4);  // out of range: ignored
    filter->setFilterFBO();
    const GLuint output = nameOf(filter->outputTexture());
    const GLuint framebuffer = filter->filterFBO()->framebuffer;
    const GLuint program = programOf(*filter);
    EXPECT_EQ(2, caller.use_count());

    filter.release();
    glUseProgram(0);  // the current program's deletion waits until it is unbound
    EXPECT_FALSE(glIsTexture(output));
    EXPECT_FALSE(glIsFramebuffer(framebuffer));
    EXPECT_FALSE(glIsProgram(program));
    EXPECT_EQ(1, caller.use_count());
    caller.release();
    EXPECT_TRUE(glIsTexture(borrowed));
    glDeleteTextures(1, &borrowed);
}

}  // namespace
