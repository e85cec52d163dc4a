#include "render/magic_engine.h"

#include "render/gl_utils.h"
#include "render_gl_helpers.h"
#include "support/gl_fixture.h"

namespace {

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

TEST_F(MagicEngineTest, InitClampsCapacityAndRejectsBadSlots) {
    EXPECT_EQ(-1, magicEngineInit(5, 4));
    ASSERT_EQ(2, magicEngineInit(40, 2));
    EXPECT_EQ(16, magicEngineAt(2)->capacity);
    EXPECT_TRUE(magicEngineAt(2)->linked);
    EXPECT_EQ(2, magicEngineInit(3, 2));  // existing engine kept
    EXPECT_EQ(16, magicEngineAt(2)->capacity);
    EXPECT_EQ(nullptr, magicEngineAt(4));
}

TEST_F(MagicEngineTest, PoolKeyedBySizeWithMoveToFrontAndLruEviction) {
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

    // Full at two: the least recently used (b) goes.
    ImageFBO* c = magicCreate(engine, 3, 3);
    EXPECT_EQ(2u, engine->entries.size());
    EXPECT_EQ(nullptr, magicLookup(engine, 8, 2));
    EXPECT_FALSE(glIsTexture(bTexture));
    EXPECT_EQ(c, engine->entries.front().get());
    EXPECT_EQ(a, magicLookup(engine, 4, 4));
    EXPECT_EQ(0, currentInt(GL_FRAMEBUFFER_BINDING));
}

TEST_F(MagicEngineTest, CheckRebuildsAnEngineWhoseProgramIsGone) {
    ASSERT_EQ(1, magicEngineInit(4, 1));
    GLuint lost = magicEngineAt(1)->program;
    magicCreate(magicEngineAt(1), 4, 4);
    EXPECT_EQ(1, magicEngineCheck(4, 1));
    EXPECT_EQ(lost, magicEngineAt(1)->program);

    glDeleteProgram(lost);
    glUseProgram(0);
    EXPECT_EQ(1, magicEngineCheck(9, 1));
    MagicEngine* rebuilt = magicEngineAt(1);
    EXPECT_TRUE(glIsProgram(rebuilt->program));
    EXPECT_EQ(9, rebuilt->capacity);
    EXPECT_TRUE(rebuilt->entries.empty());
    EXPECT_EQ(GL_NO_ERROR, glGetError());
}

TEST_F(MagicEngineTest, DeinitStopsAtFirstEmptySlotAndAnswersFourOnly) {
    ASSERT_EQ(0, magicEngineInit(2, 0));
    ASSERT_EQ(1, magicEngineInit(2, 1));
    ASSERT_EQ(3, magicEngineInit(2, 3));
    GLuint program = magicEngineAt(0)->program;
    EXPECT_EQ(0, magicEngineDeinit(0));
    EXPECT_EQ(nullptr, magicEngineAt(0));
    EXPECT_EQ(nullptr, magicEngineAt(1));
    EXPECT_NE(nullptr, magicEngineAt(3));  // behind the empty slot 2
    EXPECT_FALSE(glIsProgram(program));
    EXPECT_EQ(1, magicEngineDeinit(4));  // slot 0 is empty now: nothing freed
    EXPECT_NE(nullptr, magicEngineAt(3));
    ASSERT_EQ(0, magicEngineInit(2, 0));
    EXPECT_EQ(1, magicEngineDeinit(4));
}

TEST_F(MagicEngineTest, BeginUseRendersIntoPoolAndPooledReadFetchesIt) {
    ASSERT_EQ(0, magicEngineInit(4, 0));
    magicBeginUse(0, 5, 0);  // bad size: nothing bound
    EXPECT_EQ(0, currentInt(GL_FRAMEBUFFER_BINDING));

    magicBeginUse(5, 3, 0);
    ImageFBO* target = magicLookup(magicEngineAt(0), 5, 3);
    ASSERT_NE(nullptr, target);
    EXPECT_EQ(static_cast<GLint>(target->framebuffer), currentInt(GL_FRAMEBUFFER_BINDING));
    GLint viewport[4];
    glGetIntegerv(GL_VIEWPORT, viewport);
    EXPECT_EQ(5, viewport[2]);
    EXPECT_EQ(3, viewport[3]);
    glClearColor(0, 1, 0, 1);
    glClear(GL_COLOR_BUFFER_BIT);
    magicEndUse(5, 3, 0);
    EXPECT_EQ(0, currentInt(GL_FRAMEBUFFER_BINDING));

    glClearColor(1, 0, 0, 1);  // framebuffer 0 differs from the pooled target
    glClear(GL_COLOR_BUFFER_BIT);
    std::vector<uint8_t> pixels(5 * 3 * 4, 7);
    EXPECT_EQ(0, magicReadPixels(pixels.data(), 5, 3, 0));
    EXPECT_EQ(rgba(0, 255, 0, 255), pixelAt(pixels, 5, 4, 2));
    EXPECT_EQ(0, currentInt(GL_FRAMEBUFFER_BINDING));

    target->readDisabled = 1;
    std::vector<uint8_t> untouched(5 * 3 * 4, 7);
    magicReadPixels(untouched.data(), 5, 3, 0);
    EXPECT_EQ(std::vector<uint8_t>(5 * 3 * 4, 7), untouched);

    // No target of this size yet, and slot 4: both read the bound framebuffer.
    std::vector<uint8_t> small(2 * 2 * 4);
    magicReadPixels(small.data(), 2, 2, 0);
    EXPECT_EQ(rgba(255, 0, 0, 255), pixelAt(small, 2, 1, 1));
    magicReadPixels(small.data(), 2, 2, 4);
    EXPECT_EQ(rgba(255, 0, 0, 255), pixelAt(small, 2, 0, 0));
}

TEST_F(MagicEngineTest, CopyTextureToPixelsThroughPoolAndTemporaryFramebuffer) {
    ScopedTexture texture(2, 2, quadrantTexels().data());
    std::vector<uint8_t> pixels(16, 0);
    // Slot 3 has no engine yet: the copy builds one.
    magicCopyTextureToPixels(pixels.data(), 2, 2, 3, texture.name());
    EXPECT_EQ(quadrantTexels(), pixels);
    ASSERT_NE(nullptr, magicEngineAt(3));
    EXPECT_EQ(5, magicEngineAt(3)->capacity);
    EXPECT_EQ(0, currentInt(GL_FRAMEBUFFER_BINDING));

    std::vector<uint8_t> direct(16, 0);
    magicCopyTextureToPixels(direct.data(), 2, 2, 7, texture.name());
    EXPECT_EQ(quadrantTexels(), direct);
    EXPECT_EQ(0, currentInt(GL_FRAMEBUFFER_BINDING));
    EXPECT_EQ(GL_NO_ERROR, glGetError());
}

TEST(GlUtils, ErrorNamesAndErrorTest) {
    EXPECT_STREQ("EGL_SUCCESS", eglErrorName(0x3000));
    EXPECT_STREQ("EGL_BAD_CURRENT_SURFACE", eglErrorName(0x3007));
    EXPECT_STREQ("EGL_CONTEXT_LOST", eglErrorName(0x300E));
    EXPECT_STREQ("UNKNOWN", eglErrorName(0x300F));
    EXPECT_STREQ("UNKNOWN", eglErrorName(0));
}

TEST_F(MagicEngineTest, CheckGlErrorConsumesOneFlag) {
    EXPECT_TRUE(checkGlError("clean"));
    glBindTexture(0x1234, 0);  // GL_INVALID_ENUM
    EXPECT_FALSE(checkGlError("bad enum"));
    EXPECT_TRUE(checkGlError("consumed"));
    EXPECT_EQ(0u, buildGLProgram("void main() { gl_Position = vec4(0.0); }", nullptr));
    EXPECT_EQ(0u, buildGLProgram("not a shader", "void main() {}"));
}

}  // namespace
