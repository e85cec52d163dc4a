#include "engine/gl/gl_uniform_cache.h"

#include <cstring>

GLint GLUniformCache::location(GLuint program, const char* name) {
    if (name == nullptr) return -1;
    for (const Named& named : names) {
        if (named.name == name) return named.location;
    }
    const GLint found = glGetUniformLocation(program, name);
    names.push_back(Named{name, found});
    return found;
}

bool GLUniformCache::changed(GLint location, GLenum kind, const void* values, size_t size) {
    if (location < 0) return false;
    if (values == nullptr) return true;
    const unsigned char* bytes = static_cast<const unsigned char*>(values);
    for (Sent& entry : sent) {
        if (entry.location != location) continue;
        if (entry.kind == kind && entry.bytes.size() == size && memcmp(entry.bytes.data(), bytes, size) == 0) {
            return false;
        }
        entry.kind = kind;
        entry.bytes.assign(bytes, bytes + size);
        return true;
    }
    sent.push_back(Sent{location, kind, std::vector<unsigned char>(bytes, bytes + size)});
    return true;
}
