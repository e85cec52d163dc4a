// Packed text forms ("mee" plain, "hfe" offset): a byte length, then the
// bytes four at a time as little-endian decimal 32-bit integers.
#ifndef IFC_JNI_PACKED_STRING_H
#define IFC_JNI_PACKED_STRING_H

// A newly allocated NUL-terminated string (free with free()), or null when
// the text is not in a packed form or cannot be decoded safely.
char* decodePackedString(const char* text);

#endif  // IFC_JNI_PACKED_STRING_H
