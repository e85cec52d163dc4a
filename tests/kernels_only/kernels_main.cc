// Runner of the cross-built kernel tests: every registered test, then one
// closing line "N passed, M failed" that scripts/test-arm reads.
#include <cstdio>
#include <memory>

#include <gtest/gtest.h>

int main() {
    int passed = 0, failed = 0;
    for (const auto& entry : ::testing::internal::registry()) {
        ::testing::internal::current_failures() = 0;
        std::unique_ptr<::testing::Test> test(entry.make());
        test->SetUp();
        test->TestBody();
        test->TearDown();
        const bool ok = ::testing::internal::current_failures() == 0;
        std::printf("[%s] %s.%s\n", ok ? "  OK  " : "FAILED", entry.suite, entry.name);
        ++(ok ? passed : failed);
    }
    std::printf("%d passed, %d failed\n", passed, failed);
    return failed == 0 ? 0 : 1;
}
