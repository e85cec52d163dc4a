#include "engine/gl/gl_filter_program.h"

#include <cstdlib>
#include <vector>

#include "engine/gl/shader_decipher.h"
#include "engine/gl_frame_state.h"
#include "jni/log.h"

namespace {

// Owns the deciphered copy of a source, if there is one.
class ShaderText {
public:
    explicit ShaderText(const char* source) : deciphered(decipherShaderSource(source)), source(source) {}
    ~ShaderText() { free(deciphered); }
    ShaderText(const ShaderText&) = delete;
    ShaderText& operator=(const ShaderText&) = delete;

    const char* text() const { return deciphered != nullptr ? deciphered : source; }

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
        if (length > 0) {
            std::vector<char> log(static_cast<size_t>(length) + 1, '\0');
            glGetShaderInfoLog(*shader, length, nullptr, log.data());
            log_printE("Shader compile log:\n%s", log.data());
        }
    }
    return status == 1;
}

// Always the program query, also for a shader name after a compile failure
// (which only raises a GL error): the original diagnostics work this way.
void printLog(GLuint object) {
    GLint length = 0;
    glGetProgramiv(object, GL_INFO_LOG_LENGTH, &length);
    if (length > 1) {
        std::vector<char> log(static_cast<size_t>(length) + 1, '\0');
        glGetProgramInfoLog(object, length, &length, log.data());
        log_printD("Log: %s\n", log.data());
    }
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
    if (!compileShader(&p.vertexShader, GL_VERTEX_SHADER, vertexSource)) {
        log_printD("Vertex ");
        printLog(p.vertexShader);
    }
    if (!compileShader(&p.fragmentShader, GL_FRAGMENT_SHADER, fragmentSource)) {
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
    } else {
        // The names stay in the record, so the destructor deletes them once
        // more; GL accepts that for shaders still attached to the program.
        if (p.vertexShader != 0) glDeleteShader(p.vertexShader);
        if (p.fragmentShader != 0) glDeleteShader(p.fragmentShader);
    }
    return record;
}
