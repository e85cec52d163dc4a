// Float to integer conversions for values that come from Java or from package
// files, where any float can arrive and a plain cast out of range is undefined.
#ifndef IFC_ENGINE_SATURATING_CAST_H
#define IFC_ENGINE_SATURATING_CAST_H

#include <cstdint>

// Truncated toward zero and clamped to the int32 range; NaN gives 0.
inline int32_t saturatingTruncate(float value) {
    if (!(value == value)) return 0;
    if (value >= 2147483648.0f) return INT32_MAX;
    if (value <= -2147483648.0f) return INT32_MIN;
    return static_cast<int32_t>(value);
}

#endif  // IFC_ENGINE_SATURATING_CAST_H
