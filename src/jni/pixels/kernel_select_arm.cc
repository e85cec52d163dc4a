// ARM (armeabi-v7a built with NEON, arm64-v8a): the NEON rows.
#include "jni/pixels/blur8.h"
#include "jni/pixels/pixel_kernels.h"

namespace ifc {

namespace {

constexpr PixelKernels kNeon = {
    "neon",
    nv21_to_rgba_row_neon,
    nv21_rows_one_by_one<nv21_to_rgba_row_neon>,
    nv21_to_yuva_row_neon,
    yuv422_to_rgba_row_neon,
    rgb565_to_rgba_row_neon,
    gray_row_neon,
    curve_row_words,
    alpha_mix_row_neon,
    matrix_row_neon,
    smooth3x3_row_neon,
    blur8_filter_neon,
};

}  // namespace

std::vector<PixelKernels> kernel_variants() { return {kNeon}; }

const PixelKernels& pixel_kernels() { return kNeon; }

}  // namespace ifc
