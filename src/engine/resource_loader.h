// Every file the engine reads (packages, GL descriptions, parameter images)
// comes through here. By default the Java bundle callbacks serve; C++ tests
// and command-line tools install a native provider instead.
#ifndef IFC_ENGINE_RESOURCE_LOADER_H
#define IFC_ENGINE_RESOURCE_LOADER_H

#include <string>

#include "image_filter/image.h"

class IFC_API HFResourceProvider {
public:
    virtual ~HFResourceProvider();
    // The file's bytes in a one-row image (width = byte count), or null.
    virtual _Image* loadData(const char* path) = 0;
    // The file decoded to 4-channel RGBA, or null.
    virtual _Image* loadRGBA(const char* path) = 0;
};

// Reads "<root>/<path>" from disk. loadRGBA returns null: decoding images is
// left to host tools that subclass it.
class IFC_API HFDirectoryResourceProvider : public HFResourceProvider {
public:
    explicit HFDirectoryResourceProvider(std::string root);
    _Image* loadData(const char* path) override;
    _Image* loadRGBA(const char* path) override;

protected:
    std::string fullPath(const char* path) const;

private:
    std::string root;
};

// Installs a provider for the whole process (not owned; null restores the
// Java callbacks). Returns the previous one. Providers are called from every
// thread that loads packages, at the same time, so they must be thread-safe
// (the directory provider is).
IFC_API HFResourceProvider* HFResourceLoader_setProvider(HFResourceProvider* provider);

extern "C" {
// Caller frees the results with free_image.
IFC_API _Image* HFResourceLoader_loadRGBAResource(const char* path);
IFC_API _Image* HFResourceLoader_loadDataResource(const char* path);
}

#endif  // IFC_ENGINE_RESOURCE_LOADER_H
