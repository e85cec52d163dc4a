#define EGL_EGLEXT_PROTOTYPES
#define GL_GLEXT_PROTOTYPES
#include <EGL/egl.h>
#include <EGL/eglext.h>
#include <GLES2/gl2.h>
#include <GLES2/gl2ext.h>

#include <cmath>

#include "engine/gl/gl_test_support.h"
#include "render/base_filte_render.h"
#include "support/gl_fixture.h"

namespace {

using gltest::ScopedTexture;
using gltest::glInteger;
using gltest::pixelAt;
using gltest::quadrantTexels;

const char kCopyFragment[] =
    "precision mediump float; varying vec2 textureCoordinate; uniform sampler2D inputImageTexture;\n"
    "void main() { gl_FragColor = texture2D(inputImageTexture, textureCoordinate); }\n";

class BaseFilteRenderTest : public GLTest {
protected:
    // Renders the quadrant texture over framebuffer 0 and returns the four
    // corner pixels: bottom-left, bottom-right, top-left, top-right.
    std::vector<std::vector<uint8_t>> renderCorners(BaseFilteRender& render, GLuint texture) {
        glClearColor(0, 0, 0, 0);
        glClear(GL_COLOR_BUFFER_BIT);
        render.RenderProcess(texture, 0, kSurfaceSize, kSurfaceSize);
        auto pixels = readPixels(0, 0, kSurfaceSize, kSurfaceSize);
        int last = kSurfaceSize - 1;
        return {pixelAt(pixels, kSurfaceSize, 0, 0), pixelAt(pixels, kSurfaceSize, last, 0),
                pixelAt(pixels, kSurfaceSize, 0, last), pixelAt(pixels, kSurfaceSize, last, last)};
    }

    static std::vector<uint8_t> texel(int index) {
        const auto& t = quadrantTexels();
        return {t.begin() + index * 4, t.begin() + index * 4 + 4};
    }
    static std::vector<std::vector<uint8_t>> quadrantCorners() { return {texel(0), texel(1), texel(2), texel(3)}; }
};

// Flips are checked through the natives; the rotation's pixels here.
TEST_F(BaseFilteRenderTest, DefaultQuadMapsCornersAndRotationTurnsIt) {
    BaseFilteRender render(GL_TEXTURE_2D);
    render.setFragmentShaderSource(kCopyFragment);
    ASSERT_EQ(1, render.InitializeGLProgram());
    ScopedTexture texture(2, 2, quadrantTexels().data());
    EXPECT_EQ(quadrantCorners(), renderCorners(render, texture.name()));

    // 90 degrees: a vertex (x, y) lands on (y, -x), so bottom-left goes top-left.
    render.Rotation(90);
    auto corners = renderCorners(render, texture.name());
    EXPECT_EQ(texel(0), corners[2]);
    EXPECT_EQ(texel(1), corners[0]);
}

TEST_F(BaseFilteRenderTest, RotationUsesTheShortPiAndResetsFlips) {
    BaseFilteRender render(GL_TEXTURE_2D);
    render.FlipX(1);
    render.Rotation(90);
    // The rotation's pi is 3.1415926: cos(90 deg) is tiny but not zero.
    EXPECT_EQ(static_cast<float>(cos(90 * 3.1415926 / 180.0)), render.modelview[0]);
    EXPECT_NE(0.0f, render.modelview[0]);
    EXPECT_EQ(0, render.flipX);
}

TEST_F(BaseFilteRenderTest, RawTextureOnUnitTwoOnlyWithLocationAboveZero) {
    ScopedTexture input(2, 2, quadrantTexels().data());
    const uint8_t grey[4] = {9, 99, 199, 255};
    ScopedTexture raw(1, 1, grey);

    BaseFilteRender both(GL_TEXTURE_2D);
    both.setFragmentShaderSource(
        "precision mediump float; varying vec2 textureCoordinate; uniform sampler2D inputImageTexture;\n"
        "uniform sampler2D rawInputImageTexture; void main() {\n"
        "gl_FragColor = texture2D(rawInputImageTexture, textureCoordinate)\n"
        "  + 0.0 * texture2D(inputImageTexture, textureCoordinate); }\n");
    ASSERT_EQ(1, both.InitializeGLProgram());
    ASSERT_GE(both.rawTextureLoc, 1);
    both.RenderProcess(input.name(), raw.name(), kSurfaceSize, kSurfaceSize);
    EXPECT_EQ((std::vector<uint8_t>{9, 99, 199, 255}), pixelAt(readPixels(5, 5, 1, 1), 1, 0, 0));
    glActiveTexture(GL_TEXTURE2);
    EXPECT_EQ(static_cast<GLint>(raw.name()), glInteger(GL_TEXTURE_BINDING_2D));
    glActiveTexture(GL_TEXTURE1);
    EXPECT_EQ(0, glInteger(GL_TEXTURE_BINDING_2D));
    glActiveTexture(GL_TEXTURE2);
    glBindTexture(GL_TEXTURE_2D, 0);
    glActiveTexture(GL_TEXTURE0);

    // The only uniform gets location 0, which counts as absent: its sampler
    // stays on unit 0 and shows the input.
    BaseFilteRender alone(GL_TEXTURE_2D);
    alone.setVertexShaderSource(
        "attribute vec4 position; attribute vec2 inputTextureCoordinate; varying vec2 textureCoordinate;\n"
        "void main() { gl_Position = position; textureCoordinate = inputTextureCoordinate; }\n");
    alone.setFragmentShaderSource(
        "precision mediump float; varying vec2 textureCoordinate; uniform sampler2D rawInputImageTexture;\n"
        "void main() { gl_FragColor = texture2D(rawInputImageTexture, textureCoordinate); }\n");
    ASSERT_EQ(1, alone.InitializeGLProgram());
    ASSERT_EQ(0, alone.rawTextureLoc);
    alone.RenderProcess(input.name(), raw.name(), kSurfaceSize, kSurfaceSize);
    EXPECT_EQ(texel(0), pixelAt(readPixels(0, 0, 1, 1), 1, 0, 0));
    glActiveTexture(GL_TEXTURE2);
    EXPECT_EQ(0, glInteger(GL_TEXTURE_BINDING_2D));
    glActiveTexture(GL_TEXTURE0);
}

TEST_F(BaseFilteRenderTest, ExternalTextureTarget) {
    ScopedTexture source(2, 2, quadrantTexels().data());
    EGLDisplay display = eglGetCurrentDisplay();
    auto createImage = reinterpret_cast<PFNEGLCREATEIMAGEKHRPROC>(eglGetProcAddress("eglCreateImageKHR"));
    auto destroyImage = reinterpret_cast<PFNEGLDESTROYIMAGEKHRPROC>(eglGetProcAddress("eglDestroyImageKHR"));
    auto targetTexture = reinterpret_cast<PFNGLEGLIMAGETARGETTEXTURE2DOESPROC>(
        eglGetProcAddress("glEGLImageTargetTexture2DOES"));
    ASSERT_TRUE(createImage && destroyImage && targetTexture);
    EGLImageKHR image = createImage(display, eglGetCurrentContext(), EGL_GL_TEXTURE_2D_KHR,
                                    reinterpret_cast<EGLClientBuffer>(static_cast<uintptr_t>(source.name())),
                                    nullptr);
    ASSERT_NE(EGL_NO_IMAGE_KHR, image);
    // The source's texels are final before another target reads them.
    glFinish();
    GLuint external = 0;
    glGenTextures(1, &external);
    glBindTexture(GL_TEXTURE_EXTERNAL_OES, external);
    glTexParameteri(GL_TEXTURE_EXTERNAL_OES, GL_TEXTURE_MIN_FILTER, GL_NEAREST);
    glTexParameteri(GL_TEXTURE_EXTERNAL_OES, GL_TEXTURE_MAG_FILTER, GL_NEAREST);
    targetTexture(GL_TEXTURE_EXTERNAL_OES, image);
    ASSERT_EQ(GLenum(GL_NO_ERROR), glGetError());

    BaseFilteRender render(GL_TEXTURE_EXTERNAL_OES);
    render.setFragmentShaderSource(
        "#extension GL_OES_EGL_image_external : require\n"
        "precision mediump float; varying vec2 textureCoordinate;\n"
        "uniform samplerExternalOES inputImageTexture;\n"
        "void main() { gl_FragColor = texture2D(inputImageTexture, textureCoordinate); }\n");
    ASSERT_EQ(1, render.InitializeGLProgram());
    EXPECT_EQ(quadrantCorners(), renderCorners(render, external));
    EXPECT_EQ(GL_NO_ERROR, glGetError());
    glDeleteTextures(1, &external);
    destroyImage(display, image);
}

TEST_F(BaseFilteRenderTest, RenderDataProcessFiltersClientPixelsInPlace) {
    BaseFilteRender render(GL_TEXTURE_2D);
    render.setFragmentShaderSource(
        "precision mediump float; varying vec2 textureCoordinate; uniform sampler2D inputImageTexture;\n"
        "void main() { vec4 c = texture2D(inputImageTexture, textureCoordinate);\n"
        "gl_FragColor = vec4(1.0 - c.rgb, c.a); }\n");
    ASSERT_EQ(1, render.InitializeGLProgram());
    std::vector<uint8_t> pixels = {10, 20, 30, 255, 40, 50, 60, 128, 70, 80, 90, 0,
                                   1, 2, 3, 4, 5, 6, 7, 8, 250, 251, 252, 253};
    render.RenderDataProcess(pixels.data(), 3, 2);
    std::vector<uint8_t> expected = {245, 235, 225, 255, 215, 205, 195, 128, 185, 175, 165, 0,
                                     254, 253, 252, 4, 250, 249, 248, 8, 5, 4, 3, 253};
    EXPECT_EQ(expected, pixels);
    EXPECT_EQ(0, glInteger(GL_FRAMEBUFFER_BINDING));
}

TEST_F(BaseFilteRenderTest, ProgramBuildFailures) {
    BaseFilteRender render(GL_TEXTURE_2D);
    EXPECT_EQ(0, render.InitializeGLProgram());  // no fragment source
    render.setFragmentShaderSource(kCopyFragment);
    ASSERT_EQ(1, render.InitializeGLProgram());
    GLuint built = render.program;
    render.setFragmentShaderSource("void main() { this is not glsl }");
    EXPECT_EQ(0, render.InitializeGLProgram());
    EXPECT_EQ(0u, render.program);
    GLint deleted = GL_FALSE;  // still current, so only flagged for deletion
    glGetProgramiv(built, GL_DELETE_STATUS, &deleted);
    EXPECT_EQ(GL_TRUE, deleted);
}

// Handing a source setter the text it already holds (what the getter
// returned) must copy before freeing; a null source keeps what is stored.
TEST_F(BaseFilteRenderTest, SourceSettersTakeTheirOwnTextAndNull) {
    BaseFilteRender render(GL_TEXTURE_2D);
    render.setFragmentShaderSource(kCopyFragment);
    render.setFragmentShaderSource(render.fragmentShaderSource());
    render.setVertexShaderSource(render.vertexShaderSource());  // the default text
    render.setVertexShaderSource(render.vertexShaderSource());  // its own copy
    render.setFragmentShaderSource(nullptr);
    render.setVertexShaderSource(nullptr);
    EXPECT_STREQ(kCopyFragment, render.fragmentShaderSource());
    EXPECT_STREQ(kDefaultVertexShader, render.vertexShaderSource());
    EXPECT_NE(kDefaultVertexShader, render.vertexShaderSource()) << "a stored copy";
    ASSERT_EQ(1, render.InitializeGLProgram());
    ScopedTexture texture(2, 2, quadrantTexels().data());
    EXPECT_EQ(quadrantCorners(), renderCorners(render, texture.name()));
}

}  // namespace
