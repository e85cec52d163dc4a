// The runtime parameters a package offers: every float, vector4f, matrix4f
// and curve param of its leaf filters, nested models and included packages
// followed, with the value the package gives it, written as the wrapper's
// setter reads it back ("0.75", "1,0.9,0.8,1", "0,2,4,...").
#ifndef FILTERPACK_SERVE_PACKAGE_PARAMS_H
#define FILTERPACK_SERVE_PACKAGE_PARAMS_H

#include <string>
#include <vector>

#include "engine/resource_loader.h"

namespace filterpack {

struct PackageParam {
    std::string name;
    std::string kind;   // "float", "vector4f", "matrix4f" or "curve"
    std::string value;  // the first value the package gives it
};

// In first-declared order, one entry per name. Unreadable files and
// include cycles contribute nothing (lint reports them).
std::vector<PackageParam> packageParams(HFResourceProvider& bundle, const std::string& package);

}  // namespace filterpack

#endif  // FILTERPACK_SERVE_PACKAGE_PARAMS_H
