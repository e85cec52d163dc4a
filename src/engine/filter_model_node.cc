#include "engine/filter_model_node.h"

#include <tinyxml2.h>

#include <cstdlib>

#include "engine/engine_problems.h"
#include "engine/filter_object.h"
#include "engine/filter_package.h"
#include "engine/gl/shader_origin.h"

// All "filter" children come first, then all "relation" children, wherever
// they stand in the document. Under the package lock: an included package's
// node is shared with other threads.
void HFFilterModelNode::parse(tinyxml2::XMLElement* element) {
    const std::lock_guard<std::recursive_mutex> lock(HFFilterPackage_lock());
    for (tinyxml2::XMLElement* child = element->FirstChildElement("filter"); child != nullptr;
         child = child->NextSiblingElement("filter")) {
        shared_ptr<IHFFilterNode> node;
        if (const tinyxml2::XMLAttribute* include = child->FindAttribute("include")) {
            // The including element is parsed into the shared, cached node on
            // purpose: what it carries reaches every user of that package.
            node = HFFilterPackage_node(include->Value());
            if (!node) {
                HFProblem_report(std::string("model: included package ") + include->Value() + " cannot be built");
                complete = false;
                continue;
            }
        } else {
            node = HFFilterPackage_createLeafNode();
        }
        node->parse(child);
        children.push_back(node);
    }

    for (tinyxml2::XMLElement* relation = element->FirstChildElement("relation"); relation != nullptr;
         relation = relation->NextSiblingElement("relation")) {
        const tinyxml2::XMLAttribute* output = relation->FindAttribute("output");
        const tinyxml2::XMLAttribute* input = relation->FindAttribute("input");
        const tinyxml2::XMLAttribute* index = relation->FindAttribute("index");
        if (output == nullptr || input == nullptr || index == nullptr) {
            HFProblem_report("model: relation needs \"output\", \"input\" and \"index\"");
            complete = false;
            continue;
        }
        relationOutputs.push_back(std::atoi(output->Value()));
        relationInputs.push_back(std::atoi(input->Value()));
        relationIndices.push_back(std::atoi(index->Value()));
    }
}

// Relations are applied after every child is in place and without clearMap,
// so each replaces the default chain link only at the slot it names.
// Builds from a copy taken under the package lock, so that no lock is held
// while the children compile their shaders.
shared_ptr<IHFFilter> HFFilterModelNode::createFilter() {
    std::vector<shared_ptr<IHFFilterNode>> childNodes;
    std::vector<int32_t> outputs, inputs, indices;
    {
        const std::lock_guard<std::recursive_mutex> lock(HFFilterPackage_lock());
        if (!complete) return shared_ptr<IHFFilter>();
        childNodes = children;
        outputs = relationOutputs;
        inputs = relationInputs;
        indices = relationIndices;
    }
    const HFPackageScope package(name);
    shared_ptr<HFFilterObject> composite = HFFilterObject::createFilter();
    for (const shared_ptr<IHFFilterNode>& node : childNodes) {
        shared_ptr<IHFFilter> filter = node->createFilter();
        // A missing child would shift every index the relations use.
        if (!filter) return shared_ptr<IHFFilter>();
        composite->addFilter(filter);
    }
    for (size_t i = 0; i < outputs.size(); ++i) composite->addMap(outputs[i], inputs[i], indices[i]);
    return composite;
}
