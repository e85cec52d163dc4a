#include "glsl_check.h"

#include <GLES2/gl2.h>
#include <GLES2/gl2ext.h>
#include <glslang/Include/intermediate.h>
#include <glslang/MachineIndependent/localintermediate.h>
#include <glslang/Public/ResourceLimits.h>
#include <glslang/Public/ShaderLang.h>

#include <cstdlib>
#include <cstring>
#include <sstream>

namespace filterpack {
namespace {

constexpr int kEsVersion = 100;

// Process set-up once; glslang's own teardown is left to process exit.
void initializeGlslang() {
    static const bool ready = glslang::InitializeProcess();
    (void)ready;
}

// GLSL ES 1.00 as every conforming driver must take it: the minimum
// guarantees of the language's Appendix A, not the desktop-like defaults.
const TBuiltInResource& esResources() {
    static const TBuiltInResource resources = [] {
        TBuiltInResource r = *GetDefaultResources();
        r.maxVertexAttribs = 8;
        r.maxVertexUniformVectors = 128;
        r.maxVaryingVectors = 8;
        r.maxVertexTextureImageUnits = 0;
        r.maxCombinedTextureImageUnits = 8;
        r.maxTextureImageUnits = 8;
        r.maxFragmentUniformVectors = 16;
        r.maxDrawBuffers = 1;
        r.limits.nonInductiveForLoops = false;
        r.limits.whileLoops = false;
        r.limits.doWhileLoops = false;
        r.limits.generalUniformIndexing = false;
        r.limits.generalAttributeMatrixVectorIndexing = false;
        r.limits.generalVaryingIndexing = false;
        r.limits.generalSamplerIndexing = false;
        r.limits.generalVariableIndexing = false;
        r.limits.generalConstantMatrixVectorIndexing = false;
        return r;
    }();
    return resources;
}

unsigned int glTypeOf(const glslang::TType& type) {
    const int size = type.getVectorSize();
    switch (type.getBasicType()) {
        case glslang::EbtFloat:
            if (type.isMatrix()) {
                const int cols = type.getMatrixCols();
                return cols == 2 ? GL_FLOAT_MAT2 : cols == 3 ? GL_FLOAT_MAT3 : GL_FLOAT_MAT4;
            }
            return size == 1 ? GL_FLOAT : size == 2 ? GL_FLOAT_VEC2 : size == 3 ? GL_FLOAT_VEC3 : GL_FLOAT_VEC4;
        case glslang::EbtInt:
            return size == 1 ? GL_INT : size == 2 ? GL_INT_VEC2 : size == 3 ? GL_INT_VEC3 : GL_INT_VEC4;
        case glslang::EbtBool:
            return size == 1 ? GL_BOOL : size == 2 ? GL_BOOL_VEC2 : size == 3 ? GL_BOOL_VEC3 : GL_BOOL_VEC4;
        case glslang::EbtSampler:
            if (type.getSampler().isExternal()) return GL_SAMPLER_EXTERNAL_OES;
            return type.getSampler().dim == glslang::EsdCube ? GL_SAMPLER_CUBE : GL_SAMPLER_2D;
        default:
            return 0;
    }
}

GlslVariable variableOf(const glslang::TType& type) {
    return GlslVariable{glTypeOf(type), type.isArray() ? type.getOuterArraySize() : 0};
}

// "ERROR: 0:12: 'oops' : undeclared identifier" -> line 12 and the rest.
std::vector<GlslMessage> messagesOf(const char* log) {
    std::vector<GlslMessage> messages;
    std::istringstream lines(log != nullptr ? log : "");
    for (std::string line; std::getline(lines, line);) {
        static const char kError[] = "ERROR: ";
        if (line.compare(0, std::strlen(kError), kError) != 0) continue;
        std::string rest = line.substr(std::strlen(kError));
        if (rest.find("compilation terminated") != std::string::npos ||
            rest.find("compilation errors.") != std::string::npos) {
            continue;
        }
        int number = 0;
        const size_t colon = rest.find(':');
        const size_t second = colon != std::string::npos ? rest.find(':', colon + 1) : std::string::npos;
        if (colon != std::string::npos && second != std::string::npos && rest.compare(0, colon, "0") == 0) {
            number = std::atoi(rest.c_str() + colon + 1);
            rest = rest.substr(second + 1);
        }
        while (!rest.empty() && (rest.back() == ' ' || rest.back() == '\r')) rest.pop_back();
        const size_t start = rest.find_first_not_of(' ');
        messages.push_back(GlslMessage{number, start == std::string::npos ? rest : rest.substr(start)});
    }
    return messages;
}

// Declarations from the linker objects, varyings read in code, and loops
// that index a uniform array.
class Survey : public glslang::TIntermTraverser {
public:
    Survey(ShaderStage stage, GlslStageReport* report) : stage(stage), report(report) {}

    bool visitAggregate(glslang::TVisit, glslang::TIntermAggregate* node) override {
        if (node->getOp() != glslang::EOpLinkerObjects) return true;
        for (TIntermNode* object : node->getSequence()) {
            const glslang::TIntermSymbol* symbol = object->getAsSymbolNode();
            if (symbol == nullptr) continue;
            const glslang::TType& type = symbol->getType();
            const std::string name = symbol->getName().c_str();
            const glslang::TStorageQualifier storage = type.getQualifier().storage;
            if (storage == glslang::EvqUniform) report->uniforms[name] = variableOf(type);
            if (stage == ShaderStage::kVertex && storage == glslang::EvqVaryingOut && !type.isBuiltIn()) {
                report->varyings[name] = variableOf(type);
            }
            if (stage == ShaderStage::kFragment && storage == glslang::EvqVaryingIn && !type.isBuiltIn()) {
                declaredIn[name] = variableOf(type);
            }
        }
        return false;
    }

    bool visitLoop(glslang::TVisit, glslang::TIntermLoop* loop) override {
        ++loopDepth;
        loopLines.push_back(loop->getLoc().line);
        if (loop->getTest() != nullptr) loop->getTest()->traverse(this);
        if (loop->getTerminal() != nullptr) loop->getTerminal()->traverse(this);
        if (loop->getBody() != nullptr) loop->getBody()->traverse(this);
        loopLines.pop_back();
        --loopDepth;
        return false;
    }

    void visitSymbol(glslang::TIntermSymbol* symbol) override {
        const glslang::TType& type = symbol->getType();
        const std::string name = symbol->getName().c_str();
        const glslang::TStorageQualifier storage = type.getQualifier().storage;
        if (stage == ShaderStage::kFragment && storage == glslang::EvqVaryingIn && !type.isBuiltIn()) {
            readIn.insert(name);
        }
        if (loopDepth > 0 && storage == glslang::EvqUniform && type.isArray() && type.getBasicType() != glslang::EbtSampler &&
            reported.insert(name).second) {
            report->arrayLoops.push_back(GlslArrayLoop{loopLines.front(), name, type.getOuterArraySize()});
        }
    }

    // Fragment varyings count once read in code.
    void finish() {
        for (const std::string& name : readIn) {
            auto found = declaredIn.find(name);
            if (found != declaredIn.end()) report->varyings[name] = found->second;
        }
    }

private:
    ShaderStage stage;
    GlslStageReport* report;
    int loopDepth = 0;
    std::vector<int> loopLines;
    std::set<std::string> reported;
    std::set<std::string> readIn;
    std::map<std::string, GlslVariable> declaredIn;
};

}  // namespace

struct GlslProgramCheck::Stages {
    std::unique_ptr<glslang::TShader> vertex;
    std::unique_ptr<glslang::TShader> fragment;
    bool vertexCompiled = false;
    bool fragmentCompiled = false;
};

GlslProgramCheck::GlslProgramCheck() : stages(new Stages()) { initializeGlslang(); }

GlslProgramCheck::~GlslProgramCheck() = default;

bool GlslProgramCheck::available() { return true; }

GlslStageReport GlslProgramCheck::compile(ShaderStage stage, const std::string& text) {
    const bool vertex = stage == ShaderStage::kVertex;
    std::unique_ptr<glslang::TShader>& shader = vertex ? stages->vertex : stages->fragment;
    shader.reset(new glslang::TShader(vertex ? EShLangVertex : EShLangFragment));
    const char* source = text.c_str();
    shader->setStrings(&source, 1);
    GlslStageReport report;
    report.compiled = shader->parse(&esResources(), kEsVersion, EEsProfile, false, false, EShMsgDefault);
    report.errors = messagesOf(shader->getInfoLog());
    if (!report.errors.empty()) report.compiled = false;
    if (report.compiled) {
        Survey survey(stage, &report);
        shader->getIntermediate()->getTreeRoot()->traverse(&survey);
        survey.finish();
    }
    (vertex ? stages->vertexCompiled : stages->fragmentCompiled) = report.compiled;
    (vertex ? vertexOut : fragmentIn) = report.varyings;
    return report;
}

GlslLinkReport GlslProgramCheck::link() {
    GlslLinkReport report;
    if (!stages->vertexCompiled || !stages->fragmentCompiled) {
        report.errors.push_back("a stage did not compile");
        return report;
    }
    for (const auto& varying : fragmentIn) {
        auto written = vertexOut.find(varying.first);
        if (written == vertexOut.end()) {
            report.errors.push_back("varying " + varying.first +
                                    " is read by the fragment shader but not declared by the vertex shader");
        } else if (written->second.glType != varying.second.glType ||
                   written->second.arraySize != varying.second.arraySize) {
            report.errors.push_back("varying " + varying.first + " is a " +
                                    glslTypeName(written->second.glType, written->second.arraySize) +
                                    " in the vertex shader and a " +
                                    glslTypeName(varying.second.glType, varying.second.arraySize) +
                                    " in the fragment shader");
        }
    }
    glslang::TProgram program;
    program.addShader(stages->vertex.get());
    program.addShader(stages->fragment.get());
    if (!program.link(EShMsgDefault)) {
        for (const GlslMessage& message : messagesOf(program.getInfoLog())) report.errors.push_back(message.text);
        if (report.errors.empty()) report.errors.push_back(program.getInfoLog());
    }
    if (!report.errors.empty()) return report;
    program.buildReflection();
    for (int i = 0; i < program.getNumUniformVariables(); ++i) {
        std::string name = program.getUniform(i).name;
        const size_t bracket = name.find('[');
        if (bracket != std::string::npos) name.resize(bracket);
        report.activeUniforms.insert(name);
    }
    for (int i = 0; i < program.getNumPipeInputs(); ++i) report.activeAttributes.insert(program.getPipeInput(i).name);
    report.linked = true;
    return report;
}

}  // namespace filterpack
