#include <tinyxml2.h>

#include <map>

#include "engine/cpu/cpu_filter.h"
#include "engine/filter_wraper.h"
#include "engine/gl/filter_desc_node.h"
#include "engine/gl/gl_filter.h"
#include "engine/gl/gl_filter_impl.h"
#include "engine/resource_loader.h"
#include "gl_test_support.h"
#include "support/gl_fixture.h"

namespace {

using gltest::kSwapFragment;
using gltest::kUniformFragment;
using gltest::kVertex;

// Bundle held in memory: text files and RGBA images, with read counts.
class MemoryBundle : public HFResourceProvider {
public:
    _Image* loadData(const char* path) override {
        ++reads[path];
        auto found = files.find(path);
        if (found == files.end()) return nullptr;
        const std::string& text = found->second;
        _Image* blob = create_image(static_cast<int>(text.size()) + 1, 1, 1, 0);
        memcpy(blob->data, text.data(), text.size());
        blob->width = static_cast<int>(text.size());
        return blob;
    }
    _Image* loadRGBA(const char* path) override {
        auto found = images.find(path);
        if (found == images.end()) return nullptr;
        return gltest::makeRGBA(found->second.first, 1, found->second.second);
    }

    std::map<std::string, std::string> files;
    std::map<std::string, std::pair<int, std::vector<unsigned char>>> images;  // one row each
    std::map<std::string, int> reads;
};

// Names are unique per test: the description cache lives for the process.
class FilterDescTest : public GLTest {
protected:
    void SetUp() override {
        GLTest::SetUp();
        previous = HFResourceLoader_setProvider(&bundle);
    }
    void TearDown() override { HFResourceLoader_setProvider(previous); }

    void describe(const std::string& name, const std::string& body) {
        bundle.files["filter/gl/" + name + ".xml"] = "<glfilter>" + body + "</glfilter>";
    }

    // A description node parsed from the text of a "filter" element.
    static shared_ptr<HFFilterDescNode> leaf(const std::string& xml, const std::string& package = "") {
        tinyxml2::XMLDocument document(true, tinyxml2::PRESERVE_WHITESPACE);
        EXPECT_EQ(tinyxml2::XML_SUCCESS, document.Parse(xml.c_str()));
        shared_ptr<HFFilterDescNode> node(new HFFilterDescNode());
        node->name = package;
        node->parse(document.FirstChildElement());
        return node;
    }

    MemoryBundle bundle;
    HFResourceProvider* previous = nullptr;
};

std::string element(const char* tag, const std::string& text) {
    return std::string("<") + tag + ">" + text + "</" + tag + ">";
}

template <typename Param>
const Param* paramAt(const shared_ptr<HFFilterDescNode>& node, size_t i) {
    return i < node->params.size() ? dynamic_cast<const Param*>(node->params[i].get()) : nullptr;
}

TEST_F(FilterDescTest, DescriptionIsReadOnceAndRepeatsItsFirstVertex) {
    const std::string vertex = std::string("\n  ") + kVertex;
    describe("threepass", element("vertex", vertex) + element("fragment", kUniformFragment) +
                              element("fragment", kSwapFragment) + element("fragment", kSwapFragment));
    shared_ptr<HFGLFilterImpl> impl = HFGLFilterImpl_lookup("threepass");
    ASSERT_EQ(3u, impl->vertexSources.size());
    ASSERT_EQ(3u, impl->fragmentSources.size());
    EXPECT_EQ(vertex, impl->vertexSources[2]) << "whitespace is kept";
    EXPECT_EQ(kSwapFragment, impl->fragmentSources[1]);

    shared_ptr<HFFilterDescNode> node = leaf("<filter implement='threepass'/>");
    shared_ptr<IHFFilter> first = node->createFilter();
    shared_ptr<IHFFilter> second = node->createFilter();
    EXPECT_EQ(1, bundle.reads["filter/gl/threepass.xml"]);
    EXPECT_NE(first.get(), second.get());

    // Only the first pass is built, from the first fragment.
    auto* gl = dynamic_cast<HFGLFilter*>(first.get());
    ASSERT_NE(nullptr, gl);
    EXPECT_EQ(1, gl->programCount());
    EXPECT_GE(gl->program(0)->uniformLocation("amount"), 0);
}

TEST_F(FilterDescTest, OnlyTheFirstVertexElementCounts) {
    describe("twovertex", element("vertex", kVertex) + element("vertex", "not glsl") +
                              element("fragment", kSwapFragment));
    shared_ptr<HFGLFilterImpl> impl = HFGLFilterImpl_lookup("twovertex");
    ASSERT_EQ(1u, impl->vertexSources.size());
    EXPECT_EQ(kVertex, impl->vertexSources[0]);
    shared_ptr<IHFFilter> filter = leaf("<filter implement='twovertex'/>")->createFilter();
    auto* gl = dynamic_cast<HFGLFilter*>(filter.get());
    ASSERT_NE(nullptr, gl);
    GLint linked = 0;
    glGetProgramiv(gl->program(0)->program, GL_LINK_STATUS, &linked);
    EXPECT_EQ(GL_TRUE, linked);
}

TEST_F(FilterDescTest, MissingOrVertexlessDescriptionsBuildNothing) {
    gltest::LogCapture log;
    EXPECT_FALSE(leaf("<filter implement='nosuch'/>")->createFilter());
    describe("novertex", element("fragment", kSwapFragment));
    EXPECT_FALSE(leaf("<filter implement='novertex'/>")->createFilter());
    const std::string text = log.text();
    EXPECT_NE(std::string::npos, text.find("filter/gl/nosuch.xml"));
    EXPECT_NE(std::string::npos, text.find("filter/gl/novertex.xml"));
    // The failed description is cached as it is.
    EXPECT_TRUE(leaf("<filter implement='nosuch'/>")->createFilter().ptr == nullptr);
    EXPECT_EQ(1, bundle.reads["filter/gl/nosuch.xml"]);
}

TEST_F(FilterDescTest, PreferSelectsTheCPUForAnythingButExactlyGPU) {
    EXPECT_FALSE(leaf("<filter implement='Curve2D'/>")->preferCPU);
    EXPECT_FALSE(leaf("<filter implement='Curve2D' prefer='GPU'/>")->preferCPU);
    EXPECT_TRUE(leaf("<filter implement='Curve2D' prefer='CPU'/>")->preferCPU);

    shared_ptr<HFFilterDescNode> lower = leaf("<filter implement='Curve2D' prefer='gpu'>" +
                                              element("param", element("name", "amount") +
                                                                   element("float", "0.5")) +
                                              "</filter>");
    ASSERT_TRUE(lower->preferCPU);
    shared_ptr<IHFFilter> filter = lower->createFilter();
    auto* cpu = dynamic_cast<HFCPUFilter*>(filter.get());
    ASSERT_NE(nullptr, cpu);
    EXPECT_NE(nullptr, cpu->filterFunction());
    auto amount = cpu->parameters().find("amount");
    ASSERT_NE(cpu->parameters().end(), amount);
    EXPECT_EQ(0.5f, amount->second->getFloat());
    EXPECT_EQ(0, bundle.reads["filter/gl/Curve2D.xml"]);
}

TEST_F(FilterDescTest, ParamsParseByTypeAndDropWhatTheyDoNotSupport) {
    std::string numbers;
    for (int i = 1; i <= 6; ++i) numbers += element("number", std::to_string(i));
    std::string longCurve = "0";
    for (int i = 1; i <= 300; ++i) longCurve += "," + std::to_string(i);
    gltest::LogCapture log;
    shared_ptr<HFFilterDescNode> node = leaf(
        "<filter implement='unused'>" +
        element("param", element("name", "amount") + element("float", "0.75")) +
        element("param", element("name", "tint") + element("vector4f", numbers)) +
        element("param", element("name", "colorMatrix") +
                             element("matrix4f", element("number", "2") + "<number/>" + element("number", "3"))) +
        element("param", element("name", "toneCurve") + element("curve", "256,128")) +
        element("param", element("name", "longCurve") + element("curve", longCurve)) +
        element("param", element("name", "1") + element("image", "grain.png")) +
        element("param", element("name", "v3") + element("vector3f", numbers)) +
        element("param", element("name", "count") + element("int", "3")) +
        element("param", element("value", "x") + element("float", "1")) +
        element("param", element("name", "lonely")) + "</filter>");
    EXPECT_NE(std::string::npos, log.text().find("xml parse error in param"));
    ASSERT_EQ(6u, node->params.size());
    EXPECT_EQ("unused", node->implement);

    ASSERT_NE(nullptr, paramAt<HFFloatParam>(node, 0));
    EXPECT_EQ(0.75f, paramAt<HFFloatParam>(node, 0)->value);

    const HFVec4Param* tint = paramAt<HFVec4Param>(node, 1);
    ASSERT_NE(nullptr, tint);
    EXPECT_EQ("tint", tint->name);
    EXPECT_EQ(4.0f, tint->values[3]);

    const HFMatrix4Param* matrix = paramAt<HFMatrix4Param>(node, 2);
    ASSERT_NE(nullptr, matrix);
    EXPECT_EQ(2.0f, matrix->values[0]);
    EXPECT_EQ(0.0f, matrix->values[1]) << "an empty number leaves its slot 0";
    EXPECT_EQ(3.0f, matrix->values[2]);
    EXPECT_EQ(0.0f, matrix->values[15]);

    const HFCurveParam* curve = paramAt<HFCurveParam>(node, 3);
    ASSERT_NE(nullptr, curve);
    EXPECT_EQ(1.0f, curve->values[0]);
    EXPECT_EQ(0.5f, curve->values[1]);
    EXPECT_EQ(0.0f, curve->values[2]);

    const HFCurveParam* capped = paramAt<HFCurveParam>(node, 4);
    ASSERT_NE(nullptr, capped);
    EXPECT_EQ(255.0f / 256.0f, capped->values[255]);

    const HFImageParam* image = paramAt<HFImageParam>(node, 5);
    ASSERT_NE(nullptr, image);
    EXPECT_EQ("1", image->name);
    EXPECT_EQ("grain.png", image->file);
}

TEST_F(FilterDescTest, ParamsLandInTheBuiltGLFilter) {
    describe("uniforms", element("vertex", kVertex) + element("fragment", kUniformFragment));
    bundle.images["filter/soft/grain.png"] = {3, {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12}};
    shared_ptr<HFFilterDescNode> node = leaf(
        "<filter implement='uniforms'>" +
            element("param", element("name", "amount") + element("float", "0.25")) +
            element("param", element("name", "tint") +
                                 element("vector4f", element("number", "0.5") + element("number", "1.5"))) +
            element("param", element("name", "toneCurve") + element("curve", "0,64")) +
            element("param", element("name", "1") + element("image", "grain.png")) +
            element("param", element("name", "2") + element("image", "missing.png")) + "</filter>",
        "soft");
    shared_ptr<IHFFilter> filter = node->createFilter();
    auto* gl = dynamic_cast<HFGLFilter*>(filter.get());
    ASSERT_NE(nullptr, gl);
    const GLuint program = gl->program(0)->program;
    float value = 0;
    glGetUniformfv(program, glGetUniformLocation(program, "amount"), &value);
    EXPECT_EQ(0.25f, value);
    float tint[4];
    glGetUniformfv(program, glGetUniformLocation(program, "tint"), tint);
    EXPECT_EQ(1.5f, tint[1]);
    EXPECT_EQ(0.0f, tint[2]);
    glGetUniformfv(program, glGetUniformLocation(program, "toneCurve[1]"), &value);
    EXPECT_EQ(0.25f, value);

    // The image name is the input slot; files are looked up in the package.
    shared_ptr<IHFTexture> grain = filter->getInputTexture(1);
    ASSERT_TRUE(grain);
    EXPECT_EQ(HFSize({3, 1}), static_cast<HFGLTexture*>(grain.get())->size());
    EXPECT_EQ(glGetUniformLocation(program, "inputImageTexture2"), gl->samplerLocation(1));
    shared_ptr<IHFTexture> missing = filter->getInputTexture(2);
    ASSERT_TRUE(missing);
    EXPECT_EQ(HFSize({0, 0}), static_cast<HFGLTexture*>(missing.get())->size());
}

TEST_F(FilterDescTest, PackageLeafRendersThroughItsDescription) {
    describe("swap", element("vertex", kVertex) + element("fragment", kSwapFragment));
    bundle.files["filter/swappkg/filter.xml"] = "<filter implement='swap' prefer='GPU'/>";
    shared_ptr<IHFFilter> filter = HFFilterWraper::loadFilterPackage("swappkg");
    ASSERT_TRUE(filter);
    ASSERT_NE(nullptr, dynamic_cast<HFGLFilter*>(filter.get()));

    _Image* input = gltest::makeRGBA(1, 1, {10, 20, 30, 40});
    filter->setInputTextureImage(input, 0);
    free_image(&input);
    _Image* out = create_image(1, 1, 4, 4);
    filter->setFilterFBO();
    filter->render(out);
    EXPECT_EQ(30, out->data[0]);
    EXPECT_EQ(20, out->data[1]);
    EXPECT_EQ(10, out->data[2]);
    EXPECT_EQ(40, out->data[3]);
    free_image(&out);
}

}  // namespace
