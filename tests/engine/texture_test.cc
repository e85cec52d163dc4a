#include "engine/texture.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "gl/gl_test_support.h"
#include "support/gl_fixture.h"

namespace {

using gltest::glInteger;
using gltest::readTexture;

GLint parameterOf(GLuint texture, GLenum name) {
    GLint value = 0;
    glBindTexture(GL_TEXTURE_2D, texture);
    glGetTexParameteriv(GL_TEXTURE_2D, name, &value);
    glBindTexture(GL_TEXTURE_2D, 0);
    return value;
}

class TextureTest : public GLTest {};

TEST_F(TextureTest, WrappingABorrowedNameAppliesOptionsAndNeverDeletesIt) {
    GLuint name = 0;
    glGenTextures(1, &name);
    glBindTexture(GL_TEXTURE_2D, name);
    const std::vector<unsigned char> pixels(16, 77);
    glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA, 2, 2, 0, GL_RGBA, GL_UNSIGNED_BYTE, pixels.data());
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_NEAREST);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_NEAREST);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_REPEAT);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, GL_MIRRORED_REPEAT);
    glBindTexture(GL_TEXTURE_2D, 0);
    {
        shared_ptr<HFGLTexture> texture = HFGLTexture::createTexture(name, defaultTextureOptions);
        EXPECT_FALSE(texture->ownsName());
        for (GLenum parameter : {GL_TEXTURE_MIN_FILTER, GL_TEXTURE_MAG_FILTER}) {
            EXPECT_EQ(GL_LINEAR, parameterOf(name, parameter));
        }
        for (GLenum parameter : {GL_TEXTURE_WRAP_S, GL_TEXTURE_WRAP_T}) {
            EXPECT_EQ(GL_CLAMP_TO_EDGE, parameterOf(name, parameter));
        }
        // Recording the size keeps the caller's pixels, yet leaves the name
        // bound on unit 3 like a resize of an owned texture.
        texture->resize(2, 2);
        EXPECT_EQ(GL_TEXTURE3, glInteger(GL_ACTIVE_TEXTURE));
        EXPECT_EQ(static_cast<GLint>(name), glInteger(GL_TEXTURE_BINDING_2D));
        glBindTexture(GL_TEXTURE_2D, 0);
        glActiveTexture(GL_TEXTURE0);
    }
    EXPECT_EQ(pixels, readTexture(name, 2, 2));
    glDeleteTextures(1, &name);
    EXPECT_EQ(GLenum(GL_NO_ERROR), glGetError());
}

TEST_F(TextureTest, OwnedTexturesAreDeletedWithTheLastHandle) {
    GLuint name = 0;
    {
        shared_ptr<HFGLTexture> texture = HFGLTexture::createTexture(0u, defaultTextureOptions);
        name = texture->glTexture();
        ASSERT_NE(0u, name);
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
        glPixelStorei(GL_UNPACK_ALIGNMENT, 1);
        shared_ptr<HFGLTexture> texture = HFGLTexture::createTexture(image, defaultTextureOptions);
        free_image(&image);

        EXPECT_EQ(c.format, texture->textureOptions().internalFormat);
        EXPECT_EQ(HFSize({2, 2}), texture->size());
        EXPECT_EQ(GL_TEXTURE3, glInteger(GL_ACTIVE_TEXTURE));
        EXPECT_EQ(0, glInteger(GL_TEXTURE_BINDING_2D));
        // Luminance textures cannot be framebuffer attachments; RGBA ones are
        // read back (three-channel rows are taken as four-channel ones).
        if (c.format == GL_RGBA) {
            EXPECT_EQ(std::vector<unsigned char>(16, 200), readTexture(texture->glTexture(), 2, 2));
        }

        // A null image only forgets the size.
        texture->setImage(nullptr);
        EXPECT_EQ(HFSize({0, 0}), texture->size());
        if (c.format == GL_RGBA) {
            EXPECT_EQ(200, readTexture(texture->glTexture(), 2, 2)[0]);
        }
        glPixelStorei(GL_UNPACK_ALIGNMENT, 4);
    }
    glActiveTexture(GL_TEXTURE0);
    EXPECT_EQ(GLenum(GL_NO_ERROR), glGetError());
}

TEST_F(TextureTest, ResizeOfAnOwnedTextureRespecifiesOnlyForANewNonZeroSize) {
    shared_ptr<HFGLTexture> texture = HFGLTexture::createTexture(0u, defaultTextureOptions);
    texture->resize(4, 3);
    EXPECT_EQ(static_cast<GLint>(texture->glTexture()), glInteger(GL_TEXTURE_BINDING_2D));  // left bound on unit 3
    texture->resize(0, 8);
    texture->resize(8, 0);
    EXPECT_EQ(HFSize({4, 3}), texture->size());
    readTexture(texture->glTexture(), 4, 3);
    EXPECT_EQ(GLenum(GL_NO_ERROR), glGetError()) << "storage of 4x3 RGBA";
    glActiveTexture(GL_TEXTURE0);
}

}  // namespace
