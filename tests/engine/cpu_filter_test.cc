#include "engine/cpu/cpu_filter.h"

#include <gtest/gtest.h>

#include <cstring>

#include "engine/cpu/cpu_texture.h"
#include "recording_filter.h"

namespace {

// An image owned by the test; pixel bytes count up from `first`.
struct TestImage {
    TestImage(int width, int height, int channels, int stride = 0, unsigned char first = 1)
        : image(create_image(width, height, static_cast<unsigned int>(channels), stride)) {
        for (int i = 0; i < image->stride * height; ++i) image->data[i] = static_cast<unsigned char>(first + i);
    }
    ~TestImage() { free_image(&image); }
    _Image* image;
};

bool sameImage(const _Image* a, const _Image* b) {
    return a->width == b->width && a->height == b->height && a->channels == b->channels &&
           a->stride == b->stride && std::memcmp(a->data, b->data, static_cast<size_t>(a->stride * a->height)) == 0;
}

HFCPUFilter* filterOf(const shared_ptr<IHFFilter>& handle) { return static_cast<HFCPUFilter*>(handle.get()); }

TEST(CPUFilterTest, PassesTheInputThroughAsANewTexture) {
    EXPECT_NE(nullptr, HFCPUFilterRegistry_lookup("Curve2D"));
    EXPECT_TRUE(HFCPUFilterRegistry_contains(""));
    EXPECT_EQ(nullptr, HFCPUFilterRegistry_lookup(""));
    for (const char* name : {"Curve2D", "", "NoSuchFunction"}) {
        SCOPED_TRACE(name);
        TestImage source(3, 2, 3, 0, 7);
        shared_ptr<IHFFilter> filter = HFCPUFilter::createFilter(name);
        shared_ptr<IHFTexture> input = HFCPUTexture::createTexture(source.image);
        filter->setInputTexture(input, 0);
        filter->render(nullptr);
        shared_ptr<IHFTexture> output = filter->outputTexture();
        ASSERT_TRUE(output);
        EXPECT_NE(input.get(), output.get());
        EXPECT_TRUE(sameImage(source.image, output->image()));
        EXPECT_EQ(3, filter->outputTextureSize().width);

        filter->render(nullptr);
        EXPECT_NE(output.get(), filter->outputTexture().get());
        EXPECT_EQ(1, output.use_count());
    }
}

TEST(CPUFilterTest, RendersNothingWithoutACPUImage) {
    shared_ptr<IHFFilter> filter = HFCPUFilter::createFilter("Curve2D");
    filter->render(nullptr);
    EXPECT_FALSE(filter->outputTexture());
    filter->setInputTexture(shared_ptr<IHFTexture>(new LabelTexture("gl")), 0);
    filter->render(nullptr);
    EXPECT_FALSE(filter->outputTexture());
}

TEST(CPUFilterTest, FirstValueUnderANameWins) {
    shared_ptr<IHFFilter> handle = HFCPUFilter::createFilter("Curve2D");
    HFCPUFilter* filter = filterOf(handle);
    filter->setInt("amount", 1);
    filter->setInt("amount", 2);
    filter->setFloat("amount", 2.5f);
    float values[16] = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16};
    filter->setVec3("tint", values);
    filter->setMatrix4("matrix", values);
    filter->setFloatArray("empty", values, -1);
    filter->setFloatArray(0, values, 4);
    filter->setVec2Array("pairs", values, 2);

    const HFCPUParamMap& params = filter->parameters();
    EXPECT_EQ(4u, params.size());
    EXPECT_EQ(1, params.at("amount")->getInt());
    EXPECT_EQ(1.0f, params.at("amount")->getFloat());
    EXPECT_EQ(3, params.at("tint")->count());
    EXPECT_EQ(16.0f, params.at("matrix")->getFloatArray()[15]);
    EXPECT_EQ(0, params.at("empty")->count());
    EXPECT_EQ(0.0f, filter->getProperty("amount"));
}

TEST(CPUFilterTest, ExtraInputsBecomeImageParameters) {
    shared_ptr<IHFFilter> handle = HFCPUFilter::createFilter("Curve2D");
    TestImage first(2, 2, 4, 0, 1);
    TestImage second(2, 2, 4, 0, 100);
    handle->setInputTexture(HFCPUTexture::createTexture(first.image), 1);
    handle->setInputTexture(HFCPUTexture::createTexture(second.image), 1);
    handle->setInputTexture(HFCPUTexture::createTexture(second.image), 3);
    handle->setInputTexture(HFCPUTexture::createTexture(second.image), 4);

    EXPECT_FALSE(handle->getInputTexture(1));
    EXPECT_FALSE(handle->getInputTexture(4));
    EXPECT_FALSE(handle->getInputTexture(-1));
    const HFCPUParamMap& params = filterOf(handle)->parameters();
    ASSERT_EQ(2u, params.size());
    EXPECT_TRUE(sameImage(first.image, params.at("inputImageTexture2")->getImage()));
    EXPECT_TRUE(sameImage(second.image, params.at("inputImageTexture4")->getImage()));
    EXPECT_NE(first.image->data, params.at("inputImageTexture2")->getImage()->data) << "held as a copy";
}

}  // namespace
