// GLSLRender natives for the framebuffer pools and the read-backs into Java
// arrays and bitmaps.
#include <GLES2/gl2.h>
#include <jni.h>

#include <cstdlib>
#include <memory>

#include "image/image_internal.h"
#include "jni/bridge/bridge.h"
#include "jni/bridge/native_guard.h"
#include "render/gl_utils.h"
#include "render/jni_guards.h"
#include "render/magic_engine.h"
#include "render/pixel_uploads.h"

namespace {

// A size whose bytes a 32-bit size_t cannot hold asks for more than any Java
// array has, so the array check refuses it instead of wrapping.
size_t rgbaBytes(int width, int height) {
    return width > 0 && height > 0 ? ifc::byteCount(width, height, 4) : 0;
}

// Slots travel from Java as int; negative ones mean "no pool" as 4 and up do.
unsigned poolSlot(jint slot) { return static_cast<unsigned>(slot); }

// Reads the bitmap's size at (x, y) into it: 1, or 0 when the bitmap is not a
// lockable RGBA_8888 one.
jint readIntoBitmap(JNIEnv* env, jobject bitmap, int x, int y) {
    LockedBitmap locked(env, bitmap, true);
    if (!locked.locked()) return 0;
    readRGBA(x, y, static_cast<int>(locked.info().width), static_cast<int>(locked.info().height),
             locked.pixels());
    return 1;
}

}  // namespace

extern "C" {

JNIEXPORT jint JNICALL Java_com_lumeric_filter_GLSLRender_nativeInitMagicEngine(JNIEnv* env, jclass, jint count,
                                                                                jint slot) {
    return ifc::guardNative(env, [&]() -> jint {
        return magicEngineInit(count, poolSlot(slot));
    });
}

JNIEXPORT jint JNICALL Java_com_lumeric_filter_GLSLRender_nativeCheckMagicEngine(JNIEnv* env, jclass, jint count,
                                                                                 jint slot) {
    return ifc::guardNative(env, [&]() -> jint {
        return magicEngineCheck(count, poolSlot(slot));
    });
}

JNIEXPORT void JNICALL Java_com_lumeric_filter_GLSLRender_nativeBeginUseEglImage(JNIEnv* env, jclass, jint width,
                                                                                 jint height, jint slot) {
    ifc::guardNative(env, [&] {
        magicBeginUse(width, height, poolSlot(slot));
    });
}

JNIEXPORT void JNICALL Java_com_lumeric_filter_GLSLRender_nativeEndUseEglImage(JNIEnv* env, jclass, jint width,
                                                                               jint height, jint slot) {
    ifc::guardNative(env, [&] {
        magicEndUse(width, height, poolSlot(slot));
    });
}

JNIEXPORT jint JNICALL Java_com_lumeric_filter_GLSLRender_nativeDeinitMagicEngine(JNIEnv* env, jclass, jint n) {
    return ifc::guardNative(env, [&]() -> jint {
        return magicEngineDeinit(n);
    });
}

JNIEXPORT void JNICALL Java_com_lumeric_filter_GLSLRender_nativePushDataFromTexture(
    JNIEnv* env, jclass, jbyteArray data, jint width, jint height, jint slot) {
    ifc::guardNative(env, [&] {
        ByteElements bytes(env, data, rgbaBytes(width, height), "data");
        if (bytes.data() == nullptr) return;
        if (slot < 0) {
            readRGBA(0, 0, width, height, bytes.data());
            checkGlError("glReadPixels");
        } else {
            magicReadPixels(bytes.data(), width, height, poolSlot(slot));
        }
    });
}

JNIEXPORT jint JNICALL Java_com_lumeric_filter_GLSLRender_nativePushBitmapFromTexture(JNIEnv* env, jclass,
                                                                                     jobject bitmap, jint slot) {
    return ifc::guardNative(env, [&]() -> jint {
        LockedBitmap locked(env, bitmap, true);
        if (!locked.locked()) return locked.result();
        int width = static_cast<int>(locked.info().width);
        int height = static_cast<int>(locked.info().height);
        if (slot < 0) {
            readRGBA(0, 0, width, height, locked.pixels());
            checkGlError("glReadPixels");
        } else {
            magicReadPixels(locked.pixels(), width, height, poolSlot(slot));
        }
        return locked.unlock();
    });
}

JNIEXPORT jint JNICALL Java_com_lumeric_filter_GLSLRender_nativeSnap(JNIEnv* env, jclass, jobject bitmap) {
    return ifc::guardNative(env, [&]() -> jint {
        LockedBitmap locked(env, bitmap, true);
        if (!locked.locked()) return 0;
        int width = static_cast<int>(locked.info().width);
        int height = static_cast<int>(locked.info().height);
        glBindFramebuffer(GL_FRAMEBUFFER, 0);
        std::unique_ptr<uint32_t, decltype(&free)> read(static_cast<uint32_t*>(malloc(rgbaBytes(width, height))),
                                                        &free);
        if (!read) return 0;
        readRGBA(0, 0, width, height, read.get());
        flipRows(read.get(), static_cast<uint32_t*>(locked.pixels()), width, height);
        return 1;
    });
}

JNIEXPORT void JNICALL Java_com_lumeric_filter_GLSLRender_nativeCopyTexturToDataWithShare(
    JNIEnv* env, jclass, jint texture, jbyteArray data, jint width, jint height, jint slot) {
    ifc::guardNative(env, [&] {
        ByteElements bytes(env, data, rgbaBytes(width, height), "data");
        if (bytes.data() == nullptr) return;
        magicCopyTextureToPixels(bytes.data(), width, height, poolSlot(slot), static_cast<GLuint>(texture));
    });
}

JNIEXPORT jint JNICALL Java_com_lumeric_filter_GLSLRender_nativeCopyPixelToBitmapWithShare(
    JNIEnv* env, jclass, jobject bitmap, jint texture, jint slot) {
    return ifc::guardNative(env, [&]() -> jint {
        LockedBitmap locked(env, bitmap, true);
        if (!locked.locked()) return 0;
        magicCopyTextureToPixels(locked.pixels(), static_cast<int>(locked.info().width),
                                 static_cast<int>(locked.info().height), poolSlot(slot),
                                 static_cast<GLuint>(texture));
        return 1;
    });
}

JNIEXPORT void JNICALL Java_com_lumeric_filter_GLSLRender_nativeToRGBData(JNIEnv* env, jclass, jbyteArray data,
                                                                          jint width, jint height) {
    ifc::guardNative(env, [&] {
        ByteElements bytes(env, data, rgbaBytes(width, height), "data");
        if (bytes.data() == nullptr) return;
        readRGBA(0, 0, width, height, bytes.data());
    });
}

JNIEXPORT jint JNICALL Java_com_lumeric_filter_GLSLRender_nativeCopyPixelToBitmap(JNIEnv* env, jclass,
                                                                                  jobject bitmap) {
    return ifc::guardNative(env, [&]() -> jint {
        return readIntoBitmap(env, bitmap, 0, 0);
    });
}

JNIEXPORT jint JNICALL Java_com_lumeric_filter_GLSLRender_nativeRenderPixelToBitmap(JNIEnv* env, jclass,
                                                                                    jobject bitmap, jint x,
                                                                                    jint y) {
    return ifc::guardNative(env, [&]() -> jint {
        return readIntoBitmap(env, bitmap, x, y);
    });
}

}  // extern "C"
