// Sealed shader texts must come back exactly through the engine's decipher,
// with every text byte under the cipher where the form allows it.
#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <iterator>
#include <memory>
#include <string>

#include "engine/gl/shader_decipher.h"
#include "seal.h"
#include "tools/tool_test_support.h"

namespace {

using filterpack::SealForm;

std::string sealed(SealForm form, const std::string& plain) {
    std::string text;
    std::string error;
    EXPECT_TRUE(filterpack::sealShaderSource(form, plain, &text, &error)) << error;
    return text;
}

std::string deciphered(const std::string& text) {
    std::unique_ptr<char, decltype(&std::free)> plain(decipherShaderSource(text.c_str()), &std::free);
    return plain ? std::string(plain.get()) : std::string("<not recognised>");
}

std::string hexOf(const std::string& bytes) {
    static const char kDigits[] = "0123456789abcdef";
    std::string hex;
    for (unsigned char c : bytes) {
        hex += kDigits[c >> 4];
        hex += kDigits[c & 15];
    }
    return hex;
}

std::string sampleText(size_t length) {
    std::string text;
    for (size_t i = 0; i < length; ++i) text += static_cast<char>(' ' + (i * 7) % 95);
    return text;
}

TEST(Seal, EveryFormRoundTripsThroughTheDecipherAtBlockBoundaries) {
    for (SealForm form : {SealForm::kIos, SealForm::kAes, SealForm::kMee, SealForm::kHfe}) {
        for (size_t length : {0, 1, 3, 4, 5, 14, 15, 16, 17, 18, 31, 32, 33, 34, 47, 48, 49, 301}) {
            const std::string plain = sampleText(length);
            EXPECT_EQ(deciphered(sealed(form, plain)), plain)
                << "form " << static_cast<int>(form) << ", " << length << " bytes";
        }
    }
}

TEST(Seal, RealShaderRoundTripsInEveryForm) {
    std::ifstream file(std::string(SAMPLE_BUNDLE) + "/shaders/fade_curve.frag");
    const std::string shader((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
    ASSERT_GT(shader.size(), 100u);
    for (SealForm form : {SealForm::kIos, SealForm::kAes, SealForm::kMee, SealForm::kHfe}) {
        EXPECT_EQ(deciphered(sealed(form, shader)), shader);
    }
}

// The decipher leaves a block alone unless 16 * (k + 1) < count - 1: two
// trailing NUL bytes put every text block, the last included, under the cipher.
TEST(Seal, IosEnciphersEveryTextBlockAndEndsWithTwoPlainNuls) {
    for (size_t length : {16, 32, 40}) {
        const std::string plain = sampleText(length);
        const std::string text = sealed(SealForm::kIos, plain);
        const size_t blocks = (length + 15) / 16;
        ASSERT_EQ(text.size(), 3 + 2 * (16 * blocks + 2)) << length;
        EXPECT_EQ(text.substr(text.size() - 4), "0000");
        for (size_t k = 0; k < blocks; ++k) {
            std::string block = plain.substr(16 * k, 16);
            block.resize(16, '\0');
            EXPECT_NE(text.substr(3 + 32 * k, 32), hexOf(block)) << "block " << k << " of " << length;
        }
    }
}

TEST(Seal, AesEnciphersTheFirstBlockAndCarriesTheRestAsPlainHex) {
    const std::string plain = sampleText(40);
    const std::string text = sealed(SealForm::kAes, plain);
    ASSERT_EQ(text.size(), 3 + 80u);
    EXPECT_NE(text.substr(3, 32), hexOf(plain.substr(0, 16)));
    EXPECT_EQ(text.substr(35), hexOf(plain.substr(16)));
    EXPECT_EQ(filterpack::aesPlainTail(plain), 24u);
    // A short text is NUL padded to one whole block.
    EXPECT_EQ(sealed(SealForm::kAes, "abc").size(), 3 + 32u);
}

TEST(Seal, PackedFormsWriteLittleEndianWordsWithTheirTerminators) {
    EXPECT_EQ(sealed(SealForm::kMee, "abc"), "mee3x6513249x");
    EXPECT_EQ(sealed(SealForm::kMee, ""), "mee0x");
    // "hfe" raises each number by the offset its letter takes off again.
    const std::string text = sealed(SealForm::kHfe, "abcdabcdabcdabcdabcdabcd");
    EXPECT_EQ(text.rfind("hfe24f", 0), 0u);
    EXPECT_NE(text.find_first_of("dbhil", 6), std::string::npos) << text;
    EXPECT_EQ(deciphered(text), "abcdabcdabcdabcdabcdabcd");
}

TEST(Seal, RefusesTextNoFormCarries) {
    std::string text;
    std::string error;
    for (SealForm form : {SealForm::kIos, SealForm::kAes, SealForm::kMee, SealForm::kHfe}) {
        EXPECT_FALSE(filterpack::sealShaderSource(form, std::string("void\0main", 9), &text, &error));
        EXPECT_NE(error.find("offset 4"), std::string::npos) << error;
        EXPECT_FALSE(filterpack::sealShaderSource(form, "// caf\xc3\xa9\n", &text, &error));
    }
    SealForm form;
    EXPECT_FALSE(filterpack::parseSealForm("IOS", &form));
    EXPECT_FALSE(filterpack::parseSealForm("plain", &form));
}

TEST(SealCommand, PrintsTheSealedTextAndRejectsUnknownForms) {
    const std::string shader = std::string(SAMPLE_BUNDLE) + "/shaders/mono.frag";
    const tooltest::CommandResult ok = tooltest::runFilterpack("seal hfe " + shader);
    ASSERT_EQ(ok.status, 0) << ok.output;
    std::ifstream file(shader);
    const std::string plain((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
    EXPECT_EQ(deciphered(ok.output.substr(0, ok.output.find('\n'))), plain);

    EXPECT_EQ(tooltest::runFilterpack("seal rot13 " + shader).status, 2);
    EXPECT_EQ(tooltest::runFilterpack("seal ios /nonexistent/shader.frag").status, 1);
}

}  // namespace
