#include <tinyxml2.h>

#include <algorithm>
#include <map>

#include "engine/cpu/cpu_filter.h"
#include "engine/filter_model_node.h"
#include "engine/filter_wraper.h"
#include "engine/gl/filter_desc_node.h"
#include "engine/gl/gl_filter.h"
#include "engine/gl/gl_filter_impl.h"
#include "engine/resource_loader.h"
#include "gl_test_support.h"
#include "jni/capture_stderr.h"
#include "scratch_bundle.h"
#include "support/gl_fixture.h"

namespace {

using gltest::glInteger;
using gltest::kSwapFragment;
using gltest::kUniformFragment;
using gltest::kVertex;

std::string element(const char* tag, const std::string& text) {
    return std::string("<") + tag + ">" + text + "</" + tag + ">";
}

std::string param(const std::string& name, const char* type, const std::string& value) {
    return element("param", element("name", name) + element(type, value));
}

// Names are unique per test: the description cache lives for the process.
class FilterDescTest : public GLTest {
protected:
    void write(const std::string& path, const std::string& text) { bundle.write(path, text); }
    void describe(const std::string& name, const std::string& body) {
        write("filter/gl/" + name + ".xml", "<glfilter>" + body + "</glfilter>");
    }

    static shared_ptr<HFFilterDescNode> leaf(const std::string& xml, const std::string& package = "") {
        tinyxml2::XMLDocument document(true, tinyxml2::PRESERVE_WHITESPACE);
        EXPECT_EQ(tinyxml2::XML_SUCCESS, document.Parse(xml.c_str()));
        shared_ptr<HFFilterDescNode> node(new HFFilterDescNode());
        node->name = package;
        node->parse(document.FirstChildElement());
        return node;
    }

    ScratchBundle bundle{"glfilters"};
};

template <typename Param>
const Param* paramAt(const shared_ptr<HFFilterDescNode>& node, size_t i) {
    return i < node->params.size() ? dynamic_cast<const Param*>(node->params[i].get()) : nullptr;
}

TEST_F(FilterDescTest, DescriptionIsReadOnceRepeatsItsFirstVertexAndDrawsOnePass) {
    const std::string vertex = std::string("\n  ") + kVertex;
    describe("threepass", element("vertex", vertex) + element("vertex", "not glsl") +
                              element("fragment", kUniformFragment) + element("fragment", kSwapFragment) +
                              element("fragment", kSwapFragment));
    shared_ptr<HFGLFilterImpl> impl = HFGLFilterImpl_lookup("threepass");
    EXPECT_EQ(std::vector<std::string>(3, vertex), impl->vertexSources) << "first vertex, whitespace kept";
    EXPECT_EQ((std::vector<std::string>{kUniformFragment, kSwapFragment, kSwapFragment}), impl->fragmentSources);

    shared_ptr<HFFilterDescNode> node = leaf("<filter implement='threepass'/>");
    shared_ptr<IHFFilter> first = node->createFilter(), second = node->createFilter();
    EXPECT_EQ(1, bundle.reads["filter/gl/threepass.xml"]);
    EXPECT_NE(first.get(), second.get());
    auto* gl = dynamic_cast<HFGLFilter*>(first.get());
    ASSERT_TRUE(gl && gl->programCount() == 1);
    EXPECT_GE(gl->program(0)->uniformLocation("amount"), 0) << "built from the first fragment";
}

TEST_F(FilterDescTest, AnythingButExactlyGPUSelectsTheCPU) {
    EXPECT_FALSE(leaf("<filter implement='Curve2D'/>")->preferCPU);
    shared_ptr<HFFilterDescNode> lower =
        leaf("<filter implement='Curve2D' prefer='gpu'>" + param("amount", "float", "0.5") + "</filter>");
    shared_ptr<IHFFilter> filter = lower->createFilter();
    auto* cpu = dynamic_cast<HFCPUFilter*>(filter.get());
    ASSERT_TRUE(cpu && cpu->filterFunction() && cpu->parameters().count("amount"));
    EXPECT_EQ(0.5f, cpu->parameters().at("amount")->getFloat());
    EXPECT_EQ(0, bundle.reads["filter/gl/Curve2D.xml"]);
}

TEST_F(FilterDescTest, ParamsParseByTypeAndDropTheUnsupported) {
    std::string six, longCurve = "0";
    for (int i = 1; i <= 6; ++i) six += element("number", std::to_string(i));
    for (int i = 1; i <= 300; ++i) longCurve += "," + std::to_string(i);
    shared_ptr<HFFilterDescNode> node;
    const std::string log = captureStderr([&] {
        node = leaf("<filter implement='unused'>" + param("tint", "vector4f", six) +
                    param("colorMatrix", "matrix4f", element("number", "2") + "<number/>" + element("number", "3")) +
                    param("toneCurve", "curve", "256,128") + param("long", "curve", longCurve) +
                    param("v3", "vector3f", six) + param("count", "int", "3") +
                    element("param", element("value", "x") + element("float", "1")) +
                    element("param", element("name", "lonely")) +
                    element("param", "<!-- first -->" + element("name", "late") + element("float", "1")) +
                    "</filter>");
    });
    EXPECT_NE(std::string::npos, log.find("xml parse error in param"));
    ASSERT_EQ(4u, node->params.size());
    const auto* tint = paramAt<HFVec4Param>(node, 0);
    const auto* matrix = paramAt<HFMatrix4Param>(node, 1);
    const auto *curve = paramAt<HFCurveParam>(node, 2), *capped = paramAt<HFCurveParam>(node, 3);
    ASSERT_TRUE(tint && matrix && curve && capped);
    EXPECT_EQ((std::vector<float>{1, 2, 3, 4}), std::vector<float>(tint->values, tint->values + 4));
    // An empty number leaves its slot 0.
    EXPECT_EQ((std::vector<float>{2, 0, 3, 0}), std::vector<float>(matrix->values, matrix->values + 4));
    EXPECT_EQ((std::vector<float>{1, 0.5f, 0}), std::vector<float>(curve->values, curve->values + 3));
    EXPECT_EQ(255.0f / 256.0f, capped->values[255]) << "capped at 256 entries";
}

// What a wrapper's frame leaves bound: inputs on units 2 up, the first
// frame's output resize on unit 3, the filter's own framebuffer and viewport,
// blending off.
TEST_F(FilterDescTest, WrapperFrameLeavesTheFilterTargetAndInputUnitsBound) {
    describe("frameswap", element("vertex", kVertex) + element("fragment", kSwapFragment));
    write("filter/frame1/filter.xml", "<filter implement='frameswap'/>");
    const GLuint input = gltest::makeTexture(4, 4, nullptr);

    HFFilterWraper wraper("frame1");
    glEnable(GL_BLEND);
    for (int frame = 0; frame < 2; ++frame) {
        SCOPED_TRACE(frame);
        wraper.renderTexture(static_cast<int>(input), 4, 4);
        const GLint output = wraper.outputTexture();
        EXPECT_EQ(GL_TEXTURE2, glInteger(GL_ACTIVE_TEXTURE));
        EXPECT_FALSE(glIsEnabled(GL_BLEND));
        EXPECT_EQ((std::vector<GLint>{0, 0, 4, 4}), gltest::viewport());
        EXPECT_NE(0, glInteger(GL_FRAMEBUFFER_BINDING));
        EXPECT_EQ(output, gltest::colorAttachment());
        // The first frame sizes the output last on unit 3; later frames reuse
        // the caller's wrapper and bind nothing there.
        const GLint caller = static_cast<GLint>(input);
        EXPECT_EQ((std::vector<GLint>{0, 0, caller, output}), gltest::boundOnUnits(0, 3));
    }
    glBindFramebuffer(GL_FRAMEBUFFER, 0);
    glActiveTexture(GL_TEXTURE0);

    // A package whose last filter runs on the CPU has no GL output.
    write("filter/cpulast1/filter.xml", "<filter implement='Curve2D' prefer='CPU'/>");
    HFFilterWraper cpuLast("cpulast1");
    ASSERT_TRUE(cpuLast.hasFilter());
    cpuLast.renderTexture(static_cast<int>(input), 4, 4);
    EXPECT_EQ(0, cpuLast.outputTexture());
    glDeleteTextures(1, &input);
    EXPECT_EQ(GLenum(GL_NO_ERROR), glGetError());
}

// Live textures, framebuffers, programs and shaders, found by probing every
// name up to a fresh one or 4096, whichever is higher: a driver may hand out
// freed low names again, so a fresh name does not bound the live ones.
std::vector<int> countLiveObjects() {
    // A deleted program stays alive while it is current; drop that binding.
    glUseProgram(0);
    GLuint probe[2] = {};
    glGenTextures(1, &probe[0]);
    glGenFramebuffers(1, &probe[1]);
    const GLuint program = glCreateProgram();
    const GLuint last = std::max({probe[0], probe[1], program, GLuint{4096}});
    std::vector<int> live(4);
    for (GLuint name = 1; name < last; ++name) {
        // Programs and shaders share one namespace; the probes are not counted.
        live[0] += name != probe[0] && glIsTexture(name) ? 1 : 0;
        live[1] += name != probe[1] && glIsFramebuffer(name) ? 1 : 0;
        live[2] += name != program && glIsProgram(name) ? 1 : 0;
        live[3] += glIsShader(name) ? 1 : 0;
    }
    glDeleteTextures(1, &probe[0]);
    glDeleteFramebuffers(1, &probe[1]);
    glDeleteProgram(program);
    return live;
}

// Create, render and dispose a two-filter package a thousand times: every
// texture, framebuffer, program and shader the engine made is gone again.
TEST_F(FilterDescTest, ThousandWrapperCyclesLeaveNoGLObjectsBehind) {
    describe("cycleswap", element("vertex", kVertex) + element("fragment", kSwapFragment));
    write("filter/cycles1/filter.xml",
          "<model><filter implement='cycleswap'/><filter implement='cycleswap'/></model>");
    const GLuint input = gltest::makeTexture(8, 8, nullptr);

    const std::vector<int> before = countLiveObjects();
    for (int cycle = 0; cycle < 1000; ++cycle) {
        HFFilterWraper wraper("cycles1");
        wraper.renderTexture(static_cast<int>(input), 8, 8);
        ASSERT_NE(0, wraper.outputTexture());
    }
    EXPECT_EQ(before, countLiveObjects()) << "textures, framebuffers, programs, shaders";
    EXPECT_TRUE(glIsTexture(input)) << "the caller's texture survives";
    glDeleteTextures(1, &input);
    glBindFramebuffer(GL_FRAMEBUFFER, 0);
    glActiveTexture(GL_TEXTURE0);
}

// Runs a package on a 1x1 texture and returns the output pixel (empty when
// the package gives no output). The swap shader exchanges red and blue, so a
// package whose model gained a second swap shows the input unchanged.
std::vector<unsigned char> renderPackage(const std::string& name) {
    const std::vector<unsigned char> pixel = {10, 20, 30, 255};
    const GLuint input = gltest::makeTexture(1, 1, pixel.data());
    std::vector<unsigned char> result;
    {
        HFFilterWraper wraper(name.c_str());
        wraper.renderTexture(static_cast<int>(input), 1, 1);
        if (const GLint output = wraper.outputTexture()) result = gltest::readTexture(output, 1, 1);
    }
    glDeleteTextures(1, &input);
    glBindFramebuffer(GL_FRAMEBUFFER, 0);
    glActiveTexture(GL_TEXTURE0);
    return result;
}

const std::vector<unsigned char> kSwapped = {30, 20, 10, 255};

// An included element is parsed into the shared node of its package, so a
// designer can make a package contain itself, directly or through another.
// Such an element is refused whole and logged on every request; the shared
// packages are left exactly as they were and still render.
TEST_F(FilterDescTest, PackagesThatWouldContainThemselvesFailAndLeaveTheOthersIntact) {
    describe("selfswap", element("vertex", kVertex) + element("fragment", kSwapFragment));
    write("filter/self_a/filter.xml", "<model><filter implement='selfswap'/></model>");
    write("filter/self_b/filter.xml", "<model><filter include='self_a'><filter include='self_a'/></filter></model>");
    write("filter/self_e/filter.xml", "<model><filter include='self_a'/></model>");
    write("filter/self_d/filter.xml", "<model><filter include='self_a'><filter include='self_e'/></filter></model>");
    write("filter/self_f/filter.xml", "<model><filter include='self_f'/></model>");
    for (const char* name : {"self_b", "self_d", "self_f"}) {
        SCOPED_TRACE(name);
        for (int request = 1; request <= 2; ++request) {
            std::vector<unsigned char> output;
            const std::string log = captureStderr([&] { output = renderPackage(name); });
            EXPECT_TRUE(output.empty());
            EXPECT_NE(std::string::npos, log.find(std::string("filter package ") + name)) << log;
            EXPECT_EQ(request, bundle.reads["filter/" + std::string(name) + "/filter.xml"]) << "not cached";
        }
    }
    EXPECT_EQ(kSwapped, renderPackage("self_a"));
    EXPECT_EQ(kSwapped, renderPackage("self_e"));

    // A graph assembled by hand is refused when built, not recursed into.
    shared_ptr<HFFilterModelNode> loop(new HFFilterModelNode(HFFilterNodeSource{nullptr, nullptr}));
    loop->children.push_back(loop);
    shared_ptr<IHFFilter> built;
    const std::string log = captureStderr([&] { built = loop->createFilter(); });
    EXPECT_FALSE(built);
    EXPECT_NE(std::string::npos, log.find("contains itself"));
    loop->children.clear();
}

// A broken package is not cached: each request reads it again and logs, so a
// fixed file is picked up at once. An element refused for a broken relation
// changes no shared package, however often it is asked for.
TEST_F(FilterDescTest, FailedPackagesAreReadAgainUntilTheyBuild) {
    describe("fixswap", element("vertex", kVertex) + element("fragment", kSwapFragment));
    write("filter/fix_shared/filter.xml", "<model><filter implement='fixswap'/></model>");
    write("filter/fix_broken/filter.xml", "<model><filter implement='fixswap'></model>");
    write("filter/fix_outer/filter.xml", "<model><filter include='fix_missing'/></model>");
    write("filter/fix_partial/filter.xml",
          "<model><filter include='fix_shared'><filter implement='fixswap'/></filter>"
          "<relation output='0' input='1'/></model>");
    for (int request = 1; request <= 3; ++request) {
        SCOPED_TRACE(request);
        for (const char* name : {"fix_broken", "fix_outer", "fix_partial"}) {
            std::vector<unsigned char> output;
            const std::string log = captureStderr([&] { output = renderPackage(name); });
            EXPECT_TRUE(output.empty()) << name;
            EXPECT_NE(std::string::npos, log.find(std::string("filter package ") + name)) << log;
        }
        EXPECT_EQ(request, bundle.reads["filter/fix_broken/filter.xml"]);
        EXPECT_EQ(request, bundle.reads["filter/fix_missing/filter.xml"]);
        EXPECT_EQ(kSwapped, renderPackage("fix_shared")) << "still one swap";
    }
    write("filter/fix_broken/filter.xml", "<model><filter implement='fixswap'/></model>");
    write("filter/fix_missing/filter.xml", "<filter implement='fixswap'/>");
    EXPECT_EQ(kSwapped, renderPackage("fix_broken"));
    EXPECT_EQ(kSwapped, renderPackage("fix_outer"));
    renderPackage("fix_broken");
    EXPECT_EQ(4, bundle.reads["filter/fix_broken/filter.xml"]) << "cached once built";
}

// A bundle may answer an image request with a header over pixels it keeps
// (a bound bitmap): the parameter frees only the header, the pixels stay the
// bundle's and reach the filter's input as they are.
TEST_F(FilterDescTest, BorrowedParameterImagesAreNotFreed) {
    struct BorrowingBundle : ScratchBundle {
        BorrowingBundle() : ScratchBundle("borrowing") {}
        _Image* loadRGBA(const char*) override {
            _Image* header = create_image_header(1, 1, 4, 4);
            header->data = pixel;
            return header;
        }
        unsigned char pixel[4] = {1, 2, 3, 4};
    } borrowing;
    borrowing.write("filter/gl/borrowswap.xml",
                    "<glfilter>" + element("vertex", kVertex) + element("fragment", kSwapFragment) + "</glfilter>");
    shared_ptr<IHFFilter> filter = leaf("<filter implement='borrowswap'>" + param("1", "image", "grain.png") + "</filter>",
                                        "borrow1")
                                       ->createFilter();
    ASSERT_TRUE(filter);
    HFSize size = static_cast<HFGLTexture*>(filter->getInputTexture(1).get())->size();
    EXPECT_EQ(HFSize({1, 1}), size);
    EXPECT_EQ((std::vector<unsigned char>{1, 2, 3, 4}), std::vector<unsigned char>(borrowing.pixel, borrowing.pixel + 4));
}

}  // namespace
