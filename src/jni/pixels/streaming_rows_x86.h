// x86 rows of two source bytes per pixel that switch to streaming stores
// when their output is past the caches (see streaming_stores.h).
#ifndef IFC_JNI_STREAMING_ROWS_X86_H
#define IFC_JNI_STREAMING_ROWS_X86_H

#include <immintrin.h>

#include "jni/pixels/streaming_stores.h"

namespace ifc {

using RgbaRow = void (*)(const uint8_t*, uint8_t*, int);

// `Ordinary` converts the whole row, or `Lead` the pixels before the first
// `alignment`-byte boundary of the output and `Streaming` the rest.
template <RgbaRow Ordinary, RgbaRow Lead, RgbaRow Streaming>
void convert_streaming_past_caches(const uint8_t* src, uint8_t* dst, int width, unsigned alignment,
                                   int pixel_step) {
    const int lead = past_caches(int64_t{width} * 4) ? streaming_lead(dst, width, alignment, pixel_step) : -1;
    if (lead < 0) return Ordinary(src, dst, width);
    Lead(src, dst, lead);
    Streaming(src + 2 * lead, dst + 4 * lead, width - lead);
    _mm_sfence();  // streaming stores are weakly ordered: drain them before returning
}

}  // namespace ifc

#endif  // IFC_JNI_STREAMING_ROWS_X86_H
