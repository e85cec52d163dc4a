// Whole-image and region copies, raw file loading, clearing.
#include <cstdio>
#include <cstdlib>

#include "image/image_internal.h"

namespace {

int64_t packedBytes(const _Image* image) {
    return static_cast<int64_t>(image->width) * image->channels * image->height;
}

// Copies `bytes` from the start of source's data into `to`, never reading
// past the source rows.
void copyPrefix(unsigned char* to, const _Image* source, int64_t bytes) {
    if (to == nullptr || bytes <= 0) return;
    int64_t available = ifc::imageExtent(source);
    if (available > bytes) available = bytes;
    if (available > 0) std::memcpy(to, source->data, static_cast<size_t>(available));
}

_Image* cloneWithSourceStride(const _Image* source, int64_t bytesToCopy) {
    if (source == nullptr) return nullptr;
    _Image* copy = create_image(source->width, source->height, source->channels, source->stride);
    if (copy != nullptr) copyPrefix(copy->data, source, bytesToCopy);
    return copy;
}

// Row-by-row copy between two images; rows that would leave either buffer
// are skipped (nothing is clipped otherwise).
void copyRows(const _Image* from, int64_t fromOffset, int64_t fromStep, unsigned char* to, int64_t toExtent,
              int64_t toOffset, int64_t toStep, int64_t rowBytes, int rows) {
    int64_t fromExtent = ifc::imageExtent(from);
    for (int i = 0; i < rows; ++i) {
        int64_t src = fromOffset + i * fromStep;
        int64_t dst = toOffset + i * toStep;
        if (ifc::spanInside(src, rowBytes, fromExtent) && ifc::spanInside(dst, rowBytes, toExtent)) {
            std::memcpy(to + dst, from->data + src, static_cast<size_t>(rowBytes));
        }
    }
}

}  // namespace

extern "C" {

IFC_API _Image* clone_image(_Image* image, const _Image* source) {
    if (image == nullptr || source == nullptr) return image;
    // Only width x channels x height bytes are copied, even from padded rows.
    int64_t bytes = packedBytes(source);
    create_same_image(image, source);
    copyPrefix(image->data, source, bytes);
    return image;
}

IFC_API _Image* clone_image2(const _Image* source) {
    return source == nullptr ? nullptr : cloneWithSourceStride(source, packedBytes(source));
}

IFC_API _Image* clone_image_ex(const _Image* source) {
    return cloneWithSourceStride(source, ifc::imageExtent(source));
}

IFC_API void copy_image(_Image* destination, const _Image* source) {
    if (destination == nullptr || source == nullptr) return;
    // The source's whole stride x height, whatever rows the destination's
    // record describes: its buffer must be large enough. Only the bytes it
    // is known to hold (its size, when set) bound the copy.
    int64_t bytes = ifc::imageExtent(source);
    if (destination->size != 0 && destination->size < bytes) bytes = destination->size;
    copyPrefix(destination->data, source, bytes);
    unsigned char* keep = destination->data;
    *destination = *source;
    destination->data = keep;
}

IFC_API void copy_image_roi(const _Image* source, _Image* destination, const MRect* region, MPoint point) {
    if (source == nullptr || destination == nullptr || region == nullptr) return;
    copyRows(source,
             static_cast<int64_t>(region->y) * source->stride + static_cast<int64_t>(region->x) * source->channels,
             source->stride, destination->data, ifc::imageExtent(destination),
             static_cast<int64_t>(point.y) * destination->stride +
                 static_cast<int64_t>(point.x) * destination->channels,
             destination->stride, static_cast<int64_t>(region->width) * source->channels, region->height);
}

IFC_API _Image* clone_image_roi(_Image* image, const _Image* source, const MRect* region) {
    if (image == nullptr || source == nullptr || region == nullptr) return image;
    create_image2(image, region->width, region->height, source->channels);
    int64_t rowBytes = static_cast<int64_t>(region->width) * source->channels;
    copyRows(source,
             static_cast<int64_t>(region->y) * source->stride + static_cast<int64_t>(region->x) * source->channels,
             source->stride, image->data, image->data ? rowBytes * region->height : 0, 0, rowBytes, rowBytes,
             region->height);
    return image;
}

IFC_API _Image* load_image_from_raw(const char* path, int width, int height, int channels) {
    if (path == nullptr) return nullptr;
    std::FILE* file = std::fopen(path, "rb");
    if (file == nullptr) return nullptr;
    _Image* image = create_image(width, height, static_cast<unsigned int>(channels), -1);
    // A short file leaves the rest of the buffer as allocated.
    if (image != nullptr) std::fread(image->data, 1, static_cast<size_t>(ifc::imageExtent(image)), file);
    std::fclose(file);
    return image;
}

IFC_API void clear_image(_Image* image, int value) {
    if (image == nullptr || image->data == nullptr) return;
    // A packed width x channels x height prefix: with padded rows the tail is not reached.
    int64_t bytes = packedBytes(image);
    int64_t extent = ifc::imageExtent(image);
    if (bytes > extent) bytes = extent;
    if (bytes > 0) std::memset(image->data, value, static_cast<size_t>(bytes));
}

}  // extern "C"
