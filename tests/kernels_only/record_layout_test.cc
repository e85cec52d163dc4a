// The image record's layout: nine 32-bit words on a 32-bit ABI, the same
// order with full-width pointers elsewhere.
#include <gtest/gtest.h>

#include <cstddef>

#include "image_filter/image.h"

namespace {
class RecordLayoutTest : public ::testing::Test {};
}  // namespace

TEST_F(RecordLayoutTest, FieldsFollowTheDataPointerInOrder) {
    const size_t p = sizeof(void*);
    EXPECT_EQ(size_t{0}, offsetof(_Image, data));
    EXPECT_EQ(p, offsetof(_Image, size));
    EXPECT_EQ(p + 4, offsetof(_Image, width));
    EXPECT_EQ(p + 8, offsetof(_Image, height));
    EXPECT_EQ(p + 12, offsetof(_Image, channels));
    EXPECT_EQ(p + 16, offsetof(_Image, stride));
    EXPECT_EQ(p + 20, offsetof(_Image, layout));
    EXPECT_EQ(p + 24, offsetof(_Image, reserved));
    EXPECT_EQ((p + 28 + p - 1) / p * p, offsetof(_Image, markers));
    if (p == 4) {
        EXPECT_EQ(size_t{36}, sizeof(_Image));
        EXPECT_EQ(size_t{16}, sizeof(_ImageMarker));
    }
    EXPECT_EQ(size_t{16}, sizeof(MRect));
}
