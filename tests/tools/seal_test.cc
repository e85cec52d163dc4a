// Sealed shader texts must come back exactly through the engine's decipher.
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
    std::string text, error;
    EXPECT_TRUE(filterpack::sealShaderSource(form, plain, &text, &error)) << error;
    return text;
}

std::string deciphered(const std::string& text) {
    std::unique_ptr<char, decltype(&std::free)> plain(decipherShaderSource(text.c_str()), &std::free);
    return plain ? std::string(plain.get()) : std::string("<not recognised>");
}

std::string sampleText(size_t length) {
    std::string text;
    for (size_t i = 0; i < length; ++i) text += static_cast<char>(' ' + (i * 7) % 95);
    return text;
}

TEST(Seal, EveryFormRoundTripsThroughTheDecipherAtBlockBoundaries) {
    for (SealForm form : {SealForm::kIos, SealForm::kAes, SealForm::kMee, SealForm::kHfe}) {
        for (size_t length : {0, 1, 3, 4, 5, 14, 15, 16, 17, 18, 31, 32, 33, 34, 47, 48, 49, 301}) {
            const std::string plain = sampleText(length), text = sealed(form, plain);
            EXPECT_EQ(deciphered(text), plain) << "form " << static_cast<int>(form) << ", " << length << " bytes";
            // Two trailing NULs past the blocks: the decipher then leaves no
            // text block alone, so the round trip proves each was enciphered.
            if (form == SealForm::kIos && length > 0) {
                EXPECT_EQ(text.size(), 3 + 2 * (16 * ((length + 15) / 16) + 2)) << length;
                EXPECT_EQ(text.substr(text.size() - 4), "0000");
            }
        }
    }
}

TEST(Seal, RefusesTextNoFormCarries) {
    std::string text, error;
    for (SealForm form : {SealForm::kIos, SealForm::kAes, SealForm::kMee, SealForm::kHfe}) {
        EXPECT_FALSE(filterpack::sealShaderSource(form, std::string("void\0main", 9), &text, &error));
        EXPECT_NE(error.find("offset 4"), std::string::npos) << error;
        EXPECT_FALSE(filterpack::sealShaderSource(form, "// caf\xc3\xa9\n", &text, &error));
    }
}

TEST(SealCommand, PrintsTheSealedTextAndRejectsUnknownForms) {
    const std::string shader = std::string(SAMPLE_BUNDLE) + "/shaders/mono.frag";
    const tooltest::CommandResult ok = tooltest::runFilterpack("seal hfe " + shader);
    ASSERT_EQ(ok.status, 0) << ok.output;
    std::ifstream file(shader);
    EXPECT_EQ(deciphered(ok.output.substr(0, ok.output.find('\n'))),
              std::string(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()));
    EXPECT_EQ(tooltest::runFilterpack("seal rot13 " + shader).status, 2);
    EXPECT_EQ(tooltest::runFilterpack("seal ios /nonexistent/shader.frag").status, 1);
}

}  // namespace
