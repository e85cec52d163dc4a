// A bundle directory of its own for one test: installed as the engine's
// resource provider while it lives, removed with its files afterwards. It
// counts the reads of each file.
#ifndef IFC_TESTS_ENGINE_GL_SCRATCH_BUNDLE_H
#define IFC_TESTS_ENGINE_GL_SCRATCH_BUNDLE_H

#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <map>
#include <string>

#include "engine/resource_loader.h"

class ScratchBundle : public HFDirectoryResourceProvider {
public:
    explicit ScratchBundle(const std::string& tag)
        : HFDirectoryResourceProvider(directory(tag)), root(directory(tag)), previous(HFResourceLoader_setProvider(this)) {}
    ~ScratchBundle() override {
        HFResourceLoader_setProvider(previous);
        std::filesystem::remove_all(root);
    }
    ScratchBundle(const ScratchBundle&) = delete;
    ScratchBundle& operator=(const ScratchBundle&) = delete;

    void write(const std::string& path, const std::string& text) const {
        std::filesystem::create_directories(std::filesystem::path(root + "/" + path).parent_path());
        std::ofstream(root + "/" + path) << text;
    }

    _Image* loadData(const char* path) override {
        ++reads[path != nullptr ? path : ""];
        return HFDirectoryResourceProvider::loadData(path);
    }

    const std::string& path() const { return root; }

    std::map<std::string, int> reads;

private:
    static std::string directory(const std::string& tag) {
        return std::filesystem::temp_directory_path() / (tag + "." + std::to_string(getpid()));
    }

    std::string root;
    HFResourceProvider* previous;
};

#endif  // IFC_TESTS_ENGINE_GL_SCRATCH_BUNDLE_H
