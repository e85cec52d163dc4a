#include "bundle_file.h"

namespace filterpack {

BundleXml::BundleXml(HFResourceProvider& bundle, const std::string& path, Findings* findings)
    : document(true, tinyxml2::PRESERVE_WHITESPACE) {
    _Image* blob = bundle.loadData(path.c_str());
    if (blob == nullptr) {
        findings->addForFile(Severity::kError, path, 0, "missing from the bundle");
        return;
    }
    const tinyxml2::XMLError status =
        document.Parse(reinterpret_cast<const char*>(blob->data), static_cast<size_t>(blob->width));
    free_image(&blob);
    if (status != tinyxml2::XML_SUCCESS) {
        findings->addForFile(Severity::kError, path, document.ErrorLineNum(),
                             std::string("not well-formed XML: ") + document.ErrorStr());
        return;
    }
    parsed = true;
    if (document.FirstChildElement() == nullptr) {
        findings->addForFile(Severity::kError, path, 0, "has no root element");
    }
}

tinyxml2::XMLElement* BundleXml::root() { return parsed ? document.FirstChildElement() : nullptr; }

}  // namespace filterpack
