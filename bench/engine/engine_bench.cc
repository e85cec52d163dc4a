// Per-frame cost of HFFilterWraper::renderTexture on a three-filter package
// against the same three passes written by hand with raw GL calls (same
// shaders, framebuffers of their own). The frame is tiny (8x8) so that GPU
// work does not hide the CPU overhead; both sides end each frame with
// glFinish. Beside the times, each benchmark reports what one steady frame
// costs in GL calls, glGet* calls and heap allocations (counted, not timed).
#include <GLES2/gl2.h>
#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

#include "engine/filter_wraper.h"
#include "headless_gl.h"
#include "support/counting.h"
#include "support/three_pass_package.h"

namespace {

constexpr int kSize = 8;

struct Context {
    Context() {
        std::string error;
        gl = ifc_host::HeadlessGL::create(64, 64, &error);
        if (!gl) {
            fprintf(stderr, "no GL context: %s\n", error.c_str());
            std::exit(1);
        }
        HFResourceLoader_setProvider(&bundle);
    }
    std::unique_ptr<ifc_host::HeadlessGL> gl;
    threepass::Bundle bundle;
};

Context& context() {
    static Context instance;
    return instance;
}

GLuint inputTexture() {
    std::vector<unsigned char> pixels(kSize * kSize * 4);
    for (size_t i = 0; i < pixels.size(); ++i) pixels[i] = static_cast<unsigned char>(i * 7);
    return threepass::makeTexture(kSize, kSize, pixels.data());
}

// Counts one frame (after a first one that loads and sizes everything).
template <typename Frame>
void reportFrameCost(benchmark::State& state, Frame&& frame) {
    frame();
    const counting::Cost cost = counting::costOf(frame);
    state.counters["gl_calls"] = static_cast<double>(cost.gl.total());
    state.counters["gl_gets"] = static_cast<double>(cost.gl.gets());
    state.counters["allocs"] = static_cast<double>(cost.allocations);
}

void BM_EngineRenderTexture(benchmark::State& state) {
    context();
    const GLuint input = inputTexture();
    {
        HFFilterWraper wraper(threepass::kPackage);
        if (!wraper.hasFilter()) state.SkipWithError("package did not load");
        const auto frame = [&] { wraper.renderTexture(static_cast<int>(input), kSize, kSize); };
        reportFrameCost(state, frame);
        for (auto _ : state) {
            frame();
            glFinish();
        }
    }
    glDeleteTextures(1, &input);
}
BENCHMARK(BM_EngineRenderTexture);

void BM_RawGLThreePasses(benchmark::State& state) {
    context();
    const GLuint input = inputTexture();
    {
        const threepass::RawPasses raw(kSize, kSize);
        const auto frame = [&] { raw.frame(input); };
        reportFrameCost(state, frame);
        for (auto _ : state) {
            frame();
            glFinish();
        }
    }
    glDeleteTextures(1, &input);
}
BENCHMARK(BM_RawGLThreePasses);

}  // namespace

BENCHMARK_MAIN();
