// Metadata markers (EXIF and the like) that an image may carry.
#include <cstdlib>

#include "image_filter/image.h"

extern "C" {

IFC_API _ImageMarker* create_marker(void) {
    return static_cast<_ImageMarker*>(std::calloc(1, sizeof(_ImageMarker)));
}

IFC_API void free_marker(_ImageMarker* head) {
    while (head != nullptr) {
        _ImageMarker* next = head->next;
        std::free(head->data);
        std::free(head);
        head = next;
    }
}

}  // extern "C"
