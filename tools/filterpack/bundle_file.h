// A bundle file parsed the way the engine parses it (entities processed,
// whitespace preserved).
#ifndef FILTERPACK_BUNDLE_FILE_H
#define FILTERPACK_BUNDLE_FILE_H

#include <tinyxml2.h>

#include <string>

#include "engine/resource_loader.h"
#include "findings.h"

namespace filterpack {

class BundleXml {
public:
    // Reports a missing or malformed file to `findings`.
    BundleXml(HFResourceProvider& bundle, const std::string& path, Findings* findings);
    BundleXml(const BundleXml&) = delete;
    BundleXml& operator=(const BundleXml&) = delete;

    // The first element, or null when the file is missing or malformed.
    tinyxml2::XMLElement* root();

private:
    tinyxml2::XMLDocument document;
    bool parsed = false;
};

}  // namespace filterpack

#endif  // FILTERPACK_BUNDLE_FILE_H
