#include "seal.h"

#include <openssl/evp.h>

#include <cstdint>
#include <cstdio>
#include <memory>
#include <vector>

#include "engine/gl/shader_decipher.h"

namespace filterpack {
namespace {

constexpr size_t kBlock = 16;

using Bytes = std::vector<uint8_t>;

struct CipherContextFree {
    void operator()(EVP_CIPHER_CTX* context) const { EVP_CIPHER_CTX_free(context); }
};

// AES-128 ECB with the engine's key, forward direction, on whole blocks.
class BlockCipher {
public:
    BlockCipher() : context(EVP_CIPHER_CTX_new()) {
        ok = context && EVP_EncryptInit_ex(context.get(), EVP_aes_128_ecb(), nullptr, kShaderCipherKey, nullptr) == 1 &&
             EVP_CIPHER_CTX_set_padding(context.get(), 0) == 1;
    }
    bool encipher(uint8_t* block) const {
        int written = 0;
        return ok && EVP_EncryptUpdate(context.get(), block, &written, block, kBlock) == 1 && written == kBlock;
    }

private:
    std::unique_ptr<EVP_CIPHER_CTX, CipherContextFree> context;
    bool ok = false;
};

std::string hexText(const Bytes& bytes) {
    static const char kDigits[] = "0123456789abcdef";
    std::string text;
    text.reserve(bytes.size() * 2);
    for (uint8_t b : bytes) {
        text += kDigits[b >> 4];
        text += kDigits[b & 15];
    }
    return text;
}

bool sealIos(const std::string& plain, std::string* sealed, std::string* error) {
    // The decipher works on blocks k with 16 * (k + 1) < count - 1, so two
    // NUL bytes after the last text block put every text block under the
    // cipher; the trailing pair stays as it is and ends the text.
    const size_t blocks = (plain.size() + kBlock - 1) / kBlock;
    Bytes bytes(blocks * kBlock + 2, 0);
    std::copy(plain.begin(), plain.end(), bytes.begin());
    const BlockCipher cipher;
    const size_t count = bytes.size();
    for (size_t k = 0; kBlock * (k + 1) < count - 1; ++k) {
        if (!cipher.encipher(bytes.data() + kBlock * k)) {
            *error = "AES cipher unavailable";
            return false;
        }
    }
    *sealed = "ios" + hexText(bytes);
    return true;
}

bool sealAes(const std::string& plain, std::string* sealed, std::string* error) {
    // One block is enciphered; a shorter text is NUL padded to fill it.
    Bytes bytes(plain.begin(), plain.end());
    if (bytes.size() < kBlock) bytes.resize(kBlock, 0);
    if (!BlockCipher().encipher(bytes.data())) {
        *error = "AES cipher unavailable";
        return false;
    }
    *sealed = "aes" + hexText(bytes);
    return true;
}

uint32_t littleEndianWord(const std::string& plain, size_t at) {
    uint32_t value = 0;
    for (size_t i = 0; i < 4 && at + i < plain.size(); ++i) {
        value |= static_cast<uint32_t>(static_cast<uint8_t>(plain[at + i])) << (8 * i);
    }
    return value;
}

// "mee": length, "x", then each four bytes as a little-endian number and "x".
// "hfe": length, "f", then each number raised by an offset and ended by the
// letter that makes the decoder take the offset off again.
std::string sealPacked(const std::string& plain, bool withOffsets) {
    static const char kOffsetLetters[] = "cdbhil";  // subtract 0..5
    std::string text = withOffsets ? "hfe" : "mee";
    text += std::to_string(plain.size());
    text += withOffsets ? 'f' : 'x';
    for (size_t at = 0, k = 0; at < plain.size(); at += 4, ++k) {
        const uint32_t word = littleEndianWord(plain, at);
        // A fixed offset sequence keeps the output reproducible.
        const unsigned offset = withOffsets ? static_cast<unsigned>((k * 5 + 2) % 6) : 0;
        text += std::to_string(static_cast<uint64_t>(word) + offset);
        text += withOffsets ? kOffsetLetters[offset] : 'x';
    }
    return text;
}

bool checkCarriable(const std::string& plain, std::string* error) {
    for (size_t i = 0; i < plain.size(); ++i) {
        const auto byte = static_cast<uint8_t>(plain[i]);
        if (byte == 0 || byte >= 0x80) {
            char message[96];
            std::snprintf(message, sizeof(message), "byte 0x%02x at offset %zu: shader sources must be ASCII without NUL",
                          byte, i);
            *error = message;
            return false;
        }
    }
    return true;
}

}  // namespace

bool parseSealForm(const std::string& name, SealForm* form) {
    if (name == "ios") {
        *form = SealForm::kIos;
    } else if (name == "aes") {
        *form = SealForm::kAes;
    } else if (name == "mee") {
        *form = SealForm::kMee;
    } else if (name == "hfe") {
        *form = SealForm::kHfe;
    } else {
        return false;
    }
    return true;
}

bool sealShaderSource(SealForm form, const std::string& plain, std::string* sealed, std::string* error) {
    if (!checkCarriable(plain, error)) return false;
    switch (form) {
        case SealForm::kIos: return sealIos(plain, sealed, error);
        case SealForm::kAes: return sealAes(plain, sealed, error);
        case SealForm::kMee: *sealed = sealPacked(plain, false); return true;
        case SealForm::kHfe: *sealed = sealPacked(plain, true); return true;
    }
    return false;
}

size_t aesPlainTail(const std::string& plain) { return plain.size() > kBlock ? plain.size() - kBlock : 0; }

}  // namespace filterpack
