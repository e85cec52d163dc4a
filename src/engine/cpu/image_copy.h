// Private copies of images held by CPU textures, parameters and filters.
#ifndef IFC_ENGINE_CPU_IMAGE_COPY_H
#define IFC_ENGINE_CPU_IMAGE_COPY_H

#include "image_filter/image.h"

// Same size and format; allocated with the source's own stride because
// copy_image moves stride x height bytes. Null for a null source or one
// without pixels.
inline _Image* copyOfImage(const _Image* source) {
    if (source == nullptr || source->data == nullptr) return nullptr;
    _Image* copy = create_image(source->width, source->height, static_cast<unsigned int>(source->channels),
                                source->stride);
    if (copy != nullptr) copy_image(copy, source);
    return copy;
}

#endif  // IFC_ENGINE_CPU_IMAGE_COPY_H
