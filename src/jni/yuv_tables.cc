// The clamp and YUV->RGB tables shared by the camera-frame conversions and
// the gray filter, and the exported calls that build them.
#include "image_filter/filters.h"
#include "jni/pixel_kernels.h"

namespace ifc {

YuvTables g_yuv_tables;
bool g_yuv_tables_ready = false;

namespace {

// Multipliers: 1.164, 1.596, 0.813, 0.391, 2.018 in 16.16 fixed point.
constexpr int kY = 76309;
constexpr int kVR = 104597;
constexpr int kVG = -53278;
constexpr int kUG = -25674;
constexpr int kUB = 132201;

// Entries built by adding the multiplier per step from the k = 0 product;
// >> 13 leaves eighths.
template <typename T>
void fill_chroma(T* table, int multiplier) {
    int product = multiplier * -128;
    for (int k = 0; k < 256; ++k, product += multiplier) table[k] = static_cast<T>(product >> 13);
}

}  // namespace
}  // namespace ifc

extern "C" {

void image_filter_initialize(void) {
    ifc::YuvTables& t = ifc::g_yuv_tables;
    for (int k = -512; k < 768; ++k) t.clamp[k + 512] = static_cast<uint8_t>(k < 0 ? 0 : k > 255 ? 255 : k);
    int product = ifc::kY * -16;
    for (int k = 0; k < 256; ++k, product += ifc::kY) t.y_term[k] = k < 16 ? 0 : product >> 13;
    ifc::fill_chroma(t.v_to_r, ifc::kVR);
    ifc::fill_chroma(t.v_to_g, ifc::kVG);
    ifc::fill_chroma(t.u_to_g, ifc::kUG);
    ifc::fill_chroma(t.u_to_b, ifc::kUB);
    ifc::g_yuv_tables_ready = true;
}

intptr_t image_filter_uninitialize(intptr_t word) { return word; }

}  // extern "C"
