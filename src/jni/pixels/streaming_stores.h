// When a row writes past the caches: a whole 4000x3000 frame converted in
// one call is 48 MB of output. Ordinary stores make the cache read every line
// before overwriting it, a third more memory traffic for a conversion; stores
// that bypass the cache skip that read. Smaller outputs keep ordinary stores:
// they stay in the cache for whatever reads them next.
#ifndef IFC_JNI_STREAMING_STORES_H
#define IFC_JNI_STREAMING_STORES_H

#include <cstdint>

namespace ifc {

constexpr int64_t kStreamingOutputBytes = int64_t{16} << 20;

inline bool past_caches(int64_t output_bytes) { return output_bytes >= kStreamingOutputBytes; }

// Pixels (4 bytes each) a row of `width` at `out` writes the ordinary way
// before its streaming stores, `alignment` bytes each, are aligned; a
// multiple of `pixel_step`. -1: the row keeps ordinary stores.
inline int streaming_lead(const uint8_t* out, int width, unsigned alignment, int pixel_step) {
    const uintptr_t misalignment = reinterpret_cast<uintptr_t>(out) & (alignment - 1);
    if (misalignment & 3) return -1;
    const int lead = static_cast<int>(((alignment - misalignment) & (alignment - 1)) / 4);
    return lead % pixel_step == 0 && lead <= width ? lead : -1;
}

}  // namespace ifc

#endif  // IFC_JNI_STREAMING_STORES_H
