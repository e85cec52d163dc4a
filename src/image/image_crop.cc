// Crops into a caller's record. Both keep the library's historical output:
// out.channels stays 0, so every row (or pixel) lands at the start of the
// buffer and only the last one copied survives there. Callers that need a
// real crop use clone_image_roi.
#include <cstdlib>

#include "image/image_internal.h"

namespace {

// Starts `out` as the crops do: empty record, rectangle size, fresh buffer.
void startCrop(_Image* out, const _Image* source, const MRect* rect) {
    image_init(out);
    out->width = rect->width;
    out->height = rect->height;
    out->data = ifc::allocatePixels(static_cast<int64_t>(rect->height) * rect->width * source->channels);
}

}  // namespace

extern "C" {

IFC_API _Image* crop_image(_Image* out, const _Image* source, const MRect* rect) {
    if (out == nullptr || source == nullptr || rect == nullptr) return out;
    startCrop(out, source, rect);
    out->size = source->size;
    if (out->data == nullptr) return out;
    int64_t rowBytes = static_cast<int64_t>(rect->width) * source->channels;
    int64_t sourceRow = static_cast<int64_t>(source->width) * source->channels;  // not the stride, on purpose
    int64_t extent = ifc::imageExtent(source);
    int64_t writeAt = 0;
    for (int64_t r = rect->y; r < static_cast<int64_t>(rect->y) + rect->height; ++r) {
        int64_t from = r * sourceRow + static_cast<int64_t>(rect->x) * source->channels;
        if (ifc::spanInside(from, rowBytes, extent)) {
            std::memcpy(out->data + writeAt, source->data + from, static_cast<size_t>(rowBytes));
        }
        writeAt += static_cast<int64_t>(out->channels) * rect->width;  // 0: rows overwrite each other
    }
    return out;
}

IFC_API _Image* crop_image_with_angle(_Image* out, const _Image* source, const MRect* rect) {
    if (out == nullptr || source == nullptr || rect == nullptr) return out;
    startCrop(out, source, rect);
    if (out->data == nullptr) return out;
    int64_t channels = source->channels;
    int64_t extent = ifc::imageExtent(source);
    for (int64_t y = rect->y; y < static_cast<int64_t>(rect->y) + rect->height; ++y) {
        for (int64_t x = rect->x; x < static_cast<int64_t>(rect->x) + rect->width; ++x) {
            int64_t from = (source->width * y + x) * channels;
            int64_t to = out->channels * (out->width * y + x);  // 0 while out.channels is 0
            if (ifc::spanInside(from, channels, extent)) {
                std::memcpy(out->data + to, source->data + from, static_cast<size_t>(channels));
            }
        }
    }
    return out;
}

}  // extern "C"
