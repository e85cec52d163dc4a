// CPU parameters and curves: a parameter of each kind built from text,
// parsed, applied to a CPU filter and read back; curves match a plain
// reading of their comma-separated integers.
#include <tinyxml2.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>

#include "engine/cpu/cpu_filter.h"
#include "engine/gl/filter_param.h"
#include "fuzz_bundle.h"

namespace {

const char* const kTypes[] = {"float", "vector4f", "matrix4f", "curve", "image", "int", "vector2f"};

// atoi of each comma-separated entry, scaled by 1/256; 256 entries at most.
void referenceCurve(const std::string& text, float* values) {
    size_t at = 0;
    for (int i = 0; i < HFCurveParam::kSize; ++i) {
        values[i] = static_cast<float>(atoi(text.c_str() + at)) * 0.00390625f;
        at = text.find(',', at);
        if (at == std::string::npos) return;
        ++at;
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size < 1) return 0;
    // Image parameters read the (empty) bundle, never the Java callbacks.
    static FuzzBundle bundle;
    const char* type = kTypes[data[0] % (sizeof kTypes / sizeof kTypes[0])];
    const std::string text(reinterpret_cast<const char*>(data + 1), strnlen(reinterpret_cast<const char*>(data + 1), size - 1));

    // <param><name>p</name><TYPE>text, or "number" children split at '|'</TYPE></param>
    tinyxml2::XMLDocument document;
    tinyxml2::XMLElement* param = document.NewElement("param");
    document.InsertEndChild(param);
    param->InsertNewChildElement("name")->SetText("p");
    tinyxml2::XMLElement* value = param->InsertNewChildElement(type);
    const bool numbers = strstr(type, "vector") != nullptr || strstr(type, "matrix") != nullptr;
    if (numbers) {
        for (size_t start = 0; start <= text.size();) {
            size_t end = text.find('|', start);
            if (end == std::string::npos) end = text.size();
            value->InsertNewChildElement("number")->SetText(text.substr(start, end - start).c_str());
            start = end + 1;
        }
    } else if (!text.empty()) {
        value->SetText(text.c_str());
    }

    shared_ptr<HFFilterParam> parsed = HFFilterParam::parse(param);
    if (!parsed) return 0;
    HFCPUFilter filter("Curve2D");
    parsed->apply(&filter, "fz");
    auto found = filter.parameters().find("p");
    if (found == filter.parameters().end()) return 0;
    ICPUInnerParam* stored = found->second.get();
    const float* floats = stored->getFloatArray();
    for (int i = 0; floats != nullptr && i < stored->count(); ++i) (void)floats[i];

    if (auto* curve = dynamic_cast<HFCurveParam*>(parsed.get())) {
        float expected[HFCurveParam::kSize] = {};
        if (!text.empty()) referenceCurve(text, expected);
        if (stored->count() != HFCurveParam::kSize ||
            std::memcmp(expected, curve->values, sizeof expected) != 0 ||
            std::memcmp(floats, curve->values, sizeof expected) != 0) {
            abort();
        }
    }
    return 0;
}
