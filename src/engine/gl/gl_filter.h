// HFGLFilter: the GPU leaf of the filter graph. It draws a full-screen quad
// through its shader program(s) into its own framebuffer, whose colour
// attachment is the output texture. Inputs are sampled on texture units 2-5.
#ifndef IFC_ENGINE_GL_GL_FILTER_H
#define IFC_ENGINE_GL_GL_FILTER_H

#include <string>
#include <vector>

#include "engine/filter.h"
#include "engine/gl/gl_filter_fbo.h"
#include "engine/gl/gl_filter_program.h"

enum HFFlipMode {
    HFFlipModeNone = 0,
    HFFlipModeHorizontal = 1,
    HFFlipModeVertical = 2,
    HFFlipModeBoth = 3,
};

class HFGLFilter;
typedef void (*HFGLFilterHook)(HFGLFilter* filter);

class IFC_API HFGLFilter : public IHFFilter {
public:
    static constexpr int kMaxInputs = 4;
    static constexpr int kMaxPrograms = 6;
    // Units 0 and 1 belong to other code (the target is attached on unit 1).
    static constexpr int kFirstInputUnit = 2;

    HFGLFilter(const char* vertexSource, const char* fragmentSource);
    // One pass per vertex source; program i is built from vertexSources[i]
    // and fragmentSources[i].
    HFGLFilter(std::vector<std::string> vertexSources, std::vector<std::string> fragmentSources);
    ~HFGLFilter() override;

    HFGLFilter(const HFGLFilter&) = delete;
    HFGLFilter& operator=(const HFGLFilter&) = delete;

    // The factories take the fragment source FIRST and the vertex source
    // second; callers depend on this order.
    static shared_ptr<HFGLFilter> createFilter(const char* fragmentSource, const char* vertexSource);
    static shared_ptr<HFGLFilter> createFilter(const unsigned char* fragmentSource,
                                               const unsigned char* vertexSource);
    // Builds a one-pass filter from the first string of each vector only.
    static shared_ptr<HFGLFilter> createFilter(std::vector<std::string> fragmentSources,
                                               std::vector<std::string> vertexSources);

    void setInputTextureSize(HFSize size) override;
    void setInputTextureImage(_Image* image, int index) override;
    void setInputTexture(shared_ptr<IHFTexture> texture, int index) override;
    shared_ptr<IHFTexture> getInputTexture(int index) override;
    void setProperty(const char* name, float value) override;
    void setFilterFBO() override;
    void render(_Image* image) override;
    void setFrameBufferBlendMode(int source, int destination) override;
    HFSize outputTextureSize() override;
    shared_ptr<IHFTexture> outputTexture() override;
    void readOutput(_Image* image) override;
    void clearMemoryData() override;
    void cpuCodeSlot() override;

    // Uniform setters of program 0. A value equal to the one last sent to the
    // same uniform is not sent again.
    virtual void setInt(const char* name, int value);
    virtual void setFloat(const char* name, float value);
    virtual void setVec2(const char* name, float* values);
    virtual void setVec3(const char* name, float* values);
    virtual void setVec4(const char* name, float* values);
    virtual void setMatrix4(const char* name, float* values);
    virtual void setFloatArray(const char* name, float* values, int count);
    // Not a uniform: the values become a count x 1 luminance texture at input `index`.
    virtual void setFloatArray(int index, float* values, int count);
    virtual void setVec2Array(const char* name, float* values, int count);
    virtual float getProperty(const char* name);
    // Called first by render; a hook for subclasses.
    virtual void prepare();

    void loadShader(const char* vertexSource, const char* fragmentSource);
    void loadShader(const unsigned char* vertexSource, const unsigned char* fragmentSource);
    // Program i from vertex second[i] and fragment first[i].
    void loadShader(std::vector<std::string> first, std::vector<std::string> second);

    HFSize inputTextureSize() const { return inputSize; }

    // Rotation and flip change only the output size, never the drawing.
    void setRotation(float radians);
    void setFlipMode(HFFlipMode mode);
    void updateMatrix();

    float outputScale() const { return outputScaleFactor; }
    void setOutputScale(float scale) { outputScaleFactor = scale; }
    HFSize sizeOfFBO();

    void createFBO(HFSize size);
    // Spelled as the interface has always spelled it.
    void destoryFBO();

    void setPreRenderHook(HFGLFilterHook hook) { preRenderHook = hook; }
    int programCount() const { return passCount; }
    shared_ptr<GLFilterProgram> program(int pass) const { return programs[pass]; }
    shared_ptr<GLFilterFBO> filterFBO() const { return fbo; }
    GLint samplerLocation(int index) const { return samplerLocs[index]; }

private:
    void initialise();
    bool bindTarget();
    void loadProgram(int pass, const char* vertexSource, const char* fragmentSource);
    // The uniform's location in program 0.
    GLint locationInProgramZero(const char* name);
    // The location to send a value to, with program 0 current; -1 when the
    // uniform is missing or already holds these bytes.
    GLint uniformToSend(const char* name, GLenum kind, const void* values, size_t size);
    void readPixelsInto(_Image* image);

    shared_ptr<IHFTexture> output;
    shared_ptr<IHFTexture> inputs[kMaxInputs];
    HFSize inputSize = {0, 0};
    shared_ptr<GLFilterFBO> fbo;
    shared_ptr<GLFilterProgram> programs[kMaxPrograms];
    GLint positionAttribs[kMaxPrograms] = {-1, -1, -1, -1, -1, -1};
    GLint texCoordAttribs[kMaxPrograms] = {-1, -1, -1, -1, -1, -1};
    GLint samplerLocs[kMaxInputs] = {-1, -1, -1, -1};
    float rotation = 0.0f;
    float flipMode = 0.0f;
    // 3x3, row-major, for row vectors (translation in elements 6 and 7).
    float baseMatrix[9];
    float transformMatrix[9];
    float outputScaleFactor = 1.0f;
    HFGLFilterHook preRenderHook = nullptr;
    int passCount = 1;
};

#endif  // IFC_ENGINE_GL_GL_FILTER_H
