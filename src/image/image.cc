// The _Image record: constructors, initialisers and release.
#include <cmath>
#include <cstddef>
#include <cstdlib>
#include <limits>

#include "image/borrowed_pixels.h"
#include "image/image_internal.h"

// The records are shared by layout with the app's other native code: 32-bit
// words in this order, pointers full width. On a 32-bit ABI _Image is nine
// words (36 bytes) with `data` first and `markers` last, a marker node four.
namespace {
constexpr size_t kPointer = sizeof(void*);
static_assert(offsetof(_Image, data) == 0 && offsetof(_Image, size) == kPointer &&
              offsetof(_Image, width) == kPointer + 4 && offsetof(_Image, height) == kPointer + 8 &&
              offsetof(_Image, channels) == kPointer + 12 && offsetof(_Image, stride) == kPointer + 16 &&
              offsetof(_Image, layout) == kPointer + 20 && offsetof(_Image, reserved) == kPointer + 24,
              "_Image words in order after the data pointer");
static_assert(offsetof(_Image, markers) == (kPointer == 4 ? 32 : 40) && sizeof(_Image) == (kPointer == 4 ? 36 : 48),
              "_Image: nine 32-bit words on a 32-bit ABI");
static_assert(offsetof(_ImageMarker, id) == 0 && offsetof(_ImageMarker, data) == kPointer &&
              offsetof(_ImageMarker, length) == 2 * kPointer &&
              offsetof(_ImageMarker, next) == 3 * kPointer && sizeof(_ImageMarker) == 4 * kPointer,
              "_ImageMarker: four words, 16 bytes on a 32-bit ABI");
static_assert(sizeof(MRect) == 16 && offsetof(MRect, x) == 0 && offsetof(MRect, y) == 4 &&
                  offsetof(MRect, width) == 8 && offsetof(MRect, height) == 12,
              "MRect: x, y, width, height as 32-bit words");
static_assert(kPointer == 4 || kPointer == 8, "32-bit or 64-bit ABIs only");
}  // namespace

namespace ifc {

unsigned char* allocatePixels(int64_t bytes) {
    if (bytes < 0 || bytes > static_cast<int64_t>(UINT32_MAX)) return nullptr;
    return static_cast<unsigned char*>(std::malloc(bytes > 0 ? static_cast<size_t>(bytes) : 1));
}

int roundHalfUp(double v) {
    double t = std::trunc(v + 0.5);
    if (std::isnan(t)) return 0;
    if (t >= static_cast<double>(std::numeric_limits<int>::max())) return std::numeric_limits<int>::max();
    if (t <= static_cast<double>(std::numeric_limits<int>::min())) return std::numeric_limits<int>::min();
    return static_cast<int>(t);
}

}  // namespace ifc

namespace {

// A stride below 1 means rows padded to 4 bytes; a positive one is taken as is.
int64_t resolveStride(int width, unsigned int channels, int stride) {
    if (stride >= 1) return stride;
    return (static_cast<int64_t>(width) * channels + 3) & ~int64_t{3};
}

_Image* newRecord(int width, int height, unsigned int channels, int stride) {
    int64_t rowBytes = resolveStride(width, channels, stride);
    if (rowBytes < std::numeric_limits<int32_t>::min() || rowBytes > std::numeric_limits<int32_t>::max()) {
        return nullptr;
    }
    auto* image = static_cast<_Image*>(std::calloc(1, sizeof(_Image)));
    if (image == nullptr) return nullptr;
    image->width = width;
    image->height = height;
    image->channels = static_cast<int32_t>(channels);
    image->stride = static_cast<int32_t>(rowBytes);
    return image;
}

}  // namespace

extern "C" {

IFC_API _Image* create_image(int width, int height, unsigned int channels, int stride) {
    _Image* image = newRecord(width, height, channels, stride);
    if (image == nullptr) return nullptr;
    int64_t bytes = static_cast<int64_t>(image->stride) * height;
    image->data = ifc::allocatePixels(bytes);
    if (image->data == nullptr) {
        std::free(image);
        return nullptr;
    }
    image->size = static_cast<uint32_t>(bytes);
    return image;
}

IFC_API _Image* create_image_header(int width, int height, unsigned int channels, int stride) {
    return newRecord(width, height, channels, stride);
}

IFC_API _Image* create_empty_image(void) {
    auto* image = static_cast<_Image*>(std::calloc(1, sizeof(_Image)));
    image_init(image);
    return image;
}

IFC_API void image_init(_Image* image) {
    if (image == nullptr) return;
    uint32_t layout = image->layout;  // the channel-order tag survives
    *image = _Image{};
    image->layout = layout;
}

IFC_API _Image* create_image2(_Image* image, int width, int height, int channels) {
    if (image == nullptr) return nullptr;
    // Rows are never padded here, whatever the alignment.
    int64_t rowBytes = static_cast<int64_t>(width) * channels;
    int64_t bytes = rowBytes * height;
    image->width = width;
    image->height = height;
    image->channels = channels;
    image->stride = static_cast<int32_t>(rowBytes);
    image->size = static_cast<uint32_t>(bytes);
    image->reserved = 0;
    image->data = ifc::allocatePixels(bytes);
    return image;
}

IFC_API _Image* create_same_image(_Image* image, const _Image* source) {
    if (image == nullptr || source == nullptr) return image;
    *image = *source;  // size stays the source's
    int64_t packed = static_cast<int64_t>(source->channels) * source->width * source->height;
    int64_t padded = static_cast<int64_t>(source->stride) * source->height;
    // Room for the padded rows the copied stride describes, not only the packed pixels.
    image->data = ifc::allocatePixels(packed > padded ? packed : padded);
    return image;
}

// A bound bitmap's pixels are never freed here, whoever asks: only the
// record goes. Markers are not ours to free either.
IFC_API void free_image(_Image** image) {
    if (image == nullptr || *image == nullptr) return;
    if (!ifc::pixelsBorrowed(*image)) std::free((*image)->data);
    ifc::forgetBorrowedPixels(*image);
    std::free(*image);
    *image = nullptr;
}

IFC_API void free_image_header(_Image** image) {
    if (image == nullptr || *image == nullptr) return;
    ifc::forgetBorrowedPixels(*image);
    std::free(*image);  // data is borrowed
    *image = nullptr;
}

IFC_API void destroy_image(_Image* image) {
    if (image == nullptr) return;
    if (!ifc::pixelsBorrowed(image)) std::free(image->data);
    ifc::forgetBorrowedPixels(image);
    image->data = nullptr;
    image->width = 0;
    image->height = 0;
    image->channels = 0;  // size and stride stay as they were
}

}  // extern "C"
