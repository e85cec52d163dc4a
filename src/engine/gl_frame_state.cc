#include "engine/gl_frame_state.h"

namespace GLFrameState {

namespace {

// Units the engine binds (0-5) and a little room; others always go to GL.
constexpr int kUnits = 8;

struct State {
    int depth = 0;
    bool programKnown = false;
    GLuint program = 0;
    bool unitKnown = false;
    GLenum activeUnit = GL_TEXTURE0;
    bool clearColorSet = false;
    bool blendKnownOff = false;
    bool textureKnown[kUnits] = {};
    GLuint texture[kUnits] = {};
};

// Per thread: GL state belongs to the context current on the thread, and two
// GL threads (a preview and an export) may render at once.
thread_local State state;

int unitIndex(GLenum unit) { return static_cast<int>(unit) - static_cast<int>(GL_TEXTURE0); }

}  // namespace

Frame::Frame() {
    if (state.depth++ == 0) forgetAll();
}

Frame::~Frame() {
    if (--state.depth == 0) forgetAll();
}

bool inFrame() { return state.depth > 0; }

void useProgram(GLuint program) {
    if (inFrame() && state.programKnown && state.program == program) return;
    glUseProgram(program);
    state.programKnown = inFrame();
    state.program = program;
}

void activeTexture(GLenum unit) {
    if (inFrame() && state.unitKnown && state.activeUnit == unit) return;
    glActiveTexture(unit);
    state.unitKnown = inFrame();
    state.activeUnit = unit;
}

void bindTexture2D(GLuint texture) {
    const int unit = state.unitKnown ? unitIndex(state.activeUnit) : -1;
    const bool tracked = inFrame() && unit >= 0 && unit < kUnits;
    if (tracked && state.textureKnown[unit] && state.texture[unit] == texture) return;
    glBindTexture(GL_TEXTURE_2D, texture);
    if (!tracked) return;
    state.textureKnown[unit] = true;
    state.texture[unit] = texture;
}

void clearTransparent() {
    if (!(inFrame() && state.clearColorSet)) glClearColor(0, 0, 0, 0);
    state.clearColorSet = inFrame();
    glClear(GL_COLOR_BUFFER_BIT);
}

void enableBlend() {
    glEnable(GL_BLEND);
    state.blendKnownOff = false;
}

void disableBlend() {
    if (inFrame() && state.blendKnownOff) return;
    glDisable(GL_BLEND);
    state.blendKnownOff = inFrame();
}

void forgetAll() {
    state.programKnown = false;
    state.clearColorSet = false;
    state.blendKnownOff = false;
    forgetTextures();
}

void forgetTextures() {
    state.unitKnown = false;
    for (int unit = 0; unit < kUnits; ++unit) state.textureKnown[unit] = false;
}

}  // namespace GLFrameState
