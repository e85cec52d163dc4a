// AES-128 inverse cipher (FIPS-197), one 16-byte block at a time, ECB.
// Shader texts are only ever deciphered, so no forward cipher is kept.
#ifndef IFC_ENGINE_GL_AES128_DECIPHER_H
#define IFC_ENGINE_GL_AES128_DECIPHER_H

#include <cstdint>

class AES128Decipher {
public:
    explicit AES128Decipher(const uint8_t key[16]);
    virtual ~AES128Decipher();

    // Deciphers block[0..15] in place.
    void decryptBlock(uint8_t block[16]) const;

private:
    void expandKey(const uint8_t key[16]);

    // Each object carries its own copy of the tables, as built for one call.
    uint8_t sbox_[256];
    uint8_t inverseSbox_[256];
    uint8_t roundConstants_[10];
    uint8_t roundKeys_[11][16];
};

#endif  // IFC_ENGINE_GL_AES128_DECIPHER_H
