// Protecting plain shader sources in the four text forms the engine
// deciphers at compile time ("ios", "aes", "mee", "hfe").
#ifndef FILTERPACK_SEAL_H
#define FILTERPACK_SEAL_H

#include <string>

namespace filterpack {

enum class SealForm { kIos, kAes, kMee, kHfe };

// "ios", "aes", "mee" or "hfe"; false for anything else.
bool parseSealForm(const std::string& name, SealForm* form);

// The sealed text, which the engine's decipher turns back into `plain`.
// Fails (false, *error set) for text no form can carry: NUL bytes end the
// deciphered text early, and GLSL ES sources are ASCII (the packed forms
// also need every number below 2^31 for a 32-bit atoi).
bool sealShaderSource(SealForm form, const std::string& plain, std::string* sealed, std::string* error);

// Bytes of `plain` that an "aes" text leaves unenciphered: the form
// enciphers its first 16-byte block only.
size_t aesPlainTail(const std::string& plain);

}  // namespace filterpack

#endif  // FILTERPACK_SEAL_H
