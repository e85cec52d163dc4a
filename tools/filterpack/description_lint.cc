#include "description_lint.h"

#include <GLES2/gl2.h>
#include <tinyxml2.h>

#include <regex>

#include "bundle_file.h"
#include "driver_check.h"
#include "engine/gl/gl_filter_impl.h"
#include "glsl_check.h"
#include "shader_source.h"
#include "vocabulary.h"

namespace filterpack {
namespace {

// A uniform array this long, read in a loop, costs one uniform read per
// entry for every pixel.
constexpr int kLargeArray = 32;

struct EngineUniform {
    const char* name;
    GLenum type;
    const char* why;
};

const EngineUniform kEngineUniforms[] = {
    {"width", GL_INT, "int (set with glUniform1i)"},
    {"height", GL_INT, "int (set with glUniform1i)"},
    {"horStep", GL_FLOAT, "float (set with glUniform1f)"},
    {"verStep", GL_FLOAT, "float (set with glUniform1f)"},
    {"inputImageTexture", GL_SAMPLER_2D, "sampler2D"},
    {"inputImageTexture1", GL_SAMPLER_2D, "sampler2D"},
    {"inputImageTexture2", GL_SAMPLER_2D, "sampler2D"},
    {"inputImageTexture3", GL_SAMPLER_2D, "sampler2D"},
    {"inputImageTexture4", GL_SAMPLER_2D, "sampler2D"},
};

// The engine sets these itself; a shader that declares them must use the
// types the engine's glUniform calls expect.
void checkEngineUniforms(const std::string& file, const tinyxml2::XMLElement* fragment, const DescriptionInfo& info,
                         Findings* findings) {
    for (const EngineUniform& uniform : kEngineUniforms) {
        auto found = info.uniforms.find(uniform.name);
        if (found != info.uniforms.end() && (found->second.type != uniform.type || found->second.arraySize != 0)) {
            findings->add(Severity::kError, file, fragment,
                          std::string("uniform ") + uniform.name + " is a " +
                              glslTypeName(found->second.type, found->second.arraySize) + "; the engine sets it as " +
                              uniform.why);
        }
    }
    if (!info.samples(0)) {
        findings->add(Severity::kWarning, file, fragment,
                      "never samples its input (inputImageTexture or inputImageTexture1)");
    }
}

void reportGlslang(const std::string& file, const ShaderSource& source, const std::vector<GlslMessage>& errors,
                   Findings* findings) {
    for (const GlslMessage& message : errors) {
        findings->addAt(Severity::kError, file, source.fileLine(message.line), source.element,
                        "glslang: " + message.text + source.sealedNote(message.line));
    }
}

void warnArrayLoops(const std::string& file, const ShaderSource& source, const GlslStageReport& report,
                    Findings* findings) {
    for (const GlslArrayLoop& loop : report.arrayLoops) {
        if (loop.size < kLargeArray) continue;
        findings->addAt(Severity::kWarning, file, source.fileLine(loop.line), source.element,
                        "a loop reads uniform " + loop.uniform + "[" + std::to_string(loop.size) +
                            "] for every pixel" + source.sealedNote(loop.line) +
                            "; a 256x1 curve image through an \"image\" param costs one texture fetch per channel");
    }
}

// glslang's verdict on every source and on the drawn pair; fills `info`
// with what the pair declares and reads. False when a shader is not GLSL
// ES 1.00.
bool checkWithGlslang(const std::string& file, const tinyxml2::XMLElement* root, const ShaderSource& vertex,
                      const std::vector<ShaderSource>& fragments, DescriptionInfo* info, std::set<std::string>* attributes,
                      Findings* findings) {
    bool ok = true;
    for (size_t pass = 1; pass < fragments.size(); ++pass) {
        GlslProgramCheck extra;
        const GlslStageReport report = extra.compile(ShaderStage::kFragment, fragments[pass].plain);
        reportGlslang(file, fragments[pass], report.errors, findings);
        ok = ok && report.compiled;
    }
    GlslProgramCheck program;
    const GlslStageReport vertexReport = program.compile(ShaderStage::kVertex, vertex.plain);
    const GlslStageReport fragmentReport = program.compile(ShaderStage::kFragment, fragments[0].plain);
    reportGlslang(file, vertex, vertexReport.errors, findings);
    reportGlslang(file, fragments[0], fragmentReport.errors, findings);
    warnArrayLoops(file, fragments[0], fragmentReport, findings);
    if (!vertexReport.compiled || !fragmentReport.compiled) return false;
    const GlslLinkReport link = program.link();
    for (const std::string& error : link.errors) {
        findings->add(Severity::kError, file, root, "glslang: vertex and fragment do not link: " + error);
    }
    if (!link.linked) return false;
    for (const GlslStageReport* stage : {&vertexReport, &fragmentReport}) {
        for (const auto& uniform : stage->uniforms) {
            info->uniforms[uniform.first] = UniformInfo{uniform.second.glType, uniform.second.arraySize,
                                                        link.activeUniforms.count(uniform.first) != 0};
        }
    }
    *attributes = link.activeAttributes;
    return ok;
}

// The driver's compile and link failures; `who` names the judge ("glslang
// accepts it, but the GL driver (...)" when glslang passed the sources, so a
// failure here is the driver's own).
bool reportDriver(const std::string& file, const tinyxml2::XMLElement* root, const ShaderSource& vertex,
                  const ShaderSource& fragment, const DriverReport& driver, const std::string& who,
                  Findings* findings) {
    if (!driver.vertexCompiled) {
        findings->add(Severity::kError, file, vertex.element, who + " does not compile it: " + driver.vertexLog);
    }
    if (!driver.fragmentCompiled) {
        findings->add(Severity::kError, file, fragment.element, who + " does not compile it: " + driver.fragmentLog);
    }
    if (driver.vertexCompiled && driver.fragmentCompiled && !driver.linked) {
        findings->add(Severity::kError, file, root, who + " does not link the pair: " + driver.linkLog);
    }
    return driver.linked;
}

// Without glslang the driver is the only judge, and lint says so.
bool driverOnly(const std::string& file, const tinyxml2::XMLElement* root, const ShaderSource& vertex,
                const ShaderSource& fragment, const DriverReport& driver, DescriptionInfo* info,
                std::set<std::string>* attributes, Findings* findings) {
    findings->add(Severity::kWarning, file, root,
                  "filterpack was built without glslang: only " + driverName(driver) + " checked these shaders");
    for (const auto& uniform : driver.activeUniforms) {
        info->uniforms[uniform.first] = UniformInfo{uniform.second.type, uniform.second.arraySize, true};
    }
    *attributes = driver.activeAttributes;
    return reportDriver(file, root, vertex, fragment, driver, driverName(driver), findings);
}

}  // namespace

std::string samplerName(int slot) {
    return slot == 0 ? "inputImageTexture" : "inputImageTexture" + std::to_string(slot + 1);
}

bool isAutomaticUniform(const std::string& name) {
    for (const EngineUniform& uniform : kEngineUniforms) {
        if (name == uniform.name) return true;
    }
    return false;
}

bool DescriptionInfo::declares(const std::string& uniform) const {
    if (uniforms.count(uniform) != 0) return true;
    const std::regex declaration("\\buniform\\b[^;]*\\b" + uniform + "\\b");
    return std::regex_search(plainSources, declaration);
}

bool DescriptionInfo::samples(int slot) const {
    auto isSampler = [this](const std::string& name) {
        auto found = uniforms.find(name);
        return found != uniforms.end() && found->second.active && found->second.type == GL_SAMPLER_2D;
    };
    // Input 0 falls back to "inputImageTexture1" when "inputImageTexture" is absent.
    return isSampler(samplerName(slot)) || (slot == 0 && isSampler("inputImageTexture1"));
}

std::vector<std::string> DescriptionInfo::uniformNames() const {
    std::vector<std::string> names;
    for (const auto& uniform : uniforms) names.push_back(uniform.first);
    return names;
}

DescriptionInfo lintDescription(const std::string& implement, BundleDirectory& bundle, Findings* findings) {
    DescriptionInfo info;
    const std::string file = HFGLFilterImpl::pathOf(implement);
    BundleXml xml(bundle, file, findings);
    tinyxml2::XMLElement* root = xml.root();
    if (root == nullptr) return info;
    checkChildren(file, root, {"vertex", "fragment"}, findings);

    const tinyxml2::XMLElement* vertex = root->FirstChildElement("vertex");
    const tinyxml2::XMLElement* fragment = root->FirstChildElement("fragment");
    if (vertex == nullptr) findings->add(Severity::kError, file, root, "has no <vertex> source");
    if (fragment == nullptr) findings->add(Severity::kError, file, root, "has no <fragment> source");
    if (vertex != nullptr && vertex->NextSiblingElement("vertex") != nullptr) {
        findings->add(Severity::kWarning, file, vertex->NextSiblingElement("vertex"), "only the first <vertex> is used");
    }
    if (fragment != nullptr && fragment->NextSiblingElement("fragment") != nullptr) {
        findings->add(Severity::kWarning, file, fragment->NextSiblingElement("fragment"),
                      "only the first <fragment> is drawn");
    }
    if (vertex == nullptr || fragment == nullptr) return info;

    ShaderSource vertexSource;
    bool readable = readShaderSource(file, vertex, findings, &vertexSource);
    std::vector<ShaderSource> fragments;
    for (const tinyxml2::XMLElement* pass = fragment; pass != nullptr; pass = pass->NextSiblingElement("fragment")) {
        fragments.emplace_back();
        readable = readShaderSource(file, pass, findings, &fragments.back()) && readable;
    }
    if (!readable) return info;
    info.plainSources = vertexSource.plain + "\n" + fragments[0].plain;

    std::set<std::string> attributes;
    bool linked = false;
    if (GlslProgramCheck::available()) {
        if (!checkWithGlslang(file, root, vertexSource, fragments, &info, &attributes, findings)) return info;
        const DriverReport driver = checkOnDriver(vertexSource.plain, fragments[0].plain);
        linked = reportDriver(file, root, vertexSource, fragments[0], driver,
                              "glslang accepts it, but " + driverName(driver), findings);
    } else {
        linked = driverOnly(file, root, vertexSource, fragments[0], checkOnDriver(vertexSource.plain, fragments[0].plain),
                            &info, &attributes, findings);
    }
    if (!linked) return info;
    for (const char* attribute : {"position", "inputTextureCoordinate"}) {
        if (attributes.count(attribute) == 0) {
            findings->add(Severity::kError, file, vertex,
                          std::string("has no active attribute ") + attribute + ": the quad would not be drawn");
        }
    }
    info.usable = true;
    checkEngineUniforms(file, fragment, info, findings);
    return info;
}

}  // namespace filterpack
