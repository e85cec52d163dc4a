#include <tinyxml2.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <map>

#include "engine/cpu/cpu_filter.h"
#include "engine/filter_wraper.h"
#include "engine/gl/filter_desc_node.h"
#include "engine/gl/gl_filter.h"
#include "engine/gl/gl_filter_impl.h"
#include "engine/resource_loader.h"
#include "gl_test_support.h"
#include "jni/capture_stderr.h"
#include "support/gl_fixture.h"

namespace {

using gltest::kSwapFragment;
using gltest::kUniformFragment;
using gltest::kVertex;

// A scratch bundle directory whose reads are counted; RGBA images are held
// in memory (one row each).
class CountingBundle : public HFDirectoryResourceProvider {
public:
    explicit CountingBundle(const std::string& root) : HFDirectoryResourceProvider(root) {}
    _Image* loadData(const char* path) override {
        ++reads[path];
        return HFDirectoryResourceProvider::loadData(path);
    }
    _Image* loadRGBA(const char* path) override {
        auto found = images.find(path);
        return found == images.end() ? nullptr : gltest::makeRGBA(found->second.size() / 4, 1, found->second);
    }
    std::map<std::string, int> reads;
    std::map<std::string, std::vector<unsigned char>> images;
};

std::string element(const char* tag, const std::string& text) {
    return std::string("<") + tag + ">" + text + "</" + tag + ">";
}

std::string param(const std::string& name, const char* type, const std::string& value) {
    return element("param", element("name", name) + element(type, value));
}

// Names are unique per test: the description cache lives for the process.
class FilterDescTest : public GLTest {
protected:
    void SetUp() override {
        GLTest::SetUp();
        previous = HFResourceLoader_setProvider(&bundle);
    }
    void TearDown() override {
        HFResourceLoader_setProvider(previous);
        std::filesystem::remove_all(root);
    }

    void write(const std::string& path, const std::string& text) {
        std::filesystem::create_directories(std::filesystem::path(root + "/" + path).parent_path());
        std::ofstream(root + "/" + path) << text;
    }
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

    std::string root = std::filesystem::temp_directory_path() / ("glfilters." + std::to_string(getpid()));
    CountingBundle bundle{root};
    HFResourceProvider* previous = nullptr;
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
    ASSERT_EQ(3u, impl->fragmentSources.size());
    EXPECT_EQ(kSwapFragment, impl->fragmentSources[1]);

    shared_ptr<HFFilterDescNode> node = leaf("<filter implement='threepass'/>");
    shared_ptr<IHFFilter> first = node->createFilter(), second = node->createFilter();
    EXPECT_EQ(1, bundle.reads["filter/gl/threepass.xml"]);
    EXPECT_NE(first.get(), second.get());
    auto* gl = dynamic_cast<HFGLFilter*>(first.get());
    ASSERT_NE(nullptr, gl);
    EXPECT_EQ(1, gl->programCount());
    EXPECT_GE(gl->program(0)->uniformLocation("amount"), 0) << "built from the first fragment";
}

TEST_F(FilterDescTest, MissingOrVertexlessDescriptionsBuildNothing) {
    describe("novertex", element("fragment", kSwapFragment));
    const std::string log = captureStderr([&] {
        EXPECT_FALSE(leaf("<filter implement='nosuch'/>")->createFilter());
        EXPECT_FALSE(leaf("<filter implement='nosuch'/>")->createFilter());
        EXPECT_FALSE(leaf("<filter implement='novertex'/>")->createFilter());
    });
    EXPECT_NE(std::string::npos, log.find("filter/gl/nosuch.xml"));
    EXPECT_NE(std::string::npos, log.find("filter/gl/novertex.xml"));
    EXPECT_EQ(1, bundle.reads["filter/gl/nosuch.xml"]) << "a failed description is cached too";
}

TEST_F(FilterDescTest, AnythingButExactlyGPUSelectsTheCPU) {
    EXPECT_FALSE(leaf("<filter implement='Curve2D'/>")->preferCPU);
    EXPECT_FALSE(leaf("<filter implement='Curve2D' prefer='GPU'/>")->preferCPU);
    shared_ptr<HFFilterDescNode> lower =
        leaf("<filter implement='Curve2D' prefer='gpu'>" + param("amount", "float", "0.5") + "</filter>");
    shared_ptr<IHFFilter> filter = lower->createFilter();
    auto* cpu = dynamic_cast<HFCPUFilter*>(filter.get());
    ASSERT_NE(nullptr, cpu);
    EXPECT_NE(nullptr, cpu->filterFunction());
    ASSERT_EQ(1u, cpu->parameters().count("amount"));
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
    ASSERT_NE(nullptr, paramAt<HFVec4Param>(node, 0));
    EXPECT_EQ(4.0f, paramAt<HFVec4Param>(node, 0)->values[3]);
    const HFMatrix4Param* matrix = paramAt<HFMatrix4Param>(node, 1);
    ASSERT_NE(nullptr, matrix);
    EXPECT_EQ(2.0f, matrix->values[0]);
    EXPECT_EQ(0.0f, matrix->values[1]) << "an empty number leaves its slot 0";
    EXPECT_EQ(3.0f, matrix->values[2]);
    const HFCurveParam* curve = paramAt<HFCurveParam>(node, 2);
    ASSERT_NE(nullptr, curve);
    EXPECT_EQ(1.0f, curve->values[0]);
    EXPECT_EQ(0.5f, curve->values[1]);
    EXPECT_EQ(0.0f, curve->values[2]);
    ASSERT_NE(nullptr, paramAt<HFCurveParam>(node, 3));
    EXPECT_EQ(255.0f / 256.0f, paramAt<HFCurveParam>(node, 3)->values[255]) << "capped at 256 entries";
}

TEST_F(FilterDescTest, PackageLeafAppliesItsParamsInOrder) {
    describe("swap", element("vertex", kVertex) + element("fragment", kUniformFragment));
    write("filter/softpkg/filter.xml", "<filter implement='swap' prefer='GPU'>" + param("amount", "float", "0.25") +
                                           param("tint", "vector4f", element("number", "0.5")) +
                                           param("1", "image", "grain.png") + param("2", "image", "gone.png") +
                                           "</filter>");
    bundle.images["filter/softpkg/grain.png"] = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12};
    shared_ptr<IHFFilter> filter = HFFilterWraper::loadFilterPackage("softpkg");
    auto* gl = dynamic_cast<HFGLFilter*>(filter.get());
    ASSERT_NE(nullptr, gl);
    const GLuint program = gl->program(0)->program;
    float values[4];
    glGetUniformfv(program, glGetUniformLocation(program, "amount"), values);
    EXPECT_EQ(0.25f, values[0]);
    glGetUniformfv(program, glGetUniformLocation(program, "tint"), values);
    EXPECT_EQ(0.5f, values[0]);
    EXPECT_EQ(0.0f, values[1]);

    // Image names are input slots; files are looked up inside the package.
    HFGLTexture* grain = static_cast<HFGLTexture*>(filter->getInputTexture(1).get());
    ASSERT_NE(nullptr, grain);
    EXPECT_EQ(HFSize({3, 1}), grain->size());
    EXPECT_EQ(glGetUniformLocation(program, "inputImageTexture2"), gl->samplerLocation(1));
    HFGLTexture* gone = static_cast<HFGLTexture*>(filter->getInputTexture(2).get());
    ASSERT_NE(nullptr, gone);
    EXPECT_EQ(HFSize({0, 0}), gone->size());
}

}  // namespace
