#include "commands.h"

#include <GLES2/gl2.h>

#include <cstdio>
#include <fstream>
#include <iterator>
#include <memory>

#include "glsl_check.h"
#include "headless_gl.h"
#include "image_files.h"
#include "package_lint.h"
#include "package_render.h"
#include "seal.h"
#include "suggest.h"

namespace filterpack {
namespace {

std::unique_ptr<ifc_host::HeadlessGL> makeContext() {
    std::string error;
    std::unique_ptr<ifc_host::HeadlessGL> gl = ifc_host::HeadlessGL::create(16, 16, &error);
    if (!gl) std::fprintf(stderr, "filterpack: no GL ES 2.0 context: %s\n", error.c_str());
    return gl;
}

int failure(const std::string& message) {
    std::fprintf(stderr, "filterpack: %s\n", message.c_str());
    return 1;
}

// Static checks of one package, printed to `out`; `linter` keeps what it
// learnt about the package's uniforms.
int printLint(PackageLinter& linter, const std::string& name, std::FILE* out) {
    linter.lintPackage(name);
    const Findings& findings = linter.findings();
    findings.print(out);
    return findings.errorCount();
}

// Values given on the command line must reach a uniform of the type their
// count sets, as a param in the XML must.
bool checkOverrides(const PackageLinter& linter, const std::string& name, const std::vector<ParamOverride>& overrides) {
    bool ok = true;
    for (const ParamOverride& override : overrides) {
        const UniformInfo* uniform = linter.uniform(override.name);
        const size_t count = override.values.size();
        if (uniform == nullptr) {
            failure("--param " + override.name + ": no GL filter of package " + name + " has a uniform " +
                    override.name + didYouMean(override.name, linter.uniformNames()));
            ok = false;
            continue;
        }
        const unsigned int wanted = count == 1 || count == 256 ? GL_FLOAT : count == 4 ? GL_FLOAT_VEC4 : GL_FLOAT_MAT4;
        if (uniform->type != wanted || (uniform->arraySize > 0) != (count == 256)) {
            const char* kind = count == 1 ? "a float" : count == 4 ? "a vector4f (a vec4)"
                             : count == 16 ? "a matrix4f (a mat4)" : "a curve (a float[256])";
            failure("--param " + override.name + " is " + kind + ", uniform " + override.name + " is a " +
                    glslTypeName(uniform->type, uniform->arraySize));
            ok = false;
        }
    }
    return ok;
}

// render and bench check the package first and show every warning; errors
// stop them before anything is drawn.
bool lintFirst(BundleDirectory& bundle, const std::string& name, const std::vector<ParamOverride>& overrides) {
    PackageLinter linter(bundle);
    const int errors = printLint(linter, name, stderr);
    if (errors > 0) {
        failure("package " + name + " has " + std::to_string(errors) + " error(s); run filterpack lint for all of them");
        return false;
    }
    return checkOverrides(linter, name, overrides);
}

// What render and bench share: a GL context, the bundle serving the engine,
// the session in place before the engine builds anything, and the package
// linted first.
struct CheckedRun {
    CheckedRun(const std::string& root, const std::string& name, const std::vector<ParamOverride>& overrides)
        : gl(makeContext()), bundle(root), installed(&bundle), session(overrides) {
        ready = gl && lintFirst(bundle, name, overrides);
    }

    std::unique_ptr<ifc_host::HeadlessGL> gl;
    BundleDirectory bundle;
    InstalledBundle installed;
    EngineSession session;
    bool ready = false;
};

}  // namespace

int sealCommand(const std::string& formName, const std::string& path) {
    SealForm form;
    if (!parseSealForm(formName, &form)) {
        failure("no protected form \"" + formName + "\" (ios, aes, mee, hfe)");
        return kUsageError;
    }
    std::ifstream file(path, std::ios::binary);
    if (!file) return failure("cannot read " + path);
    const std::string plain((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
    std::string sealed;
    std::string error;
    if (!sealShaderSource(form, plain, &sealed, &error)) return failure(path + ": " + error);
    if (form == SealForm::kAes && aesPlainTail(plain) > 0) {
        std::fprintf(stderr,
                     "filterpack: note: the aes form enciphers the first 16 bytes of %s; %zu bytes follow in plain hex\n",
                     path.c_str(), aesPlainTail(plain));
    }
    std::printf("%s\n", sealed.c_str());
    return 0;
}

// Static checks first; a package without errors is then built and run once
// by the engine, which catches what only the engine's own path shows.
int lintCommand(const std::string& root, std::vector<std::string> names) {
    std::unique_ptr<ifc_host::HeadlessGL> gl = makeContext();
    if (!gl) return 1;
    BundleDirectory bundle(root);
    const InstalledBundle installed(&bundle);
    if (names.empty()) names = bundle.packageNames();
    if (names.empty()) return failure("no packages in " + bundle.pathOnDisk("filter") + " (each is NAME/filter.xml)");
    int errors = 0;
    for (const std::string& name : names) {
        PackageLinter linter(bundle);
        linter.lintPackage(name);
        Findings findings = linter.findings();
        if (findings.errorCount() == 0) {
            RgbaImage picture{8, 8, std::vector<uint8_t>(8 * 8 * 4, 128)};
            RgbaImage output;
            std::string error;
            if (!renderPackage(name, picture, &output, &error)) {
                findings.addForFile(Severity::kError, "filter/" + name + "/filter.xml", 0, error);
            }
        }
        findings.print(stdout);
        std::printf("%s: %d error(s), %zu warning(s)\n", name.c_str(), findings.errorCount(),
                    findings.all().size() - static_cast<size_t>(findings.errorCount()));
        errors += findings.errorCount();
    }
    return errors == 0 ? 0 : 1;
}

int renderCommand(const std::string& root, const std::string& name, const std::string& inputPath,
                  const std::string& outputPath, bool compare, const std::vector<ParamOverride>& overrides) {
    RgbaImage input;
    std::string error;
    if (!knownImageFormat(outputPath, &error) || !readImageFile(inputPath, &input, &error)) return failure(error);
    CheckedRun run(root, name, overrides);
    if (!run.ready) return 1;
    RgbaImage output;
    if (!renderPackage(name, input, &output, &error)) return failure(error);
    if (!writeImageFile(outputPath, compare ? sideBySide(input, output) : output, &error)) return failure(error);
    return 0;
}

int benchCommand(const std::string& root, const std::string& name, int width, int height, int frames,
                 const std::vector<ParamOverride>& overrides) {
    CheckedRun run(root, name, overrides);
    if (!run.ready) return 1;
    const BenchResult result = benchPackage(name, width, height, frames, &run.session);
    if (!result.error.empty()) return failure(result.error);
    std::printf("%s %dx%d on %s: %.3f ms/frame over %d frames\n", name.c_str(), width, height, result.renderer.c_str(),
                result.milliseconds, frames);
    for (size_t i = 0; i < result.passes.size(); ++i) {
        std::printf("  pass %zu %-28s %8.3f ms\n", i + 1, result.passes[i].label.c_str(), result.passes[i].milliseconds);
    }
    return 0;
}

}  // namespace filterpack
