// A shader source as the engine takes it from a GL description: the text of
// the element's first child, deciphered when it is in a protected form.
#ifndef FILTERPACK_SHADER_SOURCE_H
#define FILTERPACK_SHADER_SOURCE_H

#include <string>

#include "findings.h"

namespace filterpack {

struct ShaderSource {
    const tinyxml2::XMLElement* element = nullptr;
    std::string plain;      // the GLSL the engine compiles
    std::string form;       // "ios", "aes", "mee", "hfe", or "" for plain text
    int firstLine = 0;      // file line of the plain text's first line

    // The file line of shader line `line`, or the element's line for a sealed
    // text (its lines are not the file's).
    int fileLine(int line) const;
    // " (sealed \"hfe\" text, shader line 3)" for a sealed text, else "".
    std::string sealedNote(int line) const;
};

// False (with a finding) when the element holds no usable text.
bool readShaderSource(const std::string& file, const tinyxml2::XMLElement* element, Findings* findings,
                      ShaderSource* source);

}  // namespace filterpack

#endif  // FILTERPACK_SHADER_SOURCE_H
