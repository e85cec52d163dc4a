// The records read and written as raw 32-bit words, the way other native code
// of the app sees them: on a 32-bit ABI _Image is nine words (data, size,
// width, height, channels, stride, layout, reserved, markers), a marker node
// four, MRect four; on 64-bit ABIs each pointer takes two words.
#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <vector>

#include "image_filter/image.h"
#include "jni/bridge/bridge.h"

namespace {

constexpr size_t kPointerWords = sizeof(void*) / 4;

template <typename T>
std::vector<uint32_t> wordsOf(const T& record) {
    std::vector<uint32_t> words(sizeof(T) / 4);
    std::memcpy(words.data(), &record, sizeof(T));
    return words;
}

uintptr_t pointerAt(const std::vector<uint32_t>& words, size_t index) {
    uintptr_t value = 0;
    std::memcpy(&value, &words[index], sizeof value);
    return value;
}

TEST(RecordWords, ImageFieldsSitInTheirWordsInOrder) {
    _Image* image = create_image(3, 2, 3, 0);
    ASSERT_NE(nullptr, image);
    image->layout = 0x01020304;
    _ImageMarker* marker = create_marker();
    image->markers = marker;

    const std::vector<uint32_t> words = wordsOf(*image);
    const size_t p = kPointerWords;
    EXPECT_EQ(reinterpret_cast<uintptr_t>(image->data), pointerAt(words, 0));
    // size, width, height, channels, stride (9 rounded up to 12), layout, reserved.
    EXPECT_EQ((std::vector<uint32_t>{24, 3, 2, 3, 12, 0x01020304, 0}),
              std::vector<uint32_t>(words.begin() + p, words.begin() + p + 7));
    EXPECT_EQ(reinterpret_cast<uintptr_t>(marker), pointerAt(words, words.size() - p));
    if (p == 1) EXPECT_EQ(9u, words.size());

    // A record written word by word from outside is what the library reads.
    std::vector<uint8_t> pixels(32);
    for (size_t i = 0; i < pixels.size(); ++i) pixels[i] = static_cast<uint8_t>(i * 7);
    std::vector<uint32_t> header(words.size(), 0);
    const uintptr_t address = reinterpret_cast<uintptr_t>(pixels.data());
    std::memcpy(&header[0], &address, sizeof address);
    header[p + 1] = 5;   // width
    header[p + 2] = 4;   // height
    header[p + 3] = 1;   // channels
    header[p + 4] = 8;   // stride
    _Image outside;
    std::memcpy(&outside, header.data(), sizeof outside);
    _Image* copy = clone_image_ex(&outside);
    ASSERT_NE(nullptr, copy);
    EXPECT_EQ((std::vector<int32_t>{5, 4, 1, 8}),
              (std::vector<int32_t>{copy->width, copy->height, copy->channels, copy->stride}));
    EXPECT_EQ(pixels, std::vector<uint8_t>(copy->data, copy->data + 32));

    free_marker(marker);
    image->markers = nullptr;
    free_image(&copy);
    free_image(&image);
}

TEST(RecordWords, MarkerNodeIsFourWordsAndRectFourInts) {
    _ImageMarker* marker = create_marker();
    ASSERT_NE(nullptr, marker);
    EXPECT_EQ(std::vector<uint32_t>(4 * kPointerWords, 0), wordsOf(*marker));
    marker->id = 0xE1;
    marker->length = 6;
    const std::vector<uint32_t> words = wordsOf(*marker);
    EXPECT_EQ(0xE1u, words[0]);
    EXPECT_EQ(6u, words[2 * kPointerWords]);
    free_marker(marker);

    const int32_t raw[4] = {-3, 7, 5, 0};
    MRect rect;
    std::memcpy(&rect, raw, sizeof rect);
    EXPECT_EQ(1, is_empty_rect(&rect));
    inflate_rect(&rect, 2, 1);
    int32_t after[4];
    std::memcpy(after, &rect, sizeof after);
    EXPECT_EQ((std::vector<int32_t>{-5, 6, 9, 2}), std::vector<int32_t>(after, after + 4));
    EXPECT_EQ(16u, sizeof rect);
}

// A Java long holds the address at full width; on a 32-bit ABI an address
// with the top bit set is a negative long whose low word is the address.
TEST(RecordWords, HandlesRoundTripAddressesWithTheTopBitSet) {
    _Image* high = reinterpret_cast<_Image*>(~uintptr_t{0} - 15);
    const jlong handle = toJavaHandle(high);
    EXPECT_EQ(high, fromJavaHandle<_Image>(handle));
    if (sizeof(void*) == 4) {
        EXPECT_EQ(jlong{-16}, handle);
        EXPECT_EQ(uint32_t{0xFFFFFFF0u}, static_cast<uint32_t>(handle));
    }
    EXPECT_EQ(nullptr, fromJavaHandle<_Image>(toJavaHandle(static_cast<_Image*>(nullptr))));
}

}  // namespace
