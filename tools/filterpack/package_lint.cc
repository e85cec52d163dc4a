#include "package_lint.h"

#include <tinyxml2.h>

#include <cstdlib>
#include <cstring>

#include "bundle_file.h"
#include "engine/cpu/cpu_registry.h"
#include "engine/gl/gl_filter_impl.h"
#include "glsl_check.h"
#include "model_wiring.h"
#include "param_lint.h"
#include "suggest.h"
#include "vocabulary.h"

namespace filterpack {
namespace {

std::string packageFile(const std::string& name) { return "filter/" + name + "/filter.xml"; }

// Relation attributes are read with atoi; anything else than a plain
// integer is reported rather than silently read as 0.
bool readInteger(const tinyxml2::XMLAttribute* attribute, int* value) {
    if (attribute == nullptr) return false;
    const char* text = attribute->Value();
    char* end = nullptr;
    const long parsed = std::strtol(text, &end, 10);
    *value = static_cast<int>(parsed);
    return end != text && end[std::strspn(end, " \t")] == '\0';
}

}  // namespace

const DescriptionInfo& PackageLinter::description(const std::string& implement) {
    auto found = descriptions.find(implement);
    if (found != descriptions.end()) return found->second;
    return descriptions.emplace(implement, lintDescription(implement, bundle, &found_)).first->second;
}

const UniformInfo* PackageLinter::uniform(const std::string& name) const {
    for (const auto& description : descriptions) {
        auto found = description.second.uniforms.find(name);
        if (found != description.second.uniforms.end()) return &found->second;
    }
    return nullptr;
}

std::vector<std::string> PackageLinter::uniformNames() const {
    std::set<std::string> names;
    for (const auto& description : descriptions) {
        for (const auto& uniform : description.second.uniforms) {
            if (!isAutomaticUniform(uniform.first)) names.insert(uniform.first);
        }
    }
    return std::vector<std::string>(names.begin(), names.end());
}

FilterSummary PackageLinter::lintPackageFrom(const std::string& name, const tinyxml2::XMLElement* includer,
                                             const std::string& includerFile) {
    const std::string file = packageFile(name);
    for (size_t i = 0; i < loading.size(); ++i) {
        if (loading[i] != name) continue;
        std::string cycle;
        for (size_t k = i; k < loading.size(); ++k) cycle += loading[k] + " -> ";
        found_.add(Severity::kError, includerFile, includer, "include cycle: " + cycle + name);
        return FilterSummary();
    }
    auto done = packages.find(name);
    if (done != packages.end()) return done->second;

    loading.push_back(name);
    FilterSummary summary;
    BundleXml xml(bundle, file, &found_);
    if (includer != nullptr && xml.root() == nullptr) {
        found_.add(Severity::kError, includerFile, includer,
                   "includes package " + name + ", which cannot be loaded" + didYouMean(name, bundle.packageNames()));
    }
    if (tinyxml2::XMLElement* root = xml.root()) {
        if (std::strcmp(root->Name(), "model") == 0) {
            summary = lintModel(root, file);
        } else if (std::strcmp(root->Name(), "filter") == 0 && root->FindAttribute("include") != nullptr) {
            found_.add(Severity::kError, file, root,
                       "include works on a <filter> inside a <model>; at the top of a package the engine reads a "
                       "leaf filter with no implement. Write <model><filter include=\"" +
                           std::string(root->Attribute("include")) + "\"/></model>");
        } else if (std::strcmp(root->Name(), "filter") == 0) {
            summary = lintLeaf(root, file, name);
            if (includer == nullptr && summary.kind == FilterSummary::Kind::kCPU) {
                found_.add(Severity::kError, file, root,
                           "a package of one CPU filter leaves no GL texture for the app to read");
            }
            // Run on its own, a leaf gets the picture at input 0 and only its
            // image params elsewhere.
            for (int slot : summary.sampledSlots) {
                if (includer == nullptr && slot > 0 && summary.imageSlots.count(slot) == 0) {
                    found_.add(Severity::kWarning, file, root,
                               "samples " + samplerName(slot) + " but nothing feeds input " + std::to_string(slot));
                }
            }
        } else {
            found_.add(Severity::kError, file, root,
                       "the root must be <model> or <filter>" + didYouMean(root->Name(), {"model", "filter"}, "<", ">"));
        }
    }
    loading.pop_back();
    packages[name] = summary;
    return summary;
}

FilterSummary PackageLinter::lintLeaf(const tinyxml2::XMLElement* leaf, const std::string& file,
                                      const std::string& packageName) {
    FilterSummary summary;
    checkAttributes(file, leaf, {"implement", "prefer"}, &found_);
    checkChildren(file, leaf, {"param"}, &found_);
    const tinyxml2::XMLAttribute* implement = leaf->FindAttribute("implement");
    const tinyxml2::XMLAttribute* prefer = leaf->FindAttribute("prefer");
    // Only the exact text "GPU" keeps a leaf on the GPU.
    const bool cpu = prefer != nullptr && std::strcmp(prefer->Value(), "GPU") != 0;
    if (prefer != nullptr && cpu && std::strcmp(prefer->Value(), "CPU") != 0) {
        found_.add(Severity::kWarning, file, leaf,
                   std::string("prefer=\"") + prefer->Value() + "\" selects the CPU; only \"GPU\" selects the GL filter");
    }
    if (implement == nullptr || *implement->Value() == '\0') {
        found_.add(Severity::kError, file, leaf, "has no implement attribute");
        return summary;
    }
    const std::string name = implement->Value();
    const DescriptionInfo* info = nullptr;
    if (cpu) {
        if (!HFCPUFilterRegistry_contains(name) || HFCPUFilterRegistry_lookup(name) == nullptr) {
            found_.add(Severity::kError, file, leaf, "no CPU filter function is registered as \"" + name + "\"");
        }
        summary.kind = FilterSummary::Kind::kCPU;
    } else if (!bundle.contains(HFGLFilterImpl::pathOf(name))) {
        std::string hint = didYouMean(name, bundle.descriptionNames());
        if (HFCPUFilterRegistry_lookup(name) != nullptr) hint = "; \"" + name + "\" is a CPU function: add prefer=\"CPU\"";
        found_.add(Severity::kError, file, leaf,
                   "implement=\"" + name + "\" names no GL description: there is no " +
                       bundle.pathOnDisk(HFGLFilterImpl::pathOf(name)) + hint);
    } else {
        info = &description(name);
        if (info->usable) {
            summary.kind = FilterSummary::Kind::kGL;
            summary.outputIsGL = true;
            for (int slot = 0; slot < 4; ++slot) {
                if (info->samples(slot)) summary.sampledSlots.insert(slot);
            }
        } else {
            found_.add(Severity::kError, file, leaf, "its GL description filter/gl/" + name + ".xml is not usable");
            info = nullptr;
        }
    }
    const ParamContext context{file, packageName, info, name, bundle};
    std::set<std::string> setByParams;
    for (const tinyxml2::XMLElement* param = leaf->FirstChildElement("param"); param != nullptr;
         param = param->NextSiblingElement("param")) {
        lintParam(param, context, &found_, &summary.imageSlots);
        const tinyxml2::XMLElement* paramName = param->FirstChildElement("name");
        if (paramName != nullptr && paramName->GetText() != nullptr) setByParams.insert(paramName->GetText());
    }
    if (info != nullptr) warnUnsetUniforms(*info, setByParams, file, leaf);
    if (cpu && !summary.imageSlots.empty()) {
        found_.add(Severity::kWarning, file, leaf, "a CPU filter ignores image params");
        summary.imageSlots.clear();
    }
    return summary;
}

// A uniform no param sets keeps GL's initial value, 0, which is rarely what
// the shader's author meant.
void PackageLinter::warnUnsetUniforms(const DescriptionInfo& info, const std::set<std::string>& setByParams,
                                      const std::string& file, const tinyxml2::XMLElement* leaf) {
    for (const auto& uniform : info.uniforms) {
        if (!uniform.second.active || isAutomaticUniform(uniform.first) || setByParams.count(uniform.first) != 0) {
            continue;
        }
        found_.add(Severity::kWarning, file, leaf,
                   "uniform " + uniform.first + " (" + glslTypeName(uniform.second.type, uniform.second.arraySize) +
                       ") is set by no param: it stays 0");
    }
}

FilterSummary PackageLinter::lintInclude(const tinyxml2::XMLElement* filter, const std::string& file) {
    checkAttributes(file, filter, {"include", "implement", "prefer"}, &found_);
    const std::string included = filter->Attribute("include");
    if (included.empty()) {
        found_.add(Severity::kError, file, filter, "include names no package");
        return FilterSummary();
    }
    // The engine parses the including element into the included package's
    // shared node, so anything written here changes it for every user.
    if (filter->FirstChildElement() != nullptr || filter->FindAttribute("implement") != nullptr ||
        filter->FindAttribute("prefer") != nullptr) {
        found_.add(Severity::kWarning, file, filter,
                   "what an including element carries is parsed into package " + included +
                       " and reaches every model that includes it");
    }
    return lintPackageFrom(included, filter, file);
}

FilterSummary PackageLinter::lintModel(const tinyxml2::XMLElement* model, const std::string& file) {
    checkAttributes(file, model, {}, &found_);
    checkChildren(file, model, {"filter", "relation"}, &found_);
    std::vector<FilterSummary> children;
    std::vector<const tinyxml2::XMLElement*> elements;
    for (const tinyxml2::XMLElement* child = model->FirstChildElement(); child != nullptr;
         child = child->NextSiblingElement()) {
        const std::string tag = child->Name();
        if (tag == "relation") {
            checkAttributes(file, child, {"output", "input", "index"}, &found_);
            checkChildren(file, child, {}, &found_);
            continue;
        }
        if (tag != "filter") continue;
        elements.push_back(child);
        children.push_back(child->FindAttribute("include") != nullptr ? lintInclude(child, file)
                                                                      : lintLeaf(child, file, std::string()));
    }
    FilterSummary summary;
    if (children.empty()) {
        found_.add(Severity::kError, file, model, "a model needs at least one <filter>");
        return summary;
    }

    const int count = static_cast<int>(children.size());
    ModelWiring wiring(count);
    for (const tinyxml2::XMLElement* relation = model->FirstChildElement("relation"); relation != nullptr;
         relation = relation->NextSiblingElement("relation")) {
        int values[3] = {0, 0, 0};
        bool complete = true;
        const char* names[3] = {"output", "input", "index"};
        for (int i = 0; i < 3; ++i) {
            const tinyxml2::XMLAttribute* attribute = relation->FindAttribute(names[i]);
            if (attribute == nullptr) {
                found_.add(Severity::kError, file, relation, std::string("missing attribute ") + names[i]);
                complete = false;
            } else if (!readInteger(attribute, &values[i])) {
                found_.add(Severity::kError, file, relation,
                           std::string(names[i]) + "=\"" + attribute->Value() + "\" is not an integer");
                complete = false;
            }
        }
        if (!complete) continue;
        const ModelWiring::Verdict verdict = wiring.relate(values[0], values[1], values[2]);
        if (!verdict.message.empty()) {
            found_.add(verdict.error ? Severity::kError : Severity::kWarning, file, relation, verdict.message);
        }
    }

    bool broken = false;
    for (int i = 0; i < count; ++i) {
        const FilterSummary& child = children[i];
        broken = broken || child.kind == FilterSummary::Kind::kBroken;
        if (!child.outputIsGL && child.kind != FilterSummary::Kind::kBroken) {
            for (const ModelWiring::Slot& slot : wiring.destinationsOf(i)) {
                found_.add(Severity::kError, file, elements[i],
                           "child " + std::to_string(i) + " leaves no GL texture, yet feeds child " +
                               std::to_string(slot.first) + " input " + std::to_string(slot.second));
            }
        }
        for (int slot : child.sampledSlots) {
            if (child.imageSlots.count(slot) == 0 && wiring.sourceOf(i, slot) == ModelWiring::kNobody) {
                found_.add(Severity::kWarning, file, elements[i],
                           "child " + std::to_string(i) + " samples " + samplerName(slot) + " but nothing feeds input " +
                               std::to_string(slot));
            }
        }
    }
    const FilterSummary& last = children.back();
    if (last.kind != FilterSummary::Kind::kBroken && !last.outputIsGL) {
        found_.add(Severity::kError, file, elements.back(),
                   "the last filter of a model must leave a GL texture; this one does not");
    }
    summary.kind = broken ? FilterSummary::Kind::kBroken : FilterSummary::Kind::kModel;
    summary.outputIsGL = last.outputIsGL;
    return summary;
}

}  // namespace filterpack
