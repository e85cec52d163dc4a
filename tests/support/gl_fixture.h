// GoogleTest fixture with a headless OpenGL ES 2.0 context current on the
// test thread (Mesa). Tests skip when no context can be made.
#ifndef IFC_TESTS_GL_FIXTURE_H
#define IFC_TESTS_GL_FIXTURE_H

#include <GLES2/gl2.h>
#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "headless_gl.h"

class GLTest : public ::testing::Test {
protected:
    static constexpr int kSurfaceSize = 64;

    // One context per test binary: creating one costs a third of a second on
    // llvmpipe. Each test starts with no error pending and framebuffer 0 bound.
    void SetUp() override {
        static std::string error;
        static std::unique_ptr<ifc_host::HeadlessGL> gl =
            ifc_host::HeadlessGL::create(kSurfaceSize, kSurfaceSize, &error);
        ASSERT_TRUE(gl) << error;
        ASSERT_TRUE(gl->makeCurrent());
        while (glGetError() != GL_NO_ERROR) {
        }
        glBindFramebuffer(GL_FRAMEBUFFER, 0);
        glViewport(0, 0, kSurfaceSize, kSurfaceSize);
    }

    // RGBA bytes of a rectangle of the bound framebuffer.
    static std::vector<unsigned char> readPixels(int x, int y, int width, int height) {
        std::vector<unsigned char> pixels(static_cast<size_t>(width) * height * 4);
        glPixelStorei(GL_PACK_ALIGNMENT, 1);
        glReadPixels(x, y, width, height, GL_RGBA, GL_UNSIGNED_BYTE, pixels.data());
        return pixels;
    }
};

#endif  // IFC_TESTS_GL_FIXTURE_H
