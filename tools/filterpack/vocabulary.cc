#include "vocabulary.h"

#include <tinyxml2.h>

#include <algorithm>

#include "suggest.h"

namespace filterpack {

void checkAttributes(const std::string& file, const tinyxml2::XMLElement* element,
                     const std::vector<std::string>& known, Findings* findings) {
    for (const tinyxml2::XMLAttribute* a = element->FirstAttribute(); a != nullptr; a = a->Next()) {
        if (std::find(known.begin(), known.end(), a->Name()) != known.end()) continue;
        const std::string where = std::string("<") + element->Name() + ">";
        findings->add(Severity::kError, file, element,
                      std::string("unknown attribute ") + a->Name() + " on " + where + ": the engine ignores it" +
                          (known.empty() ? "; " + where + " takes no attributes" : didYouMean(a->Name(), known)));
    }
}

void checkChildren(const std::string& file, const tinyxml2::XMLElement* element, const std::vector<std::string>& known,
                   Findings* findings) {
    for (const tinyxml2::XMLElement* child = element->FirstChildElement(); child != nullptr;
         child = child->NextSiblingElement()) {
        if (std::find(known.begin(), known.end(), child->Name()) != known.end()) continue;
        findings->add(Severity::kError, file, child,
                      std::string("unknown element <") + child->Name() + "> in <" + element->Name() +
                          ">: the engine ignores it" + didYouMean(child->Name(), known, "<", ">"));
    }
}

}  // namespace filterpack
