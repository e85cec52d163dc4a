// A linked shader program of a GL leaf filter. Sources are deciphered just
// before they are compiled; the record deletes its GL objects when the last
// handle goes.
#ifndef IFC_ENGINE_GL_GL_FILTER_PROGRAM_H
#define IFC_ENGINE_GL_GL_FILTER_PROGRAM_H

#include <GLES2/gl2.h>

#include "engine/gl/gl_uniform_cache.h"
#include "engine/shared_ptr.h"

struct GLFilterProgram {
    GLuint program = 0;
    GLuint vertexShader = 0;
    GLuint fragmentShader = 0;

    GLFilterProgram() = default;
    GLFilterProgram(const GLFilterProgram&) = delete;
    GLFilterProgram& operator=(const GLFilterProgram&) = delete;
    virtual ~GLFilterProgram();

    // Compile and link failures are only logged: the record is returned all
    // the same and draws nothing useful.
    static shared_ptr<GLFilterProgram> create(const char* vertexSource, const char* fragmentSource);

    GLint attributeLocation(const char* name) const { return glGetAttribLocation(program, name); }
    // Asked of GL once per name.
    GLint uniformLocation(const char* name) { return uniforms.location(program, name); }
    // Skipped while a frame renders with this program already current.
    void use() const;

    GLUniformCache uniforms;
};

#endif  // IFC_ENGINE_GL_GL_FILTER_PROGRAM_H
