// Program and texture bindings remembered while one frame renders, so that
// the GL filters of a package bind nothing twice. Outside a frame every call
// goes to GL: the caller may change any binding between two frames.
#ifndef IFC_ENGINE_GL_FRAME_STATE_H
#define IFC_ENGINE_GL_FRAME_STATE_H

#include <GLES2/gl2.h>

namespace GLFrameState {

// Marks one frame; frames may nest. Everything remembered is forgotten when
// the outermost frame begins and ends.
class Frame {
public:
    Frame();
    ~Frame();
    Frame(const Frame&) = delete;
    Frame& operator=(const Frame&) = delete;
};

bool inFrame();

void useProgram(GLuint program);
// unit is GL_TEXTURE0 + n.
void activeTexture(GLenum unit);
// Binds to GL_TEXTURE_2D of the active unit.
void bindTexture2D(GLuint texture);

// glClearColor(0, 0, 0, 0) unless already set this frame, then glClear of
// the colour buffer.
void clearTransparent();
// Blending on (glEnable) or off (glDisable), skipping a repeated off.
void enableBlend();
void disableBlend();

// Code that selects units, binds or deletes textures behind these calls
// says so here.
void forgetTextures();
// Code of unknown effect (a hook) says so here.
void forgetAll();

}  // namespace GLFrameState

#endif  // IFC_ENGINE_GL_FRAME_STATE_H
