#include "engine/gl/filter_desc_node.h"

#include <tinyxml2.h>

#include <cstring>

#include "engine/cpu/cpu_filter.h"
#include "engine/filter_package.h"
#include "engine/gl/gl_filter.h"
#include "engine/gl/gl_filter_impl.h"

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

shared_ptr<IHFFilter> HFFilterDescNode::createFilter() {
    shared_ptr<IHFFilter> filter;
    if (preferCPU) {
        filter = HFCPUFilter::createFilter(implement.c_str());
    } else {
        const shared_ptr<HFGLFilterImpl> impl = HFGLFilterImpl_lookup(implement);
        // A description without shaders builds nothing; the package loader
        // reports the package that needed it.
        if (impl->vertexSources.empty() || impl->fragmentSources.empty()) return filter;
        filter = HFGLFilter::createFilter(impl->fragmentSources, impl->vertexSources);
    }
    for (const shared_ptr<HFFilterParam>& param : params) param->apply(filter.get(), name);
    return filter;
}

shared_ptr<IHFFilterNode> HFFilterPackage_defaultLeafNode() {
    return shared_ptr<IHFFilterNode>(new HFFilterDescNode());
}
