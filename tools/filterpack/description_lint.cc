#include "description_lint.h"

#include <GLES2/gl2.h>

#include <cstdlib>
#include <cstring>
#include <memory>
#include <regex>
#include <vector>

#include "bundle_file.h"
#include "engine/gl/gl_filter_impl.h"
#include "engine/gl/shader_decipher.h"

namespace filterpack {
namespace {

struct FreeText {
    void operator()(char* text) const { std::free(text); }
};

bool hasProtectedPrefix(const char* text) {
    for (const char* prefix : {"ios", "aes", "mee", "hfe"}) {
        if (std::strncmp(text, prefix, 3) == 0) return true;
    }
    return false;
}

// The text the engine compiles for `source`, or false when a protected
// text does not decipher.
bool plainText(const std::string& file, const tinyxml2::XMLElement* element, const char* source,
               Findings* findings, std::string* plain) {
    size_t lead = std::strspn(source, " \t\r\n");
    if (lead > 0 && hasProtectedPrefix(source + lead)) {
        findings->add(Severity::kError, file, element,
                      "white space before the protected text: the engine compiles it as GLSL unchanged");
        return false;
    }
    if (!hasProtectedPrefix(source)) {
        *plain = source;
        return true;
    }
    const bool hex = std::strncmp(source, "ios", 3) == 0 || std::strncmp(source, "aes", 3) == 0;
    if (hex) {
        const size_t payload = std::strlen(source + 3);
        std::vector<uint8_t> bytes(payload / 2 + 1);
        if (decodeHexText(source + 3, bytes.data(), static_cast<int>(payload / 2)) != 0) {
            findings->add(Severity::kError, file, element,
                          "the hex payload of the protected text is malformed (odd length or a stray character)");
            return false;
        }
    }
    std::unique_ptr<char, FreeText> deciphered(decipherShaderSource(source));
    if (!deciphered || deciphered.get()[0] == '\0') {
        findings->add(Severity::kError, file, element, "the protected text deciphers to nothing");
        return false;
    }
    *plain = deciphered.get();
    return true;
}

// The source as the engine reads it: the element's first child. A comment
// or a child element there would be taken for the source.
const char* sourceOf(const std::string& file, const tinyxml2::XMLElement* element, Findings* findings) {
    const tinyxml2::XMLNode* first = element->FirstChild();
    if (first == nullptr || first->ToText() == nullptr) {
        findings->add(Severity::kError, file, element, "does not start with its source text");
        return nullptr;
    }
    if (first->NextSibling() != nullptr) {
        findings->add(Severity::kError, file, element, "holds more than one text; the engine reads only the first");
    }
    return first->Value();
}

// Compile or link status of a shader or program, with its info log.
bool statusWithLog(GLuint object, GLenum statusQuery, void (*getIv)(GLuint, GLenum, GLint*),
                   void (*getLog)(GLuint, GLsizei, GLsizei*, GLchar*), std::string* log) {
    GLint status = 0;
    getIv(object, statusQuery, &status);
    GLint length = 0;
    getIv(object, GL_INFO_LOG_LENGTH, &length);
    std::vector<char> text(static_cast<size_t>(length > 0 ? length : 0) + 1, '\0');
    if (length > 0) getLog(object, length, nullptr, text.data());
    *log = text.data();
    return status == GL_TRUE;
}

class Shader {
public:
    Shader(GLenum type, const std::string& text) : name(glCreateShader(type)) {
        const char* source = text.c_str();
        glShaderSource(name, 1, &source, nullptr);
        glCompileShader(name);
    }
    ~Shader() { glDeleteShader(name); }
    Shader(const Shader&) = delete;
    Shader& operator=(const Shader&) = delete;

    GLuint get() const { return name; }
    bool compiled(std::string* log) const {
        return statusWithLog(name, GL_COMPILE_STATUS, glGetShaderiv, glGetShaderInfoLog, log);
    }

private:
    GLuint name;
};

class Program {
public:
    Program(const Shader& vertex, const Shader& fragment) : name(glCreateProgram()) {
        glAttachShader(name, vertex.get());
        glAttachShader(name, fragment.get());
        glLinkProgram(name);
    }
    ~Program() { glDeleteProgram(name); }
    Program(const Program&) = delete;
    Program& operator=(const Program&) = delete;

    bool linked(std::string* log) const {
        return statusWithLog(name, GL_LINK_STATUS, glGetProgramiv, glGetProgramInfoLog, log);
    }

    std::map<std::string, UniformInfo> activeUniforms() const {
        std::map<std::string, UniformInfo> uniforms;
        GLint count = 0;
        glGetProgramiv(name, GL_ACTIVE_UNIFORMS, &count);
        for (GLint i = 0; i < count; ++i) {
            char text[256] = {};
            GLint size = 0;
            GLenum type = 0;
            glGetActiveUniform(name, static_cast<GLuint>(i), sizeof(text), nullptr, &size, &type, text);
            std::string uniform = text;
            const size_t bracket = uniform.find('[');
            const bool array = bracket != std::string::npos;
            if (array) uniform.resize(bracket);
            uniforms[uniform] = UniformInfo{type, size, array};
        }
        return uniforms;
    }

    bool hasAttribute(const char* attribute) const { return glGetAttribLocation(name, attribute) >= 0; }

private:
    GLuint name;
};

// The engine sets these itself; a shader that declares them must use the
// types the engine's glUniform calls expect.
void checkEngineUniforms(const std::string& file, const tinyxml2::XMLElement* fragment, const DescriptionInfo& info,
                         Findings* findings) {
    const struct {
        const char* name;
        GLenum type;
        const char* why;
    } expected[] = {
        {"width", GL_INT, "int (set with glUniform1i)"},
        {"height", GL_INT, "int (set with glUniform1i)"},
        {"horStep", GL_FLOAT, "float (set with glUniform1f)"},
        {"verStep", GL_FLOAT, "float (set with glUniform1f)"},
        {"inputImageTexture", GL_SAMPLER_2D, "sampler2D"},
        {"inputImageTexture1", GL_SAMPLER_2D, "sampler2D"},
        {"inputImageTexture2", GL_SAMPLER_2D, "sampler2D"},
        {"inputImageTexture3", GL_SAMPLER_2D, "sampler2D"},
        {"inputImageTexture4", GL_SAMPLER_2D, "sampler2D"},
    };
    for (const auto& uniform : expected) {
        auto found = info.uniforms.find(uniform.name);
        if (found != info.uniforms.end() && (found->second.type != uniform.type || found->second.array)) {
            findings->add(Severity::kError, file, fragment,
                          std::string("uniform ") + uniform.name + " must be a " + uniform.why);
        }
    }
    if (!info.samples(0)) {
        findings->add(Severity::kWarning, file, fragment,
                      "never samples its input (inputImageTexture or inputImageTexture1)");
    }
}

}  // namespace

std::string samplerName(int slot) {
    return slot == 0 ? "inputImageTexture" : "inputImageTexture" + std::to_string(slot + 1);
}

bool DescriptionInfo::declares(const std::string& uniform) const {
    const std::regex declaration("\\buniform\\b[^;]*\\b" + uniform + "\\b");
    return std::regex_search(plainSources, declaration);
}

bool DescriptionInfo::samples(int slot) const {
    auto isSampler = [this](const std::string& name) {
        auto found = uniforms.find(name);
        return found != uniforms.end() && found->second.type == GL_SAMPLER_2D;
    };
    // Input 0 falls back to "inputImageTexture1" when "inputImageTexture" is absent.
    return isSampler(samplerName(slot)) || (slot == 0 && isSampler("inputImageTexture1"));
}

DescriptionInfo lintDescription(const std::string& implement, HFResourceProvider& bundle, Findings* findings) {
    DescriptionInfo info;
    const std::string file = HFGLFilterImpl::pathOf(implement);
    BundleXml xml(bundle, file, findings);
    tinyxml2::XMLElement* root = xml.root();
    if (root == nullptr) return info;

    const tinyxml2::XMLElement* vertex = root->FirstChildElement("vertex");
    const tinyxml2::XMLElement* fragment = root->FirstChildElement("fragment");
    if (vertex == nullptr) findings->add(Severity::kError, file, root, "has no <vertex> source");
    if (fragment == nullptr) findings->add(Severity::kError, file, root, "has no <fragment> source");
    if (vertex != nullptr && vertex->NextSiblingElement("vertex") != nullptr) {
        findings->add(Severity::kWarning, file, vertex->NextSiblingElement("vertex"), "only the first <vertex> is used");
    }
    if (fragment != nullptr && fragment->NextSiblingElement("fragment") != nullptr) {
        findings->add(Severity::kWarning, file, fragment->NextSiblingElement("fragment"),
                      "only the first <fragment> is drawn");
    }
    if (vertex == nullptr || fragment == nullptr) return info;

    const char* vertexSource = sourceOf(file, vertex, findings);
    const char* fragmentSource = sourceOf(file, fragment, findings);
    std::string vertexText;
    std::string fragmentText;
    if (vertexSource == nullptr || fragmentSource == nullptr ||
        !plainText(file, vertex, vertexSource, findings, &vertexText) ||
        !plainText(file, fragment, fragmentSource, findings, &fragmentText)) {
        return info;
    }
    info.plainSources = vertexText + "\n" + fragmentText;

    const Shader vertexShader(GL_VERTEX_SHADER, vertexText);
    const Shader fragmentShader(GL_FRAGMENT_SHADER, fragmentText);
    std::string log;
    bool compiled = true;
    if (!vertexShader.compiled(&log)) {
        findings->add(Severity::kError, file, vertex, "does not compile: " + log);
        compiled = false;
    }
    if (!fragmentShader.compiled(&log)) {
        findings->add(Severity::kError, file, fragment, "does not compile: " + log);
        compiled = false;
    }
    if (!compiled) return info;
    const Program program(vertexShader, fragmentShader);
    if (!program.linked(&log)) {
        findings->add(Severity::kError, file, root, "vertex and fragment do not link: " + log);
        return info;
    }
    for (const char* attribute : {"position", "inputTextureCoordinate"}) {
        if (!program.hasAttribute(attribute)) {
            findings->add(Severity::kError, file, vertex,
                          std::string("has no active attribute ") + attribute + ": the quad would not be drawn");
        }
    }
    info.uniforms = program.activeUniforms();
    info.usable = true;
    checkEngineUniforms(file, fragment, info, findings);
    return info;
}

}  // namespace filterpack
