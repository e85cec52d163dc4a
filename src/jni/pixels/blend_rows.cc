// Reference row of the overlay blend.
#include "jni/pixels/pixel_kernels.h"

namespace ifc {

void alpha_mix_row_c(const uint8_t* overlay, uint8_t* image, int count) {
    for (int i = 0; i < count; ++i, overlay += 4, image += 4) {
        const int keep = 255 - overlay[3];
        // Stored as a byte: an overlay brighter than its alpha wraps.
        for (int c = 0; c < 3; ++c) image[c] = static_cast<uint8_t>((image[c] * keep + overlay[c] * 255) / 255);
    }
}

}  // namespace ifc
