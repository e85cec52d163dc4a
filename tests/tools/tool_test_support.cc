#include "tools/tool_test_support.h"

#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>

namespace tooltest {
namespace {

const char kQuadVertex[] =
    "attribute vec4 position;\n"
    "attribute vec4 inputTextureCoordinate;\n"
    "varying vec2 uv;\n"
    "void main() { gl_Position = position; uv = inputTextureCoordinate.xy; }\n";

}  // namespace

ScratchBundle::ScratchBundle() {
    std::string pattern = (std::filesystem::temp_directory_path() / "filterpack-XXXXXX").string();
    rootPath = mkdtemp(pattern.data()) != nullptr ? pattern : std::string();
}

ScratchBundle::~ScratchBundle() {
    std::error_code ignored;
    if (!rootPath.empty()) std::filesystem::remove_all(rootPath, ignored);
}

void ScratchBundle::write(const std::string& path, const std::string& content) const {
    const std::filesystem::path full = std::filesystem::path(rootPath) / path;
    std::filesystem::create_directories(full.parent_path());
    std::ofstream(full, std::ios::binary) << content;
}

CommandResult runFilterpack(const std::string& arguments) {
    const std::string command = std::string(FILTERPACK_EXECUTABLE) + " " + arguments + " 2>&1";
    CommandResult result{-1, std::string()};
    FILE* pipe = popen(command.c_str(), "r");
    if (pipe == nullptr) return result;
    char buffer[4096];
    size_t read = 0;
    while ((read = fread(buffer, 1, sizeof(buffer), pipe)) > 0) result.output.append(buffer, read);
    const int status = pclose(pipe);
    if (WIFEXITED(status)) result.status = WEXITSTATUS(status);
    return result;
}

std::string glDescription(const std::string& fragment) {
    return std::string("<glfilter><vertex><![CDATA[") + kQuadVertex + "]]></vertex><fragment>" + fragment +
           "</fragment></glfilter>";
}

}  // namespace tooltest
