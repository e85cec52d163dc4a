#include <cmath>
#include <cstring>

#include "engine/gl/gl_filter.h"
#include "engine/gl/gl_filter_fbo.h"
#include "engine/gl/gl_filter_program.h"
#include "gl_test_support.h"
#include "jni/guarded_buffer.h"
#include "jni/capture_stderr.h"
#include "support/gl_fixture.h"

namespace {

using HFGLFilterTest = GLTest;
using gltest::glInteger;
using gltest::kSecondInputFragment;
using gltest::kSwapFragment;
using gltest::kUniformFragment;
using gltest::kVertex;

GLuint programOf(const HFGLFilter& filter, int pass = 0) { return filter.program(pass)->program; }

GLint linkStatus(GLuint program) {
    GLint status = -1;
    glGetProgramiv(program, GL_LINK_STATUS, &status);
    return status;
}

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

std::vector<unsigned char> bytesOf(const _Image* image, size_t count) {
    return std::vector<unsigned char>(image->data, image->data + count);
}

GLuint nameOf(const shared_ptr<IHFTexture>& texture) { return static_cast<HFGLTexture*>(texture.get())->glTexture(); }

shared_ptr<IHFTexture> blackTexture(int width, int height) {
    _Image* image = gltest::makeRGBA(width, height, std::vector<unsigned char>(width * height * 4, 0));
    shared_ptr<IHFTexture> texture = HFGLTexture::createTexture(image);
    free_image(&image);
    return texture;
}

TEST_F(HFGLFilterTest, ProgramDeciphersLinksAndDeletesWithTheLastHandle) {
    shared_ptr<GLFilterProgram> program = GLFilterProgram::create(kVertex, gltest::packMee(kSwapFragment).c_str());
    EXPECT_EQ(GL_TRUE, linkStatus(program->program));
    EXPECT_GE(program->uniformLocation("inputImageTexture"), 0);
    const GLuint names[3] = {program->program, program->vertexShader, program->fragmentShader};

    shared_ptr<GLFilterProgram> second = program;
    program.release();
    EXPECT_TRUE(glIsProgram(names[0]));
    second.release();
    EXPECT_FALSE(glIsProgram(names[0]) || glIsShader(names[1]) || glIsShader(names[2]));
}

TEST_F(HFGLFilterTest, ProgramFailuresAreLoggedAndTheRecordSurvives) {
    shared_ptr<GLFilterProgram> noFragment, bad;
    const std::string log = captureStderr([&] {
        noFragment = GLFilterProgram::create(kVertex, nullptr);
        bad = GLFilterProgram::create(kVertex, "IOS void main");  // upper case: compiled as given
    });
    EXPECT_NE(std::string::npos, log.find("Failed to load vertex shader"));
    EXPECT_NE(std::string::npos, log.find("Shader compile log:"));
    EXPECT_EQ(0u, noFragment->fragmentShader);
    EXPECT_NE(0u, bad->fragmentShader);
    EXPECT_EQ(GL_FALSE, linkStatus(noFragment->program) | linkStatus(bad->program));
    while (glGetError() != GL_NO_ERROR) {
    }
}

TEST_F(HFGLFilterTest, FramebufferAttachesOnUnitOneIgnoresZeroSizesAndCleansUp) {
    shared_ptr<HFGLTexture> colour = HFGLTexture::createTexture(static_cast<_Image*>(nullptr));
    colour->resize(8, 4);
    shared_ptr<GLFilterFBO> fbo = GLFilterFBO::create();
    fbo->attach(colour);
    EXPECT_EQ(2, colour.use_count());
    EXPECT_EQ((std::vector<GLint>{static_cast<GLint>(fbo->framebuffer), static_cast<GLint>(colour->glTexture()),
                                  GL_TEXTURE1, 0}),
              (std::vector<GLint>{glInteger(GL_FRAMEBUFFER_BINDING), gltest::colorAttachment(),
                                  glInteger(GL_ACTIVE_TEXTURE), glInteger(GL_TEXTURE_BINDING_2D)}));

    fbo->setSize(8, 4);
    fbo->setSize(0, 480);
    fbo->setSize(640, 0);
    glBindFramebuffer(GL_FRAMEBUFFER, 0);
    fbo->bind();
    EXPECT_EQ((std::vector<GLint>{0, 0, 8, 4}), gltest::viewport());
    EXPECT_EQ(GL_FRAMEBUFFER_COMPLETE, glCheckFramebufferStatus(GL_FRAMEBUFFER));

    const GLuint name = fbo->framebuffer;
    fbo.release();
    EXPECT_FALSE(glIsFramebuffer(name));
    EXPECT_EQ(1, colour.use_count());
    EXPECT_EQ(0, glInteger(GL_FRAMEBUFFER_BINDING));
}

// Uniform values themselves are checked by pixels end to end; here only
// where they land and what the input size derives.
TEST_F(HFGLFilterTest, FactoriesBuildOnePassAndUniformsLandInProgramZeroOnly) {
    shared_ptr<HFGLFilter> factory = HFGLFilter::createFilter(
        std::vector<std::string>{kSwapFragment, kSecondInputFragment}, std::vector<std::string>{kVertex, kVertex});
    EXPECT_EQ(GL_TRUE, linkStatus(programOf(*factory)));
    EXPECT_EQ(1, factory->programCount());
    EXPECT_FALSE(factory->program(1));

    // The vector constructor takes vertex sources first and builds every
    // pass; pass i's sampler drives input i.
    HFGLFilter filter(std::vector<std::string>{kVertex, kVertex},
                      std::vector<std::string>{kUniformFragment, kUniformFragment});
    EXPECT_EQ(2, filter.programCount());
    EXPECT_EQ(glGetUniformLocation(programOf(filter, 1), "inputImageTexture"), filter.samplerLocation(1));
    filter.setFloat("amount", 0.75f);
    filter.setInputTextureSize(HFSize{640, 480});

    const GLuint first = programOf(filter), second = programOf(filter, 1);
    EXPECT_EQ((std::vector<float>{0.75f, 0, 640, 480, static_cast<float>(1.0 / 640), static_cast<float>(1.0 / 480)}),
              (std::vector<float>{uniformFloat(first, "amount"), uniformFloat(second, "amount"),
                                  float(uniformInt(first, "width")), float(uniformInt(first, "height")),
                                  uniformFloat(first, "horStep"), uniformFloat(first, "verStep")}));
    EXPECT_EQ(0, uniformInt(second, "width"));
    filter.setInputTextureSize(HFSize{0, 480});
    EXPECT_TRUE(std::isinf(uniformFloat(first, "horStep")));
}

TEST_F(HFGLFilterTest, InputsBindToUnitsTwoToFiveThroughTheirSamplers) {
    shared_ptr<HFGLFilter> filter = HFGLFilter::createFilter(kUniformFragment, kVertex);
    shared_ptr<IHFTexture> base = blackTexture(4, 4), extra = blackTexture(4, 4);
    filter->setInputTexture(base, 0);
    filter->setInputTexture(extra, 1);
    EXPECT_EQ(HFSize({4, 4}), filter->inputTextureSize());
    filter->render(nullptr);
    const std::vector<GLint> bound = gltest::boundOnUnits(2, 3);
    EXPECT_EQ((std::vector<GLint>{static_cast<GLint>(nameOf(base)), static_cast<GLint>(nameOf(extra))}), bound);
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
    EXPECT_EQ((std::vector<unsigned char>{50, 100, 200, 255, 3, 2, 1, 4, 128, 255, 0, 64, 7, 8, 9, 6}), bytesOf(out, 16));
    EXPECT_FALSE(glIsEnabled(GL_BLEND));

    glBindFramebuffer(GL_FRAMEBUFFER, 0);
    memset(input->data, 0, 16);
    filter->readOutput(input);
    EXPECT_EQ(bytesOf(out, 16), bytesOf(input, 16));
    // A gray image cannot hold RGBA rows: nothing is read into it.
    _Image* gray = create_image(2, 2, 1, 2);
    memset(gray->data, 0x5a, 4);
    filter->render(gray);
    EXPECT_EQ(0x5a, gray->data[3]);
    free_image(&gray);
    free_image(&input);
    free_image(&out);

    // The quad's arrays stay enabled after the filter is gone, so whatever
    // other code draws next reads them: they must not point into the freed
    // filter.
    const uintptr_t freed = reinterpret_cast<uintptr_t>(filter.get());
    const GLuint program = programOf(*filter);
    const GLint attributes[2] = {glGetAttribLocation(program, "position"),
                                 glGetAttribLocation(program, "inputTextureCoordinate")};
    filter.release();
    for (GLint attribute : attributes) {
        GLint enabled = 0;
        void* pointer = nullptr;
        glGetVertexAttribiv(attribute, GL_VERTEX_ATTRIB_ARRAY_ENABLED, &enabled);
        glGetVertexAttribPointerv(attribute, GL_VERTEX_ATTRIB_ARRAY_POINTER, &pointer);
        const uintptr_t at = reinterpret_cast<uintptr_t>(pointer);
        EXPECT_TRUE(enabled);
        EXPECT_FALSE(at >= freed && at < freed + sizeof(HFGLFilter)) << "attribute " << attribute;
    }
}

// Under a caller's pack alignment of 8, odd-width RGBA rows would be padded
// past the image's tight rows; the read-back writes exactly the image's bytes
// (it ends at an unreadable page) and leaves the caller's alignment.
TEST_F(HFGLFilterTest, ReadBackWritesOnlyTheImageRowsWhateverThePackAlignment) {
    std::vector<unsigned char> bytes(24);
    for (size_t i = 0; i < bytes.size(); ++i) bytes[i] = static_cast<unsigned char>(10 * i);
    _Image* input = gltest::makeRGBA(3, 2, bytes);
    shared_ptr<HFGLFilter> filter = HFGLFilter::createFilter(kSwapFragment, kVertex);
    filter->setInputTextureImage(input, 0);
    free_image(&input);
    GuardedBuffer pixels(24);
    _Image* out = create_image_header(3, 2, 4, 12);
    out->data = pixels.data();
    glPixelStorei(GL_PACK_ALIGNMENT, 8);
    filter->render(out);
    EXPECT_EQ(8, glInteger(GL_PACK_ALIGNMENT));
    for (size_t i = 0; i < bytes.size(); i += 4) std::swap(bytes[i], bytes[i + 2]);
    EXPECT_EQ(bytes, bytesOf(out, 24));
    glPixelStorei(GL_PACK_ALIGNMENT, 4);
    free_image_header(&out);
    glBindFramebuffer(GL_FRAMEBUFFER, 0);
}

TEST_F(HFGLFilterTest, CurveBecomesAOneRowLuminanceInput) {
    shared_ptr<HFGLFilter> filter = HFGLFilter::createFilter(kSecondInputFragment, kVertex);
    filter->setInputTexture(blackTexture(4, 1), 0);
    float curve[4] = {0.0f, 64.9f, 255.0f, 300.0f};  // truncated, low 8 bits kept
    filter->setFloatArray(1, curve, 4);
    HFGLTexture* lut = static_cast<HFGLTexture*>(filter->getInputTexture(1).get());
    ASSERT_NE(nullptr, lut);
    EXPECT_EQ(HFSize({4, 1}), lut->size());
    EXPECT_EQ(static_cast<GLenum>(GL_LUMINANCE), lut->textureOptions().internalFormat);
    _Image* out = create_image(4, 1, 4, 16);
    filter->render(out);
    EXPECT_EQ((std::vector<unsigned char>{0, 0, 0, 255, 64, 64, 64, 255, 255, 255, 255, 255, 44, 44, 44, 255}),
              bytesOf(out, 16));
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
    EXPECT_EQ(std::make_pair(16, 8), std::make_pair(first->width, first->height));
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
    // Not a plain swap: |640 cos - 480 sin + 1| by |640 sin + 480 cos|.
    filter->setFlipMode(HFFlipModeNone);
    filter->setRotation(static_cast<float>(M_PI / 2));
    EXPECT_EQ(HFSize({479, 640}), filter->outputTextureSize());

    filter->setRotation(0.0f);
    filter->setInputTextureSize(HFSize{101, 101});
    filter->setOutputScale(0.5f);
    EXPECT_EQ(HFSize({50, 50}), filter->sizeOfFBO());
}

// Sizes come from Java as ints and scales as floats: every conversion to int
// saturates, and a target GL cannot make fails the render (logged) without
// touching GL or the caller's image; a later sane size renders again.
TEST_F(HFGLFilterTest, AbsurdSizesSaturateAndFailTheRenderCleanly) {
    const float nan = std::nanf("");
    const struct {
        HFSize input;
        float scale;
        HFSize fbo;
    } cases[] = {
        {{INT32_MAX, INT32_MAX}, 1.0f, {INT32_MAX, INT32_MAX}},
        {{INT32_MIN, 4}, 1.0f, {INT32_MAX, 4}},
        {{64, 64}, 1e30f, {INT32_MAX, INT32_MAX}},
        {{64, 64}, -1e30f, {INT32_MIN, INT32_MIN}},
        {{64, 64}, -1.0f, {-64, -64}},
        {{64, 64}, nan, {0, 0}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << c.input.width << "x" << c.input.height << " * " << c.scale);
        shared_ptr<HFGLFilter> filter = HFGLFilter::createFilter(kSwapFragment, kVertex);
        filter->setInputTextureSize(c.input);
        filter->setOutputScale(c.scale);
        EXPECT_EQ(c.fbo, filter->sizeOfFBO());
        _Image* out = create_image(2, 2, 4, 8);
        memset(out->data, 0x5a, 16);
        const std::string log = captureStderr([&] { filter->render(out); });
        EXPECT_EQ(std::vector<unsigned char>(16, 0x5a), bytesOf(out, 16));
        if (c.fbo.width != 0) {
            EXPECT_NE(std::string::npos, log.find("nothing rendered"));
            EXPECT_FALSE(filter->filterFBO());
            EXPECT_EQ(GLenum(GL_NO_ERROR), glGetError());
        }
        // A zero-sized target is made and draws nothing, raising GL's own error.
        while (glGetError() != GL_NO_ERROR) {
        }

        filter->setOutputScale(1.0f);
        filter->setInputTextureImage(out, 0);
        filter->render(out);
        EXPECT_TRUE(filter->filterFBO());
        EXPECT_EQ(HFSize({2, 2}), filter->sizeOfFBO());
        free_image(&out);
    }
    glBindFramebuffer(GL_FRAMEBUFFER, 0);
}

}  // namespace
