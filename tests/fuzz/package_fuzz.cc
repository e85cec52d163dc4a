// Packages: a whole bundle generated from the input, the package "fz" built
// from it and, when it builds, rendered once on an 8x8 texture and read back
// in a headless GL context made once per process.
//
// Input: the text of "filter/fz/filter.xml", then any number of further
// files, each introduced by a line "#@ <path>" (a path of the bundle, such as
// "filter/gl/tint.xml", "filter/blur/filter.xml" or "filter/fz/grain.png").
#include <GLES2/gl2.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

#include "engine/filter_wraper.h"
#include "fuzz_bundle.h"
#include "headless_gl.h"

namespace {

constexpr int kSize = 8;

void splitBundle(const std::string& input, FuzzBundle* bundle) {
    static const std::string kMark = "\n#@ ";
    // A bundle may start with a header of its own.
    const std::string text = input.compare(0, 3, "#@ ") == 0 ? "\n" + input : input;
    std::string path = "filter/fz/filter.xml";
    size_t start = 0;
    while (true) {
        const size_t mark = text.find(kMark, start);
        bundle->files[path] = text.substr(start, mark == std::string::npos ? std::string::npos : mark - start);
        if (mark == std::string::npos) return;
        const size_t name = mark + kMark.size();
        const size_t lineEnd = text.find('\n', name);
        if (lineEnd == std::string::npos) return;
        path = text.substr(name, lineEnd - name);
        start = lineEnd + 1;
    }
}

struct GLState {
    std::unique_ptr<ifc_host::HeadlessGL> gl;
    GLuint source = 0;
    GLuint framebuffer = 0;
};

GLState& glState() {
    static GLState state = [] {
        GLState s;
        std::string error;
        s.gl = ifc_host::HeadlessGL::create(kSize, kSize, &error);
        if (!s.gl) {
            fprintf(stderr, "package_fuzz: no GL context: %s\n", error.c_str());
            abort();
        }
        std::vector<uint8_t> pixels(kSize * kSize * 4);
        for (size_t i = 0; i < pixels.size(); ++i) pixels[i] = static_cast<uint8_t>(i * 37);
        glGenTextures(1, &s.source);
        glBindTexture(GL_TEXTURE_2D, s.source);
        glPixelStorei(GL_UNPACK_ALIGNMENT, 1);
        glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA, kSize, kSize, 0, GL_RGBA, GL_UNSIGNED_BYTE, pixels.data());
        glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR);
        glBindTexture(GL_TEXTURE_2D, 0);
        glGenFramebuffers(1, &s.framebuffer);
        return s;
    }();
    return state;
}

void readBack(GLuint texture) {
    GLState& state = glState();
    glBindFramebuffer(GL_FRAMEBUFFER, state.framebuffer);
    glFramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D, texture, 0);
    if (glCheckFramebufferStatus(GL_FRAMEBUFFER) == GL_FRAMEBUFFER_COMPLETE) {
        std::vector<uint8_t> pixels(kSize * kSize * 4);
        glPixelStorei(GL_PACK_ALIGNMENT, 1);
        glReadPixels(0, 0, kSize, kSize, GL_RGBA, GL_UNSIGNED_BYTE, pixels.data());
    }
    glFramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D, 0, 0);
    glBindFramebuffer(GL_FRAMEBUFFER, 0);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static FuzzBundle bundle;
    GLState& state = glState();
    bundle.reset();
    splitBundle(std::string(reinterpret_cast<const char*>(data), size), &bundle);
    {
        HFFilterWraper wraper("fz");
        if (wraper.hasFilter()) {
            wraper.renderTexture(static_cast<int>(state.source), kSize, kSize);
            if (const int output = wraper.outputTexture()) readBack(static_cast<GLuint>(output));
        }
    }
    bundle.reset();
    while (glGetError() != GL_NO_ERROR) {
    }
    return 0;
}
