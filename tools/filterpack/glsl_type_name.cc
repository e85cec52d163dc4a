#include <GLES2/gl2.h>
#include <GLES2/gl2ext.h>

#include "glsl_check.h"

namespace filterpack {

std::string glslTypeName(unsigned int glType, int arraySize) {
    const char* name = "unknown type";
    switch (glType) {
        case GL_FLOAT: name = "float"; break;
        case GL_FLOAT_VEC2: name = "vec2"; break;
        case GL_FLOAT_VEC3: name = "vec3"; break;
        case GL_FLOAT_VEC4: name = "vec4"; break;
        case GL_INT: name = "int"; break;
        case GL_INT_VEC2: name = "ivec2"; break;
        case GL_INT_VEC3: name = "ivec3"; break;
        case GL_INT_VEC4: name = "ivec4"; break;
        case GL_BOOL: name = "bool"; break;
        case GL_BOOL_VEC2: name = "bvec2"; break;
        case GL_BOOL_VEC3: name = "bvec3"; break;
        case GL_BOOL_VEC4: name = "bvec4"; break;
        case GL_FLOAT_MAT2: name = "mat2"; break;
        case GL_FLOAT_MAT3: name = "mat3"; break;
        case GL_FLOAT_MAT4: name = "mat4"; break;
        case GL_SAMPLER_2D: name = "sampler2D"; break;
        case GL_SAMPLER_CUBE: name = "samplerCube"; break;
        case GL_SAMPLER_EXTERNAL_OES: name = "samplerExternalOES"; break;
        default: break;
    }
    return arraySize > 0 ? std::string(name) + "[" + std::to_string(arraySize) + "]" : std::string(name);
}

}  // namespace filterpack
