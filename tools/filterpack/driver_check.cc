#include "driver_check.h"

#include <GLES2/gl2.h>

#include <vector>

namespace filterpack {
namespace {

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
    while (!log->empty() && (log->back() == '\n' || log->back() == ' ')) log->pop_back();
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

    void activeVariables(DriverReport* report) const {
        GLint count = 0;
        glGetProgramiv(name, GL_ACTIVE_UNIFORMS, &count);
        for (GLint i = 0; i < count; ++i) {
            char text[256] = {};
            GLint size = 0;
            GLenum type = 0;
            glGetActiveUniform(name, static_cast<GLuint>(i), sizeof(text), nullptr, &size, &type, text);
            std::string uniform = text;
            const size_t bracket = uniform.find('[');
            if (bracket != std::string::npos) uniform.resize(bracket);
            report->activeUniforms[uniform] = DriverReport::Uniform{type, bracket != std::string::npos ? size : 0};
        }
        for (const char* attribute : {"position", "inputTextureCoordinate"}) {
            if (glGetAttribLocation(name, attribute) >= 0) report->activeAttributes.insert(attribute);
        }
    }

private:
    GLuint name;
};

}  // namespace

DriverReport checkOnDriver(const std::string& vertex, const std::string& fragment) {
    DriverReport report;
    const GLubyte* renderer = glGetString(GL_RENDERER);
    report.renderer = renderer != nullptr ? reinterpret_cast<const char*>(renderer) : "unknown renderer";
    const Shader vertexShader(GL_VERTEX_SHADER, vertex);
    const Shader fragmentShader(GL_FRAGMENT_SHADER, fragment);
    report.vertexCompiled = vertexShader.compiled(&report.vertexLog);
    report.fragmentCompiled = fragmentShader.compiled(&report.fragmentLog);
    if (!report.vertexCompiled || !report.fragmentCompiled) return report;
    const Program program(vertexShader, fragmentShader);
    report.linked = program.linked(&report.linkLog);
    if (report.linked) program.activeVariables(&report);
    return report;
}

std::string driverName(const DriverReport& report) { return "the GL driver (" + report.renderer + ")"; }

}  // namespace filterpack
