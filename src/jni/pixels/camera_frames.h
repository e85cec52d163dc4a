// Whole camera frames to packed 4-byte pixels. Output is a continuous
// stream of width x height pixels. The NV21 walk takes pairs per row =
// ceil(width / 2), so an odd width shifts every following row by one pixel;
// that is the format's established behaviour here and is kept, cut at the
// end of the output.
#ifndef IFC_JNI_CAMERA_FRAMES_H
#define IFC_JNI_CAMERA_FRAMES_H

#include <cstdint>

namespace ifc {

// Bytes of input each conversion reads for a width x height output (0 when
// there is nothing to convert); callers check their array against it.
int64_t nv21_bytes_read(int width, int height);
int64_t yuv422_bytes_read(int width, int height);
int64_t rgb565_bytes_read(int width, int height);
int64_t nv21_decimated_bytes_read(int width, int height, int step);

void nv21_to_rgba(const uint8_t* frame, int width, int height, uint8_t* out);
void nv21_to_yuva(const uint8_t* frame, int width, int height, uint8_t* out);
void yuv422_to_rgba(const uint8_t* frame, int width, int height, uint8_t* out);
void rgb565_to_rgba(const uint8_t* frame, int width, int height, uint8_t* out);

// A positive odd step becomes the next even one (chroma pairs stay whole).
int even_step(int step);
// Output (width / step) x (height / step) pixels Y, U, V, 255; step > 0, even.
void nv21_to_yuva_decimated(const uint8_t* frame, int width, int height, int step, uint8_t* out);

}  // namespace ifc

#endif  // IFC_JNI_CAMERA_FRAMES_H
