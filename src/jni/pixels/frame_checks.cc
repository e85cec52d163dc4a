#include "jni/pixels/frame_checks.h"

#include <algorithm>
#include <climits>
#include <cstring>

#include "jni/pixels/camera_frames.h"

namespace ifc {

namespace {

// The size Java allocates for a frame: w*h*3/2 for NV21, 2*w*h for the
// 16-bit formats. The walks read a little past it for odd sizes.
int64_t nv21_nominal_bytes(int width, int height) { return int64_t{width} * height * 3 / 2; }
int64_t two_bytes_per_pixel(int width, int height) { return int64_t{width} * height * 2; }

}  // namespace

FrameCheck check_frame(FrameFormat format, int width, int height, int step, bool has_data, int64_t length,
                       FramePlan* plan) {
    FramePlan p{format, width, height, 1, width, height, 0, 0};
    if (format == FrameFormat::kNv21Decimated) {
        // A step of 0 would divide by zero; a negative one gives no frame.
        p.step = even_step(step);
        if (p.step <= 0) return FrameCheck::kBadStep;
        if (width < 0 || height < 0) return FrameCheck::kSizeOutOfRange;
    }
    if (!has_data) return FrameCheck::kNullData;
    // 4 output bytes per pixel within INT_MAX (w * h * 4 itself can overflow).
    if (width < 0 || height < 0 || int64_t{width} * height > INT_MAX / 4) return FrameCheck::kSizeOutOfRange;
    switch (format) {
        case FrameFormat::kRgb565:
            p.nominal_bytes = two_bytes_per_pixel(width, height);
            p.bytes_read = rgb565_bytes_read(width, height);
            break;
        case FrameFormat::kYuv422:
            p.nominal_bytes = two_bytes_per_pixel(width, height);
            p.bytes_read = yuv422_bytes_read(width, height);
            break;
        case FrameFormat::kNv21Rgba:
        case FrameFormat::kNv21Yuva:
            p.nominal_bytes = nv21_nominal_bytes(width, height);
            p.bytes_read = nv21_bytes_read(width, height);
            break;
        case FrameFormat::kNv21Decimated:
            p.out_width = width / p.step;
            p.out_height = height / p.step;
            p.bytes_read = nv21_decimated_bytes_read(width, height, p.step);
            p.nominal_bytes = std::min(nv21_nominal_bytes(width, height), p.bytes_read);
            break;
    }
    if (length < p.nominal_bytes) return FrameCheck::kTooShort;
    *plan = p;
    return FrameCheck::kOk;
}

void convert_checked_frame(const FramePlan& plan, const uint8_t* frame, int64_t length, uint8_t* out) {
    std::vector<uint8_t> padded;
    if (length < plan.bytes_read) {
        // Odd sizes walk a few bytes past the frame: give them zeros.
        padded.assign(static_cast<size_t>(plan.bytes_read), 0);
        if (length > 0) std::memcpy(padded.data(), frame, static_cast<size_t>(length));
        frame = padded.data();
    }
    switch (plan.format) {
        case FrameFormat::kRgb565: rgb565_to_rgba(frame, plan.width, plan.height, out); break;
        case FrameFormat::kYuv422: yuv422_to_rgba(frame, plan.width, plan.height, out); break;
        case FrameFormat::kNv21Rgba: nv21_to_rgba(frame, plan.width, plan.height, out); break;
        case FrameFormat::kNv21Yuva: nv21_to_yuva(frame, plan.width, plan.height, out); break;
        case FrameFormat::kNv21Decimated:
            nv21_to_yuva_decimated(frame, plan.width, plan.height, plan.step, out);
            break;
    }
}

}  // namespace ifc
