#include "engine/gl/gl_filter.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <utility>

#include "engine/gl/matrix3.h"
#include "gl/tight_rgba_rows.h"
#include "engine/saturating_cast.h"
#include "image/image_internal.h"
#include "jni/bridge/log.h"
#include "engine/gl_frame_state.h"

namespace {

// The full-screen quad, shared by every filter. Client-side arrays stay
// enabled in the context after a filter is gone, so the pointers handed to
// GL must outlive every filter: a later draw by other code may still read
// them.
const float kQuadTexCoords[8] = {0, 0, 1, 0, 0, 1, 1, 1};
const float kQuadVertices[8] = {-1, -1, 1, -1, -1, 1, 1, 1};

HFSize sizeOfTexture(IHFTexture* texture) {
    if (const HFGLTexture* gl = dynamic_cast<HFGLTexture*>(texture)) return gl->size();
    // A CPU texture carries its size in its image.
    const _Image* image = texture->image();
    if (image != nullptr) return HFSize{image->width, image->height};
    return HFSize{0, 0};
}

// Truncated toward zero, low 8 bits kept; values beyond int range give 0.
unsigned char toCurveByte(float value) {
    if (!(value > -2147483648.0f && value < 2147483648.0f)) return 0;
    return static_cast<unsigned char>(static_cast<int32_t>(value));
}

// A target GL can make: no negative side, none beyond the texture,
// renderbuffer or viewport limits. A zero side is allowed (nothing is drawn).
bool targetFits(HFSize size) {
    GLint textureLimit = 0, renderbufferLimit = 0, viewportLimits[2] = {0, 0};
    glGetIntegerv(GL_MAX_TEXTURE_SIZE, &textureLimit);
    glGetIntegerv(GL_MAX_RENDERBUFFER_SIZE, &renderbufferLimit);
    glGetIntegerv(GL_MAX_VIEWPORT_DIMS, viewportLimits);
    const int32_t limit = std::min(textureLimit, renderbufferLimit);
    return size.width >= 0 && size.height >= 0 && size.width <= limit && size.height <= limit &&
           size.width <= viewportLimits[0] && size.height <= viewportLimits[1];
}

bool holdsTexture(const shared_ptr<IHFTexture>& texture) { return texture.use_count() >= 1; }

}  // namespace

HFGLFilter::HFGLFilter(const char* vertexSource, const char* fragmentSource) {
    initialise();
    passCount = 1;
    loadShader(vertexSource, fragmentSource);
}

HFGLFilter::HFGLFilter(std::vector<std::string> vertexSources, std::vector<std::string> fragmentSources) {
    initialise();
    // At most one pass per program slot.
    passCount = static_cast<int>(std::min<size_t>(vertexSources.size(), kMaxPrograms));
    // Fragments first: loadShader's first vector holds the fragment sources.
    loadShader(std::move(fragmentSources), std::move(vertexSources));
}

HFGLFilter::~HFGLFilter() {
    clearMemoryData();
    for (shared_ptr<GLFilterProgram>& program : programs) program.release();
}

void HFGLFilter::initialise() {
    clearMemoryData();
    output = HFGLTexture::createTexture(static_cast<_Image*>(nullptr), defaultTextureOptions);
    std::fill(std::begin(samplerLocs), std::end(samplerLocs), -1);
    matrix3Identity(baseMatrix);
    matrix3Identity(transformMatrix);
    outputScaleFactor = 1.0f;
    preRenderHook = nullptr;
}

shared_ptr<HFGLFilter> HFGLFilter::createFilter(const char* fragmentSource, const char* vertexSource) {
    return shared_ptr<HFGLFilter>(new HFGLFilter(vertexSource, fragmentSource));
}

shared_ptr<HFGLFilter> HFGLFilter::createFilter(const unsigned char* fragmentSource,
                                                const unsigned char* vertexSource) {
    return createFilter(reinterpret_cast<const char*>(fragmentSource),
                        reinterpret_cast<const char*>(vertexSource));
}

shared_ptr<HFGLFilter> HFGLFilter::createFilter(std::vector<std::string> fragmentSources,
                                                std::vector<std::string> vertexSources) {
    // Only the first pass of a description is ever drawn; that is intended.
    const char* fragment = fragmentSources.empty() ? nullptr : fragmentSources[0].c_str();
    const char* vertex = vertexSources.empty() ? nullptr : vertexSources[0].c_str();
    return createFilter(fragment, vertex);
}

void HFGLFilter::loadProgram(int pass, const char* vertexSource, const char* fragmentSource) {
    programs[pass] = GLFilterProgram::create(vertexSource, fragmentSource);
    GLFilterProgram& program = *programs[pass];
    positionAttribs[pass] = program.attributeLocation("position");
    texCoordAttribs[pass] = program.attributeLocation("inputTextureCoordinate");
    // Pass i's sampler drives input i; only four inputs exist.
    if (pass < kMaxInputs) samplerLocs[pass] = program.uniformLocation("inputImageTexture");
    program.use();
    if (positionAttribs[pass] >= 0) glEnableVertexAttribArray(positionAttribs[pass]);
    if (texCoordAttribs[pass] >= 0) glEnableVertexAttribArray(texCoordAttribs[pass]);
}

void HFGLFilter::loadShader(const char* vertexSource, const char* fragmentSource) {
    loadProgram(0, vertexSource, fragmentSource);
}

void HFGLFilter::loadShader(const unsigned char* vertexSource, const unsigned char* fragmentSource) {
    loadShader(reinterpret_cast<const char*>(vertexSource), reinterpret_cast<const char*>(fragmentSource));
}

void HFGLFilter::loadShader(std::vector<std::string> first, std::vector<std::string> second) {
    const size_t count = std::min({first.size(), second.size(), static_cast<size_t>(kMaxPrograms)});
    for (size_t i = 0; i < count; ++i) {
        loadProgram(static_cast<int>(i), second[i].c_str(), first[i].c_str());
    }
}

void HFGLFilter::setInputTextureSize(HFSize size) {
    if (size != inputSize && size.width != 0 && size.height != 0) destoryFBO();
    inputSize = size;
    setInt("width", size.width);
    setInt("height", size.height);
    // 1.0 / 0 in double precision is infinity; spelled out to stay defined.
    setFloat("horStep", size.width == 0 ? INFINITY : static_cast<float>(1.0 / size.width));
    setFloat("verStep", size.height == 0 ? INFINITY : static_cast<float>(1.0 / size.height));
}

void HFGLFilter::setInputTextureImage(_Image* image, int index) {
    setInputTexture(HFGLTexture::createTexture(image, defaultTextureOptions), index);
    // The upload selected unit 3 and bound the new texture there.
    GLFrameState::forgetTextures();
}

void HFGLFilter::setInputTexture(shared_ptr<IHFTexture> texture, int index) {
    if (index < 0 || index >= kMaxInputs) return;
    inputs[index] = std::move(texture);
    if (index == 0 && inputs[0]) setInputTextureSize(sizeOfTexture(inputs[0].get()));
    if (samplerLocs[index] < 0) {
        // Input 0 falls back to "inputImageTexture1"; input k uses "inputImageTexture<k+1>".
        char name[64] = {0};
        snprintf(name, sizeof name, "inputImageTexture%d", index + 1);
        samplerLocs[index] = locationInProgramZero(name);
    }
}

shared_ptr<IHFTexture> HFGLFilter::getInputTexture(int index) {
    if (index < 0 || index >= kMaxInputs) return shared_ptr<IHFTexture>();
    return inputs[index];
}

void HFGLFilter::setProperty(const char*, float) {}

void HFGLFilter::setFilterFBO() { bindTarget(); }

// False when the target is missing because GL cannot make one of the size
// asked for: that render fails (logged) and draws nothing.
bool HFGLFilter::bindTarget() {
    if (fbo.use_count() < 1) {
        const HFSize size = sizeOfFBO();
        if (!targetFits(size)) {
            log_printE("GL filter: no %dx%d target can be made, nothing rendered", size.width, size.height);
            return false;
        }
        createFBO(size);
    }
    fbo->bind();
    return true;
}

void HFGLFilter::render(_Image* image) {
    prepare();
    setFilterFBO();
    if (!fbo) return;
    GLFrameState::clearTransparent();
    if (preRenderHook != nullptr) {
        preRenderHook(this);
        GLFrameState::forgetAll();
    }
    for (int pass = 0; pass < passCount; ++pass) {
        if (!programs[pass]) continue;
        GLFilterProgram& program = *programs[pass];
        program.use();
        for (int k = 0; k < kMaxInputs; ++k) {
            if (!holdsTexture(inputs[k])) continue;
            const GLint unit = kFirstInputUnit + k;
            GLFrameState::activeTexture(GL_TEXTURE0 + unit);
            GLFrameState::bindTexture2D(glTextureNameOf(inputs[k].get()));
            // Input k's location may come from another pass's program; it is
            // set in this pass's program all the same.
            if (program.uniforms.changed(samplerLocs[k], GL_INT, &unit, sizeof unit)) {
                glUniform1i(samplerLocs[k], unit);
            }
        }
        if (positionAttribs[pass] >= 0) {
            glVertexAttribPointer(positionAttribs[pass], 2, GL_FLOAT, GL_FALSE, 0, kQuadVertices);
        }
        if (texCoordAttribs[pass] >= 0) {
            glVertexAttribPointer(texCoordAttribs[pass], 2, GL_FLOAT, GL_FALSE, 0, kQuadTexCoords);
        }
        glDrawArrays(GL_TRIANGLE_STRIP, 0, 4);
    }
    GLFrameState::disableBlend();
    if (image != nullptr) readPixelsInto(image);
}

void HFGLFilter::setFrameBufferBlendMode(int source, int destination) {
    glBlendEquation(GL_FUNC_ADD);
    glBlendFunc(source, destination);
    GLFrameState::enableBlend();
}

HFSize HFGLFilter::outputTextureSize() {
    float m[9];
    matrix3Multiply(m, baseMatrix, transformMatrix);
    const float w = static_cast<float>(inputSize.width);
    const float h = static_cast<float>(inputSize.height);
    return HFSize{saturatingTruncate(fabsf(w * m[0] + h * m[3] + m[6])),
                  saturatingTruncate(fabsf(w * m[1] + h * m[4] + m[7]))};
}

shared_ptr<IHFTexture> HFGLFilter::outputTexture() { return output; }

void HFGLFilter::readOutput(_Image* image) {
    setFilterFBO();
    if (fbo) readPixelsInto(image);
}

// Reads only into a 4-channel image whose rows can hold the read-back rows.
void HFGLFilter::readPixelsInto(_Image* image) {
    if (image == nullptr || image->data == nullptr || image->channels != 4) return;
    if (image->width <= 0 || image->height <= 0 || image->stride / 4 < image->width) return;
    TightRgbaRows tight(GL_PACK_ALIGNMENT);
    glReadPixels(0, 0, image->width, image->height, GL_RGBA, GL_UNSIGNED_BYTE, image->data);
}

void HFGLFilter::clearMemoryData() {
    output.release();
    for (shared_ptr<IHFTexture>& input : inputs) input.release();
}

void HFGLFilter::cpuCodeSlot() {}

// Outside a frame program 0 is made current on every call, as setters
// always did; inside one only when a value is sent.
GLint HFGLFilter::locationInProgramZero(const char* name) {
    if (!programs[0]) return -1;
    if (!GLFrameState::inFrame()) programs[0]->use();
    return programs[0]->uniformLocation(name);
}

GLint HFGLFilter::uniformToSend(const char* name, GLenum kind, const void* values, size_t size) {
    // A count too large for this ABI describes no array the caller can hold.
    if (ifc::tooLarge(size)) return -1;
    const GLint location = locationInProgramZero(name);
    if (location < 0 || !programs[0]->uniforms.changed(location, kind, values, size)) return -1;
    if (GLFrameState::inFrame()) programs[0]->use();
    return location;
}

namespace {

size_t floatBytes(int64_t count) { return count > 0 ? ifc::byteCount(count, sizeof(float)) : 0; }

}  // namespace

void HFGLFilter::setInt(const char* name, int value) {
    const GLint location = uniformToSend(name, GL_INT, &value, sizeof value);
    if (location >= 0) glUniform1i(location, value);
}

void HFGLFilter::setFloat(const char* name, float value) {
    const GLint location = uniformToSend(name, GL_FLOAT, &value, sizeof value);
    if (location >= 0) glUniform1f(location, value);
}

void HFGLFilter::setVec2(const char* name, float* values) {
    const GLint location = uniformToSend(name, GL_FLOAT_VEC2, values, floatBytes(2));
    if (location >= 0) glUniform2fv(location, 1, values);
}

void HFGLFilter::setVec3(const char* name, float* values) {
    const GLint location = uniformToSend(name, GL_FLOAT_VEC3, values, floatBytes(3));
    if (location >= 0) glUniform3fv(location, 1, values);
}

void HFGLFilter::setVec4(const char* name, float* values) {
    const GLint location = uniformToSend(name, GL_FLOAT_VEC4, values, floatBytes(4));
    if (location >= 0) glUniform4fv(location, 1, values);
}

void HFGLFilter::setMatrix4(const char* name, float* values) {
    const GLint location = uniformToSend(name, GL_FLOAT_MAT4, values, floatBytes(16));
    if (location >= 0) glUniformMatrix4fv(location, 1, GL_FALSE, values);
}

void HFGLFilter::setFloatArray(const char* name, float* values, int count) {
    const GLint location = uniformToSend(name, GL_FLOAT, values, floatBytes(count));
    if (location >= 0) glUniform1fv(location, count, values);
}

void HFGLFilter::setFloatArray(int index, float* values, int count) {
    if (values == nullptr || count <= 0) return;
    _Image* curve = create_image(count, 1, 1, -1);
    if (curve == nullptr) return;
    for (int i = 0; i < count; ++i) curve->data[i] = toCurveByte(values[i]);
    setInputTextureImage(curve, index);
    free_image(&curve);
}

void HFGLFilter::setVec2Array(const char* name, float* values, int count) {
    const GLint location = uniformToSend(name, GL_FLOAT_VEC2, values, floatBytes(int64_t{2} * count));
    if (location >= 0) glUniform2fv(location, count, values);
}

float HFGLFilter::getProperty(const char*) { return 0.0f; }

void HFGLFilter::prepare() {}

void HFGLFilter::setRotation(float radians) {
    rotation = radians;
    updateMatrix();
}

void HFGLFilter::setFlipMode(HFFlipMode mode) {
    flipMode = static_cast<float>(mode);
    updateMatrix();
}

void HFGLFilter::updateMatrix() {
    float sx = 1.0f;
    float sy = 1.0f;
    if (flipMode == HFFlipModeHorizontal) {
        sx = -1.0f;
    } else if (flipMode == HFFlipModeVertical) {
        sy = -1.0f;
    } else if (flipMode == HFFlipModeBoth) {
        sx = -1.0f;
        sy = -1.0f;
    }
    matrix3Identity(transformMatrix);
    matrix3Translate(transformMatrix, -0.5f, -0.5f);
    matrix3Scale(transformMatrix, sx, sy);
    matrix3Rotate(transformMatrix, rotation);
    matrix3Translate(transformMatrix, 0.5f, 0.5f);
}

HFSize HFGLFilter::sizeOfFBO() {
    const HFSize size = outputTextureSize();
    return HFSize{saturatingTruncate(static_cast<float>(size.width) * outputScaleFactor),
                  saturatingTruncate(static_cast<float>(size.height) * outputScaleFactor)};
}

void HFGLFilter::createFBO(HFSize size) {
    // clearMemoryData may have dropped the output; the target needs one.
    if (!output) output = HFGLTexture::createTexture(static_cast<_Image*>(nullptr), defaultTextureOptions);
    static_cast<HFGLTexture*>(output.get())->resize(size.width, size.height);
    fbo = GLFilterFBO::create();
    fbo->attach(output);
    fbo->setSize(size.width, size.height);
    // The resize and the attachment selected units and bound textures.
    GLFrameState::forgetTextures();
}

void HFGLFilter::destoryFBO() { fbo.release(); }
