// Text of an XML element as the description formats read it: the value of
// its first child node (for a child element, that is its tag name).
#ifndef IFC_ENGINE_GL_XML_TEXT_H
#define IFC_ENGINE_GL_XML_TEXT_H

#include <tinyxml2.h>

// Null when the element is null or has no child.
inline const char* xmlTextOf(const tinyxml2::XMLElement* element) {
    if (element == nullptr || element->FirstChild() == nullptr) return nullptr;
    return element->FirstChild()->Value();
}

#endif  // IFC_ENGINE_GL_XML_TEXT_H
