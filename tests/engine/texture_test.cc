#include "engine/texture.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "support/gl_fixture.h"

namespace {

GLint parameterOf(GLuint texture, GLenum name) {
    GLint value = 0;
    glBindTexture(GL_TEXTURE_2D, texture);
    glGetTexParameteriv(GL_TEXTURE_2D, name, &value);
    glBindTexture(GL_TEXTURE_2D, 0);
    return value;
}

// RGBA bytes of level 0, read through a framebuffer.
std::vector<unsigned char> pixelsOf(GLuint texture, int width, int height) {
    GLuint framebuffer = 0;
    glGenFramebuffers(1, &framebuffer);
    glBindFramebuffer(GL_FRAMEBUFFER, framebuffer);
    glFramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D, texture, 0);
    std::vector<unsigned char> pixels(static_cast<size_t>(width) * height * 4);
    glPixelStorei(GL_PACK_ALIGNMENT, 1);
    glReadPixels(0, 0, width, height, GL_RGBA, GL_UNSIGNED_BYTE, pixels.data());
    glBindFramebuffer(GL_FRAMEBUFFER, 0);
    glDeleteFramebuffers(1, &framebuffer);
    return pixels;
}

GLuint callerTexture(int width, int height, unsigned char fill) {
    GLuint texture = 0;
    glGenTextures(1, &texture);
    glBindTexture(GL_TEXTURE_2D, texture);
    std::vector<unsigned char> pixels(static_cast<size_t>(width) * height * 4, fill);
    glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA, width, height, 0, GL_RGBA, GL_UNSIGNED_BYTE, pixels.data());
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_NEAREST);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_NEAREST);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_REPEAT);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, GL_MIRRORED_REPEAT);
    glBindTexture(GL_TEXTURE_2D, 0);
    return texture;
}

class TextureTest : public GLTest {};

TEST_F(TextureTest, WrappingABorrowedNameAppliesOptionsAndNeverDeletesIt) {
    GLuint name = callerTexture(2, 2, 77);
    {
        shared_ptr<HFGLTexture> texture = HFGLTexture::createTexture(name, defaultTextureOptions);
        EXPECT_EQ(name, texture->glTexture());
        EXPECT_FALSE(texture->ownsName());
        EXPECT_EQ(GL_LINEAR, parameterOf(name, GL_TEXTURE_MIN_FILTER));
        EXPECT_EQ(GL_LINEAR, parameterOf(name, GL_TEXTURE_MAG_FILTER));
        EXPECT_EQ(GL_CLAMP_TO_EDGE, parameterOf(name, GL_TEXTURE_WRAP_S));
        EXPECT_EQ(GL_CLAMP_TO_EDGE, parameterOf(name, GL_TEXTURE_WRAP_T));

        // Recording the size keeps the caller's pixels, yet leaves the name
        // bound on unit 3 like a resize of an owned texture.
        texture->resize(2, 2);
        EXPECT_EQ(2, texture->size().width);
        GLint active = 0;
        GLint bound = 0;
        glGetIntegerv(GL_ACTIVE_TEXTURE, &active);
        glGetIntegerv(GL_TEXTURE_BINDING_2D, &bound);
        EXPECT_EQ(GL_TEXTURE3, active);
        EXPECT_EQ(static_cast<GLint>(name), bound);
        glBindTexture(GL_TEXTURE_2D, 0);
        glActiveTexture(GL_TEXTURE0);
    }
    EXPECT_TRUE(glIsTexture(name));
    EXPECT_EQ(std::vector<unsigned char>(16, 77), pixelsOf(name, 2, 2));
    glDeleteTextures(1, &name);
    EXPECT_EQ(GLenum(GL_NO_ERROR), glGetError());
}

TEST_F(TextureTest, OwnedTexturesAreDeletedWithTheLastHandle) {
    GLuint name = 0;
    {
        shared_ptr<HFGLTexture> texture = HFGLTexture::createTexture(0u, defaultTextureOptions);
        name = texture->glTexture();
        ASSERT_NE(0u, name);
        EXPECT_TRUE(texture->ownsName());
        shared_ptr<IHFTexture> base = texture;
        texture.release();
        EXPECT_TRUE(glIsTexture(name));
    }
    EXPECT_FALSE(glIsTexture(name));
}

TEST_F(TextureTest, SetImageUploadsByChannelCountOnUnitThree) {
    struct Case {
        int channels;
        GLenum format;
    };
    for (Case c : {Case{1, GL_LUMINANCE}, Case{2, GL_LUMINANCE_ALPHA}, Case{3, GL_RGBA}, Case{4, GL_RGBA}}) {
        SCOPED_TRACE(c.channels);
        // Sixteen bytes of 200: enough for every format at 2x2.
        _Image* image = create_image(2, 2, 4, 8);
        std::fill(image->data, image->data + 16, 200);
        image->channels = c.channels;
        image->stride = 2 * c.channels;
        glActiveTexture(GL_TEXTURE0);
        glBindTexture(GL_TEXTURE_2D, 0);
        glPixelStorei(GL_UNPACK_ALIGNMENT, 1);
        shared_ptr<HFGLTexture> texture = HFGLTexture::createTexture(image, defaultTextureOptions);
        free_image(&image);

        EXPECT_EQ(c.format, texture->textureOptions().internalFormat);
        EXPECT_EQ(2, texture->size().width);
        EXPECT_EQ(2, texture->size().height);
        GLint active = 0;
        glGetIntegerv(GL_ACTIVE_TEXTURE, &active);
        EXPECT_EQ(GL_TEXTURE3, active);
        EXPECT_EQ(GLenum(GL_NO_ERROR), glGetError());
        // Luminance textures cannot be framebuffer attachments; RGBA ones are
        // read back (three-channel rows are taken as four-channel ones).
        if (c.format == GL_RGBA) {
            EXPECT_EQ(std::vector<unsigned char>(16, 200), pixelsOf(texture->glTexture(), 2, 2));
        }
        glActiveTexture(GL_TEXTURE0);
        glPixelStorei(GL_UNPACK_ALIGNMENT, 4);
    }
    EXPECT_EQ(GLenum(GL_NO_ERROR), glGetError());
}

TEST_F(TextureTest, NullImageOnlyForgetsTheSize) {
    _Image* image = create_image(3, 1, 4, 0);
    std::fill(image->data, image->data + image->size, 9);
    shared_ptr<HFGLTexture> texture = HFGLTexture::createTexture(image, defaultTextureOptions);
    texture->setImage(nullptr);
    EXPECT_EQ(0, texture->size().width);
    EXPECT_EQ(9, pixelsOf(texture->glTexture(), 3, 1)[0]);
    free_image(&image);
}

TEST_F(TextureTest, ResizeOfAnOwnedTextureRespecifiesOnlyForANewNonZeroSize) {
    shared_ptr<HFGLTexture> texture = HFGLTexture::createTexture(0u, defaultTextureOptions);
    texture->resize(4, 3);
    EXPECT_EQ(4, texture->size().width);
    GLint bound = 0;
    glGetIntegerv(GL_TEXTURE_BINDING_2D, &bound);
    EXPECT_EQ(static_cast<GLint>(texture->glTexture()), bound);  // left bound on unit 3

    texture->resize(0, 8);
    texture->resize(8, 0);
    EXPECT_EQ(4, texture->size().width);
    EXPECT_EQ(3, texture->size().height);
    EXPECT_EQ(4u * 3 * 4, pixelsOf(texture->glTexture(), 4, 3).size());
    EXPECT_EQ(GLenum(GL_NO_ERROR), glGetError());
    glActiveTexture(GL_TEXTURE0);
}

}  // namespace
