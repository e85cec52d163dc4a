#include "engine/shared_ptr.h"

#include <gtest/gtest.h>

// GCC 12 cannot see that the handles below share one count of 3 and warns of
// a use after free in the inlined releases; ASan runs these tests for real.
#if defined(__GNUC__) && !defined(__clang__) && __GNUC__ >= 12
#pragma GCC diagnostic ignored "-Wuse-after-free"
#endif

namespace {

struct Base {
    virtual ~Base() { ++destroyed; }
    static int destroyed;
};
int Base::destroyed = 0;

struct Derived : Base {
    int value = 42;
};

class SharedPtrTest : public ::testing::Test {
protected:
    void SetUp() override { Base::destroyed = 0; }
};

TEST_F(SharedPtrTest, EmptyHandlesAllocateNothing) {
    shared_ptr<Base> empty;
    shared_ptr<Base> copy(empty);
    shared_ptr<Base> fromNull(static_cast<Base*>(nullptr));
    EXPECT_EQ(nullptr, copy.count);
    EXPECT_EQ(nullptr, fromNull.count);
    copy.release();
    EXPECT_EQ(nullptr, copy.ptr);
    EXPECT_EQ(0, Base::destroyed);
}

TEST_F(SharedPtrTest, LastReleaseDestroysObjectAndCount) {
    Base* object = new Base();
    shared_ptr<Base> first(object);
    ASSERT_NE(nullptr, first.count);
    EXPECT_EQ(1, *first.count);
    {
        shared_ptr<Base> second(first);
        shared_ptr<Base> third;
        third = second;
        EXPECT_EQ(3, *first.count);
        EXPECT_EQ(first.count, third.count);
        EXPECT_EQ(object, third.ptr);
    }
    EXPECT_EQ(1, *first.count);
    EXPECT_EQ(0, Base::destroyed);
    first.release();
    EXPECT_EQ(1, Base::destroyed);
    EXPECT_EQ(nullptr, first.ptr);
    EXPECT_EQ(nullptr, first.count);
}

TEST_F(SharedPtrTest, AssignmentReleasesTheOldValueAndSurvivesSelfAssignment) {
    shared_ptr<Base> a(new Base());
    shared_ptr<Base> b(new Base());
    a = b;
    EXPECT_EQ(1, Base::destroyed);
    EXPECT_EQ(2, *b.count);
    a = a;
    EXPECT_EQ(2, *b.count);
    a = shared_ptr<Base>();
    EXPECT_EQ(1, *b.count);
    EXPECT_EQ(1, Base::destroyed);
}

TEST_F(SharedPtrTest, ConversionsShareOneCount) {
    shared_ptr<Derived> derived(new Derived());
    shared_ptr<Base> base = derived;
    EXPECT_EQ(derived.count, base.count);
    EXPECT_EQ(2, *base.count);

    shared_ptr<Derived> back(base);
    EXPECT_EQ(42, back->value);
    EXPECT_EQ(3, *back.count);

    derived.release();
    base.release();
    EXPECT_EQ(0, Base::destroyed);
    back.release();
    EXPECT_EQ(1, Base::destroyed);
}

TEST_F(SharedPtrTest, MoveLeavesTheSourceEmpty) {
    shared_ptr<Base> a(new Base());
    shared_ptr<Base> b(std::move(a));
    EXPECT_EQ(nullptr, a.count);
    EXPECT_EQ(1, *b.count);
}

}  // namespace
