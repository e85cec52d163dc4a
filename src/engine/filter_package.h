// Filter packages: "filter/<name>/filter.xml" in the resource bundle, loaded
// once per process and cached by name.
#ifndef IFC_ENGINE_FILTER_PACKAGE_H
#define IFC_ENGINE_FILTER_PACKAGE_H

#include <map>
#include <mutex>
#include <string>

#include "engine/filter_node.h"
#include "engine/package_lock.h"

namespace tinyxml2 {
class XMLElement;
}

using HFFilterNodeCache = std::map<std::string, shared_ptr<IHFFilterNode>>;

// Process-wide; holds only packages that were read and parsed whole.
// Entries are never removed or replaced.
IFC_API HFFilterNodeCache& filterNodeCache();

// The cached node of a package, loading it on a miss. Empty (and logged, on
// every request) when the package cannot be built; a failure is not cached.
IFC_API shared_ptr<IHFFilterNode> HFFilterPackage_node(const std::string& name);

// "model" or "filter" root element to a parsed node; anything else is empty.
IFC_API shared_ptr<IHFFilterNode> HFFilterPackage_createNode(tinyxml2::XMLElement* root);

// Makes the leaf nodes ("filter" elements). The default builds the GL
// description node; tests install fakes (before any thread loads a package).
// Returns the previous factory.
using HFLeafNodeFactory = shared_ptr<IHFFilterNode> (*)();
IFC_API HFLeafNodeFactory HFFilterPackage_setLeafNodeFactory(HFLeafNodeFactory factory);
IFC_API shared_ptr<IHFFilterNode> HFFilterPackage_createLeafNode();
// The production leaf: the GL or CPU filter description node.
shared_ptr<IHFFilterNode> HFFilterPackage_defaultLeafNode();

// Logs a package failure naming the package and its file.
void HFFilterPackage_logError(const std::string& name, const char* reason);

#endif  // IFC_ENGINE_FILTER_PACKAGE_H
