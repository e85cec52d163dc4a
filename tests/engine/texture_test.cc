#include "engine/texture.h"

#include <gtest/gtest.h>

#include <cstdint>

#include <algorithm>

#include "gl/gl_test_support.h"
#include "jni/guarded_buffer.h"
#include "support/gl_fixture.h"

namespace {

using gltest::glInteger;
using gltest::readTexture;

std::vector<GLint> parametersOf(GLuint texture) {
    std::vector<GLint> values;
    glBindTexture(GL_TEXTURE_2D, texture);
    for (GLenum name : {GL_TEXTURE_MIN_FILTER, GL_TEXTURE_MAG_FILTER, GL_TEXTURE_WRAP_S, GL_TEXTURE_WRAP_T}) {
        glGetTexParameteriv(GL_TEXTURE_2D, name, &values.emplace_back());
    }
    glBindTexture(GL_TEXTURE_2D, 0);
    return values;
}

using TextureTest = GLTest;

TEST_F(TextureTest, WrappingABorrowedNameAppliesOptionsAndNeverDeletesIt) {
    const std::vector<unsigned char> pixels(16, 77);
    const GLuint name = gltest::makeTexture(2, 2, pixels.data());
    glBindTexture(GL_TEXTURE_2D, name);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_NEAREST);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_NEAREST);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_REPEAT);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, GL_MIRRORED_REPEAT);
    glBindTexture(GL_TEXTURE_2D, 0);
    {
        shared_ptr<HFGLTexture> texture = HFGLTexture::createTexture(name, defaultTextureOptions);
        EXPECT_FALSE(texture->ownsName());
        EXPECT_EQ((std::vector<GLint>{GL_LINEAR, GL_LINEAR, GL_CLAMP_TO_EDGE, GL_CLAMP_TO_EDGE}), parametersOf(name));
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

TEST_F(TextureTest, OwnedTexturesLiveUntilTheLastHandleAndResizeOnlyToNewNonZeroSizes) {
    shared_ptr<HFGLTexture> texture = HFGLTexture::createTexture(0u, defaultTextureOptions);
    const GLuint name = texture->glTexture();
    ASSERT_NE(0u, name);
    texture->resize(4, 3);
    EXPECT_EQ(static_cast<GLint>(name), glInteger(GL_TEXTURE_BINDING_2D));  // left bound on unit 3
    texture->resize(0, 8);
    texture->resize(8, 0);
    // Sides GL cannot hold never reach the driver (llvmpipe's stack overflows
    // on 4 x INT_MAX); negative ones neither.
    const GLint limit = glInteger(GL_MAX_TEXTURE_SIZE);
    texture->resize(4, limit + 1);
    texture->resize(4, INT32_MAX);
    texture->resize(-2, 4);
    EXPECT_EQ(HFSize({4, 3}), texture->size());
    readTexture(name, 4, 3);
    EXPECT_EQ(GLenum(GL_NO_ERROR), glGetError()) << "storage of 4x3 RGBA";
    glActiveTexture(GL_TEXTURE0);

    shared_ptr<IHFTexture> base = texture;
    texture.release();
    EXPECT_TRUE(glIsTexture(name));
    base.release();
    EXPECT_FALSE(glIsTexture(name));
}

TEST_F(TextureTest, SetImageUploadsByChannelCountOnUnitThree) {
    const GLenum formats[] = {GL_LUMINANCE, GL_LUMINANCE_ALPHA, GL_RGBA, GL_RGBA};
    for (int channels = 1; channels <= 4; ++channels) {
        SCOPED_TRACE(channels);
        // Sixteen bytes of 200: enough for every format at 2x2.
        _Image* image = create_image(2, 2, 4, 8);
        std::fill(image->data, image->data + 16, 200);
        image->channels = channels;
        image->stride = 2 * channels;
        glActiveTexture(GL_TEXTURE0);
        glPixelStorei(GL_UNPACK_ALIGNMENT, 1);
        shared_ptr<HFGLTexture> texture = HFGLTexture::createTexture(image, defaultTextureOptions);
        free_image(&image);

        EXPECT_EQ(formats[channels - 1], texture->textureOptions().internalFormat);
        EXPECT_EQ(HFSize({2, 2}), texture->size());
        EXPECT_EQ(GL_TEXTURE3, glInteger(GL_ACTIVE_TEXTURE));
        EXPECT_EQ(0, glInteger(GL_TEXTURE_BINDING_2D));
        texture->setImage(nullptr);  // only forgets the size
        EXPECT_EQ(HFSize({0, 0}), texture->size());
        // Luminance textures cannot be framebuffer attachments; RGBA ones are
        // read back (three-channel rows are taken as four-channel ones).
        if (channels >= 3) {
            EXPECT_EQ(std::vector<unsigned char>(16, 200), readTexture(texture->glTexture(), 2, 2));
        }
        glPixelStorei(GL_UNPACK_ALIGNMENT, 4);
    }
    glActiveTexture(GL_TEXTURE0);
    EXPECT_EQ(GLenum(GL_NO_ERROR), glGetError());
}

// Each image ends at an unreadable page. GL reads more than the image holds
// where a three-channel image goes up as RGBA, and where the caller's unpack
// alignment pads short luminance rows: those uploads come from a zero-padded
// copy. The bytes that exist reach the texture as they are; the caller's
// alignment is left alone.
TEST_F(TextureTest, UploadsNeverReadPastTheImage) {
    const struct {
        int channels;
        int alignment;
    } cases[] = {{3, 4}, {3, 1}, {1, 4}, {2, 4}, {2, 8}, {4, 4}};
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << c.channels << " channels, alignment " << c.alignment);
        const int width = 3, height = 2;
        GuardedBuffer pixels(static_cast<size_t>(width * height * c.channels));
        pixels.randomize(static_cast<uint32_t>(c.channels));
        _Image* image = create_image_header(width, height, static_cast<unsigned int>(c.channels), width * c.channels);
        image->data = pixels.data();
        glPixelStorei(GL_UNPACK_ALIGNMENT, c.alignment);
        shared_ptr<HFGLTexture> texture = HFGLTexture::createTexture(image, defaultTextureOptions);
        free_image_header(&image);
        EXPECT_EQ(c.alignment, glInteger(GL_UNPACK_ALIGNMENT));
        EXPECT_EQ(GLenum(GL_NO_ERROR), glGetError());
        if (c.channels >= 3) {
            // RGBA texels over the image's bytes, zeros where they run out.
            std::vector<unsigned char> expected(pixels.data(), pixels.data() + pixels.size());
            expected.resize(static_cast<size_t>(width * height * 4), 0);
            EXPECT_EQ(expected, readTexture(texture->glTexture(), width, height));
        }
    }
    glPixelStorei(GL_UNPACK_ALIGNMENT, 4);
    glActiveTexture(GL_TEXTURE0);
}

}  // namespace
