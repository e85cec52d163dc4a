#include "engine/cpu/cpu_param.h"

#include <algorithm>

#include "engine/cpu/image_copy.h"

ICPUInnerParam::~ICPUInnerParam() = default;

CPUFloatArrayParam::~CPUFloatArrayParam() { delete[] values; }

// New values are copied before the old ones are freed: `data` may be this
// parameter's own array.
void CPUFloatArrayParam::assign(int newCount, const float* data) {
    const int count = newCount > 0 ? newCount : 0;
    float* copy = new float[static_cast<size_t>(count)]();
    if (count > 0 && data != nullptr) std::copy(data, data + count, copy);
    delete[] values;
    values = copy;
    elementCount = count;
}

CPUImageParam::~CPUImageParam() { free_image(&image); }

void CPUImageParam::setImage(_Image* source) {
    _Image* copy = copyOfImage(source);
    free_image(&image);
    image = copy;
}
