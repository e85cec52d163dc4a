// Sizes Java can pass that no camera or bitmap produces: products that
// overflow, zero widths with huge heights, records with negative sizes or
// no channels. Each must be refused or do nothing, quickly and inside its
// buffers (the sanitizer build checks the memory, CTest's timeout the time).
#include <gtest/gtest.h>

#include <climits>
#include <cstring>
#include <vector>

#include "image/image_internal.h"
#include "image_filter/filters.h"
#include "jni/pixels/blur8.h"
#include "jni/pixels/frame_checks.h"
#include "jni/pixels/qimage_pixels.h"
#include "jni/qimage/qimage_ops.h"

namespace {

using ifc::FrameCheck;
using ifc::FrameFormat;

constexpr uint32_t kNo32 = UINT32_MAX;  // what a 32-bit ABI gets for a size it cannot hold
constexpr uint64_t kGiB = uint64_t{1} << 30;
constexpr bool kSize32 = sizeof(size_t) == 4;

// Byte counts as a 32-bit ABI and a 64-bit one compute them: the first
// refuses every size past its address space, the second is exact.
TEST(HostileSizes, ByteCountsRefuseWhatThisAbisSizeCannotHold) {
    struct Case {
        int64_t a, b, c;
        uint32_t on32;
        uint64_t on64;
    };
    const Case products[] = {
        {4096, 1 << 20, 4, kNo32, 16 * kGiB},              // 0 when wrapped
        {INT32_MAX, INT32_MAX, 4, kNo32, UINT64_MAX},        // 4 when wrapped; past int64 too
        {65536, 65536, 1, kNo32, 4 * kGiB},
        {65537, 65535, 1, kNo32, 0xFFFFFFFFu},              // the largest count is taken for "too large"
        {2, 0x7FFFFFFF, 1, 0xFFFFFFFEu, 0xFFFFFFFEu},
        {1 << 22, 256, 4, kNo32, 4 * kGiB},                 // a history ring of 2^22 frames
        {INT32_MAX, INT32_MAX, INT32_MAX, kNo32, UINT64_MAX},  // past 64 bits too
        {-1, 4, 4, kNo32, UINT64_MAX},
        {0, INT32_MAX, INT32_MAX, 0, 0},
        {640, 480, 4, 1228800, 1228800},
    };
    for (const Case& c : products) {
        EXPECT_EQ(c.on32, ifc::byteCount<uint32_t>(c.a, c.b, c.c)) << c.a << " x " << c.b << " x " << c.c;
        EXPECT_EQ(c.on64, ifc::byteCount<uint64_t>(c.a, c.b, c.c)) << c.a << " x " << c.b << " x " << c.c;
    }
    // This build's own size_t: 2^32 fits only on a 64-bit ABI.
    EXPECT_EQ(kSize32, ifc::tooLarge(ifc::byteCount(65536, 65536)));
    EXPECT_EQ(kSize32 ? SIZE_MAX : static_cast<size_t>(16 * kGiB), ifc::byteCount(4096, 1 << 20, 4));

    // Rows padded to the alignment, the last one not: 3 RGB pixels are 9
    // bytes, 12 with padding. Each step of the sum can leave 32 bits.
    EXPECT_EQ(21u, ifc::paddedRowsBytes<uint32_t>(3, 2, 3, 4));
    EXPECT_EQ(18u, ifc::paddedRowsBytes<uint32_t>(3, 2, 3, 0));  // no alignment reads as 1
    EXPECT_EQ(0u, ifc::paddedRowsBytes<uint32_t>(0, 1 << 30, 4, 4));
    EXPECT_EQ(kNo32, ifc::paddedRowsBytes<uint32_t>(1 << 30, 1, 4, 1));  // one row
    EXPECT_EQ(kNo32, ifc::paddedRowsBytes<uint32_t>(16384, 65537, 4, 4));  // the rows above the last
    EXPECT_EQ(kNo32, ifc::paddedRowsBytes<uint32_t>(65536, 65536, 1, 1));  // 2^32 - 65536, then the last row
    EXPECT_EQ(4 * kGiB, ifc::paddedRowsBytes<uint64_t>(65536, 65536, 1, 1));
    EXPECT_EQ(0xFFFF0000u, ifc::paddedRowsBytes<uint32_t>(65536, 65535, 1, 8));
    EXPECT_EQ(uint64_t{65536} * 65535 + 65535, ifc::paddedRowsBytes<uint64_t>(65535, 65536, 1, 4));

    // What a record claims to hold: nothing when this ABI cannot address it.
    EXPECT_EQ(0u, ifc::heldBytes<uint32_t>(65536, 65536));
    EXPECT_EQ(4 * kGiB, ifc::heldBytes<uint64_t>(65536, 65536));
    EXPECT_EQ(0u, ifc::heldBytes<uint32_t>(-4, 4));
    EXPECT_EQ(48u, ifc::heldBytes<uint32_t>(12, 4));
}

// Records whose stride x height leaves 32 bits (headers over borrowed or
// foreign pixels can claim any size): the copies take nothing from them
// on a 32-bit ABI instead of the 16 bytes a wrapped count leaves.
TEST(HostileSizes, RecordsBeyondTheAddressSpaceHoldNothing) {
    uint8_t pixels[64] = {};
    _Image header{pixels, 0, 1 << 28, 4, 4, (1 << 30) + 4, 0, 0, nullptr};  // 2^32 + 16 bytes
    EXPECT_EQ(kSize32 ? 0 : 4 * kGiB + 16, ifc::image_capacity(&header));
    uint8_t out[32] = {};
    EXPECT_EQ(kSize32 ? 0u : 32u, ifc::copyImagePrefix(&header, sizeof out, out, sizeof out));
}

// Colour ints of a one-channel image read 4 bytes a pixel from a
// zero-padded copy; 65536 x 16384 of them are 2^32 bytes, 0 when wrapped,
// and the copy of the image's 1 GiB overran the empty buffer. Only a
// 32-bit ABI refuses: a 64-bit one copies the claimed gigabyte.
TEST(HostileSizes, ColourIntsRefuseACopyThisAbiCannotHold) {
    if (!kSize32) GTEST_SKIP() << "a 64-bit ABI reads the header's whole claimed gigabyte";
    uint8_t pixels[64] = {};
    _Image header{pixels, 0, 65536, 16384, 1, 65536, 0, 0, nullptr};
    uint8_t out[16] = {7};
    EXPECT_FALSE(ifc::writeColorInts(&header, out, true, false));
    EXPECT_EQ(7, out[0]);
}

TEST(HostileSizes, FrameChecksRefuseInTheNativesOrder) {
    struct Case {
        FrameFormat format;
        int width, height, step;
        bool data;
        int64_t length;
        FrameCheck expected;
    };
    const Case cases[] = {
        // w * h * 4 overflows 64 bits when computed as it reads.
        {FrameFormat::kNv21Rgba, INT_MAX, INT_MAX, 1, true, INT_MAX, FrameCheck::kSizeOutOfRange},
        {FrameFormat::kRgb565, 32768, 16384, 1, true, INT_MAX, FrameCheck::kSizeOutOfRange},  // 2^31 bytes out
        {FrameFormat::kRgb565, 32767, 16384, 1, true, int64_t{32767} * 16384 * 2, FrameCheck::kOk},
        {FrameFormat::kNv21Decimated, -1, 4, 0, false, 0, FrameCheck::kBadStep},  // step before anything else
        {FrameFormat::kNv21Decimated, -1, 4, 2, false, 0, FrameCheck::kSizeOutOfRange},
        {FrameFormat::kNv21Rgba, -1, 4, 1, false, 0, FrameCheck::kNullData},
        {FrameFormat::kYuv422, 4, 4, 1, true, 31, FrameCheck::kTooShort},
        {FrameFormat::kNv21Yuva, 3, 3, 1, true, 13, FrameCheck::kOk},  // 27/2 rounds down; the walk reads 15
    };
    for (const Case& c : cases) {
        ifc::FramePlan plan{};
        EXPECT_EQ(c.expected, ifc::check_frame(c.format, c.width, c.height, c.step, c.data, c.length, &plan))
            << c.width << "x" << c.height << " step " << c.step;
    }
}

// A frame the checks accept for having no pixels (INT_MAX x 0) still gets no
// image whose row size an int cannot hold.
TEST(HostileSizes, FrameImagesNeedARowAnIntCanHold) {
    EXPECT_EQ(nullptr, ifc::frame_image_for(nullptr, INT_MAX, 0));
    EXPECT_EQ(nullptr, ifc::frame_image_for(nullptr, INT_MAX / 4 + 1, 1));
    _Image* empty = ifc::frame_image_for(nullptr, 3, 0);
    ASSERT_NE(nullptr, empty);
    EXPECT_EQ(12, empty->stride);
    free_image(&empty);
}

TEST(HostileSizes, EmptyOutputsReturnAtOnce) {
    // A zero-width decimated frame of a billion rows converts to nothing.
    ifc::FramePlan plan{};
    ASSERT_EQ(FrameCheck::kOk, ifc::check_frame(FrameFormat::kNv21Decimated, 0, 1447035136, 1, true, 0, &plan));
    uint8_t out[4] = {1, 2, 3, 4};
    ifc::convert_checked_frame(plan, out, 0, out);
    EXPECT_EQ(0, std::memcmp(out, "\1\2\3\4", 4));

    // One byte behind a record a billion rows tall: no bins, no row walk.
    _Image* tall = create_image(1, 1 << 30, 0, 0);
    ASSERT_NE(nullptr, tall);
    uint32_t bins[768] = {};
    ifc::image_histogram(tall, bins, true);
    EXPECT_EQ(std::vector<uint32_t>(768, 0), std::vector<uint32_t>(bins, bins + 768));

    // No channels: no pixels to blur, however large the record says it is.
    _Image* wide = create_image(1 << 17, 1 << 17, 0, 0);
    EXPECT_EQ(nullptr, ifc::blur8_image(wide, 1, 3));
    free_image(&wide);
    free_image(&tall);
}

TEST(HostileSizes, NegativeSizedRecordsAreNeitherOverrunNorLeaked) {
    // CreateImage(-1, -2, 1): a positive pixel count over a zero-byte buffer.
    _Image* image = create_image(-1, -2, 1, -1);
    ASSERT_NE(nullptr, image);
    const uint8_t overlay[4 * 4] = {255, 255, 255, 255};
    ifc::alpha_mix_overlay(image, overlay, 2, 2, INT_MAX, INT_MIN);
    ifc::alpha_mix_overlay(image, overlay, 2, 2, INT_MIN, INT_MAX);
    // Replacing it releases its one-byte buffer (LeakSanitizer checks).
    image = ifc::frame_image_for(image, 2, 2);
    ASSERT_NE(nullptr, image);
    EXPECT_EQ(8, image->stride);
    free_image(&image);
}

// A constructed image owns `size` bytes even where its width, height and
// stride promise more (an explicit small stride, negative sizes).
TEST(HostileSizes, FiltersWriteOnlyTheBytesAnImageOwns) {
    _Image* source = create_image(4, 3, 4, -1);
    for (int i = 0; i < 48; ++i) source->data[i] = static_cast<uint8_t>(i + 1);
    _Image* shortRows = create_image(4, 3, 4, 4);  // 12 bytes for 48 bytes of pixels
    _Image* negative = create_image(-1, -3, 5, -5);  // 12 bytes for 15 bytes of pixels
    for (_Image* destination : {shortRows, negative}) {
        ASSERT_EQ(12u, destination->size);
        std::memset(destination->data, 0, 12);
        const float identity[16] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
        image_filter_matrix(source, destination, identity);
        image_filter_gray(source, destination);
        image_filter_gauss_channel(source, destination, 0);
    }
    // The matrix wrote bytes 0..2 of the three whole pixels, the gray filter
    // then the same bytes, and the smoothing nothing (its rows do not fit).
    uint8_t gray[12] = {};
    _Image header{gray, 0, 3, 1, 4, 0, 0, 0, nullptr};
    image_filter_gray(source, &header);
    EXPECT_EQ(0, std::memcmp(gray, shortRows->data, 12));
    free_image(&negative);
    free_image(&shortRows);
    free_image(&source);
}

}  // namespace
