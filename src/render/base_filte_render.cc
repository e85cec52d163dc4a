#include "render/base_filte_render.h"

#include <GLES2/gl2ext.h>

#include <cmath>
#include <cstdlib>
#include <cstring>

#include "gl/tight_rgba_rows.h"
#include "render/gl_utils.h"

const char kDefaultVertexShader[] =
    "precision highp float;\n"
    "attribute vec4 position;\n"
    "attribute vec2 inputTextureCoordinate;\n"
    "varying vec2 textureCoordinate;\n"
    "uniform mat4 Projection;\n"
    "uniform mat4 Modelview; \n"
    "uniform mat4 textureMat; \n"
    "uniform mat4 tMat;\n"
    "void main(void)\n"
    "{\n"
    "gl_Position = Projection * Modelview *position;\t\t"
    "vec4 tmp = tMat*vec4(inputTextureCoordinate.x,inputTextureCoordinate.y,0.0,1.0);\n"
    "textureCoordinate = tmp.xy;\n"
    "}\n";

namespace {

const float kIdentity4[16] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
const float kIdentity3[9] = {1, 0, 0, 0, 1, 0, 0, 0, 1};
// Triangle-fan order: bottom-left, top-left, top-right, bottom-right.
const float kDefaultPositions[8] = {-1, -1, -1, 1, 1, 1, 1, -1};
const float kDefaultTexCords[8] = {0, 0, 0, 1, 1, 1, 1, 0};
// The rotation has always used this literal, not the full-precision pi.
constexpr double kPi = 3.1415926;

void setLinearClamp(GLenum target) {
    glTexParameterf(target, GL_TEXTURE_MAG_FILTER, GL_LINEAR);
    glTexParameterf(target, GL_TEXTURE_MIN_FILTER, GL_LINEAR);
    glTexParameterf(target, GL_TEXTURE_WRAP_S, GL_CLAMP_TO_EDGE);
    glTexParameterf(target, GL_TEXTURE_WRAP_T, GL_CLAMP_TO_EDGE);
}

// The copy is made before the stored text is freed: `source` may be that very
// text (what vertexShaderSource() returned). A null source, or no memory for
// the copy, keeps what is stored.
void replaceSource(char** stored, const char* source) {
    if (source == nullptr) return;
    size_t length = strlen(source) + 1;
    char* copy = static_cast<char*>(malloc(length));
    if (copy == nullptr) return;
    memcpy(copy, source, length);
    free(*stored);
    *stored = copy;
}

}  // namespace

GLRenderBase::~GLRenderBase() {
    if (program != 0) glDeleteProgram(program);
    program = 0;
}

BaseFilteRender::BaseFilteRender(unsigned int target)
    : textureTarget(target),
      projectionLoc(-1), modelviewLoc(-1), widthLoc(-1), heightLoc(-1),
      textualWidthLoc(-1), textualHeightLoc(-1), horStepLoc(-1), verStepLoc(-1),
      positionLoc(-1), texCoordLoc(-1), textureMatLoc(-1), tMatLoc(-1),
      inputTextureLoc(-1), rawTextureLoc(0), globalTexCoMatLoc(-1),
      filterId(0), fragmentSource(nullptr), vertexSource(nullptr),
      positions(nullptr), texCords(nullptr), scale(1.0f), flipX(0), flipY(0), renderMode(0) {
    Reset();
}

// The position and texture-coordinate arrays are released by clear() only:
// the owner calls clear() before destroying (see nativeClear).
BaseFilteRender::~BaseFilteRender() {
    free(fragmentSource);
    fragmentSource = nullptr;
    free(vertexSource);
    vertexSource = nullptr;
}

int BaseFilteRender::InitializeGLProgram() {
    GLuint built = buildGLProgram(vertexShaderSource(), fragmentShaderSource());
    checkGlError("InitializeGLProgram createProgram");
    if (built == 0) {
        if (program != 0) {
            glDeleteProgram(program);
            checkGlError("glDeleteProgram");
            program = 0;
        }
        return 0;
    }
    glUseProgram(built);
    checkGlError("InitializeGLProgram glUseProgram");
    positionLoc = glGetAttribLocation(built, "position");
    texCoordLoc = glGetAttribLocation(built, "inputTextureCoordinate");
    projectionLoc = glGetUniformLocation(built, "Projection");
    modelviewLoc = glGetUniformLocation(built, "Modelview");
    widthLoc = glGetUniformLocation(built, "width");
    heightLoc = glGetUniformLocation(built, "height");
    textualWidthLoc = glGetUniformLocation(built, "textualwidth");
    textualHeightLoc = glGetUniformLocation(built, "textualheight");
    horStepLoc = glGetUniformLocation(built, "horStep");
    verStepLoc = glGetUniformLocation(built, "verStep");
    textureMatLoc = glGetUniformLocation(built, "textureMat");
    tMatLoc = glGetUniformLocation(built, "tMat");
    inputTextureLoc = glGetUniformLocation(built, "inputImageTexture");
    globalTexCoMatLoc = glGetUniformLocation(built, "globalTexCoMat");
    checkGlError("before mRawTextureHandle");
    rawTextureLoc = glGetUniformLocation(built, "rawInputImageTexture");
    checkGlError("after mRawTextureHandle");
    // A program built earlier is replaced, not deleted: the renderer has
    // always kept it alive on a rebuild.
    program = built;
    return 1;
}

void BaseFilteRender::RenderProcess(GLuint texture, GLuint rawTexture, int width, int height) {
    glActiveTexture(GL_TEXTURE0);
    if (!checkGlError("glActiveTexture")) return;
    glBindTexture(textureTarget, texture);
    setLinearClamp(textureTarget);
    if (!checkGlError("glBindTexture")) return;
    glUniform1i(inputTextureLoc, 0);

    // Location 0 counts as absent for the raw texture; it always goes on unit 2.
    if (rawTexture != 0 && rawTextureLoc >= 1) {
        glActiveTexture(GL_TEXTURE2);
        if (!checkGlError("mRawTextureHandle glActiveTexture")) return;
        glBindTexture(GL_TEXTURE_2D, rawTexture);
        setLinearClamp(GL_TEXTURE_2D);
        if (!checkGlError("mRawTextureHandle glBindTexture")) return;
        glUniform1i(rawTextureLoc, 2);
    }

    glUniform1i(widthLoc, width);
    glUniform1i(heightLoc, height);
    float horStep = static_cast<float>(1.0 / width);
    float verStep = static_cast<float>(1.0 / height);
    glUniform1f(horStepLoc, horStep);
    glUniform1f(verStepLoc, verStep);
    // The "textual" pair carries the steps too, not the sizes.
    glUniform1f(textualWidthLoc, horStep);
    glUniform1f(textualHeightLoc, verStep);

    glUniformMatrix4fv(projectionLoc, 1, GL_FALSE, projection);
    glUniformMatrix4fv(modelviewLoc, 1, GL_FALSE, modelview);
    glUniformMatrix4fv(textureMatLoc, 1, GL_FALSE, textureMat);
    glUniformMatrix4fv(tMatLoc, 1, GL_FALSE, tMat);
    if (globalTexCoMatLoc >= 0) glUniformMatrix3fv(globalTexCoMatLoc, 1, GL_FALSE, globalTexCoMat);

    glVertexAttribPointer(positionLoc, 2, GL_FLOAT, GL_FALSE, 8,
                          positions != nullptr ? positions : kDefaultPositions);
    glVertexAttribPointer(texCoordLoc, 2, GL_FLOAT, GL_FALSE, 8,
                          texCords != nullptr ? texCords : kDefaultTexCords);
    glEnableVertexAttribArray(positionLoc);
    glEnableVertexAttribArray(texCoordLoc);
    glDrawArrays(GL_TRIANGLE_FAN, 0, 4);
    checkGlError("BaseFilteRender::RenderProcess:glDrawArrays");

    if (renderMode == 0) {
        glFinish();
    } else if (renderMode == 1) {
        glFlush();
    }
}

void BaseFilteRender::RenderDataProcess(unsigned char* rgba, int width, int height) {
    GLuint input = 0;
    glActiveTexture(GL_TEXTURE1);
    glGenTextures(1, &input);
    glBindTexture(GL_TEXTURE_2D, input);
    {
        TightRgbaRows tight(GL_UNPACK_ALIGNMENT);
        glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA, width, height, 0, GL_RGBA, GL_UNSIGNED_BYTE, rgba);
    }
    setLinearClamp(GL_TEXTURE_2D);

    GLuint output = 0;
    GLuint framebuffer = 0;
    glActiveTexture(GL_TEXTURE0);
    glGenTextures(1, &output);
    glGenFramebuffers(1, &framebuffer);
    glBindTexture(GL_TEXTURE_2D, output);
    glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA, width, height, 0, GL_RGBA, GL_UNSIGNED_BYTE, nullptr);
    setLinearClamp(GL_TEXTURE_2D);

    glBindFramebuffer(GL_FRAMEBUFFER, framebuffer);
    glFramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D, output, 0);
    glViewport(0, 0, width, height);
    RenderProcess(input, 0, width, height);
    glPixelStorei(GL_PACK_ALIGNMENT, 1);
    glReadPixels(0, 0, width, height, GL_RGBA, GL_UNSIGNED_BYTE, rgba);

    if (framebuffer != 0) {
        glBindFramebuffer(GL_FRAMEBUFFER, framebuffer);
        glFramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D, 0, 0);
        glDeleteFramebuffers(1, &framebuffer);
    }
    glDeleteTextures(1, &output);
    glDeleteTextures(1, &input);
}

const char* BaseFilteRender::vertexShaderSource() {
    return vertexSource != nullptr ? vertexSource : kDefaultVertexShader;
}

const char* BaseFilteRender::fragmentShaderSource() { return fragmentSource; }

void BaseFilteRender::Reset() {
    memcpy(projection, kIdentity4, sizeof projection);
    memcpy(modelview, kIdentity4, sizeof modelview);
    memcpy(textureMat, kIdentity4, sizeof textureMat);
    memcpy(tMat, kIdentity4, sizeof tMat);
    memcpy(globalTexCoMat, kIdentity3, sizeof globalTexCoMat);
}

void BaseFilteRender::SetFilterId(int id) { filterId = id; }

void BaseFilteRender::UseProgram() {
    if (program == 0) return;
    checkGlError("before BaseFilteRender::UseProgram");
    glUseProgram(program);
    checkGlError("BaseFilteRender::UseProgram");
}

void BaseFilteRender::setVertexShaderSource(const char* source) { replaceSource(&vertexSource, source); }

void BaseFilteRender::setFragmentShaderSource(const char* source) {
    replaceSource(&fragmentSource, source);
}

// A non-zero flag mirrors the axis again each time; 0 leaves everything as is.
void BaseFilteRender::FlipX(int flag) {
    if (flag == 0) return;
    for (int i = 0; i < 4; ++i) modelview[i] = -modelview[i];
    flipX = flag;
}

void BaseFilteRender::FlipY(int flag) {
    if (flag == 0) return;
    for (int i = 4; i < 8; ++i) modelview[i] = -modelview[i];
    flipY = flag;
}

// Starts from the identity: earlier flips and model matrices are discarded.
void BaseFilteRender::Rotation(int degrees) {
    memcpy(modelview, kIdentity4, sizeof modelview);
    double angle = degrees * kPi / 180.0;
    modelview[0] = static_cast<float>(cos(angle));
    modelview[1] = static_cast<float>(-sin(angle));
    modelview[4] = static_cast<float>(sin(angle));
    modelview[5] = static_cast<float>(cos(angle));
    flipX = 0;
    flipY = 0;
}

void BaseFilteRender::updateTextureMatrix(const float* m) { memcpy(tMat, m, sizeof tMat); }

void BaseFilteRender::setGlobalTextureMatrix(const float* m) {
    memcpy(globalTexCoMat, m, sizeof globalTexCoMat);
}

void BaseFilteRender::updateModelMatrix(const float* m) { memcpy(modelview, m, sizeof modelview); }

// The previous array is not released here: setters hand over ownership once
// and clear() releases what is held at the end.
void BaseFilteRender::setPositions(float* p) { positions = p; }

void BaseFilteRender::setTexCords(float* t) { texCords = t; }

void BaseFilteRender::setRenderMode(int mode) { renderMode = mode; }

// The pointers are nulled after release so that a second clear() cannot free
// them twice; the renderer then draws the default quad again.
void BaseFilteRender::clear() {
    delete[] positions;
    positions = nullptr;
    delete[] texCords;
    texCords = nullptr;
}
