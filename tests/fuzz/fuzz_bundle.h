// An in-memory resource bundle for the fuzz targets, installed as the
// engine's native resource provider: "path -> bytes", images decoded from
// their bytes by a trivial rule (see loadRGBA).
#ifndef IFC_TESTS_FUZZ_FUZZ_BUNDLE_H
#define IFC_TESTS_FUZZ_FUZZ_BUNDLE_H

#include <cstring>
#include <map>
#include <string>

#include "engine/filter_package.h"
#include "engine/gl/gl_filter_impl.h"
#include "engine/resource_loader.h"

class FuzzBundle : public HFResourceProvider {
public:
    FuzzBundle() : previous(HFResourceLoader_setProvider(this)) {}
    ~FuzzBundle() override { HFResourceLoader_setProvider(previous); }
    FuzzBundle(const FuzzBundle&) = delete;
    FuzzBundle& operator=(const FuzzBundle&) = delete;

    _Image* loadData(const char* path) override {
        auto found = files.find(path);
        if (found == files.end()) return nullptr;
        const std::string& bytes = found->second;
        _Image* image = create_image(static_cast<int>(bytes.size()), 1, 1, static_cast<int>(bytes.size()));
        if (image != nullptr && !bytes.empty()) std::memcpy(image->data, bytes.data(), bytes.size());
        return image;
    }

    // Byte 0 and 1 give width and height (1..8); the rest are RGBA bytes,
    // repeated as needed. An empty file decodes to nothing.
    _Image* loadRGBA(const char* path) override {
        auto found = files.find(path);
        if (found == files.end() || found->second.size() < 3) return nullptr;
        const std::string& bytes = found->second;
        const int width = 1 + static_cast<unsigned char>(bytes[0]) % 8;
        const int height = 1 + static_cast<unsigned char>(bytes[1]) % 8;
        _Image* image = create_image(width, height, 4, width * 4);
        if (image == nullptr) return nullptr;
        for (int i = 0; i < width * height * 4; ++i) image->data[i] = static_cast<unsigned char>(bytes[2 + i % (bytes.size() - 2)]);
        return image;
    }

    // Every input starts from empty caches, so that each one is parsed anew.
    void reset() {
        files.clear();
        filterNodeCache().clear();
        glFilterImplCache().clear();
    }

    std::map<std::string, std::string> files;

private:
    HFResourceProvider* previous;
};

#endif  // IFC_TESTS_FUZZ_FUZZ_BUNDLE_H
