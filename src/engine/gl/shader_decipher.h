// Shader sources shipped in packages come in four protected text forms,
// chosen by a case-sensitive three-letter prefix:
//   "ios"  AES-128 ECB, hex payload, many blocks (NUL padded)
//   "aes"  AES-128 ECB, hex payload, one block
//   "mee"  packed little-endian integers
//   "hfe"  packed integers with a per-number offset letter
#ifndef IFC_ENGINE_GL_SHADER_DECIPHER_H
#define IFC_ENGINE_GL_SHADER_DECIPHER_H

#include <cstdint>

// The one key of both AES forms, shipped with the packages' build.
extern const uint8_t kShaderCipherKey[16];

// Plain text of a protected source in a new malloc'd NUL-terminated buffer
// (the caller frees it), or null when the text has no recognised prefix.
char* decipherShaderSource(const char* text);

// Decodes `count` bytes from character pairs of `text` into `out` and
// terminates `out` (which holds count + 1 bytes). Returns 0 on success,
// -1 for a null argument, -2 for an odd text length (nothing written), -3 at
// the first character that is neither digit nor letter (output so far kept).
// Letters are digits 10..35 in either case, so "zz" is a byte too: the
// format's decoder has always been this lenient.
int decodeHexText(const char* text, uint8_t* out, int count);

#endif  // IFC_ENGINE_GL_SHADER_DECIPHER_H
