#include "package_params.h"

#include <tinyxml2.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <memory>

#include "image_filter/image.h"

namespace filterpack {
namespace {

using tinyxml2::XMLElement;

struct ImageFree {
    void operator()(_Image* image) const { free_image(&image); }
};

std::string text(const XMLElement* element) {
    const char* value = element != nullptr ? element->GetText() : nullptr;
    return value != nullptr ? value : "";
}

// Numbers as the engine reads them (strtod, missing ones 0), comma-joined.
std::string numbers(const XMLElement* vector, int count) {
    std::string joined;
    const XMLElement* number = vector->FirstChildElement("number");
    for (int i = 0; i < count; ++i) {
        const std::string value = text(number);
        char buffer[32];
        std::snprintf(buffer, sizeof buffer, "%g", value.empty() ? 0.0 : std::strtod(value.c_str(), nullptr));
        joined += (i == 0 ? "" : ",") + std::string(buffer);
        if (number != nullptr) number = number->NextSiblingElement("number");
    }
    return joined;
}

class Walker {
public:
    explicit Walker(HFResourceProvider& bundle) : bundle(bundle) {}

    void package(const std::string& name) {
        if (std::find(loading.begin(), loading.end(), name) != loading.end() || loading.size() > 16) return;
        std::unique_ptr<_Image, ImageFree> bytes(bundle.loadData(("filter/" + name + "/filter.xml").c_str()));
        if (!bytes) return;
        tinyxml2::XMLDocument document;
        if (document.Parse(reinterpret_cast<const char*>(bytes->data), static_cast<size_t>(bytes->width)) !=
            tinyxml2::XML_SUCCESS) {
            return;
        }
        loading.push_back(name);
        node(document.RootElement());
        loading.pop_back();
    }

    std::vector<PackageParam> found;

private:
    void node(const XMLElement* element) {
        if (element == nullptr) return;
        const std::string tag = element->Name();
        if (tag == "model") {
            for (const XMLElement* child = element->FirstChildElement("filter"); child != nullptr;
                 child = child->NextSiblingElement("filter")) {
                node(child);
            }
        } else if (tag == "filter") {
            if (const char* include = element->Attribute("include")) {
                package(include);
                return;
            }
            for (const XMLElement* child = element->FirstChildElement(); child != nullptr;
                 child = child->NextSiblingElement()) {
                if (std::string(child->Name()) == "param") param(child);
                if (std::string(child->Name()) == "model" || std::string(child->Name()) == "filter") node(child);
            }
        }
    }

    void param(const XMLElement* element) {
        const XMLElement* name = element->FirstChildElement();
        if (name == nullptr || std::string(name->Name()) != "name") return;
        const XMLElement* value = name->NextSiblingElement();
        if (value == nullptr) return;
        const std::string kind = value->Name();
        PackageParam entry{text(name), kind, ""};
        if (kind == "float") {
            const std::string number = text(value);
            char buffer[32];
            std::snprintf(buffer, sizeof buffer, "%g", number.empty() ? 0.0 : std::strtod(number.c_str(), nullptr));
            entry.value = buffer;
        } else if (kind == "vector4f") {
            entry.value = numbers(value, 4);
        } else if (kind == "matrix4f") {
            entry.value = numbers(value, 16);
        } else if (kind == "curve") {
            entry.value = text(value);
        } else {
            return;  // images and unsupported kinds are not runtime parameters
        }
        const bool known = std::any_of(found.begin(), found.end(),
                                       [&](const PackageParam& p) { return p.name == entry.name; });
        if (!known) found.push_back(entry);
    }

    HFResourceProvider& bundle;
    std::vector<std::string> loading;
};

}  // namespace

std::vector<PackageParam> packageParams(HFResourceProvider& bundle, const std::string& package) {
    Walker walker(bundle);
    walker.package(package);
    return walker.found;
}

}  // namespace filterpack
