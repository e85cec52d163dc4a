#include "jni/bridge/packed_string.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <memory>
#include <string>

namespace {

// Decodes into the whole buffer: the length comes from the packed text, so
// embedded zero bytes survive the comparison. A refusal reads as "refused".
std::string decode(const std::string& packed, size_t length) {
    std::unique_ptr<char, decltype(&free)> out(decodePackedString(packed.c_str()), &free);
    if (!out) return "refused";
    EXPECT_EQ(out.get()[length], '\0') << packed;
    return std::string(out.get(), length);
}

struct Case {
    std::string packed;
    size_t length;
    std::string text;
};

TEST(PackedString, DecodesWordsOfBothForms) {
    const std::string longGroup(200, '7');
    const Case cases[] = {
        {"mee5x1819043176x111x", 5, "hello"},
        {"mee5x1819043176x111x222", 5, "hello"},  // after the last terminator: ignored
        {"hfe2f26990h", 2, "ki"},                 // offset form: each terminator subtracts its own amount
        {"hfe24f65c66d67b68h69i70l", 24, std::string("A\0\0\0A\0\0\0A\0\0\0A\0\0\0A\0\0\0A\0\0\0", 24)},
        // Numbers wrap like a 32-bit int.
        {"mee4x-1x", 4, std::string(4, '\xff')},
        {"hfe4f0d", 4, std::string(4, '\xff')},
        // Missing numbers leave zero bytes; the prefix alone is empty.
        {"mee6x1819043176x", 6, std::string("hell\0\0", 6)},
        {"mee3", 3, std::string(3, '\0')},
        {"mee", 0, ""},
        {"meex", 0, ""},
        // A fully used length still accepts one more number: it has no room left.
        {"mee4x1819043176x999x", 4, "hell"},
        {"hfe4f1819043181l5c", 4, "hell"},
        {"mee4x1819043176x" + longGroup, 4, "hell"},  // a long unterminated tail is ignored too
    };
    for (const Case& c : cases) EXPECT_EQ(decode(c.packed, c.length), c.text) << c.packed;
}

TEST(PackedString, BadInputIsRefusedWithoutOverrunningTheBuffer) {
    const std::string longGroup(200, '7');
    const std::string refused[] = {
        "meb5x1x", "me", "",
        "hfe2f26990h5c",                       // 2 - 4 bytes left: negative
        "mee4x1x2x3x", "hfe1f1c2c",            // a number starting past the end
        "mee-5x1x", "mee99999999999999999999x",
        "mee4x" + longGroup + "x", "mee" + longGroup + "x",  // over-long groups
    };
    for (const std::string& packed : refused) EXPECT_EQ(decode(packed, 0), "refused") << packed;
    EXPECT_EQ(decodePackedString(nullptr), nullptr);
}

}  // namespace
