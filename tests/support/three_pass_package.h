// A package of three GL leaves ("three_pass": invert, rotate channels, scale
// blue plus horStep), served from memory, and the same three passes written
// by hand with raw GL calls: programs, locations, sampler units, attribute
// arrays and framebuffers made once, then per frame only what a careful
// hand-written renderer issues. The engine's steady frame is measured
// against it.
#ifndef IFC_TESTS_SUPPORT_THREE_PASS_PACKAGE_H
#define IFC_TESTS_SUPPORT_THREE_PASS_PACKAGE_H

#include <GLES2/gl2.h>

#include <algorithm>
#include <map>
#include <string>
#include <vector>

#include "engine/resource_loader.h"
#include "image_filter/image.h"

namespace threepass {

constexpr const char* kPackage = "three_pass";

constexpr const char* kVertex =
    "attribute vec4 position; attribute vec2 inputTextureCoordinate; varying vec2 uv;"
    " void main(){ gl_Position = position; uv = inputTextureCoordinate; }";

inline const std::vector<std::string>& fragments() {
    static const std::vector<std::string> sources = [] {
        const std::string head =
            "precision mediump float; varying vec2 uv; uniform sampler2D inputImageTexture;"
            " uniform float horStep; void main(){ vec4 c = texture2D(inputImageTexture, uv); ";
        return std::vector<std::string>{
            head + "gl_FragColor = vec4(1.0 - c.rgb, 1.0); }",
            head + "gl_FragColor = vec4(c.gbr, 1.0); }",
            head + "gl_FragColor = vec4(c.rg, c.b * 0.5 + horStep, 1.0); }",
        };
    }();
    return sources;
}

// The package file and its three GL descriptions.
class Bundle : public HFResourceProvider {
public:
    Bundle() {
        std::string model = "<model>";
        for (size_t i = 0; i < fragments().size(); ++i) {
            const std::string name = "three_pass_" + std::to_string(i);
            files["filter/gl/" + name + ".xml"] = "<glfilter><vertex>" + std::string(kVertex) +
                                                  "</vertex><fragment>" + fragments()[i] + "</fragment></glfilter>";
            model += "<filter implement='" + name + "'/>";
        }
        files[std::string("filter/") + kPackage + "/filter.xml"] = model + "</model>";
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

    // Serves one more file.
    void add(const std::string& path, const std::string& text) { files[path] = text; }

private:
    std::map<std::string, std::string> files;
};

// An RGBA texture with linear sampling and clamped edges; `pixels` may be null.
inline GLuint makeTexture(int width, int height, const void* pixels) {
    GLuint texture = 0;
    glGenTextures(1, &texture);
    glBindTexture(GL_TEXTURE_2D, texture);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_LINEAR);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_CLAMP_TO_EDGE);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, GL_CLAMP_TO_EDGE);
    glPixelStorei(GL_UNPACK_ALIGNMENT, 1);
    glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA, width, height, 0, GL_RGBA, GL_UNSIGNED_BYTE, pixels);
    glBindTexture(GL_TEXTURE_2D, 0);
    return texture;
}

class RawPasses {
public:
    RawPasses(int width, int height) : width(width), height(height) {
        for (const std::string& source : fragments()) {
            Pass pass{};
            pass.program = glCreateProgram();
            const GLuint vertex = compile(GL_VERTEX_SHADER, kVertex);
            const GLuint fragment = compile(GL_FRAGMENT_SHADER, source.c_str());
            glAttachShader(pass.program, vertex);
            glAttachShader(pass.program, fragment);
            glLinkProgram(pass.program);
            glDeleteShader(vertex);
            glDeleteShader(fragment);
            pass.position = glGetAttribLocation(pass.program, "position");
            pass.texCoord = glGetAttribLocation(pass.program, "inputTextureCoordinate");
            glUseProgram(pass.program);
            glUniform1i(glGetUniformLocation(pass.program, "inputImageTexture"), 2);
            glUniform1f(glGetUniformLocation(pass.program, "horStep"), 1.0f / static_cast<float>(width));
            glEnableVertexAttribArray(pass.position);
            glEnableVertexAttribArray(pass.texCoord);
            pass.texture = makeTexture(width, height, nullptr);
            glGenFramebuffers(1, &pass.framebuffer);
            glBindFramebuffer(GL_FRAMEBUFFER, pass.framebuffer);
            glFramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D, pass.texture, 0);
            passes.push_back(pass);
        }
        glBindFramebuffer(GL_FRAMEBUFFER, 0);
    }

    ~RawPasses() {
        glBindFramebuffer(GL_FRAMEBUFFER, 0);
        for (Pass& pass : passes) {
            glDeleteFramebuffers(1, &pass.framebuffer);
            glDeleteTextures(1, &pass.texture);
            glDeleteProgram(pass.program);
        }
    }

    RawPasses(const RawPasses&) = delete;
    RawPasses& operator=(const RawPasses&) = delete;

    // One frame from `input`; the result is in output().
    void frame(GLuint input) const {
        static const float kTexCoords[8] = {0, 0, 1, 0, 0, 1, 1, 1};
        static const float kVertices[8] = {-1, -1, 1, -1, -1, 1, 1, 1};
        glClearColor(0, 0, 0, 0);
        glActiveTexture(GL_TEXTURE2);
        GLuint source = input;
        for (const Pass& pass : passes) {
            glBindFramebuffer(GL_FRAMEBUFFER, pass.framebuffer);
            glViewport(0, 0, width, height);
            glClear(GL_COLOR_BUFFER_BIT);
            glUseProgram(pass.program);
            glBindTexture(GL_TEXTURE_2D, source);
            glVertexAttribPointer(pass.position, 2, GL_FLOAT, GL_FALSE, 0, kVertices);
            glVertexAttribPointer(pass.texCoord, 2, GL_FLOAT, GL_FALSE, 0, kTexCoords);
            glDrawArrays(GL_TRIANGLE_STRIP, 0, 4);
            source = pass.texture;
        }
    }

    GLuint output() const { return passes.back().texture; }

private:
    struct Pass {
        GLuint program, texture, framebuffer;
        GLint position, texCoord;
    };

    static GLuint compile(GLenum type, const char* source) {
        const GLuint shader = glCreateShader(type);
        glShaderSource(shader, 1, &source, nullptr);
        glCompileShader(shader);
        return shader;
    }

    int width;
    int height;
    std::vector<Pass> passes;
};

}  // namespace threepass

#endif  // IFC_TESTS_SUPPORT_THREE_PASS_PACKAGE_H
