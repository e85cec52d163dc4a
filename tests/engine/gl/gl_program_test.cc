#include <cstdlib>

#include "engine/gl/gl_filter_fbo.h"
#include "engine/gl/gl_filter_program.h"
#include "gl_test_support.h"
#include "support/gl_fixture.h"

namespace {

using GLFilterProgramTest = GLTest;
using GLFilterFBOTest = GLTest;
using gltest::kSwapFragment;
using gltest::kVertex;

GLint linkStatus(GLuint program) {
    GLint status = -1;
    glGetProgramiv(program, GL_LINK_STATUS, &status);
    return status;
}

TEST_F(GLFilterProgramTest, LinksAndDeletesItsObjectsWithTheLastHandle) {
    shared_ptr<GLFilterProgram> program = GLFilterProgram::create(kVertex, kSwapFragment);
    const GLuint name = program->program;
    const GLuint vertex = program->vertexShader;
    const GLuint fragment = program->fragmentShader;
    EXPECT_EQ(GL_TRUE, linkStatus(name));
    EXPECT_GE(program->attributeLocation("position"), 0);
    EXPECT_GE(program->uniformLocation("inputImageTexture"), 0);
    EXPECT_EQ(-1, program->uniformLocation("missing"));

    shared_ptr<GLFilterProgram> second = program;
    program.release();
    EXPECT_TRUE(glIsProgram(name));
    second.release();
    EXPECT_FALSE(glIsProgram(name));
    EXPECT_FALSE(glIsShader(vertex));
    EXPECT_FALSE(glIsShader(fragment));
}

TEST_F(GLFilterProgramTest, DeciphersPackedSourcesBeforeCompiling) {
    const std::string vertex = gltest::packMee(kVertex);
    const std::string fragment = gltest::packMee(kSwapFragment);
    shared_ptr<GLFilterProgram> program = GLFilterProgram::create(vertex.c_str(), fragment.c_str());
    EXPECT_EQ(GL_TRUE, linkStatus(program->program));
    EXPECT_GE(program->uniformLocation("inputImageTexture"), 0);
}

TEST_F(GLFilterProgramTest, FailuresAreLoggedAndTheRecordSurvives) {
    gltest::LogCapture missing;
    shared_ptr<GLFilterProgram> noFragment = GLFilterProgram::create(kVertex, nullptr);
    EXPECT_NE(std::string::npos, missing.text().find("Failed to load vertex shader"));
    EXPECT_EQ(0u, noFragment->fragmentShader);
    EXPECT_NE(0u, noFragment->program);
    EXPECT_EQ(GL_FALSE, linkStatus(noFragment->program));

    gltest::LogCapture broken;
    // Not a recognised protected form: compiled exactly as given.
    shared_ptr<GLFilterProgram> bad = GLFilterProgram::create(kVertex, "IOS void main(){ oops }");
    EXPECT_NE(std::string::npos, broken.text().find("Shader compile log:"));
    EXPECT_NE(0u, bad->fragmentShader);
    EXPECT_EQ(GL_FALSE, linkStatus(bad->program));
    while (glGetError() != GL_NO_ERROR) {
    }
}

TEST_F(GLFilterFBOTest, AttachesOnUnitOneAndIgnoresZeroSizes) {
    shared_ptr<HFGLTexture> colour = HFGLTexture::createTexture(static_cast<_Image*>(nullptr));
    colour->resize(8, 4);
    shared_ptr<GLFilterFBO> fbo = GLFilterFBO::create();
    EXPECT_EQ(0, fbo->width);
    fbo->attach(colour);
    EXPECT_EQ(2, colour.use_count());

    GLint bound = 0, attached = 0, active = 0, unitBinding = -1;
    glGetIntegerv(GL_FRAMEBUFFER_BINDING, &bound);
    glGetFramebufferAttachmentParameteriv(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0,
                                          GL_FRAMEBUFFER_ATTACHMENT_OBJECT_NAME, &attached);
    glGetIntegerv(GL_ACTIVE_TEXTURE, &active);
    glGetIntegerv(GL_TEXTURE_BINDING_2D, &unitBinding);
    EXPECT_EQ(static_cast<GLint>(fbo->framebuffer), bound);
    EXPECT_EQ(static_cast<GLint>(colour->glTexture()), attached);
    EXPECT_EQ(GL_TEXTURE1, active);
    EXPECT_EQ(0, unitBinding);

    fbo->setSize(8, 4);
    fbo->setSize(0, 480);
    fbo->setSize(640, 0);
    EXPECT_EQ(8, fbo->width);
    EXPECT_EQ(4, fbo->height);

    glBindFramebuffer(GL_FRAMEBUFFER, 0);
    fbo->bind();
    GLint viewport[4];
    glGetIntegerv(GL_VIEWPORT, viewport);
    EXPECT_EQ(8, viewport[2]);
    EXPECT_EQ(4, viewport[3]);
    EXPECT_EQ(GL_FRAMEBUFFER_COMPLETE, glCheckFramebufferStatus(GL_FRAMEBUFFER));
}

TEST_F(GLFilterFBOTest, DestructionDeletesTheFramebufferAndDropsTheTexture) {
    shared_ptr<HFGLTexture> colour = HFGLTexture::createTexture(static_cast<_Image*>(nullptr));
    colour->resize(4, 4);
    shared_ptr<GLFilterFBO> fbo = GLFilterFBO::create();
    fbo->attach(colour);
    const GLuint name = fbo->framebuffer;
    fbo.release();
    EXPECT_FALSE(glIsFramebuffer(name));
    EXPECT_EQ(1, colour.use_count());
    EXPECT_TRUE(glIsTexture(colour->glTexture()));
    GLint bound = -1;
    glGetIntegerv(GL_FRAMEBUFFER_BINDING, &bound);
    EXPECT_EQ(0, bound);
}

}  // namespace
