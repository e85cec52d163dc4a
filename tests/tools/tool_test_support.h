// Scratch bundles on disk and a way to run the filterpack command itself.
#ifndef IFC_TESTS_TOOLS_TOOL_TEST_SUPPORT_H
#define IFC_TESTS_TOOLS_TOOL_TEST_SUPPORT_H

#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

namespace tooltest {

// A fresh directory laid out as a bundle, removed with the object.
class ScratchBundle {
public:
    ScratchBundle() {
        std::string pattern = (std::filesystem::temp_directory_path() / "filterpack-XXXXXX").string();
        rootPath = mkdtemp(pattern.data()) != nullptr ? pattern : std::string();
    }
    ~ScratchBundle() {
        std::error_code ignored;
        if (!rootPath.empty()) std::filesystem::remove_all(rootPath, ignored);
    }
    ScratchBundle(const ScratchBundle&) = delete;
    ScratchBundle& operator=(const ScratchBundle&) = delete;

    // Writes `content` to "<root>/<path>", making directories on the way.
    void write(const std::string& path, const std::string& content) const {
        const std::filesystem::path full = std::filesystem::path(rootPath) / path;
        std::filesystem::create_directories(full.parent_path());
        std::ofstream(full, std::ios::binary) << content;
    }
    const std::string& root() const { return rootPath; }

private:
    std::string rootPath;
};

struct CommandResult {
    int status = -1;     // exit status, -1 when it did not exit normally
    std::string output;  // stdout and stderr together
};

inline CommandResult runFilterpack(const std::string& arguments) {
    CommandResult result;
    FILE* pipe = popen((std::string(FILTERPACK_EXECUTABLE) + " " + arguments + " 2>&1").c_str(), "r");
    if (pipe == nullptr) return result;
    char buffer[4096];
    for (size_t n; (n = fread(buffer, 1, sizeof(buffer), pipe)) > 0;) result.output.append(buffer, n);
    const int status = pclose(pipe);
    if (WIFEXITED(status)) result.status = WEXITSTATUS(status);
    return result;
}

// A one-pass GL description over a pass-through vertex shader, whose
// fragment source is `fragment` as written.
inline std::string glDescription(const std::string& fragment) {
    return "<glfilter><vertex><![CDATA[attribute vec4 position; attribute vec4 inputTextureCoordinate;\n"
           "varying vec2 uv; void main() { gl_Position = position; uv = inputTextureCoordinate.xy; }\n"
           "]]></vertex><fragment>" + fragment + "</fragment></glfilter>";
}

}  // namespace tooltest

#endif  // IFC_TESTS_TOOLS_TOOL_TEST_SUPPORT_H
