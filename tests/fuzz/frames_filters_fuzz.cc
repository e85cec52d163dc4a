// Camera-frame conversions and CPU filters with sizes, strides and buffer
// lengths from the input: frames go through the natives' own checks
// (check_frame), images through the constructor the natives use; whatever
// is accepted must run inside its buffers (ASan checks).
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <vector>

#include "fuzz_input.h"
#include "image_filter/filters.h"
#include "jni/pixels/blur8.h"
#include "jni/pixels/frame_checks.h"
#include "jni/pixels/qimage_pixels.h"

namespace {

// Bigger frames and images only cost time; they take the same paths.
constexpr int64_t kMaxBytes = int64_t{1} << 20;

int dimension(FuzzInput& in) {
    switch (in.range(0, 7)) {
        case 0: return in.take<int>();
        case 1: return in.range(-3, 3);
        default: return in.range(0, 97);
    }
}

void convertFrame(FuzzInput& in) {
    const auto format = static_cast<ifc::FrameFormat>(in.range(0, 4));
    const int width = dimension(in), height = dimension(in);
    const int step = in.range(-2, 9);
    const int64_t length = in.range(0, kMaxBytes);
    ifc::FramePlan plan{};
    if (ifc::check_frame(format, width, height, step, true, length, &plan) != ifc::FrameCheck::kOk) return;
    const int64_t outBytes = int64_t{plan.out_width} * plan.out_height * 4;
    if (outBytes > kMaxBytes * 4) return;
    // The array Java would pass: exactly `length` bytes, filled from the input.
    std::vector<uint8_t> frame = in.bytes(static_cast<size_t>(length));
    frame.resize(static_cast<size_t>(length), 0x80);
    std::vector<uint8_t> out(static_cast<size_t>(outBytes));
    ifc::convert_checked_frame(plan, frame.data(), length, out.data());
}

// QImage.CreateImage's record: rows width x pixelBytes apart.
_Image* qimage(FuzzInput& in) {
    const int width = dimension(in), height = dimension(in), pixelBytes = in.range(-1, 5);
    const int64_t stride = int64_t{width} * pixelBytes;
    if (int64_t{width} * height == 0 || stride < INT32_MIN || stride > INT32_MAX) return nullptr;
    if (stride * height > kMaxBytes || stride * height < -kMaxBytes) return nullptr;
    _Image* image = create_image(width, height, static_cast<unsigned int>(pixelBytes), static_cast<int>(stride));
    if (image != nullptr) std::memset(image->data, 0x5a, image->size);
    return image;
}

void filterImage(FuzzInput& in) {
    _Image* source = qimage(in);
    _Image* destination = in.flag() ? qimage(in) : source;
    if (source == nullptr || destination == nullptr) {
        if (destination != source) free_image(&destination);
        free_image(&source);
        return;
    }
    uint8_t curve[768];
    for (size_t i = 0; i < sizeof curve; ++i) curve[i] = static_cast<uint8_t>(i * 7);
    float matrix[16];
    for (float& m : matrix) m = in.real(-4.0f, 4.0f);
    image_filter_gray(source, destination);
    image_filter_curve(source, destination, curve);
    image_filter_matrix(source, destination, matrix);
    image_filter_gauss_channel(source, destination, in.range(-1, 4));

    uint32_t bins[768] = {};
    ifc::image_histogram(source, bins, in.flag());
    const int scale = in.range(-1, 9);
    if (scale > 0) {  // the blur native refuses the rest
        _Image* blurred = ifc::blur8_image(source, scale, in.range(-2, 300));
        free_image(&blurred);
    }
    const int ow = in.range(0, 40), oh = in.range(0, 40);
    std::vector<uint8_t> overlay(static_cast<size_t>(ow) * oh * 4, 0x7f);
    ifc::alpha_mix_overlay(destination, overlay.data(), ow, oh, dimension(in), dimension(in));

    // Releases source when it cannot hold the new frame.
    _Image* frameImage = ifc::frame_image_for(source, in.range(0, 63), in.range(0, 63));
    if (destination != source) free_image(&destination);
    free_image(&frameImage);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static const bool tables = (image_filter_initialize(), true);
    (void)tables;
    FuzzInput in(data, size);
    if (in.flag()) {
        convertFrame(in);
    } else {
        filterImage(in);
    }
    return 0;
}
