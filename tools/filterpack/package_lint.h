// `lint`: checks a package and everything it includes, as the engine would
// load it, and collects every problem found instead of stopping at the first.
#ifndef FILTERPACK_PACKAGE_LINT_H
#define FILTERPACK_PACKAGE_LINT_H

#include <map>
#include <set>
#include <string>
#include <vector>

#include "description_lint.h"
#include "findings.h"
#include "image_files.h"

namespace tinyxml2 {
class XMLElement;
}

namespace filterpack {

// What a model needs to know about one of its children.
struct FilterSummary {
    enum class Kind { kBroken, kGL, kCPU, kModel };
    Kind kind = Kind::kBroken;
    bool outputIsGL = false;  // its output is a GL texture (the last filter of a model is GL)
    std::set<int> sampledSlots;  // inputs a GL leaf's shader samples
    std::set<int> imageSlots;    // inputs its own image params feed
};

class PackageLinter {
public:
    // Shader checks need a current GL ES 2.0 context.
    explicit PackageLinter(BundleDirectory& bundle) : bundle(bundle) {}

    void lintPackage(const std::string& name) { lintPackageFrom(name, nullptr, std::string()); }
    const Findings& findings() const { return found_; }
    // A uniform of the GL descriptions linted so far, or null.
    const UniformInfo* uniform(const std::string& name) const;
    std::vector<std::string> uniformNames() const;

private:
    FilterSummary lintPackageFrom(const std::string& name, const tinyxml2::XMLElement* includer,
                                  const std::string& includerFile);
    FilterSummary lintLeaf(const tinyxml2::XMLElement* leaf, const std::string& file, const std::string& packageName);
    FilterSummary lintModel(const tinyxml2::XMLElement* model, const std::string& file);
    void warnUnsetUniforms(const DescriptionInfo& info, const std::set<std::string>& setByParams,
                           const std::string& file, const tinyxml2::XMLElement* leaf);
    FilterSummary lintInclude(const tinyxml2::XMLElement* filter, const std::string& file);
    const DescriptionInfo& description(const std::string& implement);

    BundleDirectory& bundle;
    Findings found_;
    std::vector<std::string> loading;  // the include chain being followed
    std::map<std::string, FilterSummary> packages;
    std::map<std::string, DescriptionInfo> descriptions;
};

}  // namespace filterpack

#endif  // FILTERPACK_PACKAGE_LINT_H
