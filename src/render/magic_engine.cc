#include "render/magic_engine.h"

#include <algorithm>
#include <cstring>
#include <vector>

#include "gl/tight_rgba_rows.h"
#include "jni/bridge/log.h"
#include "render/gl_utils.h"

namespace {

const char kCopyVertexShader[] =
    "precision highp float; attribute vec4 position; attribute vec2 inputTextureCoordinate; "
    "varying vec2 textureCoordinate; void main(void) { gl_Position = position; "
    "textureCoordinate = inputTextureCoordinate.xy; }";
const char kCopyFragmentShader[] =
    "precision highp float; varying vec2 textureCoordinate; uniform sampler2D inputImageTexture; "
    "void main() { gl_FragColor = texture2D(inputImageTexture, textureCoordinate); }";

const GLfloat kCopyPositions[] = {-1, -1, 0, -1, 1, 0, 1, 1, 0, 1, -1, 0};
const GLfloat kCopyTexCoords[] = {0, 0, 0, 1, 1, 1, 1, 0};

// Offscreen pooling is switched off on this renderer: its entries get no
// framebuffer and every user works on the bound one instead.
const char kPoolingOffRenderer[] = "Vivante GC2000";

MagicEngine* engines[kMagicSlots];
bool enabled = true;

void deleteEntryObjects(ImageFBO* entry) {
    glDeleteTextures(1, &entry->texture);
    glDeleteFramebuffers(1, &entry->framebuffer);
    glDeleteRenderbuffers(1, &entry->renderbuffer);
    entry->initialized = 0;
}

GLint attachment(GLenum point, GLenum query) {
    GLint value = 0;
    glGetFramebufferAttachmentParameteriv(GL_FRAMEBUFFER, point, query, &value);
    return value;
}

// True when the entry's framebuffer still exists and holds the entry's own
// texture and depth renderbuffer: then all three names are still the
// entry's, even where the copy program is gone. The framebuffer binding is
// restored.
bool entryObjectsStillOurs(const ImageFBO* entry) {
    if (entry->framebuffer == 0 || !glIsFramebuffer(entry->framebuffer)) return false;
    GLint previous = 0;
    glGetIntegerv(GL_FRAMEBUFFER_BINDING, &previous);
    glBindFramebuffer(GL_FRAMEBUFFER, entry->framebuffer);
    // A name may only be asked for once the type says there is an object.
    bool ours = attachment(GL_COLOR_ATTACHMENT0, GL_FRAMEBUFFER_ATTACHMENT_OBJECT_TYPE) == GL_TEXTURE &&
                attachment(GL_COLOR_ATTACHMENT0, GL_FRAMEBUFFER_ATTACHMENT_OBJECT_NAME) ==
                    static_cast<GLint>(entry->texture) &&
                attachment(GL_DEPTH_ATTACHMENT, GL_FRAMEBUFFER_ATTACHMENT_OBJECT_TYPE) == GL_RENDERBUFFER &&
                attachment(GL_DEPTH_ATTACHMENT, GL_FRAMEBUFFER_ATTACHMENT_OBJECT_NAME) ==
                    static_cast<GLint>(entry->renderbuffer);
    glBindFramebuffer(GL_FRAMEBUFFER, static_cast<GLuint>(previous));
    return ours;
}

// Releases the engine's GL names and entries. With the copy program alive
// the context is the engine's own and every name is deleted. Without it the
// context may be a new one where the same numbers name someone else's
// objects: an entry's names are deleted only where its framebuffer still
// holds its own attachments, the rest are forgotten.
void destroyEngine(MagicEngine* engine) {
    bool contextAlive = engine->program != 0 && glIsProgram(engine->program);
    if (contextAlive) glDeleteProgram(engine->program);
    for (auto& entry : engine->entries) {
        if (contextAlive || entryObjectsStillOurs(entry.get())) deleteEntryObjects(entry.get());
    }
    engine->program = 0;
    engine->entries.clear();
}

void freeSlot(unsigned slot) {
    destroyEngine(engines[slot]);
    delete engines[slot];
    engines[slot] = nullptr;
}

// Compiles one copy shader; the info log of a failure is read and dropped.
GLuint compileCopyShader(GLenum type, const char* source) {
    GLuint shader = glCreateShader(type);
    glShaderSource(shader, 1, &source, nullptr);
    glCompileShader(shader);
    GLint compiled = 0;
    glGetShaderiv(shader, GL_COMPILE_STATUS, &compiled);
    if (compiled) return shader;
    GLint logLength = 0;
    glGetShaderiv(shader, GL_INFO_LOG_LENGTH, &logLength);
    if (logLength > 0) {
        std::vector<char> log(static_cast<size_t>(logLength));
        glGetShaderInfoLog(shader, logLength, nullptr, log.data());
    }
    glDeleteShader(shader);
    return 0;
}

// Builds the copy program into the engine; linked stays 0 on any failure.
void buildCopyProgram(MagicEngine* engine) {
    engine->program = glCreateProgram();
    GLuint vertexShader = compileCopyShader(GL_VERTEX_SHADER, kCopyVertexShader);
    if (vertexShader == 0) return;
    GLuint fragmentShader = compileCopyShader(GL_FRAGMENT_SHADER, kCopyFragmentShader);
    if (fragmentShader == 0) {
        glDeleteShader(vertexShader);
        return;
    }
    glAttachShader(engine->program, vertexShader);
    glAttachShader(engine->program, fragmentShader);
    glLinkProgram(engine->program);
    GLint linked = 0;
    glGetProgramiv(engine->program, GL_LINK_STATUS, &linked);
    glDeleteShader(vertexShader);
    glDeleteShader(fragmentShader);
    if (!linked) return;
    engine->linked = 1;
    engine->positionLoc = glGetAttribLocation(engine->program, "position");
    engine->texCoordLoc = glGetAttribLocation(engine->program, "inputTextureCoordinate");
    engine->samplerLoc = glGetAttribLocation(engine->program, "inputImageTexture");
    glUseProgram(engine->program);
    glEnableVertexAttribArray(engine->positionLoc);
    glEnableVertexAttribArray(engine->texCoordLoc);
}

// Steps 2-4 of init and check: a fresh engine in the slot, or the mechanism
// switched off for good when its program cannot be built.
int buildEngine(int count, unsigned slot) {
    auto* engine = new MagicEngine();
    engine->capacity = std::min(count, kMagicMaxCapacity);
    buildCopyProgram(engine);
    engines[slot] = engine;
    if (engine->linked) return static_cast<int>(slot);
    freeSlot(slot);
    enabled = false;
    return -1;
}

void evictLeastRecentlyUsed(MagicEngine* engine) {
    if (engine->entries.empty()) return;
    deleteEntryObjects(engine->entries.back().get());
    engine->entries.pop_back();
}

// The slot's target of that size, made if missing; null without an engine.
ImageFBO* targetFor(int width, int height, unsigned slot) {
    MagicEngine* engine = magicEngineAt(slot);
    if (engine == nullptr) return nullptr;
    ImageFBO* entry = magicLookup(engine, width, height);
    return entry != nullptr ? entry : magicCreate(engine, width, height);
}

void bindTarget(const ImageFBO* entry) {
    glViewport(0, 0, entry->width, entry->height);
    glBindFramebuffer(GL_FRAMEBUFFER, entry->framebuffer);
}

void drawCopy(const MagicEngine* engine, GLuint texture) {
    glUseProgram(engine->program);
    glActiveTexture(GL_TEXTURE0);
    glBindTexture(GL_TEXTURE_2D, texture);
    glUniform1i(engine->samplerLoc, 0);
    glVertexAttribPointer(engine->positionLoc, 3, GL_FLOAT, GL_FALSE, 12, kCopyPositions);
    glVertexAttribPointer(engine->texCoordLoc, 2, GL_FLOAT, GL_FALSE, 8, kCopyTexCoords);
    // Other programs may have switched the arrays off since the engine was built.
    glEnableVertexAttribArray(engine->positionLoc);
    glEnableVertexAttribArray(engine->texCoordLoc);
    glDrawArrays(GL_TRIANGLE_FAN, 0, 4);
    glFinish();
}

}  // namespace

extern "C" int initImageFBO(ImageFBO* entry, const void* pixels, int width, int height) {
    if (entry == nullptr) return -1;
    if (entry->initialized) return 0;
    entry->initialized = 1;
    glGetString(GL_VERSION);
    glGetString(GL_VENDOR);
    const char* renderer = reinterpret_cast<const char*>(glGetString(GL_RENDERER));
    if (renderer != nullptr && strcmp(renderer, kPoolingOffRenderer) == 0) return 0;

    glActiveTexture(GL_TEXTURE0);
    entry->width = width;
    entry->height = height;
    glGenTextures(1, &entry->texture);
    glBindTexture(GL_TEXTURE_2D, entry->texture);
    {
        TightRgbaRows tight(GL_UNPACK_ALIGNMENT);
        glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA, width, height, 0, GL_RGBA, GL_UNSIGNED_BYTE, pixels);
    }
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_NEAREST);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_NEAREST);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_CLAMP_TO_EDGE);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, GL_CLAMP_TO_EDGE);

    glGenFramebuffers(1, &entry->framebuffer);
    glGenRenderbuffers(1, &entry->renderbuffer);
    glBindFramebuffer(GL_FRAMEBUFFER, entry->framebuffer);
    glBindRenderbuffer(GL_RENDERBUFFER, entry->renderbuffer);
    glRenderbufferStorage(GL_RENDERBUFFER, GL_DEPTH_COMPONENT16, width, height);
    glFramebufferRenderbuffer(GL_FRAMEBUFFER, GL_DEPTH_ATTACHMENT, GL_RENDERBUFFER, entry->renderbuffer);
    // The label names the call that follows, as the log has always read.
    for (GLenum error = glGetError(); error != GL_NO_ERROR; error = glGetError()) {
        log_printE("after %s() glError (0x%x)\n", "glFramebufferTexture2D", error);
    }
    glFramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D, entry->texture, 0);
    if (glCheckFramebufferStatus(GL_FRAMEBUFFER) != GL_FRAMEBUFFER_COMPLETE) {
        glDeleteTextures(1, &entry->texture);
        glDeleteFramebuffers(1, &entry->framebuffer);
        glDeleteRenderbuffers(1, &entry->renderbuffer);
        // Deleted names are cleared so that users fall back to the bound
        // framebuffer and a later release cannot hit a reused name.
        entry->texture = entry->framebuffer = entry->renderbuffer = 0;
        log_printE("ERROR ! Image Handler initImageFBO failed!\n");
        log_printE("%s %d ERROR !", "preinit", 397);
        return -1;
    }
    glBindFramebuffer(GL_FRAMEBUFFER, 0);
    glBindRenderbuffer(GL_RENDERBUFFER, 0);
    glBindTexture(GL_TEXTURE_2D, 0);
    return 0;
}

MagicEngine* magicEngineAt(unsigned slot) { return slot < kMagicSlots ? engines[slot] : nullptr; }

bool magicEnabled() { return enabled; }

ImageFBO* magicLookup(MagicEngine* engine, int width, int height) {
    if (width < 1 || height < 1 || engine->entries.empty()) return nullptr;
    auto& entries = engine->entries;
    auto found = std::find_if(entries.begin(), entries.end(), [&](const auto& entry) {
        return entry->width == width && entry->height == height;
    });
    if (found == entries.end()) return nullptr;
    if (found != entries.begin()) entries.splice(entries.begin(), entries, found);
    return entries.front().get();
}

ImageFBO* magicCreate(MagicEngine* engine, int width, int height) {
    if (width < 1 || height < 1) return nullptr;
    if (ImageFBO* existing = magicLookup(engine, width, height)) return existing;
    if (static_cast<int>(engine->entries.size()) >= engine->capacity) evictLeastRecentlyUsed(engine);
    auto entry = std::make_unique<ImageFBO>();
    entry->owner = engine->words[1];
    // A failed or skipped set-up still joins the pool, without a framebuffer.
    initImageFBO(entry.get(), nullptr, width, height);
    engine->entries.push_front(std::move(entry));
    return engine->entries.front().get();
}

int magicEngineInit(int count, unsigned slot) {
    if (!enabled || slot >= kMagicSlots) return -1;
    if (engines[slot] != nullptr) return static_cast<int>(slot);
    return buildEngine(count, slot);
}

int magicEngineCheck(int count, unsigned slot) {
    if (!enabled || slot >= kMagicSlots) return -1;
    if (engines[slot] != nullptr) {
        if (glIsProgram(engines[slot]->program)) return static_cast<int>(slot);
        freeSlot(slot);
    }
    return buildEngine(count, slot);
}

int magicEngineDeinit(int n) {
    for (unsigned slot = 0; slot < kMagicSlots && engines[slot] != nullptr; ++slot) freeSlot(slot);
    return n == 4 ? 1 : 0;
}

void magicBeginUse(int width, int height, unsigned slot) {
    ImageFBO* entry = targetFor(width, height, slot);
    if (entry != nullptr && entry->framebuffer != 0) bindTarget(entry);
}

void magicEndUse(int width, int height, unsigned slot) {
    MagicEngine* engine = magicEngineAt(slot);
    if (engine == nullptr) return;
    ImageFBO* entry = magicLookup(engine, width, height);
    if (entry != nullptr && entry->framebuffer != 0) glBindFramebuffer(GL_FRAMEBUFFER, 0);
}

void readRGBA(int x, int y, int width, int height, void* pixels) {
    glPixelStorei(GL_PACK_ALIGNMENT, 1);
    glReadPixels(x, y, width, height, GL_RGBA, GL_UNSIGNED_BYTE, pixels);
}

int magicReadPixels(void* pixels, int width, int height, unsigned slot) {
    if (slot >= kMagicSlots) {
        readRGBA(0, 0, width, height, pixels);
        return 0;
    }
    MagicEngine* engine = engines[slot];
    if (engine == nullptr) return 0;
    // A target nobody made yet is read like one without a framebuffer: from
    // the bound framebuffer.
    ImageFBO* entry = magicLookup(engine, width, height);
    if (entry != nullptr && entry->readDisabled) return 0;
    bool ownFramebuffer = entry != nullptr && entry->framebuffer != 0;
    if (ownFramebuffer) bindTarget(entry);
    readRGBA(0, 0, width, height, pixels);
    if (ownFramebuffer) glBindFramebuffer(GL_FRAMEBUFFER, 0);
    return 0;
}

void magicCopyTextureToPixels(void* pixels, int width, int height, unsigned slot, GLuint texture) {
    if (slot < kMagicSlots) {
        magicEngineCheck(5, slot);
        ImageFBO* entry = targetFor(width, height, slot);
        if (entry != nullptr && entry->framebuffer != 0) bindTarget(entry);
        if (MagicEngine* engine = engines[slot]) drawCopy(engine, texture);
        magicReadPixels(pixels, width, height, slot);
        if (entry != nullptr && entry->framebuffer != 0) glBindFramebuffer(GL_FRAMEBUFFER, 0);
        return;
    }
    GLuint framebuffer = 0;
    glGenFramebuffers(1, &framebuffer);
    glBindFramebuffer(GL_FRAMEBUFFER, framebuffer);
    glFramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D, texture, 0);
    readRGBA(0, 0, width, height, pixels);
    glBindFramebuffer(GL_FRAMEBUFFER, 0);
    glDeleteFramebuffers(1, &framebuffer);
}
