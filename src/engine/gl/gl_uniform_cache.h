// Uniform locations of one program by name, and the value last sent to each
// location, so that a steady frame neither asks GL for locations nor sends a
// uniform whose value did not change. Programs are never relinked, so
// locations stay valid; a value changed by a setter reaches GL at once.
#ifndef IFC_ENGINE_GL_GL_UNIFORM_CACHE_H
#define IFC_ENGINE_GL_GL_UNIFORM_CACHE_H

#include <GLES2/gl2.h>

#include <cstddef>
#include <string>
#include <vector>

class GLUniformCache {
public:
    // glGetUniformLocation on the first request for a name (-1 included).
    GLint location(GLuint program, const char* name);
    // True when `size` bytes at `values`, sent as `kind` (GL_INT, GL_FLOAT,
    // GL_FLOAT_VEC4 ...), differ from what was last sent to `location`; they
    // are remembered as sent. Location -1 never needs sending (GL ignores
    // it); null values always go to GL unremembered.
    bool changed(GLint location, GLenum kind, const void* values, size_t size);

private:
    struct Named {
        std::string name;
        GLint location;
    };
    struct Sent {
        GLint location;
        GLenum kind;
        std::vector<unsigned char> bytes;
    };
    std::vector<Named> names;
    std::vector<Sent> sent;
};

#endif  // IFC_ENGINE_GL_GL_UNIFORM_CACHE_H
