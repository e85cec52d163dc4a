#include "engine/filter_model_node.h"

#include <tinyxml2.h>

#include <cstdlib>
#include <set>

#include "engine/engine_problems.h"
#include "engine/filter_object.h"
#include "engine/gl/shader_origin.h"
#include "engine/package_lock.h"
#include "jni/bridge/log.h"

namespace {

// True when `target` is `from` or lies below it, counting the links still to
// be added. Links are only ever added when this is false for them, so the
// node graph stays acyclic and the walk ends.
bool reaches(const IHFFilterNode* from, const IHFFilterNode* target,
             const std::vector<std::pair<const IHFFilterNode*, const IHFFilterNode*>>& pending,
             std::set<const IHFFilterNode*>& seen) {
    if (from == target) return true;
    if (!seen.insert(from).second) return false;
    if (const auto* model = dynamic_cast<const HFFilterModelNode*>(from)) {
        for (const shared_ptr<IHFFilterNode>& child : model->children) {
            if (reaches(child.get(), target, pending, seen)) return true;
        }
    }
    for (const auto& link : pending) {
        if (link.first == from && reaches(link.second, target, pending, seen)) return true;
    }
    return false;
}

// The models being built on this thread, as a chain of flags on its stack:
// a model met again while it is being built contains itself. Per thread,
// since two GL threads may build the same cached model at once; the chain's
// head is a plain pointer so the thread keeps no storage to release.
class BuildingFlag {
public:
    explicit BuildingFlag(const HFFilterModelNode* model) : model(model), outer(innermost) { innermost = this; }
    ~BuildingFlag() { innermost = outer; }
    BuildingFlag(const BuildingFlag&) = delete;
    BuildingFlag& operator=(const BuildingFlag&) = delete;

    static bool isBuilding(const HFFilterModelNode* model) {
        for (const BuildingFlag* flag = innermost; flag != nullptr; flag = flag->outer) {
            if (flag->model == model) return true;
        }
        return false;
    }

private:
    static thread_local const BuildingFlag* innermost;
    const HFFilterModelNode* model;
    const BuildingFlag* outer;
};

thread_local const BuildingFlag* BuildingFlag::innermost = nullptr;

}  // namespace

HFFilterModelNode::HFFilterModelNode(HFFilterNodeSource nodeSource) : source(nodeSource) {}

// Checks without changing anything: an included element is parsed into the
// shared node of its package, so a refusal found halfway would leave other
// packages changed. Included packages are loaded (and cached) on the way.
bool HFFilterModelNode::accepts(const tinyxml2::XMLElement* element, const IHFFilterNode* into,
                                Links& pending) const {
    for (const tinyxml2::XMLElement* child = element->FirstChildElement("filter"); child != nullptr;
         child = child->NextSiblingElement("filter")) {
        const tinyxml2::XMLAttribute* include = child->FindAttribute("include");
        if (include == nullptr) continue;
        shared_ptr<IHFFilterNode> node = source.package(include->Value());
        if (!node) {
            log_printE("model: included package %s cannot be built", include->Value());
            return false;
        }
        std::set<const IHFFilterNode*> seen;
        if (reaches(node.get(), into, pending, seen)) {
            log_printE("model: including package %s here would make a package contain itself", include->Value());
            return false;
        }
        pending.emplace_back(into, node.get());
        const auto* model = dynamic_cast<const HFFilterModelNode*>(node.get());
        if (model != nullptr && !model->accepts(child, model, pending)) return false;
    }
    for (const tinyxml2::XMLElement* relation = element->FirstChildElement("relation"); relation != nullptr;
         relation = relation->NextSiblingElement("relation")) {
        if (relation->FindAttribute("output") == nullptr || relation->FindAttribute("input") == nullptr ||
            relation->FindAttribute("index") == nullptr) {
            log_printE("model: relation needs \"output\", \"input\" and \"index\"");
            return false;
        }
    }
    return true;
}

// All "filter" children come first, then all "relation" children, wherever
// they stand in the document. Under the package lock: an included package's
// node is shared with other threads.
void HFFilterModelNode::parse(tinyxml2::XMLElement* element) {
    const std::lock_guard<std::recursive_mutex> lock(HFFilterPackage_lock());
    Links pending;
    if (!accepts(element, this, pending)) {
        complete = false;
        return;
    }
    for (tinyxml2::XMLElement* child = element->FirstChildElement("filter"); child != nullptr;
         child = child->NextSiblingElement("filter")) {
        shared_ptr<IHFFilterNode> node;
        if (const tinyxml2::XMLAttribute* include = child->FindAttribute("include")) {
            // The including element is parsed into the shared, cached node on
            // purpose: what it carries reaches every user of that package.
            node = source.package(include->Value());
            if (!node) {
                HFProblem_report(std::string("model: included package ") + include->Value() + " cannot be built");
            }
        } else {
            node = source.leaf();
        }
        if (!node) {
            complete = false;
            continue;
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
    // Parsing keeps packages from containing themselves; a graph assembled
    // by hand is refused here rather than recursing without end.
    if (BuildingFlag::isBuilding(this)) {
        log_printE("model: package %s contains itself", name.c_str());
        return shared_ptr<IHFFilter>();
    }
    const BuildingFlag flag(this);
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
