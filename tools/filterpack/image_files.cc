#include "image_files.h"

#include <stb/stb_image.h>
#include <stb/stb_image_write.h>

#include <algorithm>
#include <memory>
#include <utility>

namespace filterpack {
namespace {

constexpr int kRgba = 4;

struct StbFree {
    void operator()(stbi_uc* pixels) const { stbi_image_free(pixels); }
};

}  // namespace

bool readImageFile(const std::string& path, RgbaImage* image, std::string* error) {
    int width = 0;
    int height = 0;
    int channelsInFile = 0;
    std::unique_ptr<stbi_uc, StbFree> pixels(stbi_load(path.c_str(), &width, &height, &channelsInFile, kRgba));
    if (!pixels) {
        *error = path + ": " + stbi_failure_reason();
        return false;
    }
    image->width = width;
    image->height = height;
    image->pixels.assign(pixels.get(), pixels.get() + static_cast<size_t>(width) * height * kRgba);
    return true;
}

bool writePngFile(const std::string& path, const RgbaImage& image, std::string* error) {
    if (stbi_write_png(path.c_str(), image.width, image.height, kRgba, image.pixels.data(), image.width * kRgba) == 0) {
        *error = path + ": cannot write PNG";
        return false;
    }
    return true;
}

BundleDirectory::BundleDirectory(std::string root) : HFDirectoryResourceProvider(std::move(root)) {}

_Image* BundleDirectory::loadRGBA(const char* path) {
    RgbaImage decoded;
    std::string error;
    if (path == nullptr || !readImageFile(fullPath(path), &decoded, &error)) return nullptr;
    _Image* image = create_image(decoded.width, decoded.height, kRgba, decoded.width * kRgba);
    if (image == nullptr) return nullptr;
    std::copy(decoded.pixels.begin(), decoded.pixels.end(), image->data);
    return image;
}

}  // namespace filterpack
