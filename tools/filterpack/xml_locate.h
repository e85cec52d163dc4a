// Where a malformed package file goes wrong, in the designer's terms: the
// line and column of the first stray character or mismatched tag, and what
// to write instead. Used only after tinyxml2 has rejected the text.
#ifndef FILTERPACK_XML_LOCATE_H
#define FILTERPACK_XML_LOCATE_H

#include <string>

namespace filterpack {

struct XmlProblem {
    int line = 0;    // from 1; 0 when the scan finds nothing wrong
    int column = 0;  // from 1
    std::string message;
};

XmlProblem locateXmlProblem(const std::string& text);

}  // namespace filterpack

#endif  // FILTERPACK_XML_LOCATE_H
