#include "engine/filter_object.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "recording_filter.h"

namespace {

using Lists = std::vector<HFFilterObject::DestinationList>;
using D = HFFilterObject::Destination;

class FilterObjectTest : public ::testing::Test {
protected:
    // A -> B -> C, each reporting a distinct output size.
    shared_ptr<HFFilterObject> chain() {
        shared_ptr<HFFilterObject> composite = HFFilterObject::createFilter();
        composite->addFilter(RecordingFilter::make("A", &journal, HFSize{1, 1}));
        composite->addFilter(RecordingFilter::make("B", &journal, HFSize{2, 2}));
        composite->addFilter(RecordingFilter::make("C", &journal, HFSize{3, 3}));
        return composite;
    }

    Journal journal;
};

// The caller's image goes to the first child; only the last renders into it.
TEST_F(FilterObjectTest, ChainRendersFrontToBackHandingOutputsAndSizes) {
    shared_ptr<HFFilterObject> composite = chain();
    EXPECT_EQ((Lists{{D(1, 0)}, {D(2, 0)}, {}}), composite->outputWiring());

    _Image image = {};
    composite->render(&image);
    EXPECT_EQ((Journal{"A: image set @0", "A: render null", "B: size 1x1", "B: input A.out @0", "B: render null",
                       "C: size 2x2", "C: input B.out @0", "C: render image"}),
              journal);
}

TEST_F(FilterObjectTest, RelationReplacesALinkedSlotAndAddsAFreeOne) {
    shared_ptr<HFFilterObject> composite = chain();
    composite->addMap(0, 2, 0);
    EXPECT_EQ((Lists{{D(1, 0), D(2, 0)}, {}, {}, {}}), composite->outputWiring());

    composite->render(nullptr);
    EXPECT_EQ((Journal{"A: render null", "B: size 1x1", "B: input A.out @0", "C: size 1x1", "C: input A.out @0",
                       "B: render null", "C: render null"}),
              journal);

    shared_ptr<HFFilterObject> free = chain();
    free->addMap(0, 2, 1);
    EXPECT_EQ((Lists{{D(1, 0), D(2, 1)}, {D(2, 0)}, {}, {}}), free->outputWiring());
}

TEST_F(FilterObjectTest, OutOfRangeMapsFollowTheUnsignedRules) {
    shared_ptr<HFFilterObject> composite = chain();
    const Lists chained = composite->outputWiring();
    const int ignored[][2] = {{5, 0}, {3, 0}, {0, -2}, {0, 4}, {INT32_MIN, 0}, {-5, 0}};
    for (const auto& map : ignored) composite->addMap(map[0], map[1], 0);
    EXPECT_EQ(chained, composite->outputWiring());
    for (int input = 0; input < 4; ++input) EXPECT_TRUE(composite->inputWiring(input).empty());

    // One past the last child is stored, and skipped when rendering.
    composite->addMap(0, 3, 0);
    EXPECT_EQ((Lists{{D(1, 0), D(3, 0)}, {D(2, 0)}, {}, {}}), composite->outputWiring());
    composite->render(nullptr);
    EXPECT_EQ(7u, journal.size());
}

TEST_F(FilterObjectTest, CompositeInputsFeedExtraDestinations) {
    shared_ptr<HFFilterObject> composite = chain();
    composite->addMap(-1, 2, 1);
    composite->addMap(-1, -2, 0);  // stored unchecked, addresses no child
    EXPECT_EQ((HFFilterObject::DestinationList{D(2, 1), D(-2, 0)}), composite->inputWiring(0));

    composite->setInputTexture(shared_ptr<IHFTexture>(new LabelTexture("in")), 0);
    composite->setInputTexture(shared_ptr<IHFTexture>(new LabelTexture("second")), 1);
    EXPECT_EQ((Journal{"A: input in @0", "C: input in @1", "A: input second @1"}), journal);
    EXPECT_EQ("in", labelOf(composite->getInputTexture(0)));
}

TEST_F(FilterObjectTest, ClearMapDropsOutputWiringOnly) {
    shared_ptr<HFFilterObject> composite = chain();
    composite->addMap(-1, 1, 1);
    composite->clearMap();
    EXPECT_EQ((Lists{{}, {}, {}}), composite->outputWiring());
    EXPECT_EQ(1u, composite->inputWiring(0).size());
    composite->render(nullptr);
    EXPECT_EQ((Journal{"A: render null", "B: render null", "C: render null"}), journal);
}

TEST_F(FilterObjectTest, PropertiesReachNestedChildrenAndLastChildAnswers) {
    shared_ptr<HFFilterObject> inner = HFFilterObject::createFilter();
    inner->addFilter(RecordingFilter::make("X", &journal));
    inner->addFilter(RecordingFilter::make("Y", &journal, HFSize{7, 5}));
    shared_ptr<HFFilterObject> outer = HFFilterObject::createFilter();
    outer->addFilter(RecordingFilter::make("A", &journal));
    outer->addFilter(inner);

    outer->setProperty("x", 1.0f);
    outer->setFilterFBO();
    outer->setFrameBufferBlendMode(1, 2);
    EXPECT_EQ((Journal{"A: property x=1.000000", "X: property x=1.000000", "Y: property x=1.000000", "Y: fbo"}),
              journal);
    EXPECT_EQ(7, outer->outputTextureSize().width);
    EXPECT_EQ("Y.out", labelOf(outer->outputTexture()));
}

TEST_F(FilterObjectTest, ReleaseIntermediatesClearsEachSourceAfterHandingOn) {
    shared_ptr<HFFilterObject> composite = chain();
    composite->setReleaseIntermediates(true);
    composite->render(nullptr);
    EXPECT_EQ((Journal{"A: render null", "B: size 1x1", "B: input A.out @0", "A: clear", "B: render null",
                       "C: size 2x2", "C: input B.out @0", "B: clear", "C: render null"}),
              journal);
    journal.clear();
    composite->clearMemoryData();
    EXPECT_EQ((Journal{"A: clear", "B: clear"}), journal);

    // A single child is rendered once and keeps its memory.
    shared_ptr<HFFilterObject> single = HFFilterObject::createFilter();
    single->addFilter(RecordingFilter::make("S", &journal));
    journal.clear();
    single->render(nullptr);
    single->clearMemoryData();
    EXPECT_EQ((Journal{"S: render null"}), journal);
}

TEST_F(FilterObjectTest, EmptyCompositeIsANoOp) {
    shared_ptr<HFFilterObject> composite = HFFilterObject::createFilter();
    composite->render(nullptr);
    composite->setInputTexture(shared_ptr<IHFTexture>(new LabelTexture("in")), 0);
    composite->setFilterFBO();
    composite->clearMemoryData();
    EXPECT_FALSE(composite->outputTexture());
    EXPECT_FALSE(composite->getInputTexture(0));
}

// An empty child handle keeps its index (relations still address the others)
// and is skipped by every operation, first, middle or last.
TEST_F(FilterObjectTest, EmptyChildHandlesAreSkipped) {
    for (int gap = 0; gap < 3; ++gap) {
        SCOPED_TRACE(gap);
        journal.clear();
        shared_ptr<HFFilterObject> composite = HFFilterObject::createFilter();
        for (int i = 0; i < 3; ++i) {
            const std::string name(1, static_cast<char>('A' + i));
            composite->addFilter(i == gap ? shared_ptr<IHFFilter>() : RecordingFilter::make(name, &journal));
        }
        _Image image = {};
        composite->setProperty("x", 1.0f);
        composite->render(&image);
        composite->readOutput(&image);
        composite->clearMemoryData();
        composite->setFilterFBO();
        EXPECT_EQ(gap == 2, !composite->outputTexture());
        EXPECT_EQ(2u, std::count_if(journal.begin(), journal.end(),
                                    [](const std::string& line) { return line.find("render") != std::string::npos; }));
    }
}

TEST_F(FilterObjectTest, ChildrenAreDestroyedInOrderWithTheComposite) {
    Journal destroyed;
    {
        shared_ptr<HFFilterObject> composite = HFFilterObject::createFilter();
        for (const char* name : {"A", "B", "C"}) {
            RecordingFilter* filter = new RecordingFilter(name, &journal);
            filter->destroyed = &destroyed;
            composite->addFilter(shared_ptr<IHFFilter>(filter));
        }
        composite->render(nullptr);
        EXPECT_TRUE(destroyed.empty());
    }
    EXPECT_EQ((Journal{"A", "B", "C"}), destroyed);
}

}  // namespace
