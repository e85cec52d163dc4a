#include "engine/resource_loader.h"

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <fstream>
#include <limits>
#include <utility>

#include "jni/bridge/bridge.h"
#include "jni/bridge/log.h"

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

// A blob's byte count is its width, a signed 32-bit int: a file of 2 GiB or
// more cannot be one, so it is refused before anything is read.
_Image* HFDirectoryResourceProvider::loadData(const char* path) {
    if (path == nullptr) return nullptr;
    std::ifstream file(fullPath(path), std::ios::binary | std::ios::ate);
    if (!file) return nullptr;
    std::streamoff length = file.tellg();
    // The blob's width is an int: 2 GiB or more cannot be described.
    if (length < 0 || length > std::numeric_limits<int32_t>::max()) {
        log_printE("resource %s: %lld bytes, too large for a data resource (at most %d)", path,
                   static_cast<long long>(length), std::numeric_limits<int32_t>::max());
        return nullptr;
    }
    // A one-row image; an empty file still gets a one-byte buffer.
    int width = static_cast<int>(length);
    _Image* blob = create_image(width > 0 ? width : 1, 1, 1, width > 0 ? width : 1);
    if (blob == nullptr) return nullptr;
    blob->width = width;
    file.seekg(0);
    if (width > 0 && !file.read(reinterpret_cast<char*>(blob->data), width)) {
        log_printE("resource %s: read failed", path);
        free_image(&blob);
    }
    return blob;
}

_Image* HFDirectoryResourceProvider::loadRGBA(const char*) { return nullptr; }
