// Running a package on an image the way the app does: the picture in a GL
// texture, HFFilterWraper over it, the output texture read back. Needs a
// current GL context and an installed bundle.
#ifndef FILTERPACK_PACKAGE_RENDER_H
#define FILTERPACK_PACKAGE_RENDER_H

#include <string>

#include "image_files.h"

namespace filterpack {

// False when the package builds no filter or leaves no GL output; the
// engine has logged why.
bool renderPackage(const std::string& name, const RgbaImage& input, RgbaImage* output);

// Milliseconds per frame over `frames` renders (after one warm-up frame) of
// a width x height test picture, each finished with glFinish. Negative when
// the package builds no filter.
double benchPackage(const std::string& name, int width, int height, int frames);

}  // namespace filterpack

#endif  // FILTERPACK_PACKAGE_RENDER_H
