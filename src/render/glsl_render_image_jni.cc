// GLSLRender natives that return a new QImage filled from GL.
#include <GLES2/gl2.h>
#include <jni.h>

#include "jni/bridge/bridge.h"
#include "jni/bridge/native_guard.h"
#include "render/magic_engine.h"

namespace {

// A new QImage bound to a new width x height RGBA image (null data for empty sizes).
jobject newRGBAQImage(JNIEnv* env, int width, int height, _Image** image) {
    ImageInfo info;
    GetImageInfo(env, &info);
    jobject qimage = CreateQImage(env, &info);
    if (qimage == nullptr) return nullptr;
    *image = create_image(width, height, 4, width * 4);
    SetNativeImage(env, &info, qimage, *image);
    return qimage;
}

bool hasPixels(const _Image* image) { return image != nullptr && image->data != nullptr; }

}  // namespace

extern "C" {

JNIEXPORT jobject JNICALL Java_com_lumeric_filter_GLSLRender_nativeCopyTexture(JNIEnv* env, jclass, jint width,
                                                                               jint height) {
    return ifc::guardNative(env, [&]() -> jobject {
        _Image* image = nullptr;
        jobject qimage = newRGBAQImage(env, width, height, &image);
        if (hasPixels(image)) readRGBA(0, 0, width, height, image->data);
        return qimage;
    });
}

JNIEXPORT jobject JNICALL Java_com_lumeric_filter_GLSLRender_nativeCopyTextureWithShare(
    JNIEnv* env, jclass, jint width, jint height, jint texture, jint slot) {
    return ifc::guardNative(env, [&]() -> jobject {
        _Image* image = nullptr;
        jobject qimage = newRGBAQImage(env, width, height, &image);
        if (hasPixels(image)) {
            magicCopyTextureToPixels(image->data, width, height, static_cast<unsigned>(slot),
                                     static_cast<GLuint>(texture));
        }
        return qimage;
    });
}

}  // extern "C"
