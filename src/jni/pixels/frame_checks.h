// The checks every camera-frame native applies to its Java arguments before
// converting, and the conversion they guard, callable without a JVM: any
// frame the checks accept converts without touching memory outside the
// array or the output.
#ifndef IFC_JNI_FRAME_CHECKS_H
#define IFC_JNI_FRAME_CHECKS_H

#include <cstdint>
#include <vector>

namespace ifc {

enum class FrameFormat { kRgb565, kYuv422, kNv21Rgba, kNv21Yuva, kNv21Decimated };

enum class FrameCheck { kOk, kBadStep, kNullData, kSizeOutOfRange, kTooShort };

// What a frame conversion reads and writes.
struct FramePlan {
    FrameFormat format;
    int width;
    int height;
    int step;             // decimation step, made even; 1 for the whole-frame forms
    int out_width;
    int out_height;
    int64_t nominal_bytes;  // the array size Java allocates; shorter is refused
    int64_t bytes_read;     // what the walk reads; bytes past the array read as 0
};

// Checks in the natives' order: the step (decimated form only), the size
// sign, a null array, the size range (4 output bytes per pixel within
// INT_MAX), then the array length. Fills *plan when the frame is accepted.
FrameCheck check_frame(FrameFormat format, int width, int height, int step, bool has_data, int64_t length,
                       FramePlan* plan);

// Converts an accepted frame of `length` bytes into out (4 bytes per output
// pixel), through a zero-padded copy when the walk reads past the array.
void convert_checked_frame(const FramePlan& plan, const uint8_t* frame, int64_t length, uint8_t* out);

}  // namespace ifc

#endif  // IFC_JNI_FRAME_CHECKS_H
