// glslang's view of a shader pair: declared types and array sizes, what is
// active, line numbers of errors, and the varying rule glslang's own linker
// leaves out. No GL context: these checks must not depend on a driver.
#include <GLES2/gl2.h>
#include <gtest/gtest.h>

#include <string>

#include "glsl_check.h"

namespace {

using filterpack::GlslProgramCheck;
using filterpack::ShaderStage;

const char kVertex[] =
    "attribute vec4 position; attribute vec4 inputTextureCoordinate;\n"
    "varying vec2 uv; void main() { gl_Position = position; uv = inputTextureCoordinate.xy; }\n";

class GlslCheckTest : public ::testing::Test {
protected:
    void SetUp() override {
        if (!GlslProgramCheck::available()) GTEST_SKIP() << "built without glslang";
    }
};

TEST_F(GlslCheckTest, DeclaredUniformsKeepTheirTypesAndOnlyReadOnesAreActive) {
    GlslProgramCheck check;
    ASSERT_TRUE(check.compile(ShaderStage::kVertex, kVertex).compiled);
    const filterpack::GlslStageReport fragment = check.compile(
        ShaderStage::kFragment,
        "precision mediump float; varying vec2 uv; uniform sampler2D inputImageTexture;\n"
        "uniform mat4 colorMatrix; uniform float curve[256]; uniform vec4 spare[3]; uniform int width;\n"
        "void main() { float c = 0.0; for (int k = 0; k < 256; k++) c += curve[k];\n"
        "  gl_FragColor = colorMatrix * texture2D(inputImageTexture, uv) * c; }\n");
    ASSERT_TRUE(fragment.compiled);
    const struct {
        const char* name;
        unsigned int type;
        int arraySize;
        const char* typeName;
    } expected[] = {
        {"inputImageTexture", GL_SAMPLER_2D, 0, "sampler2D"}, {"colorMatrix", GL_FLOAT_MAT4, 0, "mat4"},
        {"curve", GL_FLOAT, 256, "float[256]"},               {"spare", GL_FLOAT_VEC4, 3, "vec4[3]"},
        {"width", GL_INT, 0, "int"},
    };
    for (const auto& e : expected) {
        auto found = fragment.uniforms.find(e.name);
        ASSERT_NE(found, fragment.uniforms.end()) << e.name;
        EXPECT_EQ(found->second.glType, e.type) << e.name;
        EXPECT_EQ(found->second.arraySize, e.arraySize) << e.name;
        EXPECT_EQ(filterpack::glslTypeName(found->second.glType, found->second.arraySize), e.typeName);
    }
    ASSERT_EQ(fragment.arrayLoops.size(), 1u);
    EXPECT_EQ(fragment.arrayLoops[0].uniform, "curve");
    EXPECT_EQ(fragment.arrayLoops[0].line, 3);
    const filterpack::GlslLinkReport link = check.link();
    ASSERT_TRUE(link.linked);
    EXPECT_EQ(link.activeUniforms, (std::set<std::string>{"inputImageTexture", "colorMatrix", "curve"}));
    EXPECT_EQ(link.activeAttributes, (std::set<std::string>{"position", "inputTextureCoordinate"}));
}

TEST_F(GlslCheckTest, ErrorsCarryTheShaderLineAndStagesMustAgreeOnVaryings) {
    GlslProgramCheck check;
    const filterpack::GlslStageReport broken =
        check.compile(ShaderStage::kFragment, "precision mediump float;\n\nvoid main() {\n  gl_FragColor = oops; }\n");
    EXPECT_FALSE(broken.compiled);
    ASSERT_FALSE(broken.errors.empty());
    EXPECT_EQ(broken.errors[0].line, 4);
    EXPECT_EQ(broken.errors[0].text, "'oops' : undeclared identifier");

    const struct {
        const char* fragment;
        const char* error;  // "" when the pair links
    } cases[] = {
        {"precision mediump float; varying vec2 uv; void main() { gl_FragColor = vec4(uv, 0.0, 1.0); }", ""},
        // Declared but never read: no rule is broken.
        {"precision mediump float; varying vec3 unread; void main() { gl_FragColor = vec4(1.0); }", ""},
        {"precision mediump float; varying vec2 st; void main() { gl_FragColor = vec4(st, 0.0, 1.0); }",
         "varying st is read by the fragment shader but not declared by the vertex shader"},
        {"precision mediump float; varying vec4 uv; void main() { gl_FragColor = uv; }",
         "varying uv is a vec2 in the vertex shader and a vec4 in the fragment shader"},
    };
    for (const auto& c : cases) {
        GlslProgramCheck pair;
        ASSERT_TRUE(pair.compile(ShaderStage::kVertex, kVertex).compiled);
        ASSERT_TRUE(pair.compile(ShaderStage::kFragment, c.fragment).compiled) << c.fragment;
        const filterpack::GlslLinkReport link = pair.link();
        if (*c.error == '\0') {
            EXPECT_TRUE(link.linked) << c.fragment;
        } else {
            EXPECT_FALSE(link.linked) << c.fragment;
            ASSERT_FALSE(link.errors.empty());
            EXPECT_EQ(link.errors[0], c.error);
        }
    }
}

}  // namespace
