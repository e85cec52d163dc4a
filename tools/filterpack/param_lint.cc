#include "param_lint.h"

#include <GLES2/gl2.h>
#include <tinyxml2.h>

#include <cstdlib>
#include <cstring>

#include "engine/gl/xml_text.h"
#include "glsl_check.h"
#include "suggest.h"
#include "vocabulary.h"

namespace filterpack {
namespace {

constexpr int kCurveSize = 256;

// Whole text is a number (surrounding white space allowed).
bool isNumber(const char* text, bool integer) {
    if (text == nullptr) return false;
    char* end = nullptr;
    if (integer) {
        std::strtol(text, &end, 10);
    } else {
        std::strtod(text, &end);
    }
    if (end == text) return false;
    return end[std::strspn(end, " \t\r\n")] == '\0';
}

class ParamChecker {
public:
    ParamChecker(const tinyxml2::XMLElement* param, const ParamContext& context, Findings* findings)
        : param(param), context(context), findings(findings) {}

    void error(const std::string& message) const { findings->add(Severity::kError, context.file, param, message); }
    void warning(const std::string& message) const {
        findings->add(Severity::kWarning, context.file, param, message);
    }

    void checkNumbers(const tinyxml2::XMLElement* value, int capacity) const {
        for (const tinyxml2::XMLElement* child = value->FirstChildElement(); child != nullptr;
             child = child->NextSiblingElement()) {
            if (std::strcmp(child->Name(), "number") != 0) {
                error("unknown element <" + std::string(child->Name()) + "> in <" + value->Name() + ">" +
                      didYouMean(child->Name(), {"number"}, "<", ">"));
            }
        }
        int count = 0;
        for (const tinyxml2::XMLElement* number = value->FirstChildElement("number"); number != nullptr;
             number = number->NextSiblingElement("number")) {
            if (!isNumber(xmlTextOf(number), false)) {
                error("<number> \"" + std::string(xmlTextOf(number) ? xmlTextOf(number) : "") + "\" is not a number");
            }
            ++count;
        }
        if (count > capacity) warning("numbers past the first " + std::to_string(capacity) + " are ignored");
        if (count < capacity) warning("has " + std::to_string(count) + " of " + std::to_string(capacity) +
                                      " numbers; the missing ones are 0");
    }

    void checkCurve(const char* text) const {
        int count = 0;
        for (const char* token = text; token != nullptr; ++count) {
            const char* next = std::strchr(token, ',');
            const std::string entry = next ? std::string(token, next) : std::string(token);
            if (!isNumber(entry.c_str(), true)) error("curve entry " + std::to_string(count) + " \"" + entry +
                                                      "\" is not an integer");
            token = next ? next + 1 : nullptr;
        }
        if (count != kCurveSize) {
            warning("curve has " + std::to_string(count) + " entries; it takes " + std::to_string(kCurveSize) +
                    (count > kCurveSize ? " and drops the rest" : " and the missing ones are 0"));
        }
    }

    // A value param must reach a uniform of the type its setter writes;
    // messages speak of the param first, as the designer wrote it.
    void checkUniform(const std::string& name, GLenum type, int arraySize, const char* kind) const {
        const DescriptionInfo* description = context.description;
        if (description == nullptr) return;
        auto found = description->uniforms.find(name);
        if (found == description->uniforms.end()) {
            if (description->declares(name)) {
                warning("uniform " + name + " is declared but unused by the shader");
                return;
            }
            std::vector<std::string> candidates;
            for (const std::string& uniform : description->uniformNames()) {
                if (!isAutomaticUniform(uniform)) candidates.push_back(uniform);
            }
            error("param " + name + " names no uniform of filter/gl/" + context.implement + ".xml" +
                  didYouMean(name, candidates));
            return;
        }
        const UniformInfo& uniform = found->second;
        const bool curve = arraySize > 0;
        if (uniform.type != type || (uniform.arraySize > 0) != curve) {
            error("param " + name + " is a " + kind + ", uniform " + name + " is a " +
                  glslTypeName(uniform.type, uniform.arraySize));
        } else if (curve && uniform.arraySize != arraySize) {
            warning("param " + name + " is a " + kind + ", uniform " + name + " is a " +
                    glslTypeName(uniform.type, uniform.arraySize) +
                    (uniform.arraySize < arraySize ? ": the entries past its end are dropped"
                                                   : ": the entries past 256 stay 0"));
        } else if (!uniform.active) {
            warning("uniform " + name + " is declared but unused by the shader");
        }
    }

    void checkImage(const std::string& name, const char* file, std::set<int>* imageSlots) const {
        const int slot = std::atoi(name.c_str());
        if (!isNumber(name.c_str(), true) || slot < 0 || slot > 3) {
            error("an image param's name is the input slot it feeds (1 to 3), not \"" + name + "\"");
            return;
        }
        if (slot == 0) error("input 0 is the package's picture; an image there is replaced at every frame");
        if (file == nullptr || *file == '\0') {
            error("names no image file");
            return;
        }
        if (context.packageName.empty()) {
            error("a leaf written inside a model looks its images up in \"filter//" + std::string(file) +
                  "\"; put the leaf in a package of its own and include it");
            return;
        }
        const std::string path = "filter/" + context.packageName + "/" + file;
        RgbaImage image;
        std::string reason;
        if (!readImageFile(context.bundle.pathOnDisk(path), &image, &reason)) {
            error("image " + path + " cannot be read: " + reason);
        }
        if (context.description != nullptr && !context.description->samples(slot)) {
            error("the shader has no sampler2D " + samplerName(slot) + " for this image");
        }
        if (slot > 0) imageSlots->insert(slot);
    }

    void check(std::set<int>* imageSlots) const {
        for (const tinyxml2::XMLElement* e = param; e != nullptr; e = e == param ? param->FirstChildElement() : e->NextSiblingElement()) {
            checkAttributes(context.file, e, {}, findings);
        }
        const tinyxml2::XMLElement* nameElement = param->FirstChildElement();
        if (nameElement == nullptr || std::strcmp(nameElement->Name(), "name") != 0) {
            error("the first child must be <name> (the engine logs \"xml parse error in param\" and drops it)");
            return;
        }
        const char* nameText = xmlTextOf(nameElement);
        const std::string name = nameText != nullptr ? nameText : "";
        if (name.empty()) error("<name> is empty");
        const tinyxml2::XMLElement* value = nameElement->NextSiblingElement();
        if (value == nullptr) {
            error("param " + name + " has no value element after <name>");
            return;
        }
        const std::string type = value->Name();
        const char* text = xmlTextOf(value);
        if (type == "float") {
            if (!isNumber(text, false)) error("float value is not a number");
            checkUniform(name, GL_FLOAT, 0, "float");
        } else if (type == "vector4f") {
            checkNumbers(value, 4);
            checkUniform(name, GL_FLOAT_VEC4, 0, "vector4f (a vec4)");
        } else if (type == "matrix4f") {
            checkNumbers(value, 16);
            checkUniform(name, GL_FLOAT_MAT4, 0, "matrix4f (a mat4)");
        } else if (type == "curve") {
            if (text == nullptr) {
                error("curve has no values");
            } else {
                checkCurve(text);
            }
            checkUniform(name, GL_FLOAT, kCurveSize, "curve (a float[256])");
        } else if (type == "image") {
            checkImage(name, text, imageSlots);
        } else if (type == "int" || type == "vector2f" || type == "vector3f") {
            error("type " + type + " is not supported: the engine drops this param");
        } else {
            error("unknown param type <" + type + ">" +
                  didYouMean(type, {"float", "vector4f", "matrix4f", "curve", "image"}, "<", ">"));
        }
        for (const tinyxml2::XMLElement* extra = value->NextSiblingElement(); extra != nullptr;
             extra = extra->NextSiblingElement()) {
            warning("<" + std::string(extra->Name()) + "> after the value of param " + name + " is ignored");
        }
    }

private:
    const tinyxml2::XMLElement* param;
    const ParamContext& context;
    Findings* findings;
};

}  // namespace

void lintParam(const tinyxml2::XMLElement* param, const ParamContext& context, Findings* findings,
               std::set<int>* imageSlots) {
    ParamChecker(param, context, findings).check(imageSlots);
}

}  // namespace filterpack
