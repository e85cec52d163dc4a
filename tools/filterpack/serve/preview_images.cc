#include "preview_images.h"

#include <GLES2/gl2.h>
#include <stb/stb_image.h>
#include <stb/stb_image_write.h>

#include <algorithm>
#include <cstdlib>
#include <memory>

#include "engine/filter_wraper.h"

namespace filterpack {
namespace {

constexpr int kRgba = 4;

void appendBytes(void* context, void* data, int size) {
    static_cast<std::string*>(context)->append(static_cast<const char*>(data), static_cast<size_t>(size));
}

// A caller's texture holding `image`, deleted with the object.
class InputTexture {
public:
    explicit InputTexture(const RgbaImage& image) {
        glGenTextures(1, &name);
        glBindTexture(GL_TEXTURE_2D, name);
        glPixelStorei(GL_UNPACK_ALIGNMENT, 1);
        glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA, image.width, image.height, 0, GL_RGBA, GL_UNSIGNED_BYTE,
                     image.pixels.data());
        glBindTexture(GL_TEXTURE_2D, 0);
    }
    ~InputTexture() { glDeleteTextures(1, &name); }
    InputTexture(const InputTexture&) = delete;
    InputTexture& operator=(const InputTexture&) = delete;
    GLuint get() const { return name; }

private:
    GLuint name = 0;
};

bool readTexture(GLuint texture, RgbaImage* image) {
    GLuint framebuffer = 0;
    glGenFramebuffers(1, &framebuffer);
    glBindFramebuffer(GL_FRAMEBUFFER, framebuffer);
    glFramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D, texture, 0);
    bool ok = glCheckFramebufferStatus(GL_FRAMEBUFFER) == GL_FRAMEBUFFER_COMPLETE;
    if (ok) {
        image->pixels.assign(static_cast<size_t>(image->width) * image->height * kRgba, 0);
        glPixelStorei(GL_PACK_ALIGNMENT, 1);
        glReadPixels(0, 0, image->width, image->height, GL_RGBA, GL_UNSIGNED_BYTE, image->pixels.data());
        ok = glGetError() == GL_NO_ERROR;
    }
    glBindFramebuffer(GL_FRAMEBUFFER, 0);
    glDeleteFramebuffers(1, &framebuffer);
    return ok;
}

}  // namespace

std::string encodePng(const RgbaImage& image) {
    std::string png;
    stbi_write_png_to_func(appendBytes, &png, image.width, image.height, kRgba, image.pixels.data(),
                           image.width * kRgba);
    return png;
}

bool decodeImage(const std::string& bytes, RgbaImage* image, std::string* error) {
    if (bytes.empty() || bytes.size() > static_cast<size_t>(INT32_MAX)) {
        *error = "no image data";
        return false;
    }
    int width = 0;
    int height = 0;
    int channels = 0;
    std::unique_ptr<stbi_uc, void (*)(void*)> pixels(
        stbi_load_from_memory(reinterpret_cast<const stbi_uc*>(bytes.data()), static_cast<int>(bytes.size()),
                              &width, &height, &channels, kRgba),
        stbi_image_free);
    if (!pixels) {
        *error = std::string("not an image this tool reads: ") + stbi_failure_reason();
        return false;
    }
    image->width = width;
    image->height = height;
    image->pixels.assign(pixels.get(), pixels.get() + static_cast<size_t>(width) * height * kRgba);
    return true;
}

RgbaImage differenceImage(const RgbaImage& before, const RgbaImage& after, int gain) {
    RgbaImage difference{before.width, before.height, std::vector<uint8_t>(before.pixels.size())};
    for (size_t i = 0; i < difference.pixels.size(); ++i) {
        const int delta = std::abs(static_cast<int>(before.pixels[i]) - static_cast<int>(after.pixels[i]));
        difference.pixels[i] = i % kRgba == 3 ? 255 : static_cast<uint8_t>(std::min(255, delta * gain));
    }
    return difference;
}

RgbaImage leftAndRight(const RgbaImage& left, const RgbaImage& right) {
    const int height = std::max(left.height, right.height);
    RgbaImage both{left.width + right.width, height,
                   std::vector<uint8_t>(static_cast<size_t>(left.width + right.width) * height * kRgba, 0)};
    const auto place = [&both](const RgbaImage& part, int x0) {
        for (int y = 0; y < part.height; ++y) {
            std::copy_n(&part.pixels[static_cast<size_t>(y) * part.width * kRgba], static_cast<size_t>(part.width) * kRgba,
                        &both.pixels[(static_cast<size_t>(y) * both.width + x0) * kRgba]);
        }
    };
    place(left, 0);
    place(right, left.width);
    return both;
}

uint64_t pictureDigest(const RgbaImage& image) {
    uint64_t hash = 14695981039346656037ull;
    for (uint8_t byte : image.pixels) hash = (hash ^ byte) * 1099511628211ull;
    return hash;
}

bool renderWithValues(const std::string& package, const std::map<std::string, std::string>& values,
                      const RgbaImage& input, RgbaImage* output, std::string* problem) {
    const InputTexture source(input);
    HFFilterWraper wraper(package.c_str());
    if (!wraper.hasFilter()) {
        *problem = wraper.lastProblem().empty() ? "the package builds no filter" : wraper.lastProblem();
        return false;
    }
    for (const auto& [name, value] : values) {
        if (!HFFilterWraper_setParameter(&wraper, name.c_str(), value.c_str(), problem)) return false;
    }
    wraper.renderTexture(static_cast<int>(source.get()), input.width, input.height);
    const int texture = wraper.outputTexture();
    output->width = input.width;
    output->height = input.height;
    if (texture == 0 || !readTexture(static_cast<GLuint>(texture), output)) {
        *problem = wraper.lastProblem().empty() ? "the package rendered no GL output" : wraper.lastProblem();
        return false;
    }
    return true;
}

}  // namespace filterpack
