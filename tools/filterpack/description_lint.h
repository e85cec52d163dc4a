// Checks of a GL description "filter/gl/NAME.xml": its elements, each source
// deciphers, each shader compiles as GLSL ES 1.00 (glslang, the same verdict
// on every driver), the first vertex and fragment pair links as the engine
// builds it (glslang, then the current driver as a second opinion), and what
// the program declares.
#ifndef FILTERPACK_DESCRIPTION_LINT_H
#define FILTERPACK_DESCRIPTION_LINT_H

#include <map>
#include <string>
#include <vector>

#include "findings.h"
#include "image_files.h"

namespace filterpack {

struct UniformInfo {
    unsigned int type;  // GL type enum
    int arraySize;      // 0 when not an array
    bool active;        // the program reads it
};

struct DescriptionInfo {
    bool usable = false;                          // the program links
    std::map<std::string, UniformInfo> uniforms;  // declared in the drawn pair
    std::string plainSources;                     // deciphered vertex and fragment text

    // Declared in the sources, active or not (a uniform the compiler drops
    // still takes a value harmlessly).
    bool declares(const std::string& uniform) const;
    // The shader samples input `slot` (0..3) through an active sampler2D.
    bool samples(int slot) const;
    std::vector<std::string> uniformNames() const;
};

// The sampler name of input `slot`: "inputImageTexture2" for slot 1.
std::string samplerName(int slot);

// The uniforms the engine sets itself on every filter.
bool isAutomaticUniform(const std::string& name);

// Needs a current GL ES 2.0 context.
DescriptionInfo lintDescription(const std::string& implement, BundleDirectory& bundle, Findings* findings);

}  // namespace filterpack

#endif  // FILTERPACK_DESCRIPTION_LINT_H
