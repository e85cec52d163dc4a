// Packed strings: any text either is refused or decodes to exactly the
// length its header names, and a decoded result packs back to itself.
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>

#include "jni/bridge/packed_string.h"

namespace {

using Text = std::unique_ptr<char, decltype(&free)>;

// Longer results are only read: packing megabytes back costs too much time.
constexpr size_t kMaxRoundTrip = 4096;

// The header's length, read as the decoder reads it (digits up to the form's
// separator).
long headerLength(const std::string& text) {
    const char separator = text.compare(0, 3, "mee") == 0 ? 'x' : 'f';
    return strtol(text.substr(3, text.find(separator, 3) - 3).c_str(), nullptr, 10);
}

// The plain form of `bytes`: four bytes per little-endian number.
std::string pack(const std::string& bytes) {
    std::string text = "mee" + std::to_string(bytes.size()) + "x";
    for (size_t i = 0; i < bytes.size(); i += 4) {
        uint32_t value = 0;
        for (size_t k = 0; k < 4 && i + k < bytes.size(); ++k) {
            value |= static_cast<uint32_t>(static_cast<unsigned char>(bytes[i + k])) << (8 * k);
        }
        text += std::to_string(static_cast<int32_t>(value)) + "x";
    }
    return text;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), strnlen(reinterpret_cast<const char*>(data), size));
    Text decoded(decodePackedString(text.c_str()), &free);
    if (!decoded) return 0;
    if (text.size() == 3) {
        if (decoded.get()[0] != '\0') abort();
        return 0;
    }
    const long length = headerLength(text);
    if (length < 0 || decoded.get()[length] != '\0') abort();
    // Every byte up to the header's length is readable (ASan checks the
    // terminator above); shorter results also pack back to themselves.
    if (static_cast<size_t>(length) > kMaxRoundTrip) return 0;
    const std::string bytes(decoded.get(), static_cast<size_t>(length));
    Text again(decodePackedString(pack(bytes).c_str()), &free);
    if (!again || std::memcmp(again.get(), bytes.data(), bytes.size()) != 0) abort();
    return 0;
}
