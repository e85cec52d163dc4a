// A loaded filter description: parsed once from XML, it builds any number of
// live filter trees.
#ifndef IFC_ENGINE_FILTER_NODE_H
#define IFC_ENGINE_FILTER_NODE_H

#include <string>

#include "engine/filter.h"
#include "engine/shared_ptr.h"

namespace tinyxml2 {
class XMLElement;
}

class IFC_API IHFFilterNode {
public:
    virtual ~IHFFilterNode();
    virtual void parse(tinyxml2::XMLElement* element) = 0;
    virtual shared_ptr<IHFFilter> createFilter() = 0;

    // Package under which the node was loaded; empty for an inline leaf.
    std::string name;
};

#endif  // IFC_ENGINE_FILTER_NODE_H
