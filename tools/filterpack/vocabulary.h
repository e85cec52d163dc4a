// The element and attribute names a package file may use. The engine
// ignores anything else without a word, so lint names it, with the closest
// known name.
#ifndef FILTERPACK_VOCABULARY_H
#define FILTERPACK_VOCABULARY_H

#include <string>
#include <vector>

#include "findings.h"

namespace filterpack {

void checkAttributes(const std::string& file, const tinyxml2::XMLElement* element,
                     const std::vector<std::string>& known, Findings* findings);

void checkChildren(const std::string& file, const tinyxml2::XMLElement* element, const std::vector<std::string>& known,
                   Findings* findings);

}  // namespace filterpack

#endif  // FILTERPACK_VOCABULARY_H
