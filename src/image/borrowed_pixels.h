// Which image records hold pixels they do not own. A header bound to a
// locked Android bitmap points at the bitmap's pixels; only the bitmap may
// release them. The record layout has no room for an ownership flag, so the
// library keeps a process-wide list of such records and every function that
// frees or replaces `data` consults it.
#ifndef IFC_IMAGE_BORROWED_PIXELS_H
#define IFC_IMAGE_BORROWED_PIXELS_H

#include "image_filter/image.h"

namespace ifc {

// Marks the record's current `data` as borrowed. False (nothing marked) when
// the list cannot grow; the caller must then not hand the record out.
bool markPixelsBorrowed(const _Image* image);

// True while the record's `data` is the buffer it was marked with.
bool pixelsBorrowed(const _Image* image);

// Drops the mark; called before the record itself is freed.
void forgetBorrowedPixels(const _Image* image);

}  // namespace ifc

#endif  // IFC_IMAGE_BORROWED_PIXELS_H
