#include "engine/gl/filter_desc_node.h"

#include <tinyxml2.h>

#include <cstring>

#include "engine/cpu/cpu_filter.h"
#include "engine/engine_problems.h"
#include "engine/filter_package.h"
#include "engine/gl/gl_filter.h"
#include "engine/gl/gl_filter_impl.h"
#include "engine/gl/shader_origin.h"

HFFilterDescNode::HFFilterDescNode() = default;

HFFilterDescNode::~HFFilterDescNode() = default;

void HFFilterDescNode::parse(tinyxml2::XMLElement* element) {
    if (element == nullptr) return;
    if (const tinyxml2::XMLAttribute* attribute = element->FindAttribute("implement")) {
        implement = attribute->Value();
    }
    if (const tinyxml2::XMLAttribute* attribute = element->FindAttribute("prefer")) {
        // Exact and case-sensitive: "gpu" selects the CPU.
        preferCPU = strcmp(attribute->Value(), "GPU") != 0;
    }
    for (const tinyxml2::XMLElement* param = element->FirstChildElement("param"); param != nullptr;
         param = param->NextSiblingElement("param")) {
        shared_ptr<HFFilterParam> parsed = HFFilterParam::parse(param);
        if (parsed) params.push_back(parsed);
    }
}

// Builds from a copy taken under the package lock (an including element of
// another package may be parsed into this node on another thread), so that
// no lock is held while shaders compile or images load.
shared_ptr<IHFFilter> HFFilterDescNode::createFilter() {
    std::string implementName;
    bool cpu = false;
    std::vector<shared_ptr<HFFilterParam>> declared;
    {
        const std::lock_guard<std::recursive_mutex> lock(HFFilterPackage_lock());
        implementName = implement;
        cpu = preferCPU;
        declared = params;
    }
    const HFPackageScope package(name);
    shared_ptr<IHFFilter> filter;
    if (cpu) {
        filter = HFCPUFilter::createFilter(implementName.c_str());
    } else {
        const shared_ptr<HFGLFilterImpl> impl = HFGLFilterImpl_lookup(implementName);
        if (impl->vertexSources.empty() || impl->fragmentSources.empty()) {
            const std::string& package = HFPackageScope::current();
            HFProblem_report((package.empty() ? std::string() : "filter package " + package + ": ") +
                             "GL filter description " + HFGLFilterImpl::pathOf(implementName) + " " +
                             (impl->readProblem.empty() ? "has no vertex or fragment shader" : impl->readProblem));
            return filter;
        }
        const HFShaderOriginScope origin(implementName, impl.get());
        filter = HFGLFilter::createFilter(impl->fragmentSources, impl->vertexSources);
    }
    for (const shared_ptr<HFFilterParam>& param : declared) param->apply(filter.get(), name);
    return filter;
}

shared_ptr<IHFFilterNode> HFFilterPackage_defaultLeafNode() {
    return shared_ptr<IHFFilterNode>(new HFFilterDescNode());
}
