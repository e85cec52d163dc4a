// MagicEngine: up to four pools of offscreen RGBA framebuffers keyed by size,
// each with its own copy program, through which textures and the bound
// framebuffer are read back to client memory. GL thread only, no locks.
#ifndef IFC_RENDER_MAGIC_ENGINE_H
#define IFC_RENDER_MAGIC_ENGINE_H

#include <GLES2/gl2.h>

#include <cstdint>
#include <list>
#include <memory>

#include "image_filter/image.h"

// One pooled offscreen target.
struct ImageFBO {
    GLuint texture;
    int32_t width;  // width and height are the pool key
    int32_t height;
    uint32_t reserved0;
    GLuint renderbuffer;  // depth
    GLuint framebuffer;   // 0 when none was made: users then work on the bound one
    uint8_t initialized;  // initImageFBO has run for this record
    int32_t readDisabled; // non-zero skips the pooled read-back
    uint32_t owner;
    uint32_t reserved1;
};

// One pool. Entries run from most to least recently used.
struct MagicEngine {
    std::list<std::unique_ptr<ImageFBO>> entries;
    uint32_t words[4];  // words[1] is copied into each new entry's owner
    GLuint program;
    GLint positionLoc;
    GLint texCoordLoc;
    // Looked up with the attribute query on a uniform name, so normally -1;
    // the sampler then stays on its default unit 0, which is what is bound.
    GLint samplerLoc;
    int32_t capacity;
    uint8_t linked;
};

constexpr unsigned kMagicSlots = 4;
constexpr int kMagicMaxCapacity = 16;

extern "C" {
// Makes the texture, depth renderbuffer and framebuffer of one entry.
// 0 on success or when pooling is off for this GPU, -1 when incomplete or
// without an entry.
IFC_API int initImageFBO(ImageFBO* entry, const void* pixels, int width, int height);
}

// The engine in a slot, or null.
MagicEngine* magicEngineAt(unsigned slot);
// True until an engine failed to build its copy program.
bool magicEnabled();

// Finds the entry of that size and moves it to the front; null if none.
ImageFBO* magicLookup(MagicEngine* engine, int width, int height);
// The entry of that size, made (evicting the least recently used one when
// the pool is full) if needed; null for sizes below 1.
ImageFBO* magicCreate(MagicEngine* engine, int width, int height);

int magicEngineInit(int count, unsigned slot);   // slot or -1
int magicEngineCheck(int count, unsigned slot);  // slot or -1; rebuilds a lost engine
int magicEngineDeinit(int n);                    // 1 when n == 4, else 0

void magicBeginUse(int width, int height, unsigned slot);
void magicEndUse(int width, int height, unsigned slot);
// Reads width x height RGBA bytes from the slot's target (slot >= 4: from the
// bound framebuffer). Always 0.
int magicReadPixels(void* pixels, int width, int height, unsigned slot);
// Draws texture into the slot's target and reads it back; slot >= 4 reads
// the texture through a temporary framebuffer instead.
void magicCopyTextureToPixels(void* pixels, int width, int height, unsigned slot, GLuint texture);

// RGBA read with pack alignment 1 from the bound framebuffer.
void readRGBA(int x, int y, int width, int height, void* pixels);

#endif  // IFC_RENDER_MAGIC_ENGINE_H
