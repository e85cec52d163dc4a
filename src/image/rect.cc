// MRect algebra. Sums wrap at 32 bits like the signed int arithmetic the
// callers were written against, without relying on overflow behaviour.
#include <algorithm>

#include "image/image_internal.h"

namespace {

int32_t add(int32_t a, int32_t b) {
    return static_cast<int32_t>(static_cast<uint32_t>(a) + static_cast<uint32_t>(b));
}

int32_t sub(int32_t a, int32_t b) {
    return static_cast<int32_t>(static_cast<uint32_t>(a) - static_cast<uint32_t>(b));
}

int32_t right(const MRect* r) { return add(r->x, r->width); }
int32_t bottom(const MRect* r) { return add(r->y, r->height); }
bool hasZeroSize(const MRect* r) { return r->width == 0 || r->height == 0; }

int scaled(int32_t value, float factor) {
    float product = static_cast<float>(value) * factor;  // single precision, as the callers expect
    return ifc::roundHalfUp(static_cast<double>(product));
}

}  // namespace

extern "C" {

IFC_API void clear_mrect(MRect* rect) {
    if (rect != nullptr) *rect = MRect{};
}

IFC_API int is_empty_rect(const MRect* rect) {
    // Only zero sizes are empty; negative ones are not.
    return hasZeroSize(rect) ? 1 : 0;
}

IFC_API void inflate_rect(MRect* rect, int dx, int dy) {
    rect->x = sub(rect->x, dx);
    rect->y = sub(rect->y, dy);
    rect->width = add(rect->width, add(dx, dx));
    rect->height = add(rect->height, add(dy, dy));
}

IFC_API void validate_rect(MRect* out, const MRect* rect, const MRect* bounds) {
    MRect r = *rect;
    // Moving the near edge does not shrink the size; only the far edge is clipped.
    r.x = std::max(r.x, bounds->x);
    r.y = std::max(r.y, bounds->y);
    if (right(&r) > right(bounds)) r.width = sub(right(bounds), r.x);
    if (bottom(&r) > bottom(bounds)) r.height = sub(bottom(bounds), r.y);
    *out = r;
}

IFC_API void intersect(MRect* out, const MRect* a, const MRect* b) {
    MRect r;
    r.x = std::max(a->x, b->x);
    r.y = std::max(a->y, b->y);
    r.width = std::max(sub(std::min(right(a), right(b)), r.x), 0);
    r.height = std::max(sub(std::min(bottom(a), bottom(b)), r.y), 0);
    *out = r;
}

IFC_API void unionrect(MRect* out, const MRect* a, const MRect* b) {
    if (hasZeroSize(b)) {
        *out = *a;
        return;
    }
    if (hasZeroSize(a)) {
        *out = *b;
        return;
    }
    MRect r;
    r.x = std::min(a->x, b->x);
    r.y = std::min(a->y, b->y);
    r.width = std::max(sub(std::max(right(a), right(b)), r.x), 0);
    r.height = std::max(sub(std::max(bottom(a), bottom(b)), r.y), 0);
    *out = r;
}

IFC_API int in_range(const MRect* rect, int width, int height) {
    if (rect->x < 0 || right(rect) > width || rect->y < 0 || bottom(rect) > height || rect->width < 0 ||
        rect->height < 0) {
        return -1;
    }
    return 1;
}

IFC_API int rect_contains_rect(const MRect* outer, const MRect* inner) {
    return inner->x >= outer->x && right(inner) <= right(outer) && inner->y >= outer->y &&
                   bottom(inner) <= bottom(outer)
               ? 1
               : 0;
}

IFC_API MRect* scale_rect(MRect* out, const MRect* in, float factor) {
    return scale_rect_xy(out, in, factor, factor);
}

IFC_API MRect* scale_rect_xy(MRect* out, const MRect* in, float x_factor, float y_factor) {
    MRect r;
    r.x = scaled(in->x, x_factor);
    r.y = scaled(in->y, y_factor);
    r.width = scaled(in->width, x_factor);
    r.height = scaled(in->height, y_factor);
    *out = r;
    return out;
}

}  // extern "C"
