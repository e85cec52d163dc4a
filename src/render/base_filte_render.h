// BaseFilteRender (spelled so on purpose: Java and the exported class bind to
// the name): one shader pass from an input texture to the bound framebuffer,
// a full-screen quad with a fixed set of uniforms. GL thread only.
#ifndef IFC_RENDER_BASE_FILTE_RENDER_H
#define IFC_RENDER_BASE_FILTE_RENDER_H

#include <GLES2/gl2.h>

#include <cstdint>

#include "image_filter/image.h"

// Owns one linked program; deletes it on destruction.
class IFC_API GLRenderBase {
public:
    GLRenderBase() : program(0) {}
    virtual ~GLRenderBase();

    virtual int InitializeGLProgram() = 0;
    virtual void RenderProcess(GLuint texture, GLuint rawTexture, int width, int height) = 0;
    virtual const char* vertexShaderSource() = 0;
    virtual const char* fragmentShaderSource() = 0;

    GLuint program;  // 0 when none
};

class IFC_API BaseFilteRender : public GLRenderBase {
public:
    // textureTarget: GL_TEXTURE_2D or GL_TEXTURE_EXTERNAL_OES for the input.
    explicit BaseFilteRender(unsigned int textureTarget);
    ~BaseFilteRender() override;

    int InitializeGLProgram() override;  // 1 on success, 0 on failure
    void RenderProcess(GLuint texture, GLuint rawTexture, int width, int height) override;
    const char* vertexShaderSource() override;
    const char* fragmentShaderSource() override;

    // Filters width x height RGBA pixels in client memory in place.
    void RenderDataProcess(unsigned char* rgba, int width, int height);

    void Reset();
    void SetFilterId(int id);
    void UseProgram();
    void setVertexShaderSource(const char* source);
    void setFragmentShaderSource(const char* source);
    void FlipX(int flag);
    void FlipY(int flag);
    void Rotation(int degrees);
    void updateTextureMatrix(const float* m);     // 16 floats into tMat
    void setGlobalTextureMatrix(const float* m);  // 9 floats
    void updateModelMatrix(const float* m);       // 16 floats
    // Take ownership of new[] arrays of 2 floats per vertex, 4 vertices.
    void setPositions(float* positions);
    void setTexCords(float* texCords);
    void setRenderMode(int mode);
    void clear();

    GLenum textureTarget;
    GLint projectionLoc;
    GLint modelviewLoc;
    GLint widthLoc;
    GLint heightLoc;
    GLint textualWidthLoc;
    GLint textualHeightLoc;
    GLint horStepLoc;
    GLint verStepLoc;
    GLint positionLoc;
    GLint texCoordLoc;
    GLint textureMatLoc;
    GLint tMatLoc;
    GLint inputTextureLoc;
    GLint rawTextureLoc;
    GLint globalTexCoMatLoc;
    float projection[16];
    float modelview[16];
    float textureMat[16];
    float tMat[16];
    float globalTexCoMat[9];
    int32_t filterId;
    char* fragmentSource;
    char* vertexSource;
    float* positions;
    float* texCords;
    float scale;
    int32_t flipX;
    int32_t flipY;
    int32_t renderMode;  // after the draw: 0 glFinish, 1 glFlush, other nothing
};

// The vertex shader used when none was set.
extern const char kDefaultVertexShader[];

#endif  // IFC_RENDER_BASE_FILTE_RENDER_H
