// Running a package on an image the way the app does: the picture in a GL
// texture, HFFilterWraper over it, the output texture read back. Needs a
// current GL context and an installed bundle.
#ifndef FILTERPACK_PACKAGE_RENDER_H
#define FILTERPACK_PACKAGE_RENDER_H

#include <string>
#include <vector>

#include "engine_session.h"
#include "image_files.h"

namespace filterpack {

// False (with the reason in *error) when the package builds no filter,
// leaves no GL output, or GL reports an error while it renders.
bool renderPackage(const std::string& name, const RgbaImage& input, RgbaImage* output, std::string* error);

struct BenchResult {
    std::string error;        // empty when every frame rendered
    std::string renderer;     // GL_RENDERER
    double milliseconds = 0;  // per frame, each finished with glFinish
    std::vector<PassTime> passes;  // per leaf filter, each fenced with glFinish
};

// Times `frames` renders (after a checked warm-up frame) of a width x height
// test picture, then as many again with each pass timed on its own. Sizes
// above GL_MAX_TEXTURE_SIZE and pictures that cannot be allocated are
// refused with a message. `session` must be active.
BenchResult benchPackage(const std::string& name, int width, int height, int frames, EngineSession* session);

}  // namespace filterpack

#endif  // FILTERPACK_PACKAGE_RENDER_H
