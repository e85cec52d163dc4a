#include "engine/gl/shader_decipher.h"

#include <cstdlib>
#include <cstring>
#include <vector>

#include "engine/gl/aes128_decipher.h"
#include "jni/bridge/packed_string.h"

const uint8_t kShaderCipherKey[16] = {'s', 'h', 'a', 'd', 'e', 'r', 'f', 'i',
                                      'l', 't', 'e', 'r', '.', 'k', 'e', 'y'};

namespace {

constexpr int kBlockSize = 16;

// -1 for anything that is not an ASCII digit or letter.
int digitValue(char c) {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'a' && c <= 'z') return c - 'a' + 10;
    if (c >= 'A' && c <= 'Z') return c - 'A' + 10;
    return -1;
}

// A new malloc'd copy of `bytes` up to its first NUL (the bytes hold one).
char* copyUpToNul(const std::vector<uint8_t>& bytes) {
    const size_t length = strnlen(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    char* text = static_cast<char*>(malloc(length + 1));
    if (text == nullptr) return nullptr;
    memcpy(text, bytes.data(), length);
    text[length] = '\0';
    return text;
}

// "ios": block k is deciphered while 16 * (k + 1) < count - 1, so a payload of
// 17 bytes or less stays as it is and the last block of a payload that is a
// whole number of blocks is never deciphered. That is the format's rule.
char* decipherBlocks(const char* payload, int textLength) {
    const int count = (textLength - 3) / 2;
    // Heap, sized by the payload and zeroed: an odd payload decodes nothing.
    std::vector<uint8_t> bytes(static_cast<size_t>(count) + 1, 0);
    decodeHexText(payload, bytes.data(), count);
    const AES128Decipher cipher(kShaderCipherKey);
    for (int k = 0; kBlockSize * (k + 1) < count - 1; ++k) {
        cipher.decryptBlock(bytes.data() + kBlockSize * k);
    }
    return copyUpToNul(bytes);
}

// "aes": one block. The decoder is asked for as many bytes as there are
// payload characters and stops at the terminating NUL. The buffer holds at
// least one whole block even for a short payload.
char* decipherOneBlock(const char* payload, int textLength) {
    const int count = textLength - 3;
    const size_t size = static_cast<size_t>(count) + 1 > kBlockSize + 1 ? count + 1 : kBlockSize + 1;
    std::vector<uint8_t> bytes(size, 0);
    decodeHexText(payload, bytes.data(), count);
    const AES128Decipher cipher(kShaderCipherKey);
    cipher.decryptBlock(bytes.data());
    return copyUpToNul(bytes);
}

}  // namespace

int decodeHexText(const char* text, uint8_t* out, int count) {
    if (text == nullptr || out == nullptr) return -1;
    if (strlen(text) % 2 != 0) return -2;
    for (int i = 0; i < count; ++i) {
        const int high = digitValue(text[2 * i]);
        // The low digit is read only after a valid high one, so the text's
        // terminating NUL is never passed.
        const int low = high < 0 ? -1 : digitValue(text[2 * i + 1]);
        if (low < 0) {
            out[i] = 0;
            return -3;
        }
        out[i] = static_cast<uint8_t>(high * 16 + low);
    }
    out[count < 0 ? 0 : count] = 0;
    return 0;
}

char* decipherShaderSource(const char* text) {
    if (text == nullptr) return nullptr;
    const size_t length = strlen(text);
    if (length < 3) return nullptr;
    if (strncmp(text, "ios", 3) == 0) return decipherBlocks(text + 3, static_cast<int>(length));
    if (strncmp(text, "aes", 3) == 0) return decipherOneBlock(text + 3, static_cast<int>(length));
    if (strncmp(text, "mee", 3) == 0 || strncmp(text, "hfe", 3) == 0) {
        return decodePackedString(text);
    }
    return nullptr;
}
