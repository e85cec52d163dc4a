// Conversion of B,G,R(,x) pixels to one gray byte.
#include "image/image_internal.h"

extern "C" {

IFC_API _Image* convert_image_gray(_Image* out, const unsigned char* pixels, int /*ignored*/, int width, int height,
                                   int step) {
    if (out == nullptr) return nullptr;
    create_image2(out, width, height, 1);
    if (pixels == nullptr || out->data == nullptr) return out;
    for (int64_t y = 0; y < height; ++y) {
        const unsigned char* p = pixels + y * width * static_cast<int64_t>(step);
        unsigned char* to = out->data + y * width;
        for (int x = 0; x < width; ++x, p += step) {
            // Byte 2 is red: the input is B, G, R. Sum in this order, then truncate.
            double gray = 0.299 * p[2] + 0.587 * p[1] + 0.114 * p[0];
            to[x] = static_cast<unsigned char>(static_cast<int>(gray));
        }
    }
    return out;
}

}  // extern "C"
