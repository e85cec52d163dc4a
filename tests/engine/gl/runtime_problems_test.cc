// Problems a wrapper reports (shader errors at the description file's line,
// missing packages, rendering without a context, refused parameters) and
// parameters set at run time through the text entry tools use.
#include <EGL/egl.h>

#include "engine/cpu/cpu_filter.h"
#include "engine/filter_wraper.h"
#include "engine/gl/shader_origin.h"
#include "gl_test_support.h"
#include "jni/capture_stderr.h"
#include "scratch_bundle.h"
#include "support/gl_fixture.h"

namespace {

using gltest::kVertex;

constexpr const char* kHead = "precision mediump float; varying vec2 uv; uniform sampler2D inputImageTexture;\n";

// Names are unique per test: the package and description caches live for the process.
class RuntimeProblemsTest : public GLTest {
protected:
    void write(const std::string& path, const std::string& text) { bundle.write(path, text); }
    // A GL description written exactly as given (its line numbers matter).
    void describe(const std::string& name, const std::string& xml) { write("filter/gl/" + name + ".xml", xml); }
    void describeFragment(const std::string& name, const std::string& fragment) {
        describe(name, "<glfilter><vertex>" + std::string(kVertex) + "</vertex><fragment>" + fragment +
                           "</fragment></glfilter>");
    }
    void pack(const std::string& name, const std::string& xml) { write("filter/" + name + "/filter.xml", xml); }

    // Renders a 1x1 input of `rgba` and returns the output pixel.
    static std::vector<unsigned char> renderPixel(HFFilterWraper& wraper, std::vector<unsigned char> rgba) {
        const GLuint input = gltest::makeTexture(1, 1, rgba.data());
        wraper.renderTexture(static_cast<int>(input), 1, 1);
        std::vector<unsigned char> out = readPixels(0, 0, 1, 1);
        glDeleteTextures(1, &input);
        return out;
    }

    ScratchBundle bundle{"runtimeparams"};
};

TEST(ShaderOriginTest, GlslLineReadsTheCommonLogFormats) {
    const struct {
        const char* log;
        int line;
    } cases[] = {
        {"0:12(5): error: `foo' undeclared", 12},        // Mesa
        {"ERROR: 0:7: 'foo' : undeclared identifier", 7},  // glslang, Adreno, Mali
        {"WARNING: 0:3: extension not supported", 3},
        {"0(12) : error C1008: undefined variable \"foo\"", 12},  // NVIDIA
        {"0:4(12): error: x", 4},  // the column is not the line
        {"error: linking failed", 0},
        {"12 errors", 0},
        {"", 0},
    };
    for (const auto& c : cases) EXPECT_EQ(c.line, HFShaderOrigin_glslLine(c.log)) << c.log;
}

// Each broken description becomes a problem that names the package, the
// description file and, for readable sources, the file's line of the error.
TEST_F(RuntimeProblemsTest, ShaderFailuresNameTheFileLineOfTheError) {
    const std::string badBody = "void main(){ gl_FragColor = undeclaredColour; }";
    const struct {
        const char* name;
        std::string xml;
        const char* expected;
    } cases[] = {
        // The vertex text spans lines 2-4; the fragment text starts right
        // after its tag on line 5, so its line 2 is file line 6.
        {"sh_inline",
         "<glfilter>\n<vertex>" + std::string(kVertex) + "</vertex>\n<fragment>" + kHead + badBody +
             "</fragment></glfilter>",
         "filter/gl/sh_inline.xml:6: fragment shader of pass 1 does not compile: 0:2("},
        // CDATA opened on line 6 (after a blank line 5); the text's first
        // line is empty there, so shader line 4 is file line 9.
        {"sh_cdata",
         "<glfilter>\n<vertex>" + std::string(kVertex) + "</vertex>\n\n<fragment><![CDATA[\n" + kHead + "\n" +
             badBody + "\n]]></fragment></glfilter>",
         "filter/gl/sh_cdata.xml:9: fragment shader of pass 1 does not compile"},
        {"sh_vertex", "<glfilter>\n\n<vertex>void main(){ gl_Position = nowhere; }</vertex><fragment>" +
                          std::string(kHead) + "void main(){ gl_FragColor = vec4(1.0); }</fragment></glfilter>",
         "filter/gl/sh_vertex.xml:3: vertex shader of pass 1 does not compile"},
        // A sealed text's lines are not the file's: the pass is named instead.
        {"sh_sealed",
         "<glfilter><vertex>" + std::string(kVertex) + "</vertex>\n<fragment>" +
             gltest::packMee(kHead + badBody) + "</fragment></glfilter>",
         "filter/gl/sh_sealed.xml: sealed fragment shader of pass 1 does not compile: 0:2("},
        {"sh_link",
         "<glfilter><vertex>" + std::string(kVertex) + "</vertex><fragment>" + kHead +
             "varying vec4 neverWritten; void main(){ gl_FragColor = neverWritten; }</fragment></glfilter>",
         "filter/gl/sh_link.xml: program does not link"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        describe(c.name, c.xml);
        const std::string package = std::string("pk_") + c.name;
        // The package includes another that holds the leaf: the innermost
        // package is the one named.
        pack(package + "_inner", "<filter implement='" + std::string(c.name) + "'/>");
        pack(package, "<model><filter include='" + package + "_inner'/></model>");
        std::string problem;
        const std::string log = captureStderr([&] {
            HFFilterWraper wraper(package.c_str());
            EXPECT_TRUE(wraper.hasFilter()) << "the broken shader still builds a filter";
            problem = wraper.lastProblem();
        });
        EXPECT_EQ(0u, problem.find("filter package " + package + "_inner: ")) << problem;
        EXPECT_NE(std::string::npos, problem.find(c.expected)) << problem;
        EXPECT_NE(std::string::npos, log.find(c.expected)) << "logged at error level too";
    }
}

TEST_F(RuntimeProblemsTest, WrapperKeepsItsLastProblem) {
    captureStderr([&] {
        HFFilterWraper missing("rp_missing");
        EXPECT_NE(std::string::npos, missing.lastProblem().find("filter/rp_missing/filter.xml")) << missing.lastProblem();
        // The failure is cached and logs nothing new; the wrapper still says so.
        HFFilterWraper again("rp_missing");
        EXPECT_NE(std::string::npos, again.lastProblem().find("rp_missing")) << again.lastProblem();

        // A description that is not there, or not XML, is named as such.
        pack("rp_no_description", "<filter implement='rp_nowhere'/>");
        write("filter/gl/rp_not_xml.xml", "<glfilter><vertex>a < b</vertex></glfilter>");
        pack("rp_bad_description", "<filter implement='rp_not_xml'/>");
        const struct {
            const char* package;
            const char* expected;
        } descriptions[] = {
            {"rp_no_description", "filter/gl/rp_nowhere.xml is missing from the bundle"},
            {"rp_bad_description", "filter/gl/rp_not_xml.xml is not well-formed XML (line 1)"},
        };
        for (const auto& d : descriptions) {
            HFFilterWraper wraper(d.package);
            EXPECT_NE(std::string::npos, wraper.lastProblem().find(d.expected)) << wraper.lastProblem();
        }
    });

    describeFragment("rp_copy", std::string(kHead) + "void main(){ gl_FragColor = texture2D(inputImageTexture, uv); }");
    pack("rp_copy", "<filter implement='rp_copy'/>");
    HFFilterWraper wraper("rp_copy");
    EXPECT_EQ("", wraper.lastProblem());
    EXPECT_EQ((std::vector<unsigned char>{10, 20, 30, 255}), renderPixel(wraper, {10, 20, 30, 255}));
    EXPECT_EQ("", wraper.lastProblem());

    const EGLDisplay display = eglGetCurrentDisplay();
    const EGLSurface draw = eglGetCurrentSurface(EGL_DRAW), read = eglGetCurrentSurface(EGL_READ);
    const EGLContext context = eglGetCurrentContext();
    ASSERT_TRUE(eglMakeCurrent(display, EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT));
    const std::string log = captureStderr([&] { wraper.renderTexture(1, 4, 4); });
    ASSERT_TRUE(eglMakeCurrent(display, draw, read, context));
    EXPECT_NE(std::string::npos, wraper.lastProblem().find("without a current EGL context")) << wraper.lastProblem();
    EXPECT_NE(std::string::npos, log.find("filter package rp_copy: render called on a thread without"));
    // Kept until a later problem replaces it.
    renderPixel(wraper, {1, 2, 3, 4});
    EXPECT_NE(std::string::npos, wraper.lastProblem().find("EGL context"));
}

// Values written as in a package file, read by the kind the package
// declares; refused ones say why and change nothing.
TEST_F(RuntimeProblemsTest, TextParametersAreReadByTheirDeclaredKind) {
    describeFragment("tp_all", std::string(kHead) +
                                   "uniform float amount; uniform vec4 tint; uniform float toneCurve[256];\n"
                                   "void main(){ gl_FragColor = vec4(texture2D(inputImageTexture, uv).rgb * amount,"
                                   " 1.0) + tint + vec4(vec3(toneCurve[1]), 0.0); }");
    pack("tp_text", "<filter implement='tp_all'><param><name>amount</name><float>1</float></param>"
                    "<param><name>tint</name><vector4f/></param><param><name>toneCurve</name><curve>0</curve>"
                    "</param></filter>");
    HFFilterWraper wraper("tp_text");
    ASSERT_EQ("", wraper.lastProblem());

    const struct {
        const char* name;
        const char* value;
        const char* problem;  // empty: accepted
    } cases[] = {
        {"amount", "0.25", ""},
        {"amount", " 5e-1", ""},  // the last accepted value wins
        {"tint", "0.2, 0.4,0.6,0", ""},
        {"toneCurve", "0,51", ""},
        {"amount", "half", "param amount is a float: \"half\" is not one number"},
        {"amount", "0.5,1", "is not one number"},
        {"tint", "1,2,3", "param tint is a vector4f: \"1,2,3\" is not 4 comma-separated numbers"},
        {"toneCurve", "1.5", "is not 1 to 256 comma-separated integers"},
        {"amout", "1", "the package declares no param amout"},
        {"", "1", "declares no param "},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(std::string(c.name) + "=" + c.value);
        std::string problem;
        bool accepted = false;
        captureStderr([&] { accepted = HFFilterWraper_setParameter(&wraper, c.name, c.value, &problem); });
        EXPECT_EQ(*c.problem == '\0', accepted);
        if (!accepted) {
            EXPECT_NE(std::string::npos, problem.find(c.problem)) << problem;
            EXPECT_EQ(problem, wraper.lastProblem());
        }
    }
    // 200 * 0.5 + 0.2 * 255 + 51 / 256 * 255, and so on.
    EXPECT_EQ((std::vector<unsigned char>{202, 203, 224, 255}), renderPixel(wraper, {200, 100, 40, 255}));
    EXPECT_FALSE(HFFilterWraper_setParameter(nullptr, "amount", "1", nullptr));
    EXPECT_FALSE(HFFilterWraper_setParameter(&wraper, nullptr, "1", nullptr));
}

// A CPU leaf keeps the first value stored under a name; a runtime value must
// replace it all the same.
TEST_F(RuntimeProblemsTest, RuntimeValueReplacesTheFirstValueOfACpuLeaf) {
    pack("tp_cpu", "<filter implement='Curve2D' prefer='CPU'>"
                   "<param><name>amount</name><float>0.5</float></param>"
                   "<param><name>tint</name><vector4f><number>1</number></vector4f></param></filter>");
    HFFilterWraper wraper("tp_cpu");
    auto* cpu = dynamic_cast<HFCPUFilter*>(wraper.filter.get());
    ASSERT_NE(nullptr, cpu);
    ASSERT_TRUE(HFFilterWraper_setParameter(&wraper, "amount", "0.25", nullptr));
    ASSERT_TRUE(HFFilterWraper_setParameter(&wraper, "tint", "4,3,2,1", nullptr));
    EXPECT_EQ(0.5f, cpu->parameters().at("amount")->getFloat()) << "applied at the next render, not before";
    renderPixel(wraper, {1, 2, 3, 255});
    EXPECT_EQ(0.25f, cpu->parameters().at("amount")->getFloat());
    const float* tint = cpu->parameters().at("tint")->getFloatArray();
    EXPECT_EQ((std::vector<float>{4, 3, 2, 1}), std::vector<float>(tint, tint + 4));
}

}  // namespace
