#include <gtest/gtest.h>
#include <openssl/evp.h>

#include <cstdlib>
#include <cstring>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "engine/gl/aes128_decipher.h"
#include "engine/gl/shader_decipher.h"

namespace {

using Bytes = std::vector<uint8_t>;

// Reference: OpenSSL's AES-128-ECB without padding.
Bytes opensslEncrypt(const uint8_t key[16], const Bytes& plain) {
    std::unique_ptr<EVP_CIPHER_CTX, decltype(&EVP_CIPHER_CTX_free)> ctx(EVP_CIPHER_CTX_new(),
                                                                        EVP_CIPHER_CTX_free);
    EXPECT_EQ(1, EVP_EncryptInit_ex(ctx.get(), EVP_aes_128_ecb(), nullptr, key, nullptr));
    EVP_CIPHER_CTX_set_padding(ctx.get(), 0);
    Bytes cipher(plain.size() + 16);
    int written = 0;
    EXPECT_EQ(1, EVP_EncryptUpdate(ctx.get(), cipher.data(), &written, plain.data(),
                                   static_cast<int>(plain.size())));
    cipher.resize(written);
    return cipher;
}

std::string hex(const Bytes& bytes) {
    static const char kDigits[] = "0123456789abcdef";
    std::string text;
    for (uint8_t b : bytes) {
        text += kDigits[b >> 4];
        text += kDigits[b & 15];
    }
    return text;
}

Bytes bytesOf(const std::string& text, size_t size) {
    Bytes bytes(size, 0);
    memcpy(bytes.data(), text.data(), text.size());
    return bytes;
}

Bytes concat(Bytes a, const Bytes& b) {
    a.insert(a.end(), b.begin(), b.end());
    return a;
}

// The deciphered text, or "<null>".
std::string decipher(const std::string& text) {
    char* plain = decipherShaderSource(text.c_str());
    if (plain == nullptr) return "<null>";
    std::string result(plain);
    free(plain);
    return result;
}

TEST(AES128Decipher, MatchesOpenSSLOnRandomKeysAndBlocks) {
    std::mt19937 random(20240611);
    for (int trial = 0; trial < 200; ++trial) {
        uint8_t key[16];
        for (uint8_t& b : key) b = static_cast<uint8_t>(random());
        Bytes plain(16);
        for (uint8_t& b : plain) b = static_cast<uint8_t>(random());
        Bytes block = opensslEncrypt(key, plain);
        ASSERT_EQ(16u, block.size());
        AES128Decipher(key).decryptBlock(block.data());
        ASSERT_EQ(plain, block) << "trial " << trial;
    }
}

TEST(AES128Decipher, Fips197AppendixCVector) {
    const uint8_t key[16] = {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15};
    uint8_t block[16] = {0x69, 0xc4, 0xe0, 0xd8, 0x6a, 0x7b, 0x04, 0x30,
                         0xd8, 0xcd, 0xb7, 0x80, 0x70, 0xb4, 0xc5, 0x5a};
    AES128Decipher(key).decryptBlock(block);
    const uint8_t plain[16] = {0x00, 0x11, 0x22, 0x33, 0x44, 0x55, 0x66, 0x77,
                               0x88, 0x99, 0xaa, 0xbb, 0xcc, 0xdd, 0xee, 0xff};
    EXPECT_EQ(0, memcmp(plain, block, 16));
}

TEST(DecodeHexText, LenientDigitsAndErrorCodes) {
    uint8_t out[8];
    EXPECT_EQ(0, decodeHexText("0aFf", out, 2));
    EXPECT_EQ(0x0a, out[0]);
    EXPECT_EQ(0xff, out[1]);
    EXPECT_EQ(0, out[2]);

    // Letters past f are digits 16..35; only the low byte is kept.
    EXPECT_EQ(0, decodeHexText("zzGg", out, 2));
    EXPECT_EQ(83, out[0]);  // (35 * 16 + 35) mod 256
    EXPECT_EQ((16 * 16 + 16) & 0xff, out[1]);

    memset(out, 0x5a, sizeof out);
    EXPECT_EQ(-2, decodeHexText("abc", out, 1));
    EXPECT_EQ(0x5a, out[0]) << "an odd text writes nothing";

    EXPECT_EQ(-3, decodeHexText("12 3", out, 2));
    EXPECT_EQ(0x12, out[0]);
    EXPECT_EQ(0, out[1]);

    // Asking for more bytes than the text holds stops at its NUL.
    memset(out, 0x5a, sizeof out);
    EXPECT_EQ(-3, decodeHexText("4142", out, 6));
    EXPECT_EQ(0x41, out[0]);
    EXPECT_EQ(0x42, out[1]);
    EXPECT_EQ(0, out[2]);
    EXPECT_EQ(0x5a, out[3]);

    EXPECT_EQ(-1, decodeHexText(nullptr, out, 1));
    EXPECT_EQ(-1, decodeHexText("00", nullptr, 1));
}

TEST(DecipherShaderSource, ManyBlockFormLeavesTheLastWholeBlockAlone) {
    const std::string first = "void main(){gl_F";
    const std::string second = "ragColor=vec4(1.";
    const Bytes enciphered =
        opensslEncrypt(kShaderCipherKey, concat(bytesOf(first, 16), bytesOf(second, 16)));
    // A third block that is not enciphered at all comes out verbatim.
    const std::string tail = "0);}";
    const std::string text = "ios" + hex(concat(enciphered, bytesOf(tail, 16)));
    EXPECT_EQ(first + second + tail, decipher(text));

    // With only two blocks the second one is the last and stays enciphered.
    const std::string two = decipher("ios" + hex(enciphered));
    ASSERT_GE(two.size(), 16u);
    EXPECT_EQ(first, two.substr(0, 16));
    EXPECT_NE(second, two.substr(16, 16));
}

TEST(DecipherShaderSource, ManyBlockFormBoundaryAtSeventeenAndEighteenBytes) {
    const Bytes block = opensslEncrypt(kShaderCipherKey, bytesOf("precision lowp f", 16));
    // 17 payload bytes: 16 < 17 - 1 is false, nothing is deciphered.
    Bytes seventeen = concat(block, Bytes{'x'});
    const std::string raw = decipher("ios" + hex(seventeen));
    EXPECT_EQ(std::string(reinterpret_cast<const char*>(block.data()), raw.size()).substr(0, 16),
              raw.substr(0, 16));
    // 18 payload bytes: the first block is deciphered.
    EXPECT_EQ("precision lowp fxy", decipher("ios" + hex(concat(block, Bytes{'x', 'y'}))));
}

TEST(DecipherShaderSource, ManyBlockFormEndsAtTheFirstNulAndSurvivesBadHex) {
    const Bytes plain = concat(bytesOf("short", 16), bytesOf("", 16));
    const Bytes enciphered = opensslEncrypt(kShaderCipherKey, plain);
    EXPECT_EQ("short", decipher("ios" + hex(concat(enciphered, Bytes(16, 0)))));

    // Odd and truncated payloads give some text, never a read past the buffer.
    free(decipherShaderSource("ios123"));
    free(decipherShaderSource("ios12345678901234567890123456789012345g"));
    EXPECT_EQ("", decipher("ios"));
}

TEST(DecipherShaderSource, OneBlockForm) {
    const std::string plain = "uniform float a;";
    const std::string text = "aes" + hex(opensslEncrypt(kShaderCipherKey, bytesOf(plain, 16)));
    EXPECT_EQ(plain, decipher(text));
    EXPECT_EQ("vec4", decipher("aes" + hex(opensslEncrypt(kShaderCipherKey, bytesOf("vec4", 16)))));

    // Only the first block of a longer payload is deciphered.
    const Bytes two = opensslEncrypt(kShaderCipherKey, concat(bytesOf("0123456789abcdef", 16),
                                                              bytesOf("ghijklmnopqrstuv", 16)));
    const std::string result = decipher("aes" + hex(two));
    EXPECT_EQ("0123456789abcdef", result.substr(0, 16));

    // A payload shorter than a block is deciphered inside a whole block.
    free(decipherShaderSource("aes00"));
    free(decipherShaderSource("aes"));
}

TEST(DecipherShaderSource, PackedIntegerForms) {
    EXPECT_EQ("", decipher("mee"));
    EXPECT_EQ("abc", decipher("mee3x6513249x"));
    EXPECT_EQ("hello", decipher("mee5x1819043176x111x"));
    EXPECT_EQ("hell", decipher("hfe4f1819043181l"));
    EXPECT_EQ("ki", decipher("hfe2f26990h"));
}

TEST(DecipherShaderSource, UnknownPrefixesAreNotDeciphered) {
    EXPECT_EQ("<null>", decipher("IOS00112233"));
    EXPECT_EQ("<null>", decipher("Aes00"));
    EXPECT_EQ("<null>", decipher("void main(){}"));
    EXPECT_EQ("<null>", decipher("io"));
    EXPECT_EQ(nullptr, decipherShaderSource(nullptr));
}

}  // namespace
