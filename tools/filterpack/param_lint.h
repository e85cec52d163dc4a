// Checks of one leaf parameter ("param" element): its shape, its type, its
// value, and what it reaches in the leaf's shader.
#ifndef FILTERPACK_PARAM_LINT_H
#define FILTERPACK_PARAM_LINT_H

#include <set>
#include <string>

#include "description_lint.h"
#include "findings.h"
#include "image_files.h"

namespace filterpack {

struct ParamContext {
    std::string file;         // the package file holding the param
    std::string packageName;  // where image files are looked up; empty for an inline leaf
    const DescriptionInfo* description;  // null for a CPU leaf or an unusable description
    const std::string implement;
    BundleDirectory& bundle;
};

// Checks `param`; an image param that can feed an input adds its slot to
// `imageSlots`.
void lintParam(const tinyxml2::XMLElement* param, const ParamContext& context, Findings* findings,
               std::set<int>* imageSlots);

}  // namespace filterpack

#endif  // FILTERPACK_PARAM_LINT_H
