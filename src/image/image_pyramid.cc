// One decimating pyramid step.
#include "image/image_internal.h"

extern "C" {

IFC_API _Image* buildPyramid(const _Image* source, int factor) {
    // Factor 0 would divide by zero; INT_MIN / -1 would overflow.
    if (source == nullptr || factor == 0 || (factor == -1 && (source->width == INT32_MIN || source->height == INT32_MIN))) {
        return nullptr;
    }
    int width = source->width / factor;
    int height = source->height / factor;
    int64_t channels = source->channels;
    _Image* out = create_image(width, height, static_cast<unsigned int>(channels), 0);
    if (out == nullptr || source->data == nullptr) return out;

    int64_t sourceExtent = ifc::imageExtent(source);
    int64_t outExtent = ifc::imageExtent(out);
    // Source rows step by width x factor x channels, not by the stride.
    int64_t sourceRowStep = static_cast<int64_t>(source->width) * factor * channels;
    int64_t outRowStep = static_cast<int64_t>(width) * channels;
    for (int64_t y = 0; y < height; ++y) {
        int64_t from = y * sourceRowStep;
        int64_t to = y * outRowStep;
        for (int64_t x = 0; x < width; ++x) {
            // The position advances before each read: column 0 is never sampled
            // and the last sample of a row is one factor past the previous one.
            from += factor * channels;
            // Whole 32-bit words whatever the channel count; bytes outside the
            // source read as 0 and bytes past the output are dropped.
            for (int64_t k = 0; k < 4; ++k) {
                int64_t at = to + k;
                if (at >= outExtent) break;
                int64_t src = from + k;
                out->data[at] = (src >= 0 && src < sourceExtent) ? source->data[src] : 0;
            }
            to += channels;
        }
    }
    return out;
}

}  // extern "C"
