#include "jni/packed_string.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <memory>
#include <string>

namespace {

struct Decoded {
    bool ok;
    std::string text;
};

// Decodes and keeps the whole buffer: the length comes from the packed text,
// so embedded zero bytes survive the comparison.
Decoded decode(const char* packed, size_t expectedLength) {
    std::unique_ptr<char, decltype(&free)> out(decodePackedString(packed), &free);
    if (!out) return {false, {}};
    EXPECT_EQ(out.get()[expectedLength], '\0') << packed;
    return {true, std::string(out.get(), expectedLength)};
}

bool refused(const char* packed) {
    std::unique_ptr<char, decltype(&free)> out(decodePackedString(packed), &free);
    return !out;
}

TEST(PackedString, PlainFormWords) {
    EXPECT_EQ(decode("mee5x1819043176x111x", 5).text, "hello");
    EXPECT_EQ(decode("mee3x6513249x", 3).text, "abc");
    // Characters after the last terminator are ignored.
    EXPECT_EQ(decode("mee5x1819043176x111x222", 5).text, "hello");
}

TEST(PackedString, OffsetFormSubtractsPerTerminator) {
    EXPECT_EQ(decode("hfe2f26990h", 2).text, "ki");
    EXPECT_EQ(decode("hfe4f1819043181l", 4).text, "hell");
    // c d b h i l subtract 0..5: each decodes 'A' (65).
    EXPECT_EQ(decode("hfe24f65c66d67b68h69i70l", 24).text,
              std::string("A\0\0\0A\0\0\0A\0\0\0A\0\0\0A\0\0\0A\0\0\0", 24));
}

TEST(PackedString, NumbersWrapLikeA32BitInt) {
    // -1 and 4294967295 are the same four 0xFF bytes; "0c" minus 0.
    EXPECT_EQ(decode("mee4x-1x", 4).text, std::string(4, '\xff'));
    EXPECT_EQ(decode("mee4x4294967295x", 4).text, std::string(4, '\xff'));
    EXPECT_EQ(decode("hfe4f0d", 4).text, std::string(4, '\xff'));
}

TEST(PackedString, MissingNumbersLeaveZeroBytes) {
    Decoded d = decode("mee6x1819043176x", 6);
    ASSERT_TRUE(d.ok);
    EXPECT_EQ(d.text, std::string("hell\0\0", 6));
    EXPECT_EQ(decode("mee3", 3).text, std::string(3, '\0'));
    EXPECT_EQ(decode("mee3x", 3).text, std::string(3, '\0'));
}

TEST(PackedString, PrefixAloneIsEmpty) {
    Decoded d = decode("mee", 0);
    EXPECT_TRUE(d.ok);
    EXPECT_EQ(d.text, "");
    EXPECT_TRUE(decode("hfe", 0).ok);
    EXPECT_TRUE(decode("meex", 0).ok);
}

TEST(PackedString, WrongPrefixOrTooShortIsRefused) {
    EXPECT_TRUE(refused("meb5x1x"));
    EXPECT_TRUE(refused("me"));
    EXPECT_TRUE(refused(""));
    EXPECT_TRUE(refused("ios5x1x"));
    EXPECT_TRUE(refused(nullptr));
}

TEST(PackedString, NumberStartingAtTheEndCopiesNothing) {
    // A fully used length still accepts one more number: it has no room left.
    EXPECT_EQ(decode("mee4x1819043176x999x", 4).text, "hell");
    EXPECT_EQ(decode("mee0x1x", 0).text, "");
    EXPECT_EQ(decode("hfe4f1819043181l5c", 4).text, "hell");
    EXPECT_TRUE(refused("hfe2f26990h5c"));  // 2 - 4 bytes left: negative
}

TEST(PackedString, MalformedTextNeverOverrunsTheBuffer) {
    // A number starting past the end.
    EXPECT_TRUE(refused("mee4x1x2x3x"));
    EXPECT_TRUE(refused("hfe1f1c2c"));
    // Negative, huge and overflowing lengths.
    EXPECT_TRUE(refused("mee-5x1x"));
    EXPECT_TRUE(refused("mee2147483647x"));
    EXPECT_TRUE(refused("mee99999999999999999999x"));
    // Over-long groups, as a number or as the length.
    const std::string longGroup(200, '7');
    EXPECT_TRUE(refused(("mee4x" + longGroup + "x").c_str()));
    EXPECT_TRUE(refused(("mee" + longGroup + "x").c_str()));
    // ...but a long unterminated tail is ignored like any other.
    EXPECT_EQ(decode(("mee4x1819043176x" + longGroup).c_str(), 4).text, "hell");
}

}  // namespace
