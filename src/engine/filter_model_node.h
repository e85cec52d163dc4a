// HFFilterModelNode: the description of a composite package: child nodes in
// document order plus relations (output, input, index) that rewire them.
#ifndef IFC_ENGINE_FILTER_MODEL_NODE_H
#define IFC_ENGINE_FILTER_MODEL_NODE_H

#include <string>
#include <utility>
#include <vector>

#include "engine/filter_node.h"

// Where a model finds the nodes its "filter" children name. The package
// loader supplies it, so that models do not depend on the loader.
struct HFFilterNodeSource {
    // The shared node of an included package; empty when it cannot be built.
    shared_ptr<IHFFilterNode> (*package)(const std::string& name);
    // A new node for a leaf written inline.
    shared_ptr<IHFFilterNode> (*leaf)();
};

class IFC_API HFFilterModelNode : public IHFFilterNode {
public:
    explicit HFFilterModelNode(HFFilterNodeSource source);

    // Appends the element's "filter" children, then its "relation" children.
    // An element that names a package which cannot be built, lacks a relation
    // attribute or would make a package contain itself is refused whole
    // (logged): nothing is appended here or to any shared node, and the model
    // is marked incomplete.
    void parse(tinyxml2::XMLElement* element) override;
    // A new HFFilterObject per call; empty when any child cannot be built.
    shared_ptr<IHFFilter> createFilter() override;

    // False once an element was refused; such a model builds no filter.
    bool isComplete() const { return complete; }

    std::vector<shared_ptr<IHFFilterNode>> children;
    std::vector<int32_t> relationOutputs;
    std::vector<int32_t> relationInputs;
    std::vector<int32_t> relationIndices;

private:
    // (model, child) links that parsing will add.
    using Links = std::vector<std::pair<const IHFFilterNode*, const IHFFilterNode*>>;
    bool accepts(const tinyxml2::XMLElement* element, const IHFFilterNode* into, Links& pending) const;

    HFFilterNodeSource source;
    bool complete = true;
};

#endif  // IFC_ENGINE_FILTER_MODEL_NODE_H
