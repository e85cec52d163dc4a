#include "jni/pixels/blur8.h"
#include "jni/pixels/pixel_kernels.h"

namespace ifc {

const PixelKernels& scalar_kernels() {
    static const PixelKernels kernels = {
        "c",
        nv21_to_rgba_row_c,
        nv21_rows_one_by_one<nv21_to_rgba_row_c>,
        nv21_to_yuva_row_c,
        yuv422_to_rgba_row_c,
        rgb565_to_rgba_row_c,
        gray_row_c,
        curve_row_c,
        alpha_mix_row_c,
        matrix_row_c,
        smooth3x3_row_c,
        blur8_filter_c,
    };
    return kernels;
}

}  // namespace ifc
