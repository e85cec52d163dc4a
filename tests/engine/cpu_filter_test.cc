#include "engine/cpu/cpu_filter.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <limits>
#include <vector>

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

// Handing a holder back what it holds: the copy must be taken before the
// old value is freed (ASan reports the use after free; without it the freed
// bytes no longer match).
TEST(CPUFilterTest, SettersGivenTheirOwnValueKeepIt) {
    TestImage source(5, 3, 4, 0, 9);
    shared_ptr<IHFTexture> texture = HFCPUTexture::createTexture(source.image);
    texture->setImage(texture->image());
    ASSERT_TRUE(texture->image());
    EXPECT_TRUE(sameImage(source.image, texture->image()));

    CPUImageParam image;
    image.setImage(source.image);
    image.setImage(image.getImage());
    ASSERT_TRUE(image.getImage());
    EXPECT_TRUE(sameImage(source.image, image.getImage()));

    const float values[6] = {1.5f, -2, 3, 4, 5, 6e7f};
    CPUFloatArrayParam array;
    array.assign(6, values);
    array.assign(array.count(), array.getFloatArray());
    ASSERT_EQ(6, array.count());
    EXPECT_EQ(std::vector<float>(values, values + 6), std::vector<float>(array.getFloatArray(), array.getFloatArray() + 6));
}

TEST(CPUFilterTest, NumericParametersSaturateInsteadOfOverflowing) {
    const float nan = std::numeric_limits<float>::quiet_NaN();
    const struct {
        float value;
        int expected;
    } cases[] = {{2.9f, 2}, {-2.9f, -2}, {3e9f, INT32_MAX}, {-3e9f, INT32_MIN}, {1e38f, INT32_MAX},
                 {std::numeric_limits<float>::infinity(), INT32_MAX}, {nan, 0}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.value);
        EXPECT_EQ(c.expected, CPUFloatParam(c.value).getInt());
        CPUIntParam integer;
        integer.setFloat(c.value);
        EXPECT_EQ(c.expected, integer.getInt());
    }
}

// One copy per frame: the copy is the output's image, made into the previous
// output's buffer once nobody else holds that texture; a texture still held
// keeps its pixels, and a new layout gets a buffer of its own size.
TEST(CPUFilterTest, RenderCopiesOnceIntoTheFreedPreviousBuffer) {
    shared_ptr<IHFFilter> filter = HFCPUFilter::createFilter("Curve2D");
    TestImage first(4, 3, 4, 0, 1), second(4, 3, 4, 0, 50), wide(6, 3, 4, 0, 90);
    auto renderFrom = [&](const TestImage& frame) {
        filter->setInputTexture(HFCPUTexture::createTexture(frame.image), 0);
        filter->render(nullptr);
        return filter->outputTexture()->image();
    };

    const unsigned char* buffer = renderFrom(first)->data;
    const _Image* reused = renderFrom(second);
    EXPECT_EQ(buffer, reused->data);
    EXPECT_TRUE(sameImage(second.image, reused));

    shared_ptr<IHFTexture> held = filter->outputTexture();
    const _Image* fresh = renderFrom(first);
    EXPECT_NE(buffer, fresh->data);
    EXPECT_TRUE(sameImage(first.image, fresh));
    EXPECT_TRUE(sameImage(second.image, held->image())) << "a held output keeps its frame";
    held.release();

    const _Image* resized = renderFrom(wide);
    EXPECT_TRUE(sameImage(wide.image, resized));
    EXPECT_EQ(6, filter->outputTextureSize().width);
}

}  // namespace
