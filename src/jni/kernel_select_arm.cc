// ARM (armeabi-v7a built with NEON, arm64-v8a): the NEON rows.
#include "jni/pixel_kernels.h"

namespace ifc {

const PixelKernels& pixel_kernels() {
    static const PixelKernels kernels = {
        "neon",
        nv21_to_rgba_row_neon,
        nv21_to_yuva_row_neon,
        yuv422_to_rgba_row_neon,
        rgb565_to_rgba_row_neon,
        gray_row_neon,
        matrix_row_neon,
        smooth3x3_row_neon,
    };
    return kernels;
}

}  // namespace ifc
