// The clamp and YUV->RGB tables shared by the camera-frame conversions and
// the gray filter, and the exported calls that build them. The tables build
// themselves when the library is loaded; image_filter_initialize() remains for
// callers that always called it and is then harmless.
#include <pthread.h>

#include "image_filter/filters.h"
#include "jni/pixels/pixel_kernels.h"

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

void build_tables() {
    YuvTables& t = g_yuv_tables;
    for (int k = -512; k < 768; ++k) t.clamp[k + 512] = static_cast<uint8_t>(k < 0 ? 0 : k > 255 ? 255 : k);
    int product = kY * -16;
    for (int k = 0; k < 256; ++k, product += kY) t.y_term[k] = k < 16 ? 0 : product >> 13;
    fill_chroma(t.v_to_r, kVR);
    fill_chroma(t.v_to_g, kVG);
    fill_chroma(t.u_to_g, kUG);
    fill_chroma(t.u_to_b, kUB);
    g_yuv_tables_ready = true;
}

pthread_once_t tables_once = PTHREAD_ONCE_INIT;

// Runs while the library loads, before any native can be called: the tables
// are written once and only read afterwards, so no caller races a rebuild.
[[maybe_unused]] const bool tables_built_at_load = (image_filter_initialize(), true);

}  // namespace
}  // namespace ifc

extern "C" {

void image_filter_initialize(void) { pthread_once(&ifc::tables_once, ifc::build_tables); }

intptr_t image_filter_uninitialize(intptr_t word) { return word; }

}  // extern "C"
