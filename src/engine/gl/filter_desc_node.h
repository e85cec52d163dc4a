// The leaf of a filter package: an implementation name, a GPU/CPU preference
// and declared parameters. Each createFilter builds a new live filter.
#ifndef IFC_ENGINE_GL_FILTER_DESC_NODE_H
#define IFC_ENGINE_GL_FILTER_DESC_NODE_H

#include <string>
#include <vector>

#include "engine/filter_node.h"
#include "engine/gl/filter_param.h"

class IFC_API HFFilterDescNode : public IHFFilterNode {
public:
    HFFilterDescNode();
    ~HFFilterDescNode() override;

    // Reads "implement", "prefer" and the "param" children; appends to what
    // an earlier call read.
    void parse(tinyxml2::XMLElement* element) override;
    // A CPU filter when preferred, else the GL filter of the description
    // "filter/gl/<implement>.xml"; empty when that description
    // has no shaders. Parameters are applied in declaration order.
    shared_ptr<IHFFilter> createFilter() override;

    std::vector<shared_ptr<HFFilterParam>> params;
    // Anything but exactly "GPU" selects the CPU; GPU when absent.
    bool preferCPU = false;
    std::string implement;
};

#endif  // IFC_ENGINE_GL_FILTER_DESC_NODE_H
