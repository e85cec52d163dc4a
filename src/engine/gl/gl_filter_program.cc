#include "engine/gl/gl_filter_program.h"

#include <cstdlib>
#include <vector>

#include "engine/gl/shader_decipher.h"
#include "engine/gl/shader_origin.h"
#include "engine/gl_frame_state.h"
#include "jni/bridge/log.h"

namespace {

// Owns the deciphered copy of a source, if there is one.
class ShaderText {
public:
    explicit ShaderText(const char* source) : deciphered(decipherShaderSource(source)), source(source) {}
    ~ShaderText() { free(deciphered); }
    ShaderText(const ShaderText&) = delete;
    ShaderText& operator=(const ShaderText&) = delete;

    const char* text() const { return deciphered != nullptr ? deciphered : source; }
    bool sealed() const { return deciphered != nullptr; }

private:
    char* deciphered;
    const char* source;
};

// A failed shader is not deleted here; the record's destructor does it.
bool compileShader(GLuint* shader, GLenum type, const char* source) {
    if (source == nullptr) {
        // The message names the vertex shader for either type; it always has.
        log_printE("Failed to load vertex shader\n");
        return false;
    }
    const ShaderText text(source);
    const char* plain = text.text();
    *shader = glCreateShader(type);
    glShaderSource(*shader, 1, &plain, nullptr);
    glCompileShader(*shader);

    GLint status = 0;
    glGetShaderiv(*shader, GL_COMPILE_STATUS, &status);
    if (status != 1) {
        GLint length = 0;
        glGetShaderiv(*shader, GL_INFO_LOG_LENGTH, &length);
        std::vector<char> log(static_cast<size_t>(length > 0 ? length : 0) + 1, '\0');
        if (length > 0) {
            glGetShaderInfoLog(*shader, length, nullptr, log.data());
            log_printE("Shader compile log:\n%s", log.data());
        }
        HFShaderOrigin_reportCompileFailure(type, source, text.sealed(), log.data());
    }
    return status == 1;
}

// The program info log; empty (a single NUL) when there is none.
std::vector<char> programLog(GLuint object) {
    GLint length = 0;
    glGetProgramiv(object, GL_INFO_LOG_LENGTH, &length);
    std::vector<char> log(static_cast<size_t>(length > 1 ? length : 0) + 1, '\0');
    if (length > 1) glGetProgramInfoLog(object, length, &length, log.data());
    return log;
}

// Always the program query, also for a shader name after a compile failure:
// that call only raises a GL error and prints nothing. Intended; the compile
// log above already names the fault.
void printLog(GLuint object) {
    const std::vector<char> log = programLog(object);
    if (log[0] != '\0') log_printD("Log: %s\n", log.data());
}

}  // namespace

GLFilterProgram::~GLFilterProgram() {
    if (vertexShader != 0) glDeleteShader(vertexShader);
    if (fragmentShader != 0) glDeleteShader(fragmentShader);
    if (program != 0) glDeleteProgram(program);
}

void GLFilterProgram::use() const { GLFrameState::useProgram(program); }

shared_ptr<GLFilterProgram> GLFilterProgram::create(const char* vertexSource, const char* fragmentSource) {
    shared_ptr<GLFilterProgram> record(new GLFilterProgram());
    GLFilterProgram& p = *record;
    p.program = glCreateProgram();
    const bool vertexCompiled = compileShader(&p.vertexShader, GL_VERTEX_SHADER, vertexSource);
    if (!vertexCompiled) {
        log_printD("Vertex ");
        printLog(p.vertexShader);
    }
    const bool fragmentCompiled = compileShader(&p.fragmentShader, GL_FRAGMENT_SHADER, fragmentSource);
    if (!fragmentCompiled) {
        log_printD("Fragment ");
        printLog(p.fragmentShader);
    }
    glAttachShader(p.program, p.vertexShader);
    glAttachShader(p.program, p.fragmentShader);
    glLinkProgram(p.program);

    GLint linked = 0;
    glGetProgramiv(p.program, GL_LINK_STATUS, &linked);
    if (linked == 0) {
        log_printD("Program ");
        printLog(p.program);
        // After a compile failure the link failure says nothing new.
        if (vertexCompiled && fragmentCompiled) HFShaderOrigin_reportLinkFailure(programLog(p.program).data());
    } else {
        // The names stay in the record, so the destructor deletes them once
        // more; GL accepts that for shaders still attached to the program.
        if (p.vertexShader != 0) glDeleteShader(p.vertexShader);
        if (p.fragmentShader != 0) glDeleteShader(p.fragmentShader);
    }
    return record;
}
