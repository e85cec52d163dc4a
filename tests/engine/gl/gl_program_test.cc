#include "engine/gl/gl_filter_fbo.h"
#include "engine/gl/gl_filter_program.h"
#include "gl_test_support.h"
#include "jni/capture_stderr.h"
#include "support/gl_fixture.h"

namespace {

using GLFilterRecordTest = GLTest;
using gltest::kSwapFragment;
using gltest::kVertex;

GLint linkStatus(const shared_ptr<GLFilterProgram>& program) {
    GLint status = -1;
    glGetProgramiv(program->program, GL_LINK_STATUS, &status);
    return status;
}

TEST_F(GLFilterRecordTest, ProgramDeciphersLinksAndDeletesWithTheLastHandle) {
    const std::string packed = gltest::packMee(kSwapFragment);
    shared_ptr<GLFilterProgram> program = GLFilterProgram::create(kVertex, packed.c_str());
    EXPECT_EQ(GL_TRUE, linkStatus(program));
    EXPECT_GE(program->uniformLocation("inputImageTexture"), 0);
    const GLuint names[3] = {program->program, program->vertexShader, program->fragmentShader};

    shared_ptr<GLFilterProgram> second = program;
    program.release();
    EXPECT_TRUE(glIsProgram(names[0]));
    second.release();
    EXPECT_FALSE(glIsProgram(names[0]));
    EXPECT_FALSE(glIsShader(names[1]));
    EXPECT_FALSE(glIsShader(names[2]));
}

TEST_F(GLFilterRecordTest, ProgramFailuresAreLoggedAndTheRecordSurvives) {
    shared_ptr<GLFilterProgram> noFragment, bad;
    EXPECT_NE(std::string::npos, captureStderr([&] { noFragment = GLFilterProgram::create(kVertex, nullptr); })
                                     .find("Failed to load vertex shader"));
    EXPECT_EQ(0u, noFragment->fragmentShader);
    EXPECT_EQ(GL_FALSE, linkStatus(noFragment));
    // Upper-case IOS is no protected form: compiled as given, and it fails.
    EXPECT_NE(std::string::npos, captureStderr([&] { bad = GLFilterProgram::create(kVertex, "IOS void main"); })
                                     .find("Shader compile log:"));
    EXPECT_NE(0u, bad->fragmentShader);
    EXPECT_EQ(GL_FALSE, linkStatus(bad));
    while (glGetError() != GL_NO_ERROR) {
    }
}

TEST_F(GLFilterRecordTest, FramebufferAttachesOnUnitOneIgnoresZeroSizesAndCleansUp) {
    shared_ptr<HFGLTexture> colour = HFGLTexture::createTexture(static_cast<_Image*>(nullptr));
    colour->resize(8, 4);
    shared_ptr<GLFilterFBO> fbo = GLFilterFBO::create();
    fbo->attach(colour);
    EXPECT_EQ(2, colour.use_count());
    GLint attached = 0;
    glGetFramebufferAttachmentParameteriv(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0,
                                          GL_FRAMEBUFFER_ATTACHMENT_OBJECT_NAME, &attached);
    EXPECT_EQ(static_cast<GLint>(fbo->framebuffer), gltest::glInteger(GL_FRAMEBUFFER_BINDING));
    EXPECT_EQ(static_cast<GLint>(colour->glTexture()), attached);
    EXPECT_EQ(GL_TEXTURE1, gltest::glInteger(GL_ACTIVE_TEXTURE));
    EXPECT_EQ(0, gltest::glInteger(GL_TEXTURE_BINDING_2D));

    fbo->setSize(8, 4);
    fbo->setSize(0, 480);
    fbo->setSize(640, 0);
    glBindFramebuffer(GL_FRAMEBUFFER, 0);
    fbo->bind();
    GLint viewport[4];
    glGetIntegerv(GL_VIEWPORT, viewport);
    EXPECT_EQ(8, viewport[2]);
    EXPECT_EQ(4, viewport[3]);
    EXPECT_EQ(GL_FRAMEBUFFER_COMPLETE, glCheckFramebufferStatus(GL_FRAMEBUFFER));

    const GLuint name = fbo->framebuffer;
    fbo.release();
    EXPECT_FALSE(glIsFramebuffer(name));
    EXPECT_EQ(1, colour.use_count());
    EXPECT_EQ(0, gltest::glInteger(GL_FRAMEBUFFER_BINDING));
}

}  // namespace
