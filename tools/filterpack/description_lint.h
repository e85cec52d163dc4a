// Checks of a GL description "filter/gl/NAME.xml": sources present, each one
// deciphers, the first vertex and fragment pair compiles and links as the
// engine builds it, and what the linked program declares.
#ifndef FILTERPACK_DESCRIPTION_LINT_H
#define FILTERPACK_DESCRIPTION_LINT_H

#include <map>
#include <string>

#include "engine/resource_loader.h"
#include "findings.h"

namespace filterpack {

struct UniformInfo {
    unsigned int type;  // GL type enum
    int size;           // element count
    bool array;
};

struct DescriptionInfo {
    bool usable = false;                         // the program links
    std::map<std::string, UniformInfo> uniforms;  // active ones, arrays without "[0]"
    std::string plainSources;                     // deciphered vertex and fragment text

    // Declared in the sources, active or not (a uniform the compiler drops
    // still takes a value harmlessly).
    bool declares(const std::string& uniform) const;
    // The shader samples input `slot` (0..3) through an active sampler2D.
    bool samples(int slot) const;
};

// The sampler name of input `slot`: "inputImageTexture2" for slot 1.
std::string samplerName(int slot);

// Needs a current GL ES 2.0 context.
DescriptionInfo lintDescription(const std::string& implement, HFResourceProvider& bundle, Findings* findings);

}  // namespace filterpack

#endif  // FILTERPACK_DESCRIPTION_LINT_H
