#include "engine/cpu/cpu_param.h"

#include <algorithm>

#include "engine/cpu/image_copy.h"

ICPUInnerParam::~ICPUInnerParam() = default;

CPUFloatArrayParam::~CPUFloatArrayParam() { delete[] values; }

// Replacing an array frees the old one (the values are owned here).
void CPUFloatArrayParam::assign(int newCount, const float* data) {
    delete[] values;
    values = nullptr;
    elementCount = newCount > 0 ? newCount : 0;
    values = new float[static_cast<size_t>(elementCount)];
    if (elementCount > 0 && data != nullptr) std::copy(data, data + elementCount, values);
}

CPUImageParam::~CPUImageParam() { free_image(&image); }

void CPUImageParam::setImage(_Image* source) {
    free_image(&image);
    image = copyOfImage(source);
}
