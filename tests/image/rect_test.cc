#include <gtest/gtest.h>

#include <climits>

#include "image_filter/image.h"

namespace {

bool same(const MRect& a, const MRect& b) {
    return a.x == b.x && a.y == b.y && a.width == b.width && a.height == b.height;
}

#define EXPECT_RECT(actual, ...) EXPECT_TRUE(same(actual, MRect{__VA_ARGS__}))

}  // namespace

TEST(Rect, EmptyClearInflateAndRange) {
    MRect negative{0, 0, 5, -1}, flat{0, 0, 5, 0}, thin{0, 0, 0, 7};
    EXPECT_EQ(is_empty_rect(&negative), 0);  // only a zero size is empty
    EXPECT_EQ(is_empty_rect(&flat), 1);
    EXPECT_EQ(is_empty_rect(&thin), 1);
    MRect r{10, 10, 4, 4};
    inflate_rect(&r, 2, -1);
    EXPECT_RECT(r, 8, 11, 8, 2);
    clear_mrect(&r);
    EXPECT_RECT(r, 0, 0, 0, 0);

    MRect full{0, 0, 10, 10}, shifted{1, 0, 10, 10}, backwards{2, 2, -1, 3}, inner{2, 2, 8, 8};
    EXPECT_EQ(in_range(&full, 10, 10), 1);
    EXPECT_EQ(in_range(&shifted, 10, 10), -1);
    EXPECT_EQ(in_range(&backwards, 10, 10), -1);
    EXPECT_EQ(rect_contains_rect(&full, &inner), 1);
    EXPECT_EQ(rect_contains_rect(&full, &full), 1);
    EXPECT_EQ(rect_contains_rect(&full, &shifted), 0);
    MRect huge{INT_MAX, 0, 1, 1};  // the right edge wraps to INT_MIN, as in 32-bit int arithmetic
    EXPECT_EQ(rect_contains_rect(&full, &huge), 1);
}

TEST(Rect, ValidateIntersectAndUnion) {
    MRect bounds{0, 0, 10, 10}, out;
    MRect left{-3, -2, 5, 5}, wide{4, 6, 20, 20};
    validate_rect(&out, &left, &bounds);
    EXPECT_RECT(out, 0, 0, 5, 5);  // moved, not shrunk: only the far edge clips
    validate_rect(&out, &wide, &bounds);
    EXPECT_RECT(out, 4, 6, 6, 4);

    MRect b{5, 3, 10, 4}, far{20, 30, 5, 5};
    intersect(&out, &bounds, &b);
    EXPECT_RECT(out, 5, 3, 5, 4);
    intersect(&out, &bounds, &far);
    EXPECT_RECT(out, 20, 30, 0, 0);  // negative sizes clamp to zero

    MRect a{0, 0, 4, 4}, c{6, -2, 2, 2}, zero{100, 100, 0, 9};
    unionrect(&out, &a, &c);
    EXPECT_RECT(out, 0, -2, 8, 6);
    unionrect(&out, &a, &zero);  // zero-sized sides are skipped
    EXPECT_RECT(out, 0, 0, 4, 4);
    unionrect(&out, &zero, &c);
    EXPECT_RECT(out, 6, -2, 2, 2);
    MRect negative{50, 50, -1, -1};  // not empty: it takes part
    unionrect(&out, &a, &negative);
    EXPECT_RECT(out, 0, 0, 49, 49);
}

TEST(Rect, ScaleRoundsHalfUpTowardZero) {
    MRect in{1, 1, 3, 3}, out;
    EXPECT_EQ(scale_rect(&out, &in, 0.5f), &out);
    EXPECT_RECT(out, 1, 1, 2, 2);
    MRect neg{-3, -5, 7, 1};
    scale_rect_xy(&out, &neg, 0.5f, 0.3f);
    // -1.5 + 0.5 = -1; -1.5 + 0.5 = -1; 3.5 + 0.5 = 4; 0.3 + 0.5 -> 0
    EXPECT_RECT(out, -1, -1, 4, 0);
    MRect sev{-17, 0, 0, 0};
    scale_rect(&out, &sev, 0.1f);  // -1.7 + 0.5 = -1.2 -> -1
    EXPECT_EQ(out.x, -1);
}
