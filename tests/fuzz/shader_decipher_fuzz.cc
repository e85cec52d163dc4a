// Shader decipher: the input under each of the four prefixes, every prefix
// of the input as a text of its own, and the hex decoder against a plain
// reference.
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "engine/gl/shader_decipher.h"

namespace {

// Longest start of the input cut at every prefix: each cut may decipher or
// allocate as much as its whole text says, so the cuts cost n^2.
constexpr size_t kMaxCut = 64;

void decipher(const std::string& text) {
    char* plain = decipherShaderSource(text.c_str());
    if (plain != nullptr) (void)strlen(plain);
    free(plain);
}

int digit(char c) {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'a' && c <= 'z') return c - 'a' + 10;
    if (c >= 'A' && c <= 'Z') return c - 'A' + 10;
    return -1;
}

// decodeHexText's result and bytes, from its documented rules.
void checkHex(const std::string& text, int count) {
    std::vector<uint8_t> out(static_cast<size_t>(count < 0 ? 0 : count) + 1, 0xee);
    const int result = decodeHexText(text.c_str(), out.data(), count);
    if (text.size() % 2 != 0) {
        if (result != -2) abort();
        return;
    }
    for (int i = 0; i < count; ++i) {
        const size_t at = 2 * static_cast<size_t>(i);
        const int high = at < text.size() ? digit(text[at]) : -1;
        const int low = high < 0 ? -1 : digit(text[at + 1]);
        if (low < 0) {
            if (result != -3 || out[i] != 0) abort();
            return;
        }
        if (out[i] != static_cast<uint8_t>(high * 16 + low)) abort();  // "zz" wraps
    }
    if (result != 0 || out[count < 0 ? 0 : count] != 0) abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size == 0) return 0;
    // Byte 0 picks the hex count; the rest is the text.
    const int count = static_cast<int>(data[0]) - 8;
    const std::string text(reinterpret_cast<const char*>(data + 1),
                           strnlen(reinterpret_cast<const char*>(data + 1), size - 1));
    decipher(text);
    for (const char* prefix : {"ios", "aes", "mee", "hfe"}) decipher(prefix + text);
    for (size_t cut = 0; cut < text.size() && cut < kMaxCut; ++cut) decipher(text.substr(0, cut));
    checkHex(text, count);
    checkHex(text.size() > 3 ? text.substr(3) : text, static_cast<int>(text.size() / 2));
    return 0;
}
