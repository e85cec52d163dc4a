// Packed 4:2:2 rows, NEON: 8 groups V, Y0, U, Y1 (16 pixels) per step.
#include "jni/pixels/pixel_kernels.h"
#include "jni/pixels/yuv_core_neon.h"

namespace ifc {

void yuv422_to_rgba_row_neon(const uint8_t* vyuy, uint8_t* rgba, int width) {
    int x = 0;
    for (; x + 16 <= width; x += 16) {
        const uint8x8x4_t g = vld4_u8(vyuy + 2 * x);
        const uint8x8x2_t y = vzip_u8(g.val[1], g.val[3]);
        yuv16_to_rgba_neon(vcombine_u8(y.val[0], y.val[1]), g.val[0], g.val[2], rgba + 4 * x);
    }
    yuv422_to_rgba_row_c(vyuy + 2 * x, rgba + 4 * x, width - x);
}

}  // namespace ifc
