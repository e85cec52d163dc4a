// NV21 reference rows: a full-resolution luma row and a chroma row of V, U
// pairs, each pair serving two neighbouring pixels.
#include "jni/pixels/pixel_kernels.h"

namespace ifc {

void nv21_to_rgba_row_c(const uint8_t* y, const uint8_t* vu, uint8_t* rgba, int width) {
    for (int x = 0; x < width; ++x) yuv_to_rgba_pixel(y[x], vu[(x & ~1) + 1], vu[x & ~1], rgba + 4 * x);
}

void nv21_to_yuva_row_c(const uint8_t* y, const uint8_t* vu, uint8_t* yuva, int width) {
    for (int x = 0; x < width; ++x) {
        uint8_t* out = yuva + 4 * x;
        out[0] = y[x];
        out[1] = vu[(x & ~1) + 1];
        out[2] = vu[x & ~1];
        out[3] = 255;
    }
}

}  // namespace ifc
