// Small helpers for the image library tests.
#ifndef IFC_TESTS_IMAGE_IMAGE_TEST_UTIL_H
#define IFC_TESTS_IMAGE_IMAGE_TEST_UTIL_H

#include <cstring>
#include <memory>
#include <vector>

#include "image_filter/image.h"

struct ImageDeleter {
    void operator()(_Image* image) const { free_image(&image); }
};
using ImagePtr = std::unique_ptr<_Image, ImageDeleter>;

// A record filled in place by a library function; frees its buffer at scope end.
struct FilledRecord {
    _Image image{};
    ~FilledRecord() { free(image.data); }
};

// Every buffer byte gets its own index (0, 1, 2, ...), padding included.
inline ImagePtr indexedImage(int width, int height, int channels, int stride = 0) {
    ImagePtr image(create_image(width, height, channels, stride));
    for (uint32_t i = 0; i < image->size; ++i) image->data[i] = static_cast<unsigned char>(i);
    return image;
}

// width, height, channels, stride, size
inline std::vector<int> shapeOf(const _Image& image) {
    return {image.width, image.height, image.channels, image.stride, static_cast<int>(image.size)};
}

inline std::vector<int> bytesOf(const unsigned char* data, size_t count) {
    return std::vector<int>(data, data + count);
}

#endif  // IFC_TESTS_IMAGE_IMAGE_TEST_UTIL_H
