#include "engine/runtime_params.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>

#include "engine/cpu/cpu_filter.h"
#include "engine/filter_model_node.h"
#include "engine/filter_object.h"
#include "engine/filter_package.h"
#include "engine/filter_wraper.h"
#include "engine/gl/filter_desc_node.h"

namespace {

bool kindOfParam(const HFFilterParam* param, HFParamKind* kind) {
    if (dynamic_cast<const HFFloatParam*>(param) != nullptr) {
        *kind = HFParamKind::Float;
    } else if (dynamic_cast<const HFVec4Param*>(param) != nullptr) {
        *kind = HFParamKind::Vec4;
    } else if (dynamic_cast<const HFMatrix4Param*>(param) != nullptr) {
        *kind = HFParamKind::Matrix4;
    } else if (dynamic_cast<const HFCurveParam*>(param) != nullptr) {
        *kind = HFParamKind::Curve;
    } else {
        return false;  // images: their name is an input slot, not a value
    }
    return true;
}

// Comma-separated numbers, each read whole; false on anything else.
bool readNumbers(const char* text, std::vector<double>* numbers, bool integers) {
    const char* at = text;
    for (;;) {
        char* end = nullptr;
        errno = 0;
        const double value = integers ? static_cast<double>(strtol(at, &end, 10)) : strtod(at, &end);
        if (end == at || errno == ERANGE) return false;
        numbers->push_back(value);
        while (*end == ' ' || *end == '\t') ++end;
        if (*end == '\0') return true;
        if (*end != ',') return false;
        at = end + 1;
    }
}

// A param of `kind` named `name` holding the value written in `text`; empty
// when the text does not fit the kind.
shared_ptr<HFFilterParam> paramFromText(HFParamKind kind, const char* name, const char* text) {
    std::vector<double> numbers;
    if (!readNumbers(text, &numbers, kind == HFParamKind::Curve)) return shared_ptr<HFFilterParam>();
    HFFilterParam* param = nullptr;
    switch (kind) {
    case HFParamKind::Float:
        if (numbers.size() != 1) break;
        param = new HFFloatParam();
        static_cast<HFFloatParam*>(param)->value = static_cast<float>(numbers[0]);
        break;
    case HFParamKind::Vec4:
        if (numbers.size() != 4) break;
        param = new HFVec4Param();
        for (int i = 0; i < 4; ++i) static_cast<HFVec4Param*>(param)->values[i] = static_cast<float>(numbers[i]);
        break;
    case HFParamKind::Matrix4:
        if (numbers.size() != 16) break;
        param = new HFMatrix4Param();
        for (int i = 0; i < 16; ++i) static_cast<HFMatrix4Param*>(param)->values[i] = static_cast<float>(numbers[i]);
        break;
    case HFParamKind::Curve:
        if (numbers.size() > static_cast<size_t>(HFCurveParam::kSize)) break;
        param = new HFCurveParam();
        // Same unit as the package file: n / 256; missing entries stay 0.
        for (size_t i = 0; i < numbers.size(); ++i) {
            static_cast<HFCurveParam*>(param)->values[i] = static_cast<float>(numbers[i] * 0.00390625);
        }
        break;
    }
    if (param != nullptr) param->name = name;
    return shared_ptr<HFFilterParam>(param);
}

const char* expectedText(HFParamKind kind) {
    switch (kind) {
    case HFParamKind::Float: return "one number";
    case HFParamKind::Vec4: return "4 comma-separated numbers";
    case HFParamKind::Matrix4: return "16 comma-separated numbers";
    case HFParamKind::Curve: return "1 to 256 comma-separated integers";
    }
    return "";
}

}  // namespace

const char* HFParamKind_name(HFParamKind kind) {
    switch (kind) {
    case HFParamKind::Float: return "float";
    case HFParamKind::Vec4: return "vector4f";
    case HFParamKind::Matrix4: return "matrix4f";
    case HFParamKind::Curve: return "curve";
    }
    return "";
}

void HFRuntimeParams::collect(const shared_ptr<IHFFilterNode>& node, IHFFilter* filter) {
    if (!node || filter == nullptr) return;
    // Cached nodes may gain params from a package loading on another thread.
    const std::lock_guard<std::recursive_mutex> lock(HFFilterPackage_lock());
    if (const auto* model = dynamic_cast<const HFFilterModelNode*>(node.get())) {
        auto* composite = dynamic_cast<HFFilterObject*>(filter);
        if (composite == nullptr) return;
        const size_t count = std::min(model->children.size(), composite->filterCount());
        for (size_t i = 0; i < count; ++i) collect(model->children[i], composite->filterAt(i).get());
    } else if (const auto* leaf = dynamic_cast<const HFFilterDescNode*>(node.get())) {
        for (const shared_ptr<HFFilterParam>& param : leaf->params) {
            HFParamKind kind;
            if (param && kindOfParam(param.get(), &kind)) targets.push_back(Target{filter, param->name, kind});
        }
    }
}

bool HFRuntimeParams::kindOf(const std::string& name, HFParamKind* kind) const {
    for (const Target& target : targets) {
        if (target.name == name) {
            *kind = target.kind;
            return true;
        }
    }
    return false;
}

std::string HFRuntimeParams::set(const shared_ptr<HFFilterParam>& value) {
    HFParamKind kind;
    if (!value || !kindOfParam(value.get(), &kind)) return "only float, vector4f, matrix4f and curve params can be set";
    HFParamKind declared;
    if (!kindOf(value->name, &declared)) return "the package declares no param " + value->name;
    bool reaches = false;
    for (const Target& target : targets) reaches = reaches || (target.name == value->name && target.kind == kind);
    if (!reaches) {
        return std::string("param ") + value->name + " is a " + HFParamKind_name(declared) + ", not a " +
               HFParamKind_name(kind);
    }
    for (shared_ptr<HFFilterParam>& queued : pending) {
        if (queued->name == value->name) {
            queued = value;
            return std::string();
        }
    }
    pending.push_back(value);
    return std::string();
}

void HFRuntimeParams::applyPending() {
    std::vector<shared_ptr<HFFilterParam>> values;
    values.swap(pending);
    for (const shared_ptr<HFFilterParam>& value : values) {
        HFParamKind kind;
        kindOfParam(value.get(), &kind);
        for (const Target& target : targets) {
            if (target.name != value->name || target.kind != kind) continue;
            if (auto* cpu = dynamic_cast<HFCPUFilter*>(target.filter)) cpu->eraseParameter(value->name.c_str());
            // Float, vector, matrix and curve params do not use the package name.
            value->apply(target.filter, std::string());
        }
    }
}

bool HFFilterWraper_setParameter(HFFilterWraper* wraper, const char* name, const char* value, std::string* problem) {
    std::string reason;
    HFParamKind kind;
    if (wraper == nullptr) {
        reason = "no filter package";
    } else if (name == nullptr || value == nullptr) {
        reason = "a parameter needs a name and a value";
    } else if (!wraper->params.kindOf(name, &kind)) {
        reason = std::string("the package declares no param ") + name;
    } else {
        shared_ptr<HFFilterParam> param = paramFromText(kind, name, value);
        if (param && wraper->setParameter(param)) return true;
        if (!param) {
            reason = std::string("param ") + name + " is a " + HFParamKind_name(kind) + ": \"" + value +
                     "\" is not " + expectedText(kind);
        }
    }
    if (wraper != nullptr && !reason.empty()) wraper->reportProblem(reason);
    if (problem != nullptr) *problem = wraper != nullptr ? wraper->lastProblem() : reason;
    return false;
}
