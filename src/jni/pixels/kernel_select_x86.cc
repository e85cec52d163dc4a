// x86: SSE2 is always there; AVX2 and AVX-512BW rows are taken when the CPU
// has them.
#include "jni/pixels/blur8.h"
#include "jni/pixels/pixel_kernels.h"

namespace ifc {

namespace {

constexpr PixelKernels kSse2 = {
    "sse2",
    nv21_to_rgba_row_sse2,
    nv21_rows_one_by_one<nv21_to_rgba_row_sse2>,
    nv21_to_yuva_row_sse2,
    yuv422_to_rgba_row_sse2,
    rgb565_to_rgba_row_sse2,
    gray_row_sse2,
    curve_row_words,
    alpha_mix_row_sse2,
    matrix_row_sse2,
    smooth3x3_row_sse2,
    blur8_filter_c,
};

PixelKernels avx2_kernels() {
    PixelKernels k = kSse2;
    k.name = "avx2";
    k.nv21_to_rgba_row = nv21_to_rgba_row_avx2;
    k.nv21_to_rgba_row_pair = nv21_to_rgba_row_pair_avx2;
    k.nv21_to_yuva_row = nv21_to_yuva_row_avx2;
    k.yuv422_to_rgba_row = yuv422_to_rgba_row_avx2;
    k.rgb565_to_rgba_row = rgb565_to_rgba_row_avx2;
    k.gray_row = gray_row_avx2;
    k.alpha_mix_row = alpha_mix_row_avx2;
    k.matrix_row = matrix_row_avx2;
    k.smooth3x3_row = smooth3x3_row_avx2;
    k.blur8_filter = blur8_filter_avx2;
    return k;
}

// AVX-512BW where a row gains from the wider registers; the rest stay AVX2.
PixelKernels avx512_kernels() {
    PixelKernels k = avx2_kernels();
    k.name = "avx512";
    k.yuv422_to_rgba_row = yuv422_to_rgba_row_avx512;
    return k;
}

}  // namespace

std::vector<PixelKernels> kernel_variants() {
    std::vector<PixelKernels> variants{kSse2};
    if (__builtin_cpu_supports("avx2")) variants.push_back(avx2_kernels());
    if (__builtin_cpu_supports("avx2") && __builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512bw")) {
        variants.push_back(avx512_kernels());
    }
    return variants;
}

const PixelKernels& pixel_kernels() {
    static const PixelKernels kernels = kernel_variants().back();
    return kernels;
}

}  // namespace ifc
