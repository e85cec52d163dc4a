#include "engine/gl/shader_origin.h"

#include <cctype>
#include <cstdlib>
#include <cstring>
#include <sstream>

#include "engine/engine_problems.h"

namespace {

thread_local const HFPackageScope* innermostPackage = nullptr;
thread_local const HFShaderOriginScope* innermostOrigin = nullptr;

const std::string& noName() {
    static const std::string empty;
    return empty;
}

// "filter package P: FILE" or what is known of it.
std::string prefix(const std::string& file) {
    std::string text;
    const std::string& package = HFPackageScope::current();
    if (!package.empty()) text = "filter package " + package + ": ";
    return text + (file.empty() ? std::string("GL filter") : file);
}

// Index of the pass whose stored text is `source`, or -1.
int passOf(const std::vector<std::string>& sources, const char* source) {
    if (source == nullptr) return -1;
    for (size_t i = 0; i < sources.size(); ++i) {
        if (sources[i] == source) return static_cast<int>(i);
    }
    return -1;
}

}  // namespace

struct HFShaderOriginAccess {
    static const std::string& file() { return innermostOrigin != nullptr ? innermostOrigin->file : noName(); }
    static const HFGLFilterImpl* impl() { return innermostOrigin != nullptr ? innermostOrigin->impl : nullptr; }
};

HFPackageScope::HFPackageScope(const std::string& packageName) : outer(innermostPackage), name(&packageName) {
    if (!packageName.empty()) innermostPackage = this;
}

HFPackageScope::~HFPackageScope() {
    if (innermostPackage == this) innermostPackage = outer;
}

const std::string& HFPackageScope::current() {
    return innermostPackage != nullptr ? *innermostPackage->name : noName();
}

HFShaderOriginScope::HFShaderOriginScope(const std::string& implementName, const HFGLFilterImpl* description)
    : outer(innermostOrigin), file(HFGLFilterImpl::pathOf(implementName)), impl(description) {
    innermostOrigin = this;
}

HFShaderOriginScope::~HFShaderOriginScope() { innermostOrigin = outer; }

namespace {

bool digitAt(const std::string& text, size_t i) {
    return i < text.size() && isdigit(static_cast<unsigned char>(text[i])) != 0;
}

size_t skipDigits(const std::string& text, size_t i) {
    while (digitAt(text, i)) ++i;
    return i;
}

// The line of the first "source<open>line<close>" in the text, where a digit
// run starts the pattern; 0 when there is none.
int lineAfter(const std::string& text, char open, const char* closers) {
    for (size_t i = 0; i < text.size(); ++i) {
        if (!digitAt(text, i) || digitAt(text, i - 1)) continue;
        const size_t j = skipDigits(text, i);
        if (j >= text.size() || text[j] != open) continue;
        const size_t k = skipDigits(text, j + 1);
        if (k == j + 1 || k >= text.size() || strchr(closers, text[k]) == nullptr) continue;
        return atoi(text.c_str() + j + 1);
    }
    return 0;
}

}  // namespace

int HFShaderOrigin_glslLine(const std::string& logLine) {
    // "0:12(5)" (Mesa), "0:12:" (glslang and most mobile drivers), then
    // "0(12) :" (NVIDIA).
    const int line = lineAfter(logLine, ':', "(:");
    return line != 0 ? line : lineAfter(logLine, '(', ")");
}

void HFShaderOrigin_reportCompileFailure(GLenum type, const char* source, bool sealed, const char* log) {
    const bool vertex = type == GL_VERTEX_SHADER;
    const char* stage = vertex ? "vertex" : "fragment";
    const HFGLFilterImpl* impl = HFShaderOriginAccess::impl();
    const std::string& file = HFShaderOriginAccess::file();
    int pass = -1;
    int firstLine = 0;
    if (impl != nullptr) {
        pass = passOf(vertex ? impl->vertexSources : impl->fragmentSources, source);
        const std::vector<int>& lines = vertex ? impl->vertexLines : impl->fragmentLines;
        if (pass >= 0 && static_cast<size_t>(pass) < lines.size()) firstLine = lines[pass];
    }
    const std::string where = prefix(file);
    std::string what = std::string(stage) + " shader";
    if (pass >= 0) what += " of pass " + std::to_string(pass + 1);
    if (sealed) what = "sealed " + what;

    std::istringstream lines(log != nullptr ? log : "");
    std::string line;
    bool any = false;
    while (std::getline(lines, line)) {
        if (line.empty()) continue;
        any = true;
        const int glslLine = HFShaderOrigin_glslLine(line);
        // A sealed text's lines are those of the deciphered GLSL, not the file's.
        if (!sealed && firstLine > 0 && glslLine > 0) {
            HFProblem_report(where + ":" + std::to_string(firstLine + glslLine - 1) + ": " + what +
                             " does not compile: " + line);
        } else {
            HFProblem_report(where + ": " + what + " does not compile: " + line);
        }
    }
    if (!any) HFProblem_report(where + ": " + what + " does not compile");
}

void HFShaderOrigin_reportLinkFailure(const char* log) {
    std::string text = prefix(HFShaderOriginAccess::file()) + ": program does not link";
    if (log != nullptr && *log != '\0') text += std::string(": ") + log;
    while (!text.empty() && (text.back() == '\n' || text.back() == ' ')) text.pop_back();
    HFProblem_report(text);
}
