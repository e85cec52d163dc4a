#include "engine/gl/filter_param.h"

#include <tinyxml2.h>

#include <cstdlib>
#include <cstring>

#include "engine/cpu/cpu_filter.h"
#include "engine/gl/gl_filter.h"
#include "engine/gl/xml_text.h"
#include "engine/resource_loader.h"
#include "jni/bridge/log.h"

namespace {

// GL and CPU leaves share their setter operations but no base class that
// declares them; a parameter reaches whichever one the filter is.
template <typename Call>
void withSetters(IHFFilter* filter, Call&& call) {
    if (auto* gl = dynamic_cast<HFGLFilter*>(filter)) {
        call(gl);
    } else if (auto* cpu = dynamic_cast<HFCPUFilter*>(filter)) {
        call(cpu);
    }
}

float readFloat(const char* text) { return text != nullptr ? static_cast<float>(strtod(text, nullptr)) : 0.0f; }

// Up to `count` "number" children; missing or empty ones stay 0.
void readNumbers(const tinyxml2::XMLElement* element, float* values, int count) {
    int i = 0;
    for (const tinyxml2::XMLElement* number = element->FirstChildElement("number");
         number != nullptr && i < count; number = number->NextSiblingElement("number"), ++i) {
        values[i] = readFloat(xmlTextOf(number));
    }
}

// Comma-separated integers, each scaled by 1/256; entries past 256 are dropped.
void readCurve(const char* text, float* values, int capacity) {
    if (text == nullptr) return;
    const char* token = text;
    for (int i = 0; i < capacity; ++i) {
        values[i] = static_cast<float>(atoi(token)) * 0.00390625f;
        token = strchr(token, ',');
        if (token == nullptr) return;
        ++token;
    }
}

template <typename Param>
shared_ptr<HFFilterParam> named(Param* param, const char* name) {
    param->name = name != nullptr ? name : "";
    return shared_ptr<HFFilterParam>(param);
}

}  // namespace

HFFilterParam::~HFFilterParam() = default;

shared_ptr<HFFilterParam> HFFilterParam::parse(const tinyxml2::XMLElement* param) {
    // The very first child node must be the "name" element; text or a
    // comment in front of it makes the param malformed.
    const tinyxml2::XMLNode* first = param->FirstChild();
    const tinyxml2::XMLElement* nameElement = first != nullptr ? first->ToElement() : nullptr;
    if (nameElement == nullptr || strcmp(nameElement->Value(), "name") != 0) {
        log_printE("xml parse error in param");
        return shared_ptr<HFFilterParam>();
    }
    const char* name = xmlTextOf(nameElement);
    const tinyxml2::XMLElement* valueElement = nameElement->NextSiblingElement();
    if (valueElement == nullptr) return shared_ptr<HFFilterParam>();
    const char* type = valueElement->Value();
    const char* text = xmlTextOf(valueElement);

    if (strcmp(type, "float") == 0) {
        auto* p = new HFFloatParam();
        p->value = readFloat(text);
        return named(p, name);
    }
    if (strcmp(type, "vector4f") == 0) {
        auto* p = new HFVec4Param();
        readNumbers(valueElement, p->values, 4);
        return named(p, name);
    }
    if (strcmp(type, "matrix4f") == 0) {
        auto* p = new HFMatrix4Param();
        readNumbers(valueElement, p->values, 16);
        return named(p, name);
    }
    if (strcmp(type, "curve") == 0) {
        auto* p = new HFCurveParam();
        readCurve(text, p->values, HFCurveParam::kSize);
        return named(p, name);
    }
    if (strcmp(type, "image") == 0) {
        auto* p = new HFImageParam();
        p->file = text != nullptr ? text : "";
        return named(p, name);
    }
    // "int", "vector2f", "vector3f" and anything else are deliberately unsupported.
    return shared_ptr<HFFilterParam>();
}

void HFFloatParam::apply(IHFFilter* filter, const std::string&) {
    withSetters(filter, [this](auto* f) { f->setFloat(name.c_str(), value); });
}

void HFVec4Param::apply(IHFFilter* filter, const std::string&) {
    withSetters(filter, [this](auto* f) { f->setVec4(name.c_str(), values); });
}

void HFMatrix4Param::apply(IHFFilter* filter, const std::string&) {
    withSetters(filter, [this](auto* f) { f->setMatrix4(name.c_str(), values); });
}

void HFCurveParam::apply(IHFFilter* filter, const std::string&) {
    withSetters(filter, [this](auto* f) { f->setFloatArray(name.c_str(), values, kSize); });
}

void HFImageParam::apply(IHFFilter* filter, const std::string& packageName) {
    const int index = atoi(name.c_str());
    const std::string path = "filter/" + packageName + "/" + file;
    // A missing file hands a null image on; the filter copes with it.
    _Image* image = HFResourceLoader_loadRGBAResource(path.c_str());
    filter->setInputTextureImage(image, index);
    // A header (no allocated size) borrows its pixels, e.g. from a bitmap the
    // bundle bound: only the record is ours to free.
    if (image != nullptr && image->size == 0) {
        free_image_header(&image);
    } else {
        free_image(&image);
    }
}
