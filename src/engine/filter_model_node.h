// HFFilterModelNode: the description of a composite package: child nodes in
// document order plus relations (output, input, index) that rewire them.
#ifndef IFC_ENGINE_FILTER_MODEL_NODE_H
#define IFC_ENGINE_FILTER_MODEL_NODE_H

#include <vector>

#include "engine/filter_node.h"

class IFC_API HFFilterModelNode : public IHFFilterNode {
public:
    HFFilterModelNode() = default;

    // Appends the element's "filter" children, then its "relation" children.
    void parse(tinyxml2::XMLElement* element) override;
    // A new HFFilterObject per call; empty when any child cannot be built.
    shared_ptr<IHFFilter> createFilter() override;

    // False once a child or relation could not be read; such a model builds
    // no filter.
    bool isComplete() const { return complete; }

    std::vector<shared_ptr<IHFFilterNode>> children;
    std::vector<int32_t> relationOutputs;
    std::vector<int32_t> relationInputs;
    std::vector<int32_t> relationIndices;

private:
    bool complete = true;
};

#endif  // IFC_ENGINE_FILTER_MODEL_NODE_H
