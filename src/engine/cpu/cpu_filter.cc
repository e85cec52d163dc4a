#include "engine/cpu/cpu_filter.h"

#include <cstdio>
#include <string>

#include "engine/cpu/cpu_texture.h"
#include "engine/cpu/image_copy.h"

shared_ptr<IHFFilter> HFCPUFilter::createFilter(const char* name) {
    return shared_ptr<IHFFilter>(new HFCPUFilter(name));
}

// An unregistered name gets a null function: render then passes its input
// through unchanged.
HFCPUFilter::HFCPUFilter(const char* name)
    : function(HFCPUFilterRegistry_lookup(name != nullptr ? name : "")) {}

HFCPUFilter::~HFCPUFilter() = default;

void HFCPUFilter::setInputTextureSize(HFSize) {}

void HFCPUFilter::setInputTextureImage(_Image*, int) {}

// Only input 0 is a texture slot; inputs 1-3 become image parameters named
// "inputImageTexture2".."inputImageTexture4".
void HFCPUFilter::setInputTexture(shared_ptr<IHFTexture> texture, int index) {
    if (index >= 4 || index < 0) return;
    if (index == 0) {
        inputs[0] = texture;
        return;
    }
    char name[64] = {};
    std::snprintf(name, sizeof(name), "inputImageTexture%d", index + 1);
    shared_ptr<ICPUInnerParam> param(new CPUImageParam());
    param->setImage(texture ? texture->image() : nullptr);
    insertParam(name, param);
}

shared_ptr<IHFTexture> HFCPUFilter::getInputTexture(int index) {
    if (index < 0 || index >= 4) return shared_ptr<IHFTexture>();
    return inputs[index];
}

void HFCPUFilter::setProperty(const char*, float) {}

void HFCPUFilter::setFilterFBO() {}

namespace {

bool sameLayout(const _Image& a, const _Image& b) {
    return a.width == b.width && a.height == b.height && a.channels == b.channels && a.stride == b.stride;
}

// The image of the previous output when nobody but the filter holds that
// texture any more and the new frame has the same layout; null otherwise.
_Image* reclaimImage(shared_ptr<IHFTexture>& output, const _Image& layout) {
    if (output.use_count() != 1) return nullptr;
    auto* texture = dynamic_cast<HFCPUTexture*>(output.get());
    _Image* image = texture != nullptr ? texture->image() : nullptr;
    if (image == nullptr || image->data == nullptr || !sameLayout(*image, layout)) return nullptr;
    return texture->releaseImage();
}

}  // namespace

// Works on a private copy of input 0's image, made once per frame; the copy
// becomes the new output texture's image as it is. Its buffer is the previous
// output's when that texture is no longer held elsewhere. Without a CPU image
// at input 0 (empty slot, or a GL texture) nothing is rendered and the output
// stays.
void HFCPUFilter::render(_Image*) {
    shared_ptr<IHFTexture> input = inputs[0];
    _Image* source = input ? input->image() : nullptr;
    if (source == nullptr || source->data == nullptr) return;
    _Image* working = reclaimImage(output, *source);
    if (working != nullptr) {
        copy_image(working, source);
    } else {
        working = copyOfImage(source);
        if (working == nullptr) return;
    }
    if (function != nullptr) function(working, HFCPUParamMap(params));
    output = HFCPUTexture::adoptImage(working);
}

void HFCPUFilter::setFrameBufferBlendMode(int, int) {}

HFSize HFCPUFilter::outputTextureSize() {
    _Image* image = output ? output->image() : nullptr;
    return image != nullptr ? HFSize{image->width, image->height} : HFSize{0, 0};
}

shared_ptr<IHFTexture> HFCPUFilter::outputTexture() { return output; }

void HFCPUFilter::readOutput(_Image*) {}

void HFCPUFilter::clearMemoryData() {}

void HFCPUFilter::cpuCodeSlot() {}

void HFCPUFilter::insertParam(const char* name, shared_ptr<ICPUInnerParam> value) {
    // First value under a name wins; the new one is dropped.
    params.insert(HFCPUParamMap::value_type(std::string(name != nullptr ? name : ""), value));
}

void HFCPUFilter::setFloats(const char* name, const float* values, int count) {
    CPUFloatArrayParam* array = new CPUFloatArrayParam();
    shared_ptr<ICPUInnerParam> param(array);
    array->assign(values != nullptr ? count : 0, values);
    insertParam(name, param);
}

void HFCPUFilter::setInt(const char* name, int value) {
    insertParam(name, shared_ptr<ICPUInnerParam>(new CPUIntParam(value)));
}

void HFCPUFilter::setFloat(const char* name, float value) {
    insertParam(name, shared_ptr<ICPUInnerParam>(new CPUFloatParam(value)));
}

void HFCPUFilter::setVec2(const char* name, float* values) { setFloats(name, values, 2); }

void HFCPUFilter::setVec3(const char* name, float* values) { setFloats(name, values, 3); }

void HFCPUFilter::setVec4(const char* name, float* values) { setFloats(name, values, 4); }

void HFCPUFilter::setMatrix4(const char* name, float* values) { setFloats(name, values, 16); }

void HFCPUFilter::setFloatArray(const char* name, float* values, int count) { setFloats(name, values, count); }

void HFCPUFilter::setFloatArray(int, float*, int) {}

void HFCPUFilter::setVec2Array(const char*, float*, int) {}

float HFCPUFilter::getProperty(const char*) { return 0.0f; }
