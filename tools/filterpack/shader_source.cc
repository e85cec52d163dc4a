#include "shader_source.h"

#include <tinyxml2.h>

#include <cstdlib>
#include <cstring>
#include <memory>
#include <vector>

#include "engine/gl/shader_decipher.h"

namespace filterpack {
namespace {

struct FreeText {
    void operator()(char* text) const { std::free(text); }
};

std::string protectedForm(const char* text) {
    for (const char* prefix : {"ios", "aes", "mee", "hfe"}) {
        if (std::strncmp(text, prefix, 3) == 0) return prefix;
    }
    return std::string();
}

}  // namespace

int ShaderSource::fileLine(int line) const {
    if (!form.empty() || line <= 0) return element->GetLineNum();
    return firstLine + line - 1;
}

std::string ShaderSource::sealedNote(int line) const {
    if (form.empty()) return std::string();
    return " (sealed \"" + form + "\" text" + (line > 0 ? ", shader line " + std::to_string(line) : std::string()) +
           ")";
}

bool readShaderSource(const std::string& file, const tinyxml2::XMLElement* element, Findings* findings,
                      ShaderSource* source) {
    source->element = element;
    // The engine reads the first child; a comment or a child element there
    // would be taken for the source.
    const tinyxml2::XMLNode* first = element->FirstChild();
    if (first == nullptr || first->ToText() == nullptr) {
        findings->add(Severity::kError, file, element, "does not start with its source text");
        return false;
    }
    if (first->NextSibling() != nullptr) {
        findings->add(Severity::kError, file, element, "holds more than one text; the engine reads only the first");
    }
    const char* text = first->Value();
    // tinyxml2 gives a text node the line of its first visible character;
    // the shader's line 1 starts earlier by the newlines in front of it.
    // Inside CDATA the section's own line is where the text starts.
    source->firstLine = first->GetLineNum();
    if (!first->ToText()->CData()) {
        for (const char* c = text; *c == ' ' || *c == '\t' || *c == '\r' || *c == '\n'; ++c) {
            source->firstLine -= *c == '\n' ? 1 : 0;
        }
    }
    const size_t lead = std::strspn(text, " \t\r\n");
    if (lead > 0 && !protectedForm(text + lead).empty()) {
        findings->add(Severity::kError, file, element,
                      "white space before the protected text: the engine compiles it as GLSL unchanged");
        return false;
    }
    source->form = protectedForm(text);
    if (source->form.empty()) {
        source->plain = text;
        return true;
    }
    if (source->form == "ios" || source->form == "aes") {
        const size_t payload = std::strlen(text + 3);
        std::vector<uint8_t> bytes(payload / 2 + 1);
        if (decodeHexText(text + 3, bytes.data(), static_cast<int>(payload / 2)) != 0) {
            findings->add(Severity::kError, file, element,
                          "the hex payload of the protected text is malformed (odd length or a stray character)");
            return false;
        }
    }
    std::unique_ptr<char, FreeText> deciphered(decipherShaderSource(text));
    if (!deciphered || deciphered.get()[0] == '\0') {
        findings->add(Severity::kError, file, element, "the protected text deciphers to nothing");
        return false;
    }
    source->plain = deciphered.get();
    return true;
}

}  // namespace filterpack
