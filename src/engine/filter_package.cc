#include "engine/filter_package.h"

#include <tinyxml2.h>

#include <atomic>
#include <set>

#include "engine/engine_problems.h"
#include "engine/filter_model_node.h"
#include "engine/resource_loader.h"
#include "jni/bridge/log.h"

namespace {

std::string packagePath(const std::string& name) { return "filter/" + name + "/filter.xml"; }

// Packages being loaded right now: reaching one again through an include is a
// cycle, which would otherwise recurse without end. Touched only under
// HFFilterPackage_lock, which one thread holds for the whole load.
std::set<std::string>& packagesInProgress() {
    static std::set<std::string> names;
    return names;
}

class InProgress {
public:
    explicit InProgress(const std::string& packageName) : name(packageName) {
        packagesInProgress().insert(name);
    }
    ~InProgress() { packagesInProgress().erase(name); }
    InProgress(const InProgress&) = delete;
    InProgress& operator=(const InProgress&) = delete;

private:
    std::string name;
};

// Owns the bytes fetched from the bundle.
class ResourceBlob {
public:
    explicit ResourceBlob(const std::string& path) : blob(HFResourceLoader_loadDataResource(path.c_str())) {}
    ~ResourceBlob() { free_image(&blob); }
    ResourceBlob(const ResourceBlob&) = delete;
    ResourceBlob& operator=(const ResourceBlob&) = delete;

    const _Image* get() const { return blob; }

private:
    _Image* blob;
};

bool isComplete(const shared_ptr<IHFFilterNode>& node) {
    const HFFilterModelNode* model = dynamic_cast<const HFFilterModelNode*>(node.get());
    return model == nullptr || model->isComplete();
}

// The node described by the package file; empty (and logged) when the file
// is missing, does not parse, has another root or a broken child or relation.
shared_ptr<IHFFilterNode> readPackage(const std::string& name) {
    tinyxml2::XMLDocument document(true, tinyxml2::PRESERVE_WHITESPACE);
    {
        ResourceBlob blob(packagePath(name));
        if (blob.get() == nullptr || blob.get()->data == nullptr) {
            HFFilterPackage_logError(name, "cannot be read");
            return shared_ptr<IHFFilterNode>();
        }
        const char* text = reinterpret_cast<const char*>(blob.get()->data);
        if (document.Parse(text, static_cast<size_t>(blob.get()->width)) != tinyxml2::XML_SUCCESS) {
            HFFilterPackage_logError(name, document.ErrorStr());
            return shared_ptr<IHFFilterNode>();
        }
    }

    shared_ptr<IHFFilterNode> node = HFFilterPackage_createNode(document.FirstChildElement());
    if (!node) {
        HFFilterPackage_logError(name, "has no \"model\" or \"filter\" root");
        return node;
    }
    if (!isComplete(node)) {
        HFFilterPackage_logError(name, "has a broken child or relation");
        return shared_ptr<IHFFilterNode>();
    }
    node->name = name;
    return node;
}

// Only a package that was read and parsed whole enters the cache: a failure
// is logged and the file read again on the next request, so a fixed package
// is picked up without a restart. Parsing refuses an element before it
// changes any shared node, so reading a package again changes nothing twice.
shared_ptr<IHFFilterNode> loadPackage(const std::string& name) {
    if (packagesInProgress().count(name) != 0) {
        HFFilterPackage_logError(name, "includes itself");
        return shared_ptr<IHFFilterNode>();
    }
    InProgress guard(name);
    shared_ptr<IHFFilterNode> node = readPackage(name);
    if (node) filterNodeCache().insert(HFFilterNodeCache::value_type(name, node));
    return node;
}

HFFilterNodeSource nodeSource() { return HFFilterNodeSource{&HFFilterPackage_node, &HFFilterPackage_createLeafNode}; }

std::atomic<HFLeafNodeFactory> leafNodeFactory{&HFFilterPackage_defaultLeafNode};

}  // namespace

HFFilterNodeCache& filterNodeCache() {
    static HFFilterNodeCache cache;
    return cache;
}

void HFFilterPackage_logError(const std::string& name, const char* reason) {
    HFProblem_report("filter package " + name + " (" + packagePath(name) + "): " + reason);
}

shared_ptr<IHFFilterNode> HFFilterPackage_node(const std::string& name) {
    // Recursive: a load reaches this again for each package it includes.
    const std::lock_guard<std::recursive_mutex> lock(HFFilterPackage_lock());
    HFFilterNodeCache& cache = filterNodeCache();
    auto found = cache.find(name);
    if (found != cache.end()) return found->second;
    return loadPackage(name);
}

shared_ptr<IHFFilterNode> HFFilterPackage_createNode(tinyxml2::XMLElement* root) {
    if (root == nullptr) return shared_ptr<IHFFilterNode>();
    const std::string kind = root->Value();
    shared_ptr<IHFFilterNode> node;
    if (kind == "model") {
        node = shared_ptr<IHFFilterNode>(new HFFilterModelNode(nodeSource()));
    } else if (kind == "filter") {
        node = HFFilterPackage_createLeafNode();
    }
    if (node) node->parse(root);
    return node;
}

HFLeafNodeFactory HFFilterPackage_setLeafNodeFactory(HFLeafNodeFactory factory) {
    return leafNodeFactory.exchange(factory != nullptr ? factory : &HFFilterPackage_defaultLeafNode);
}

shared_ptr<IHFFilterNode> HFFilterPackage_createLeafNode() { return leafNodeFactory.load()(); }
