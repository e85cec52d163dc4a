/*
 * Exported CPU filters of libimage_filter_common.so.
 *
 * Each filter walks width x height pixels of the source, rows taken as
 * contiguous (strides are ignored), advancing source and destination by the
 * source's channel count; bytes 0..2 are written, byte 3 never.
 */
#ifndef IMAGE_FILTER_FILTERS_H
#define IMAGE_FILTER_FILTERS_H

#include "image_filter/image.h"

#ifdef __cplusplus
extern "C" {
#endif

/* Builds the YUV and clamp tables. They are built when the library loads, so
   nothing needs to call this; a call does nothing more (thread-safe). */
IFC_API void image_filter_initialize(void);
/* Does nothing and returns its argument. */
IFC_API intptr_t image_filter_uninitialize(intptr_t word);

IFC_API void image_filter_gray(const _Image* source, _Image* destination);
/* curve: 256 entries of 3 bytes (R, G, B curve values side by side). */
IFC_API void image_filter_curve(const _Image* source, _Image* destination,
                                const unsigned char* curve);
IFC_API void image_filter_gauss_channel(const _Image* source, _Image* destination, int channel);
/* m: 4x4 colour matrix, column-major (m[col * 4 + row]). */
IFC_API void image_filter_matrix(const _Image* source, _Image* destination, const float* m);

#ifdef __cplusplus
}
#endif

#endif /* IMAGE_FILTER_FILTERS_H */
