// filterpack: seals shader sources, lints, renders and times filter packages
// with the library's own engine on a headless GL context.
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "commands.h"
#include "preview_server.h"

namespace {

using namespace filterpack;

int usage() {
    std::fprintf(stderr,
                 "usage: filterpack seal ios|aes|mee|hfe SHADER_FILE\n"
                 "       filterpack lint BUNDLE_DIR [PACKAGE...]        (no package: every package)\n"
                 "       filterpack render BUNDLE_DIR PACKAGE INPUT_IMAGE OUTPUT.png|.jpg [--compare] [--param NAME=VALUES]...\n"
                 "       filterpack bench BUNDLE_DIR PACKAGE WIDTHxHEIGHT [FRAMES] [--param NAME=VALUES]...\n"
                 "       filterpack serve BUNDLE_DIR [PORT]                (live preview in a browser)\n"
                 "--compare writes before, after and |after - before| x 4 side by side.\n"
                 "--param VALUES: 1 number (float), 4 (vector4f), 16 (matrix4f) or 256 (curve, 1/256 units).\n");
    return kUsageError;
}

// Positional arguments, with --compare and --param pulled out.
struct Arguments {
    std::vector<std::string> positional;
    std::vector<ParamOverride> overrides;
    bool compare = false;
    bool ok = true;
};

Arguments parse(int argc, char** argv) {
    Arguments arguments;
    for (int i = 2; i < argc; ++i) {
        const std::string argument = argv[i];
        std::string value;
        if (argument == "--compare") {
            arguments.compare = true;
            continue;
        }
        if (argument == "--param" && i + 1 < argc) {
            value = argv[++i];
        } else if (argument.compare(0, 8, "--param=") == 0) {
            value = argument.substr(8);
        } else if (argument.compare(0, 2, "--") == 0) {
            std::fprintf(stderr, "filterpack: unknown option %s\n", argument.c_str());
            arguments.ok = false;
            continue;
        } else {
            arguments.positional.push_back(argument);
            continue;
        }
        ParamOverride override;
        std::string error;
        if (!parseParamOverride(value, &override, &error)) {
            std::fprintf(stderr, "filterpack: %s\n", error.c_str());
            arguments.ok = false;
        }
        arguments.overrides.push_back(override);
    }
    return arguments;
}

int bench(const Arguments& arguments) {
    const std::vector<std::string>& p = arguments.positional;
    int width = 0;
    int height = 0;
    char tail = 0;
    if (std::sscanf(p[2].c_str(), "%dx%d%c", &width, &height, &tail) != 2 || width <= 0 || height <= 0) {
        std::fprintf(stderr, "filterpack: size \"%s\" is not WIDTHxHEIGHT\n", p[2].c_str());
        return usage();
    }
    const int frames = p.size() == 4 ? std::atoi(p[3].c_str()) : 50;
    if (frames <= 0) return usage();
    return benchCommand(p[0], p[1], width, height, frames, arguments.overrides);
}

}  // namespace

int main(int argc, char** argv) {
    if (argc < 2) return usage();
    const std::string command = argv[1];
    const Arguments arguments = parse(argc, argv);
    const std::vector<std::string>& p = arguments.positional;
    if (!arguments.ok) return usage();
    const bool plain = arguments.overrides.empty() && !arguments.compare;
    if (command == "seal" && p.size() == 2 && plain) return sealCommand(p[0], p[1]);
    if (command == "lint" && !p.empty() && plain) return lintCommand(p[0], std::vector<std::string>(p.begin() + 1, p.end()));
    if (command == "render" && p.size() == 4) {
        return renderCommand(p[0], p[1], p[2], p[3], arguments.compare, arguments.overrides);
    }
    if (command == "bench" && (p.size() == 3 || p.size() == 4) && !arguments.compare) return bench(arguments);
    if (command == "serve" && (p.size() == 1 || p.size() == 2) && plain) {
        return servePreview(p[0], p.size() == 2 ? std::atoi(p[1].c_str()) : 8080);
    }
    return usage();
}
