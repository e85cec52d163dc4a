// A bundle file parsed the way the engine parses it (entities processed,
// whitespace preserved).
#ifndef FILTERPACK_BUNDLE_FILE_H
#define FILTERPACK_BUNDLE_FILE_H

#include <tinyxml2.h>

#include <string>

#include "findings.h"
#include "image_files.h"

namespace filterpack {

class BundleXml {
public:
    // Reports a missing file (naming where it was looked for) or a malformed
    // one (line, column and what to write instead) to `findings`.
    BundleXml(BundleDirectory& bundle, const std::string& path, Findings* findings);
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
