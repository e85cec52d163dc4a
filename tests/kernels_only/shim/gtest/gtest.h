// A small stand-in for the part of GoogleTest the pixel tests use, for cross
// builds where no GoogleTest is packaged: TEST_F, EXPECT_* / ASSERT_* with
// streamed context, and a runner (kernels_main.cc).
#ifndef IFC_TESTS_KERNELS_ONLY_GTEST_SHIM_H
#define IFC_TESTS_KERNELS_ONLY_GTEST_SHIM_H

#include <cstdio>
#include <sstream>
#include <string>
#include <vector>

namespace testing {

class Test {
public:
    virtual ~Test() = default;
    virtual void SetUp() {}
    virtual void TearDown() {}
    virtual void TestBody() = 0;
};

namespace internal {

struct TestEntry {
    const char* suite;
    const char* name;
    Test* (*make)();
};

inline std::vector<TestEntry>& registry() {
    static std::vector<TestEntry> tests;
    return tests;
}

inline int& current_failures() {
    static int failures = 0;
    return failures;
}

inline bool add_test(const char* suite, const char* name, Test* (*make)()) {
    registry().push_back({suite, name, make});
    return true;
}

class Message {
public:
    template <typename T>
    Message& operator<<(const T& value) {
        text_ << value;
        return *this;
    }
    std::string str() const { return text_.str(); }

private:
    std::ostringstream text_;
};

// `Failure(...) = Message() << context` reports one failed check.
class Failure {
public:
    Failure(const char* file, int line, const char* check) : file_(file), line_(line), check_(check) {}
    void operator=(const Message& message) const {
        ++current_failures();
        std::printf("%s:%d: failed: %s %s\n", file_, line_, check_, message.str().c_str());
    }

private:
    const char* file_;
    int line_;
    const char* check_;
};

template <typename A, typename B>
bool equal(const A& a, const B& b) {
    return a == b;
}

}  // namespace internal
}  // namespace testing

#define IFC_CHECK_(condition, text, on_failure) \
    if (condition)                              \
        ;                                       \
    else                                        \
        on_failure ::testing::internal::Failure(__FILE__, __LINE__, text) = ::testing::internal::Message()

#define EXPECT_TRUE(c) IFC_CHECK_((c), #c, )
#define ASSERT_TRUE(c) IFC_CHECK_((c), #c, return)
#define EXPECT_EQ(a, b) IFC_CHECK_(::testing::internal::equal((a), (b)), #a " == " #b, )
#define ASSERT_EQ(a, b) IFC_CHECK_(::testing::internal::equal((a), (b)), #a " == " #b, return)

#define TEST_F(fixture, name)                                                                          \
    class fixture##_##name##_Test : public fixture {                                                   \
    public:                                                                                            \
        void TestBody() override;                                                                      \
    };                                                                                                 \
    static const bool fixture##_##name##_added = ::testing::internal::add_test(                        \
        #fixture, #name, []() -> ::testing::Test* { return new fixture##_##name##_Test; });           \
    void fixture##_##name##_Test::TestBody()

#endif  // IFC_TESTS_KERNELS_ONLY_GTEST_SHIM_H
