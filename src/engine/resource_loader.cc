#include "engine/resource_loader.h"

#include <algorithm>
#include <atomic>
#include <fstream>
#include <iterator>
#include <utility>
#include <vector>

#include "jni/bridge.h"

namespace {

// Read by every thread that loads packages.
std::atomic<HFResourceProvider*> installedProvider{nullptr};

enum BundleKind { kBundleImage = 0, kBundleData = 1 };

}  // namespace

HFResourceProvider::~HFResourceProvider() = default;

HFResourceProvider* HFResourceLoader_setProvider(HFResourceProvider* provider) {
    return installedProvider.exchange(provider);
}

extern "C" _Image* HFResourceLoader_loadRGBAResource(const char* path) {
    if (HFResourceProvider* provider = installedProvider.load()) return provider->loadRGBA(path);
    return jniLoadBundleResource(path, kBundleImage);
}

extern "C" _Image* HFResourceLoader_loadDataResource(const char* path) {
    if (HFResourceProvider* provider = installedProvider.load()) return provider->loadData(path);
    return jniLoadBundleResource(path, kBundleData);
}

HFDirectoryResourceProvider::HFDirectoryResourceProvider(std::string rootDirectory)
    : root(std::move(rootDirectory)) {}

std::string HFDirectoryResourceProvider::fullPath(const char* path) const { return root + "/" + path; }

_Image* HFDirectoryResourceProvider::loadData(const char* path) {
    std::ifstream file(fullPath(path), std::ios::binary);
    if (!file) return nullptr;
    std::vector<char> bytes((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
    // A one-row image; an empty file still gets a one-byte buffer.
    int width = static_cast<int>(bytes.size());
    _Image* blob = create_image(width > 0 ? width : 1, 1, 1, width > 0 ? width : 1);
    if (blob == nullptr) return nullptr;
    blob->width = width;
    std::copy(bytes.begin(), bytes.end(), blob->data);
    return blob;
}

_Image* HFDirectoryResourceProvider::loadRGBA(const char*) { return nullptr; }
