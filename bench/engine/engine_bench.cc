// Per-frame CPU cost of HFFilterWraper::renderTexture on a three-filter
// package against the same three passes drawn with raw GL calls (same
// shaders, framebuffers of their own). The frame is tiny (8x8) so that GPU
// work does not hide the CPU overhead; both sides end each frame with glFinish.
#include <GLES2/gl2.h>
#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstdlib>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "engine/filter_wraper.h"
#include "engine/resource_loader.h"
#include "headless_gl.h"

namespace {

constexpr int kSize = 8;

const char* const kVertex =
    "attribute vec4 position; attribute vec2 inputTextureCoordinate; varying vec2 uv;"
    " void main(){ gl_Position = position; uv = inputTextureCoordinate; }";

std::string fragment(const char* statement) {
    return std::string("precision mediump float; varying vec2 uv; uniform sampler2D inputImageTexture;"
                       " uniform float horStep; void main(){ vec4 c = texture2D(inputImageTexture, uv); ") +
           statement + " }";
}

const std::vector<std::string>& fragments() {
    static const std::vector<std::string> sources = {
        fragment("gl_FragColor = vec4(1.0 - c.rgb, 1.0);"),
        fragment("gl_FragColor = vec4(c.gbr, 1.0);"),
        fragment("gl_FragColor = vec4(c.rg, c.b * 0.5 + horStep, 1.0);"),
    };
    return sources;
}

// The package and its three GL descriptions, served from memory.
class BenchBundle : public HFResourceProvider {
public:
    BenchBundle() {
        std::string model = "<model>";
        for (size_t i = 0; i < fragments().size(); ++i) {
            const std::string name = "bench_pass" + std::to_string(i);
            files["filter/gl/" + name + ".xml"] =
                "<glfilter><vertex>" + std::string(kVertex) + "</vertex><fragment>" + fragments()[i] +
                "</fragment></glfilter>";
            model += "<filter implement='" + name + "'/>";
        }
        files["filter/bench3/filter.xml"] = model + "</model>";
    }

    _Image* loadData(const char* path) override {
        auto found = files.find(path);
        if (found == files.end()) return nullptr;
        const std::string& text = found->second;
        _Image* blob = create_image(static_cast<int>(text.size()), 1, 1, static_cast<int>(text.size()));
        std::copy(text.begin(), text.end(), blob->data);
        return blob;
    }
    _Image* loadRGBA(const char*) override { return nullptr; }

private:
    std::map<std::string, std::string> files;
};

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
    BenchBundle bundle;
};

Context& context() {
    static Context instance;
    return instance;
}

GLuint makeTexture(const void* pixels) {
    GLuint texture = 0;
    glGenTextures(1, &texture);
    glBindTexture(GL_TEXTURE_2D, texture);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_LINEAR);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_CLAMP_TO_EDGE);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, GL_CLAMP_TO_EDGE);
    glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA, kSize, kSize, 0, GL_RGBA, GL_UNSIGNED_BYTE, pixels);
    glBindTexture(GL_TEXTURE_2D, 0);
    return texture;
}

GLuint inputTexture() {
    std::vector<unsigned char> pixels(kSize * kSize * 4);
    for (size_t i = 0; i < pixels.size(); ++i) pixels[i] = static_cast<unsigned char>(i * 7);
    return makeTexture(pixels.data());
}

GLuint compile(GLenum type, const char* source) {
    GLuint shader = glCreateShader(type);
    glShaderSource(shader, 1, &source, nullptr);
    glCompileShader(shader);
    return shader;
}

void BM_EngineRenderTexture(benchmark::State& state) {
    context();
    const GLuint input = inputTexture();
    HFFilterWraper wraper("bench3");
    if (!wraper.hasFilter()) state.SkipWithError("package did not load");
    for (auto _ : state) {
        wraper.renderTexture(static_cast<int>(input), kSize, kSize);
        glFinish();
    }
    glDeleteTextures(1, &input);
}
BENCHMARK(BM_EngineRenderTexture);

// The same three passes with the minimum of GL calls: programs, locations and
// framebuffers made once, then per pass bind, clear, draw.
void BM_RawGLThreePasses(benchmark::State& state) {
    context();
    const GLuint input = inputTexture();
    struct Pass {
        GLuint program, texture, framebuffer;
        GLint position, texCoord, sampler;
    };
    std::vector<Pass> passes;
    for (const std::string& source : fragments()) {
        Pass pass{};
        pass.program = glCreateProgram();
        GLuint vertex = compile(GL_VERTEX_SHADER, kVertex);
        GLuint fragmentShader = compile(GL_FRAGMENT_SHADER, source.c_str());
        glAttachShader(pass.program, vertex);
        glAttachShader(pass.program, fragmentShader);
        glLinkProgram(pass.program);
        glDeleteShader(vertex);
        glDeleteShader(fragmentShader);
        pass.position = glGetAttribLocation(pass.program, "position");
        pass.texCoord = glGetAttribLocation(pass.program, "inputTextureCoordinate");
        pass.sampler = glGetUniformLocation(pass.program, "inputImageTexture");
        glUseProgram(pass.program);
        glUniform1f(glGetUniformLocation(pass.program, "horStep"), 1.0f / kSize);
        pass.texture = makeTexture(nullptr);
        glGenFramebuffers(1, &pass.framebuffer);
        glBindFramebuffer(GL_FRAMEBUFFER, pass.framebuffer);
        glFramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D, pass.texture, 0);
        passes.push_back(pass);
    }
    static const float kTexCoords[8] = {0, 0, 1, 0, 0, 1, 1, 1};
    static const float kVertices[8] = {-1, -1, 1, -1, -1, 1, 1, 1};
    for (auto _ : state) {
        GLuint source = input;
        for (const Pass& pass : passes) {
            glBindFramebuffer(GL_FRAMEBUFFER, pass.framebuffer);
            glViewport(0, 0, kSize, kSize);
            glClearColor(0, 0, 0, 0);
            glClear(GL_COLOR_BUFFER_BIT);
            glUseProgram(pass.program);
            glActiveTexture(GL_TEXTURE2);
            glBindTexture(GL_TEXTURE_2D, source);
            glUniform1i(pass.sampler, 2);
            glEnableVertexAttribArray(pass.position);
            glEnableVertexAttribArray(pass.texCoord);
            glVertexAttribPointer(pass.position, 2, GL_FLOAT, GL_FALSE, 0, kVertices);
            glVertexAttribPointer(pass.texCoord, 2, GL_FLOAT, GL_FALSE, 0, kTexCoords);
            glDrawArrays(GL_TRIANGLE_STRIP, 0, 4);
            source = pass.texture;
        }
        glFinish();
    }
    glBindFramebuffer(GL_FRAMEBUFFER, 0);
    for (Pass& pass : passes) {
        glDeleteFramebuffers(1, &pass.framebuffer);
        glDeleteTextures(1, &pass.texture);
        glDeleteProgram(pass.program);
    }
    glDeleteTextures(1, &input);
}
BENCHMARK(BM_RawGLThreePasses);

}  // namespace

BENCHMARK_MAIN();
