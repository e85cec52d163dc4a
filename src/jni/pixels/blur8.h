// Recursive blur of one down-sampled channel (the QImage "in place" blur,
// which in fact returns a new image).
#ifndef IFC_JNI_BLUR8_H
#define IFC_JNI_BLUR8_H

#include <cstdint>

#include "image_filter/image.h"

namespace ifc {

// Decay weight A in 0.16 fixed point for sigma; 0 when no filtering is done
// (sigma <= 0 gives a decay outside (0, 1)).
int blur8_weight(int sigma);

// T[j * W + i] = byte 0 of source pixel (i * scale, j * scale), rows taken as
// source_width * channels bytes apart.
void blur8_downsample(const uint8_t* source, int source_width, int channels, int scale, int W, int H,
                      uint8_t* T);

// Forward and backward sweeps along rows (columns 1..W-1), then along columns
// (forward from row 0 to H-2, backward from H-1 to 1), state carried from
// the forward into the backward sweep. blur8_filter_c is the reference;
// blur8_filter gives the same bytes through the CPU's best kernel.
void blur8_filter_c(uint8_t* T, int W, int H, int A);
void blur8_filter_avx2(uint8_t* T, int W, int H, int A);
void blur8_filter_neon(uint8_t* T, int W, int H, int A);
void blur8_filter(uint8_t* T, int W, int H, int A);

// The reference's two passes over parts of the plane: the row sweeps of
// rows y0..y1-1 (W >= 2) and the column sweeps of columns x0..x1-1 (H >= 2).
void blur8_rows_c(uint8_t* T, int W, int y0, int y1, int A);
void blur8_columns_c(uint8_t* T, int W, int H, int x0, int x1, int A);

// New image of (width / scale) x (height / scale), source channels, zeroed,
// byte 0 of each pixel the blurred channel (written contiguously, not at the
// padded stride). Null when scale < 1 or the source has no pixels or channels.
_Image* blur8_image(const _Image* source, int scale, int sigma);

}  // namespace ifc

#endif  // IFC_JNI_BLUR8_H
