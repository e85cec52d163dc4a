// Processors without a SIMD variant use the reference kernels.
#include "jni/pixels/pixel_kernels.h"

namespace ifc {

std::vector<PixelKernels> kernel_variants() { return {}; }

const PixelKernels& pixel_kernels() { return scalar_kernels(); }

}  // namespace ifc
