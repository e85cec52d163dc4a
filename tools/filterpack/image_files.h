// Image files on disk (PNG, JPEG and whatever stb_image reads) and a bundle
// directory that serves package files and decoded images to the engine.
#ifndef FILTERPACK_IMAGE_FILES_H
#define FILTERPACK_IMAGE_FILES_H

#include <cstdint>
#include <string>
#include <vector>

#include "engine/resource_loader.h"

namespace filterpack {

// Tightly packed RGBA rows, top row first.
struct RgbaImage {
    int width = 0;
    int height = 0;
    std::vector<uint8_t> pixels;
};

bool readImageFile(const std::string& path, RgbaImage* image, std::string* error);
bool writePngFile(const std::string& path, const RgbaImage& image, std::string* error);
// PNG or JPEG by the file's extension (.png, .jpg, .jpeg, any case); any
// other extension is refused with a message.
bool writeImageFile(const std::string& path, const RgbaImage& image, std::string* error);
bool knownImageFormat(const std::string& path, std::string* error);

// Before, after and their difference side by side (three times as wide);
// the difference is |after - before| per channel, times 4 so that small
// changes show, on opaque black. Both images have the same size.
RgbaImage sideBySide(const RgbaImage& before, const RgbaImage& after);

// A bundle laid out as the app's: "filter/NAME/filter.xml", "filter/gl/...".
class BundleDirectory : public HFDirectoryResourceProvider {
public:
    // `root` is made absolute so that messages name the directory fully.
    explicit BundleDirectory(const std::string& root);
    _Image* loadRGBA(const char* path) override;
    std::string pathOnDisk(const std::string& path) const { return fullPath(path.c_str()); }
    bool contains(const std::string& path) const;
    // Sorted names of the directories "filter/NAME" that hold a filter.xml.
    std::vector<std::string> packageNames() const;
    // Sorted NAMEs of the GL descriptions "filter/gl/NAME.xml".
    std::vector<std::string> descriptionNames() const;
};

// Serves the engine from a bundle for the life of the object.
class InstalledBundle {
public:
    explicit InstalledBundle(HFResourceProvider* provider) : previous(HFResourceLoader_setProvider(provider)) {}
    ~InstalledBundle() { HFResourceLoader_setProvider(previous); }
    InstalledBundle(const InstalledBundle&) = delete;
    InstalledBundle& operator=(const InstalledBundle&) = delete;

private:
    HFResourceProvider* previous;
};

}  // namespace filterpack

#endif  // FILTERPACK_IMAGE_FILES_H
