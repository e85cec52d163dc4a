#include "render/magic_engine.h"

#include "engine/gl/gl_test_support.h"
#include "render/gl_utils.h"
#include "support/gl_fixture.h"

namespace {

using gltest::glInteger;

// Engines are process-wide: every test starts and ends with all slots empty.
class MagicEngineTest : public GLTest {
protected:
    void SetUp() override {
        GLTest::SetUp();
        freeAllSlots();
    }
    void TearDown() override { freeAllSlots(); }

    // Deinit stops at the first empty slot: fill them all, then free.
    static void freeAllSlots() {
        for (unsigned slot = 0; slot < kMagicSlots; ++slot) magicEngineInit(1, slot);
        magicEngineDeinit(4);
    }
};

TEST_F(MagicEngineTest, PoolKeyedBySizeWithMoveToFrontAndLruEviction) {
    ASSERT_EQ(2, magicEngineInit(40, 2));
    EXPECT_EQ(16, magicEngineAt(2)->capacity);  // clamped
    ASSERT_EQ(0, magicEngineInit(2, 0));
    MagicEngine* engine = magicEngineAt(0);
    EXPECT_EQ(nullptr, magicCreate(engine, 0, 4));
    EXPECT_EQ(nullptr, magicCreate(engine, 4, -1));
    EXPECT_EQ(nullptr, magicLookup(engine, 4, 4));

    ImageFBO* a = magicCreate(engine, 4, 4);
    ImageFBO* b = magicCreate(engine, 8, 2);
    ASSERT_TRUE(a && b && a != b);
    EXPECT_EQ(a, magicCreate(engine, 4, 4));  // same size, same entry, now in front
    EXPECT_EQ(a, engine->entries.front().get());
    EXPECT_NE(0u, a->framebuffer);
    EXPECT_TRUE(glIsTexture(b->texture));
    GLuint bTexture = b->texture;

    // Full at two: the least recently used (b) goes. A driver may hand b's
    // freed name straight to c; a name the pool still holds can only be
    // b's if b's was deleted first, any other must be gone.
    ImageFBO* c = magicCreate(engine, 3, 3);
    EXPECT_EQ(2u, engine->entries.size());
    EXPECT_EQ(nullptr, magicLookup(engine, 8, 2));
    EXPECT_NE(a->texture, bTexture);
    EXPECT_TRUE(c->texture == bTexture || !glIsTexture(bTexture));
    EXPECT_EQ(c, engine->entries.front().get());
    EXPECT_EQ(a, magicLookup(engine, 4, 4));
    EXPECT_EQ(0, glInteger(GL_FRAMEBUFFER_BINDING));
}

// The entries' names are released with a lost program too, as long as each
// framebuffer still holds its own attachments; a framebuffer whose names now
// mean something else is forgotten, not deleted.
TEST_F(MagicEngineTest, CheckRebuildsAnEngineWhoseProgramIsGoneAndReleasesItsEntries) {
    ASSERT_EQ(1, magicEngineInit(4, 1));
    GLuint lost = magicEngineAt(1)->program;
    const ImageFBO entry = *magicCreate(magicEngineAt(1), 4, 4);
    ImageFBO* other = magicCreate(magicEngineAt(1), 2, 2);
    const ImageFBO foreign = *other;
    EXPECT_EQ(1, magicEngineCheck(4, 1));
    EXPECT_EQ(lost, magicEngineAt(1)->program);

    // The 2x2 entry's framebuffer now carries someone else's texture.
    GLuint stranger = 0;
    glGenTextures(1, &stranger);
    glBindTexture(GL_TEXTURE_2D, stranger);
    glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA, 2, 2, 0, GL_RGBA, GL_UNSIGNED_BYTE, nullptr);
    glBindFramebuffer(GL_FRAMEBUFFER, foreign.framebuffer);
    glFramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D, stranger, 0);
    glBindFramebuffer(GL_FRAMEBUFFER, 0);

    glDeleteProgram(lost);
    glUseProgram(0);
    EXPECT_EQ(1, magicEngineCheck(9, 1));
    MagicEngine* rebuilt = magicEngineAt(1);
    EXPECT_TRUE(glIsProgram(rebuilt->program));
    EXPECT_EQ(9, rebuilt->capacity);
    EXPECT_TRUE(rebuilt->entries.empty());
    EXPECT_FALSE(glIsTexture(entry.texture) || glIsFramebuffer(entry.framebuffer) ||
                 glIsRenderbuffer(entry.renderbuffer));
    EXPECT_TRUE(glIsTexture(foreign.texture) && glIsFramebuffer(foreign.framebuffer) && glIsTexture(stranger));
    EXPECT_EQ(0, glInteger(GL_FRAMEBUFFER_BINDING));
    EXPECT_EQ(GL_NO_ERROR, glGetError());
    GLuint leftovers[] = {foreign.texture, stranger};
    glDeleteTextures(2, leftovers);
    glDeleteFramebuffers(1, &foreign.framebuffer);
    glDeleteRenderbuffers(1, &foreign.renderbuffer);
}

TEST_F(MagicEngineTest, InitImageFBOWithoutAnEntryFails) { EXPECT_EQ(-1, initImageFBO(nullptr, nullptr, 4, 4)); }

TEST_F(MagicEngineTest, CheckGlErrorConsumesTheError) {
    EXPECT_TRUE(checkGlError("clean"));
    glBindTexture(0x1234, 0);  // GL_INVALID_ENUM
    EXPECT_FALSE(checkGlError("bad enum"));
    EXPECT_TRUE(checkGlError("consumed"));
}

}  // namespace
