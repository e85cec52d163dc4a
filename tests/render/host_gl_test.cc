#include "support/gl_fixture.h"

using HostGL = GLTest;

// The host context is what every GL test stands on: framebuffer 0 must be a
// readable RGBA surface.
TEST_F(HostGL, ClearsAndReadsBackFramebufferZero) {
    glClearColor(1.0f, 0.0f, 0.0f, 1.0f);
    glClear(GL_COLOR_BUFFER_BIT);
    auto pixels = readPixels(0, 0, 2, 2);
    for (int i = 0; i < 4; ++i) {
        EXPECT_EQ(255, pixels[i * 4 + 0]);
        EXPECT_EQ(0, pixels[i * 4 + 1]);
        EXPECT_EQ(255, pixels[i * 4 + 3]);
    }
    const char* extensions = reinterpret_cast<const char*>(glGetString(GL_EXTENSIONS));
    ASSERT_NE(nullptr, extensions);
    EXPECT_NE(nullptr, strstr(extensions, "GL_OES_EGL_image_external"));
}
