// The bridge pieces that run without a JVM: bounded formatting, clipped
// copies, and callbacks that must fail quietly before the load hook ran.
#include <gtest/gtest.h>

#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

#include "jni/bridge/bridge.h"
#include "capture_stderr.h"

namespace {

struct Formatted {
    std::string text;
    std::string log;
};

Formatted format(const std::string& text) {
    char* out = nullptr;
    std::string log = captureStderr([&] { out = format_utf8string("<%s>", text.c_str()); });
    std::unique_ptr<char, decltype(&free)> owned(out, &free);
    return {out, log};
}

TEST(FormatUtf8String, BoundaryAt1023Characters) {
    Formatted quiet = format(std::string(1020, 'a'));  // 1022 characters
    EXPECT_EQ(quiet.text, "<" + std::string(1020, 'a') + ">");
    EXPECT_EQ(quiet.log, "");

    Formatted boundary = format(std::string(1021, 'b'));  // 1023 characters
    EXPECT_EQ(boundary.text.size(), 1023u);
    // Info priority under the library's tag.
    EXPECT_NE(boundary.log.find("filter process I"), std::string::npos) << boundary.log;
    EXPECT_NE(boundary.log.find("format_utf8string: error"), std::string::npos);

    Formatted cut = format(std::string(5000, 'c'));
    EXPECT_EQ(cut.text, "<" + std::string(1022, 'c'));
    EXPECT_NE(cut.log.find("format_utf8string: error"), std::string::npos);
}

TEST(BundleCallbacks, WithoutAJvmGiveNullAndSayWhy) {
    _Image* image = reinterpret_cast<_Image*>(1);
    std::string log = captureStderr([&] { image = jniLoadBundleResource("filter/a/filter.xml", 2); });
    EXPECT_EQ(image, nullptr);
    EXPECT_NE(log.find("env() == NULL"), std::string::npos) << log;
    EXPECT_EQ(jniGetEnv(), nullptr);
}

// Image bytes 0..n-1; buffers sized exactly so that ASan sees any overrun.
struct CopyCase {
    int stride, height;
    uint32_t size;
    size_t capacity;
    size_t expected;
};

TEST(CopyImageToPixels, NeverPassesEitherBuffer) {
    const CopyCase cases[] = {
        {8, 2, 16, 16, 16},   // same size
        {8, 4, 32, 12, 12},   // bitmap smaller
        {64, 64, 6, 32, 6},   // image claims more than it owns
        {8, 2, 0, 40, 16},    // header: borrowed pixels, stride x height
        {-4, 2, 16, 16, 0},   // nonsense stride copies nothing
    };
    for (const CopyCase& c : cases) {
        size_t owned = c.size > 0 ? c.size : static_cast<size_t>(c.stride) * c.height;
        std::vector<unsigned char> source(owned);
        for (size_t i = 0; i < owned; ++i) source[i] = static_cast<unsigned char>(i + 1);
        _Image image{};
        image.data = source.data();
        image.size = c.size;
        image.stride = c.stride;
        image.height = c.height;
        std::vector<unsigned char> pixels(c.capacity, 0xEE);

        EXPECT_EQ(copyImageToPixels(&image, pixels.data(), pixels.size()), c.expected);
        for (size_t i = 0; i < c.capacity; ++i) {
            unsigned char want = i < c.expected ? static_cast<unsigned char>(i + 1) : 0xEE;
            ASSERT_EQ(pixels[i], want) << "stride " << c.stride << " byte " << i;
        }
    }
    _Image empty{};
    unsigned char pixel = 7;
    EXPECT_EQ(copyImageToPixels(&empty, &pixel, 1), 0u);
}

}  // namespace
