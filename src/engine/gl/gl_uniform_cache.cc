#include "engine/gl/gl_uniform_cache.h"

#include <algorithm>
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

namespace {

size_t elementBytes(GLenum kind) {
    switch (kind) {
        case GL_FLOAT_VEC2:
            return 8;
        case GL_FLOAT_VEC3:
            return 12;
        case GL_FLOAT_VEC4:
            return 16;
        case GL_FLOAT_MAT4:
            return 64;
        default:
            return 4;
    }
}

}  // namespace

bool GLUniformCache::changed(GLint location, GLenum kind, const void* values, size_t size) {
    if (location < 0) return false;
    if (values == nullptr) return true;
    const unsigned char* bytes = static_cast<const unsigned char*>(values);
    for (const Sent& entry : sent) {
        if (entry.location == location && entry.kind == kind && entry.bytes.size() == size &&
            memcmp(entry.bytes.data(), bytes, size) == 0) {
            return false;
        }
    }
    // An array write may cover the locations of its elements, and an element
    // write changes the array that holds it: such values are forgotten
    // rather than trusted.
    const bool array = size > elementBytes(kind);
    sent.erase(std::remove_if(sent.begin(), sent.end(),
                              [&](const Sent& entry) {
                                  return entry.location != location &&
                                         (array || entry.bytes.size() > elementBytes(entry.kind));
                              }),
               sent.end());
    for (Sent& entry : sent) {
        if (entry.location != location) continue;
        entry.kind = kind;
        entry.bytes.assign(bytes, bytes + size);
        return true;
    }
    sent.push_back(Sent{location, kind, std::vector<unsigned char>(bytes, bytes + size)});
    return true;
}
