#include "image_files.h"

#include <stb/stb_image.h>
#include <stb/stb_image_write.h>

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <utility>

namespace filterpack {
namespace {

constexpr int kRgba = 4;
constexpr int kJpegQuality = 92;

std::string lowerExtension(const std::string& path) {
    std::string extension = std::filesystem::path(path).extension().string();
    for (char& c : extension) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return extension;
}

std::string absoluteRoot(const std::string& root) {
    std::string path = std::filesystem::absolute(root).lexically_normal().string();
    while (path.size() > 1 && path.back() == '/') path.pop_back();
    return path;
}

std::vector<std::string> sortedEntries(const std::filesystem::path& directory, bool wantDirectories,
                                       const std::string& extension) {
    std::vector<std::string> names;
    std::error_code error;
    for (const auto& entry : std::filesystem::directory_iterator(directory, error)) {
        if (wantDirectories && entry.is_directory() && std::filesystem::exists(entry.path() / "filter.xml")) {
            names.push_back(entry.path().filename().string());
        } else if (!wantDirectories && entry.is_regular_file() && entry.path().extension() == extension) {
            names.push_back(entry.path().stem().string());
        }
    }
    std::sort(names.begin(), names.end());
    return names;
}

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

bool knownImageFormat(const std::string& path, std::string* error) {
    const std::string extension = lowerExtension(path);
    if (extension == ".png" || extension == ".jpg" || extension == ".jpeg") return true;
    *error = path + ": the output format follows the extension: .png, .jpg or .jpeg";
    return false;
}

bool writeImageFile(const std::string& path, const RgbaImage& image, std::string* error) {
    if (!knownImageFormat(path, error)) return false;
    if (lowerExtension(path) == ".png") return writePngFile(path, image, error);
    if (stbi_write_jpg(path.c_str(), image.width, image.height, kRgba, image.pixels.data(), kJpegQuality) == 0) {
        *error = path + ": cannot write JPEG";
        return false;
    }
    return true;
}

RgbaImage sideBySide(const RgbaImage& before, const RgbaImage& after) {
    constexpr int kDifferenceGain = 4;
    const int width = before.width;
    RgbaImage sheet{width * 3, before.height, std::vector<uint8_t>(static_cast<size_t>(width) * 3 * before.height * kRgba)};
    const size_t row = static_cast<size_t>(width) * kRgba;
    for (int y = 0; y < before.height; ++y) {
        const uint8_t* a = &before.pixels[y * row];
        const uint8_t* b = &after.pixels[y * row];
        uint8_t* out = &sheet.pixels[y * row * 3];
        std::copy(a, a + row, out);
        std::copy(b, b + row, out + row);
        uint8_t* difference = out + 2 * row;
        for (size_t i = 0; i < row; ++i) {
            const int delta = std::abs(static_cast<int>(b[i]) - static_cast<int>(a[i])) * kDifferenceGain;
            difference[i] = i % kRgba == 3 ? 255 : static_cast<uint8_t>(std::min(delta, 255));
        }
    }
    return sheet;
}

BundleDirectory::BundleDirectory(const std::string& root) : HFDirectoryResourceProvider(absoluteRoot(root)) {}

bool BundleDirectory::contains(const std::string& path) const {
    std::error_code error;
    return std::filesystem::is_regular_file(pathOnDisk(path), error);
}

std::vector<std::string> BundleDirectory::packageNames() const {
    std::vector<std::string> names = sortedEntries(pathOnDisk("filter"), true, std::string());
    names.erase(std::remove(names.begin(), names.end(), "gl"), names.end());
    return names;
}

std::vector<std::string> BundleDirectory::descriptionNames() const {
    return sortedEntries(pathOnDisk("filter/gl"), false, ".xml");
}

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
