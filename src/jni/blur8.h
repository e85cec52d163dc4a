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
// the forward into the backward sweep.
void blur8_filter(uint8_t* T, int W, int H, int A);

// New image of (width / scale) x (height / scale), source channels, zeroed,
// byte 0 of each pixel the blurred channel (written contiguously, not at the
// padded stride). Null when scale < 1 or the source has no pixels or channels.
_Image* blur8_image(const _Image* source, int scale, int sigma);

}  // namespace ifc

#endif  // IFC_JNI_BLUR8_H
