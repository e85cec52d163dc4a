// Packed 4:2:2 reference row: groups of V, Y0, U, Y1.
#include "jni/pixels/pixel_kernels.h"

namespace ifc {

void yuv422_to_rgba_row_c(const uint8_t* vyuy, uint8_t* rgba, int width) {
    for (int x = 0; x < width; ++x) {
        const uint8_t* group = vyuy + 4 * (x >> 1);
        yuv_to_rgba_pixel(group[1 + 2 * (x & 1)], group[2], group[0], rgba + 4 * x);
    }
}

}  // namespace ifc
