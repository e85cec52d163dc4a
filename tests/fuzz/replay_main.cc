// Runs a fuzz target once over each file of the folders (or files) named on
// the command line, so that the corpus and every past finding replay in the
// normal test suite, sanitizer build included. Exits non-zero on an empty
// run; a fault aborts as it would under the fuzzer.
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);

int main(int argc, char** argv) {
    std::vector<std::filesystem::path> files;
    for (int i = 1; i < argc; ++i) {
        const std::filesystem::path path(argv[i]);
        if (std::filesystem::is_directory(path)) {
            for (const auto& entry : std::filesystem::directory_iterator(path)) files.push_back(entry.path());
        } else if (std::filesystem::exists(path)) {
            files.push_back(path);
        }
    }
    for (const auto& file : files) {
        std::ifstream in(file, std::ios::binary);
        const std::vector<uint8_t> bytes((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
        LLVMFuzzerTestOneInput(bytes.data(), bytes.size());
    }
    std::printf("%zu inputs replayed\n", files.size());
    return files.empty() ? 1 : 0;
}
