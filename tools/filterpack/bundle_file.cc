#include "bundle_file.h"

#include "xml_locate.h"

namespace filterpack {

BundleXml::BundleXml(BundleDirectory& bundle, const std::string& path, Findings* findings)
    : document(true, tinyxml2::PRESERVE_WHITESPACE) {
    _Image* blob = bundle.loadData(path.c_str());
    if (blob == nullptr) {
        findings->addForFile(Severity::kError, path, 0, "missing from the bundle: there is no " + bundle.pathOnDisk(path));
        return;
    }
    const std::string text(reinterpret_cast<const char*>(blob->data), static_cast<size_t>(blob->width));
    free_image(&blob);
    if (document.Parse(text.data(), text.size()) != tinyxml2::XML_SUCCESS) {
        const XmlProblem problem = locateXmlProblem(text);
        if (problem.line > 0) {
            findings->addForFile(Severity::kError, path, problem.line, "not well-formed XML: " + problem.message,
                                 problem.column);
        } else {
            findings->addForFile(Severity::kError, path, document.ErrorLineNum(),
                                 std::string("not well-formed XML: ") + document.ErrorName());
        }
        return;
    }
    parsed = true;
    if (document.FirstChildElement() == nullptr) {
        findings->addForFile(Severity::kError, path, 0, "has no root element");
    }
}

tinyxml2::XMLElement* BundleXml::root() { return parsed ? document.FirstChildElement() : nullptr; }

}  // namespace filterpack
