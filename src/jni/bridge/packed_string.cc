// Decoder of the packed text forms. "mee": length, x, then numbers each ended
// by x. "hfe": length, f, then numbers each ended by c, d, b, h, i or l, which
// subtract 0..5 from the number. Every number is four bytes of the text,
// little-endian (low byte first).
#include "jni/bridge/packed_string.h"

#include <cstdint>
#include <cstdlib>
#include <cstring>

namespace {

// Longest digit group accepted; longer groups are refused as malformed.
constexpr size_t kMaxGroup = 32;
// Longest text accepted, so that a forged length cannot ask for gigabytes.
constexpr long kMaxLength = 1L << 24;

enum class Form { kPlain, kOffset };

// The amount a terminator subtracts, or -1 when `c` ends no number.
int terminatorOffset(Form form, char c) {
    if (form == Form::kPlain) return c == 'x' ? 0 : -1;
    switch (c) {
        case 'c': return 0;
        case 'd': return 1;
        case 'b': return 2;
        case 'h': return 3;
        case 'i': return 4;
        case 'l': return 5;
        default: return -1;
    }
}

// atoi's reading (leading blanks, sign, digits up to the first other
// character); the value is then taken modulo 2^32 as atoi's int would be.
long readNumber(const char* group) { return strtol(group, nullptr, 10); }

char* emptyString() { return static_cast<char*>(calloc(1, 1)); }

}  // namespace

char* decodePackedString(const char* text) {
    if (text == nullptr || strlen(text) < 3) return nullptr;
    Form form;
    if (strncmp(text, "mee", 3) == 0) {
        form = Form::kPlain;
    } else if (strncmp(text, "hfe", 3) == 0) {
        form = Form::kOffset;
    } else {
        return nullptr;
    }
    const char* p = text + 3;
    if (*p == '\0') return emptyString();

    const char lengthEnd = form == Form::kPlain ? 'x' : 'f';
    char group[kMaxGroup + 1];
    size_t used = 0;
    for (; *p != '\0' && *p != lengthEnd; ++p) {
        if (used == kMaxGroup) return nullptr;
        group[used++] = *p;
    }
    group[used] = '\0';
    long length = readNumber(group);
    if (length < 0 || length > kMaxLength) return nullptr;

    const size_t n = static_cast<size_t>(length);
    // Bytes that no number fills are left 0.
    auto* out = static_cast<char*>(calloc(n + 1, 1));
    if (out == nullptr || *p == '\0') return out;

    size_t position = 0;
    bool overlong = false;
    used = 0;
    for (++p; *p != '\0'; ++p) {
        int offset = terminatorOffset(form, *p);
        if (offset < 0) {
            if (used == kMaxGroup) {
                overlong = true;
            } else {
                group[used++] = *p;
            }
            continue;
        }
        group[used] = '\0';
        used = 0;
        // A number that starts exactly at the end copies nothing; one that
        // starts beyond it would copy a negative count.
        if (overlong || position > n) {
            free(out);
            return nullptr;
        }
        uint32_t value = static_cast<uint32_t>(readNumber(group)) - static_cast<uint32_t>(offset);
        for (size_t i = 0; i < 4 && position + i < n; ++i) {
            out[position + i] = static_cast<char>(value >> (8 * i));
        }
        position += 4;
    }
    // Characters after the last terminator are ignored, however many.
    return out;
}
