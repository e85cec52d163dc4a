// filterpack: seals shader sources, lints, renders and times filter packages
// with the library's own engine on a headless GL context.
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iterator>
#include <memory>
#include <string>

#include "headless_gl.h"
#include "image_files.h"
#include "package_lint.h"
#include "package_render.h"
#include "preview_server.h"
#include "seal.h"

namespace {

using namespace filterpack;

constexpr int kUsageError = 2;

int usage() {
    std::fprintf(stderr,
                 "usage: filterpack seal ios|aes|mee|hfe SHADER_FILE\n"
                 "       filterpack lint BUNDLE_DIR PACKAGE...\n"
                 "       filterpack render BUNDLE_DIR PACKAGE INPUT_IMAGE OUTPUT_PNG\n"
                 "       filterpack bench BUNDLE_DIR PACKAGE WIDTHxHEIGHT [FRAMES]\n"
                 "       filterpack serve BUNDLE_DIR [PORT]\n");
    return kUsageError;
}

std::unique_ptr<ifc_host::HeadlessGL> makeContext() {
    std::string error;
    std::unique_ptr<ifc_host::HeadlessGL> gl = ifc_host::HeadlessGL::create(16, 16, &error);
    if (!gl) std::fprintf(stderr, "filterpack: no GL ES 2.0 context: %s\n", error.c_str());
    return gl;
}

int seal(const char* formName, const char* path) {
    SealForm form;
    if (!parseSealForm(formName, &form)) return usage();
    std::ifstream file(path, std::ios::binary);
    if (!file) {
        std::fprintf(stderr, "filterpack: cannot read %s\n", path);
        return 1;
    }
    const std::string plain((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
    std::string sealed;
    std::string error;
    if (!sealShaderSource(form, plain, &sealed, &error)) {
        std::fprintf(stderr, "filterpack: %s: %s\n", path, error.c_str());
        return 1;
    }
    if (form == SealForm::kAes && aesPlainTail(plain) > 0) {
        std::fprintf(stderr, "filterpack: note: the aes form enciphers the first 16 bytes of %s; %zu bytes follow in plain hex\n",
                     path, aesPlainTail(plain));
    }
    std::printf("%s\n", sealed.c_str());
    return 0;
}

// Static checks first; a package without errors is then built and run once
// by the engine, which catches what only the engine's own path shows.
int lint(const char* root, char** names, int count) {
    std::unique_ptr<ifc_host::HeadlessGL> gl = makeContext();
    if (!gl) return 1;
    BundleDirectory bundle(root);
    const InstalledBundle installed(&bundle);
    int errors = 0;
    for (int i = 0; i < count; ++i) {
        PackageLinter linter(bundle);
        linter.lintPackage(names[i]);
        Findings findings = linter.findings();
        if (findings.errorCount() == 0) {
            RgbaImage picture{8, 8, std::vector<uint8_t>(8 * 8 * 4, 128)};
            RgbaImage output;
            if (!renderPackage(names[i], picture, &output)) {
                findings.addForFile(Severity::kError, "filter/" + std::string(names[i]) + "/filter.xml", 0,
                                    "the engine cannot render this package (its log says why)");
            }
        }
        findings.print(stdout);
        std::printf("%s: %d error(s), %zu warning(s)\n", names[i], findings.errorCount(),
                    findings.all().size() - static_cast<size_t>(findings.errorCount()));
        errors += findings.errorCount();
    }
    return errors == 0 ? 0 : 1;
}

int render(const char* root, const char* name, const char* inputPath, const char* outputPath) {
    RgbaImage input;
    std::string error;
    if (!readImageFile(inputPath, &input, &error)) {
        std::fprintf(stderr, "filterpack: %s\n", error.c_str());
        return 1;
    }
    std::unique_ptr<ifc_host::HeadlessGL> gl = makeContext();
    if (!gl) return 1;
    BundleDirectory bundle(root);
    const InstalledBundle installed(&bundle);
    RgbaImage output;
    if (!renderPackage(name, input, &output)) {
        std::fprintf(stderr, "filterpack: package %s cannot be rendered (see the engine's log above)\n", name);
        return 1;
    }
    if (!writePngFile(outputPath, output, &error)) {
        std::fprintf(stderr, "filterpack: %s\n", error.c_str());
        return 1;
    }
    return 0;
}

int bench(const char* root, const char* name, const char* size, const char* framesText) {
    int width = 0;
    int height = 0;
    if (std::sscanf(size, "%dx%d", &width, &height) != 2 || width <= 0 || height <= 0) return usage();
    const int frames = framesText != nullptr ? std::atoi(framesText) : 50;
    if (frames <= 0) return usage();
    std::unique_ptr<ifc_host::HeadlessGL> gl = makeContext();
    if (!gl) return 1;
    BundleDirectory bundle(root);
    const InstalledBundle installed(&bundle);
    const double milliseconds = benchPackage(name, width, height, frames);
    if (milliseconds < 0) {
        std::fprintf(stderr, "filterpack: package %s cannot be rendered (see the engine's log above)\n", name);
        return 1;
    }
    std::printf("%s %dx%d: %.3f ms/frame over %d frames\n", name, width, height, milliseconds, frames);
    return 0;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc < 2) return usage();
    const std::string command = argv[1];
    if (command == "seal" && argc == 4) return seal(argv[2], argv[3]);
    if (command == "lint" && argc >= 4) return lint(argv[2], argv + 3, argc - 3);
    if (command == "render" && argc == 6) return render(argv[2], argv[3], argv[4], argv[5]);
    if (command == "bench" && (argc == 5 || argc == 6)) return bench(argv[2], argv[3], argv[4], argc == 6 ? argv[5] : nullptr);
    if (command == "serve" && (argc == 3 || argc == 4)) return servePreview(argv[2], argc == 4 ? std::atoi(argv[3]) : 8080);
    return usage();
}
