// Processors without a SIMD variant use the reference kernels.
#include "jni/pixel_kernels.h"

namespace ifc {

const PixelKernels& pixel_kernels() { return scalar_kernels(); }

}  // namespace ifc
