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
Bytes encrypt(const uint8_t key[16], const Bytes& plain) {
    EVP_CIPHER_CTX* ctx = EVP_CIPHER_CTX_new();
    EVP_EncryptInit_ex(ctx, EVP_aes_128_ecb(), nullptr, key, nullptr);
    EVP_CIPHER_CTX_set_padding(ctx, 0);
    Bytes cipher(plain.size() + 16);
    int written = 0;
    EVP_EncryptUpdate(ctx, cipher.data(), &written, plain.data(), static_cast<int>(plain.size()));
    EVP_CIPHER_CTX_free(ctx);
    cipher.resize(written);
    return cipher;
}

// Text padded with NULs to `size` bytes.
Bytes padded(const std::string& text, size_t size) {
    Bytes bytes(size, 0);
    memcpy(bytes.data(), text.data(), text.size());
    return bytes;
}

Bytes operator+(Bytes a, const Bytes& b) {
    a.insert(a.end(), b.begin(), b.end());
    return a;
}

std::string hex(const Bytes& bytes) {
    std::string text;
    for (uint8_t b : bytes) text += "0123456789abcdef"[b >> 4], text += "0123456789abcdef"[b & 15];
    return text;
}

std::string decipher(const std::string& text) {
    std::unique_ptr<char, decltype(&free)> plain(decipherShaderSource(text.c_str()), &free);
    return plain ? std::string(plain.get()) : "<null>";
}

TEST(AES128Decipher, InvertsOpenSSLOnRandomKeysAndBlocks) {
    std::mt19937 random(20240611);
    for (int trial = 0; trial < 200; ++trial) {
        uint8_t key[16];
        Bytes plain(16);
        for (int i = 0; i < 16; ++i) key[i] = static_cast<uint8_t>(random()), plain[i] = static_cast<uint8_t>(random());
        Bytes block = encrypt(key, plain);
        AES128Decipher(key).decryptBlock(block.data());
        ASSERT_EQ(plain, block) << "trial " << trial;
    }
}

TEST(DecodeHexText, LenientDigitsAndErrorCodes) {
    Bytes out(8, 0x5a);
    // z is 35: (35 * 16 + 35) mod 256 = 83.
    EXPECT_EQ(0, decodeHexText("0aFfzz", out.data(), 3));
    EXPECT_EQ((Bytes{0x0a, 0xff, 83, 0, 0x5a}), Bytes(out.begin(), out.begin() + 5));

    out.assign(8, 0x5a);
    EXPECT_EQ(-2, decodeHexText("abc", out.data(), 1));
    EXPECT_EQ(Bytes(8, 0x5a), out) << "an odd text writes nothing";
    // A bad character, or the text's end, stops decoding and terminates.
    EXPECT_EQ(-3, decodeHexText("12 3", out.data(), 2));
    EXPECT_EQ((Bytes{0x12, 0, 0x5a}), Bytes(out.begin(), out.begin() + 3));
    EXPECT_EQ(-3, decodeHexText("4142", out.data(), 6));
    EXPECT_EQ((Bytes{0x41, 0x42, 0, 0x5a}), Bytes(out.begin(), out.begin() + 4));
    EXPECT_EQ(-1, decodeHexText(nullptr, out.data(), 1));
}

TEST(DecipherShaderSource, ManyBlockFormNeverDeciphersItsLastWholeBlock) {
    const Bytes two = encrypt(kShaderCipherKey, padded("void main(){gl_F", 16) + padded("ragColor=vec4(1.", 16));
    // The third block is stored in the clear and comes out verbatim.
    EXPECT_EQ("void main(){gl_FragColor=vec4(1.0);}", decipher("ios" + hex(two + padded("0);}", 16))));
    const std::string last = decipher("ios" + hex(two));
    EXPECT_EQ("void main(){gl_F", last.substr(0, 16));
    EXPECT_NE("ragColor=vec4(1.", last.substr(16, 16));

    // 17 bytes: 16 < 17 - 1 fails, nothing is deciphered; 18 bytes: block 0 is.
    const Bytes block = encrypt(kShaderCipherKey, padded("precision lowp f", 16));
    EXPECT_NE("precision lowp f", decipher("ios" + hex(block + Bytes{'x'})).substr(0, 16));
    EXPECT_EQ("precision lowp fxy", decipher("ios" + hex(block + Bytes{'x', 'y'})));

    // NUL padding ends the text.
    EXPECT_EQ("short", decipher("ios" + hex(encrypt(kShaderCipherKey, padded("short", 32)) + Bytes(16, 0))));
    EXPECT_EQ("", decipher("ios"));
    // Odd or broken payloads give some text and stay inside their buffers.
    free(decipherShaderSource("ios123"));
    free(decipherShaderSource("ios12345678901234567890123456789012345g"));
}

TEST(DecipherShaderSource, OneBlockFormDeciphersOnlyTheFirstBlockAndOtherPrefixes) {
    EXPECT_EQ("vec4", decipher("aes" + hex(encrypt(kShaderCipherKey, padded("vec4", 16)))));
    const Bytes two = encrypt(kShaderCipherKey, padded("0123456789abcdef", 16) + padded("ghijklmnopqrstuv", 16));
    const std::string result = decipher("aes" + hex(two));
    EXPECT_EQ("0123456789abcdef", result.substr(0, 16));
    EXPECT_NE("ghijklmnopqrstuv", result.substr(16));
    // Shorter than a block: deciphered inside a whole zeroed block.
    free(decipherShaderSource("aes00"));

    EXPECT_EQ("abc", decipher("mee3x6513249x"));
    EXPECT_EQ("hell", decipher("hfe4f1819043181l"));
    for (const char* text : {"IOS00112233", "void main(){}", "io"}) EXPECT_EQ("<null>", decipher(text)) << text;
    EXPECT_EQ(nullptr, decipherShaderSource(nullptr));
}

}  // namespace
