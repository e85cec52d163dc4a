// Pictures for the preview page: encoded in memory, compared, laid side by
// side, and the engine's output for a package with runtime values.
#ifndef FILTERPACK_SERVE_PREVIEW_IMAGES_H
#define FILTERPACK_SERVE_PREVIEW_IMAGES_H

#include <cstdint>
#include <map>
#include <string>

#include "image_files.h"

namespace filterpack {

std::string encodePng(const RgbaImage& image);
// PNG, JPEG and whatever stb_image reads; false with the reason.
bool decodeImage(const std::string& bytes, RgbaImage* image, std::string* error);

// |before - after| per colour channel, scaled by `gain` and clamped; alpha
// opaque. Both must have the same size.
RgbaImage differenceImage(const RgbaImage& before, const RgbaImage& after, int gain);
// The two pictures next to each other, `left` first.
RgbaImage leftAndRight(const RgbaImage& left, const RgbaImage& right);
// FNV-1a over the pixels: lets a page tell whether a picture changed.
uint64_t pictureDigest(const RgbaImage& image);

// Renders `package` on `input` with `values` (name -> text) set at run time.
// Needs a current GL context and an installed bundle. False with the problem
// (build, parameter or render) in *problem.
bool renderWithValues(const std::string& package, const std::map<std::string, std::string>& values,
                      const RgbaImage& input, RgbaImage* output, std::string* problem);

}  // namespace filterpack

#endif  // FILTERPACK_SERVE_PREVIEW_IMAGES_H
