// Shaders checked as GLSL ES 1.00 by glslang, the Khronos reference front
// end, so lint gives the same verdict whatever GL driver it runs on. Beyond
// glslang's own linker this checks the one cross-stage rule it leaves out:
// every varying the fragment shader reads is declared by the vertex shader
// with the same type.
#ifndef FILTERPACK_GLSL_CHECK_H
#define FILTERPACK_GLSL_CHECK_H

#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

namespace filterpack {

enum class ShaderStage { kVertex, kFragment };

struct GlslMessage {
    int line;  // line in the shader text (from 1); 0 when glslang names none
    std::string text;
};

struct GlslVariable {
    unsigned int glType;  // GL type enum (GL_FLOAT_VEC4, GL_SAMPLER_2D, ...)
    int arraySize;        // 0 when not an array
};

// A loop whose body indexes a uniform array: one pass over the whole array
// for every vertex or pixel.
struct GlslArrayLoop {
    int line;
    std::string uniform;
    int size;
};

struct GlslStageReport {
    bool compiled = false;
    std::vector<GlslMessage> errors;
    std::map<std::string, GlslVariable> uniforms;  // declared
    std::map<std::string, GlslVariable> varyings;  // vertex: written out; fragment: read in
    std::vector<GlslArrayLoop> arrayLoops;
};

struct GlslLinkReport {
    bool linked = false;
    std::vector<std::string> errors;
    std::set<std::string> activeUniforms;    // arrays without "[0]"
    std::set<std::string> activeAttributes;
};

// One vertex and fragment pair. Not thread-safe; glslang's process state is
// set up on first use.
class GlslProgramCheck {
public:
    GlslProgramCheck();
    ~GlslProgramCheck();
    GlslProgramCheck(const GlslProgramCheck&) = delete;
    GlslProgramCheck& operator=(const GlslProgramCheck&) = delete;

    // False when filterpack was built without glslang.
    static bool available();

    GlslStageReport compile(ShaderStage stage, const std::string& text);
    // Needs both stages compiled.
    GlslLinkReport link();

private:
    struct Stages;
    std::unique_ptr<Stages> stages;
    std::map<std::string, GlslVariable> vertexOut;
    std::map<std::string, GlslVariable> fragmentIn;
};

// "vec4", "float[256]", "sampler2D" ...
std::string glslTypeName(unsigned int glType, int arraySize);

}  // namespace filterpack

#endif  // FILTERPACK_GLSL_CHECK_H
