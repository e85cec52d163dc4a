#include "engine/filter_package.h"

#include <gtest/gtest.h>
#include <tinyxml2.h>

#include <map>

#include "engine/filter_model_node.h"
#include "engine/filter_object.h"
#include "engine/filter_wraper.h"
#include "engine/resource_loader.h"
#include "recording_filter.h"
#include "support/gl_fixture.h"

namespace {

// Bundle files held in memory; counts how often each path is read.
class MemoryBundle : public HFResourceProvider {
public:
    _Image* loadData(const char* path) override {
        ++reads[path];
        auto found = files.find(path);
        if (found == files.end()) return nullptr;
        const std::string& text = found->second;
        _Image* blob = create_image(static_cast<int>(text.size()) + 1, 1, 1, 0);
        std::copy(text.begin(), text.end(), blob->data);
        blob->width = static_cast<int>(text.size());
        return blob;
    }
    _Image* loadRGBA(const char*) override { return nullptr; }

    void package(const std::string& name, const std::string& xml) { files["filter/" + name + "/filter.xml"] = xml; }
    int readsOf(const std::string& name) { return reads["filter/" + name + "/filter.xml"]; }

    std::map<std::string, std::string> files;
    std::map<std::string, int> reads;
};

Journal journal;

// Leaf standing in for the GL description node: builds a recording filter
// named after "implement"; an including element may rename it.
class FakeLeafNode : public IHFFilterNode {
public:
    void parse(tinyxml2::XMLElement* element) override {
        ++parses;
        if (const char* implement = element->Attribute("implement")) implementName = implement;
    }
    shared_ptr<IHFFilter> createFilter() override {
        if (implementName == "unbuildable") return shared_ptr<IHFFilter>();
        return RecordingFilter::make(implementName, &journal);
    }
    std::string implementName;
    int parses = 0;
};

shared_ptr<IHFFilterNode> makeFakeLeaf() { return shared_ptr<IHFFilterNode>(new FakeLeafNode()); }

// Package names are unique per test: the node cache lives for the process.
class FilterPackageTest : public ::testing::Test {
protected:
    void SetUp() override {
        journal.clear();
        previousProvider = HFResourceLoader_setProvider(&bundle);
        previousFactory = HFFilterPackage_setLeafNodeFactory(&makeFakeLeaf);
    }
    void TearDown() override {
        HFResourceLoader_setProvider(previousProvider);
        HFFilterPackage_setLeafNodeFactory(previousFactory);
    }

    Journal renderJournal(const std::string& name) {
        shared_ptr<IHFFilter> filter = HFFilterWraper::loadFilterPackage(name);
        EXPECT_TRUE(filter) << name;
        journal.clear();
        if (filter) filter->render(nullptr);
        return journal;
    }

    MemoryBundle bundle;
    HFResourceProvider* previousProvider = nullptr;
    HFLeafNodeFactory previousFactory = nullptr;
};

TEST_F(FilterPackageTest, LeafPackageIsReadOnceAndBuildsFreshFilters) {
    bundle.package("leaf1", "<filter implement='sepia'/>");
    shared_ptr<IHFFilter> first = HFFilterWraper::loadFilterPackage("leaf1");
    shared_ptr<IHFFilter> second = HFFilterWraper::loadFilterPackage("leaf1");
    ASSERT_TRUE(first);
    EXPECT_NE(first.get(), second.get());
    EXPECT_EQ("sepia", static_cast<RecordingFilter*>(first.get())->name);
    EXPECT_EQ(1, bundle.readsOf("leaf1"));
    EXPECT_EQ("leaf1", filterNodeCache().at("leaf1")->name);
}

TEST_F(FilterPackageTest, ModelChainsChildrenAndAppliesRelationsAfterThem) {
    bundle.package("model1",
                   "<model>\n"
                   "  <relation output='0' input='2' index='0'/>\n"
                   "  <filter implement='A'/><note/><filter implement='B'/>\n"
                   "  <filter implement='C'/>\n"
                   "  <relation output=' -1' input='1' index='1x'/>\n"
                   "</model>");
    shared_ptr<IHFFilter> filter = HFFilterWraper::loadFilterPackage("model1");
    HFFilterObject* composite = dynamic_cast<HFFilterObject*>(filter.get());
    ASSERT_NE(nullptr, composite);
    EXPECT_EQ(3u, composite->filterCount());
    EXPECT_EQ((HFFilterObject::DestinationList{{1, 1}}), composite->inputWiring(0));

    filter->setInputTexture(shared_ptr<IHFTexture>(new LabelTexture("in")), 0);
    filter->render(nullptr);
    EXPECT_EQ((Journal{"A: input in @0", "B: input in @1", "A: render null", "B: size 4x2", "B: input A.out @0",
                       "C: size 4x2", "C: input A.out @0", "B: render null", "C: render null"}),
              journal);
}

TEST_F(FilterPackageTest, IncludedPackageIsSharedAndParsedWithTheIncludingElement) {
    bundle.package("shared1", "<filter implement='grain'/>");
    bundle.package("user1", "<model><filter include='shared1'/><filter implement='X'/></model>");
    bundle.package("user2", "<model><filter implement='Y'/><filter include='shared1' implement='grain2'/></model>");

    EXPECT_EQ((Journal{"grain: render null", "X: size 4x2", "X: input grain.out @0", "X: render null"}),
              renderJournal("user1"));
    renderJournal("user2");
    EXPECT_EQ(1, bundle.readsOf("shared1"));

    auto* user1 = dynamic_cast<HFFilterModelNode*>(filterNodeCache().at("user1").get());
    auto* user2 = dynamic_cast<HFFilterModelNode*>(filterNodeCache().at("user2").get());
    ASSERT_TRUE(user1 && user2);
    EXPECT_EQ(user1->children[0].get(), user2->children[1].get());
    // The second including element renamed the shared leaf for every user.
    EXPECT_EQ(3, static_cast<FakeLeafNode*>(user1->children[0].get())->parses);
    EXPECT_EQ((Journal{"grain2: render null", "X: size 4x2", "X: input grain2.out @0", "X: render null"}),
              renderJournal("user1"));
}

TEST_F(FilterPackageTest, BrokenPackagesBuildNoFilterAndAreReadOnce) {
    bundle.package("badxml1", "<model><filter implement='A'></model>");
    bundle.package("badroot1", "<shader/>");
    bundle.package("badrelation1", "<model><filter implement='A'/><relation output='0' input='1'/></model>");
    bundle.package("cycleA", "<model><filter include='cycleB'/></model>");
    bundle.package("cycleB", "<model><filter include='cycleA'/></model>");
    bundle.package("self1", "<model><filter implement='A'/><filter include='self1'/></model>");
    bundle.package("badchild1", "<model><filter implement='A'/><filter include='missing1'/></model>");
    bundle.package("unbuildable1", "<model><filter implement='A'/><filter implement='unbuildable'/></model>");
    bundle.package("empty1", "");
    for (const char* name :
         {"missing1", "badxml1", "badroot1", "badrelation1", "cycleA", "self1", "badchild1", "unbuildable1", "empty1"}) {
        SCOPED_TRACE(name);
        EXPECT_FALSE(HFFilterWraper::loadFilterPackage(name));
        HFFilterWraper wraper(name);
        EXPECT_FALSE(wraper.hasFilter());
        EXPECT_EQ(0, wraper.outputTexture());
    }
    // Failures stay cached as empty entries: no file is read a second time,
    // and a retry does not parse a broken model's includes again.
    for (const char* name : {"missing1", "badxml1", "badroot1", "badrelation1", "cycleA", "cycleB", "self1",
                             "badchild1", "empty1"}) {
        SCOPED_TRACE(name);
        EXPECT_EQ(1, bundle.readsOf(name));
        ASSERT_EQ(1u, filterNodeCache().count(name));
        EXPECT_FALSE(filterNodeCache().at(name));
    }
    EXPECT_TRUE(filterNodeCache().at("unbuildable1"));
}

TEST_F(FilterPackageTest, EmptyModelIsAHarmlessComposite) {
    bundle.package("emptymodel1", "<model/>");
    shared_ptr<IHFFilter> filter = HFFilterWraper::loadFilterPackage("emptymodel1");
    ASSERT_TRUE(filter);
    filter->render(nullptr);
    EXPECT_FALSE(filter->outputTexture());
}

class FilterWraperTest : public GLTest {
protected:
    void SetUp() override {
        GLTest::SetUp();
        journal.clear();
        previousProvider = HFResourceLoader_setProvider(&bundle);
        previousFactory = HFFilterPackage_setLeafNodeFactory(&makeFakeLeaf);
    }
    void TearDown() override {
        HFResourceLoader_setProvider(previousProvider);
        HFFilterPackage_setLeafNodeFactory(previousFactory);
    }

    MemoryBundle bundle;
    HFResourceProvider* previousProvider = nullptr;
    HFLeafNodeFactory previousFactory = nullptr;
};

TEST_F(FilterWraperTest, RenderFeedsTheBorrowedTextureThenPreparesAndRenders) {
    bundle.package("wrap1", "<filter implement='W'/>");
    GLuint name = 0;
    glGenTextures(1, &name);
    {
        HFFilterWraper wraper("wrap1");
        ASSERT_TRUE(wraper.hasFilter());
        wraper.renderTexture(static_cast<int>(name), 8, 6);
        EXPECT_EQ((Journal{"W: input ? @0", "W: fbo", "W: render null"}), journal);

        auto* leaf = static_cast<RecordingFilter*>(wraper.filter.get());
        auto* input = dynamic_cast<HFGLTexture*>(leaf->inputs[0].get());
        ASSERT_NE(nullptr, input);
        EXPECT_EQ(name, input->glTexture());
        EXPECT_EQ(8, input->size().width);
        EXPECT_EQ(6, input->size().height);
        // The last filter's output is not a GL texture.
        EXPECT_EQ(0, wraper.outputTexture());
    }
    EXPECT_TRUE(glIsTexture(name));
    glDeleteTextures(1, &name);
}

}  // namespace
