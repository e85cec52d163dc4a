// QImage natives that copy pixels into Java int arrays.
#include "jni/bridge/bridge.h"
#include "jni/bridge/native_guard.h"
#include "jni/qimage/qimage_guards.h"
#include "jni/qimage/qimage_ops.h"

namespace {

void copyPixels(JNIEnv* env, jobject self, jintArray pixels, jboolean mirror, bool swapRB) {
    if (pixels == nullptr) {
        jniThrowNullPointerException(env, "pixels is null");
        return;
    }
    ifc::QImageSelf qimage(env, self);
    if (qimage.image == nullptr) {
        Check_Image(env, qimage.image);
        return;
    }
    int64_t needed = ifc::colorIntBytes(qimage.image, mirror);
    if (static_cast<int64_t>(env->GetArrayLength(pixels)) * 4 < needed) {
        jniThrowRuntimeException(env, "pixel array is shorter than the image");
        return;
    }
    ifc::IntElements elements(env, pixels);
    if (!ifc::writeColorInts(qimage.image, reinterpret_cast<unsigned char*>(elements.data()), mirror, swapRB)) {
        jniThrowRuntimeException(env, "image too large to copy on this device");
    }
}

}  // namespace

extern "C" {

JNIEXPORT void JNICALL Java_com_lumeric_filter_QImage_CopyPixels(JNIEnv* env, jobject self, jintArray pixels,
                                                                 jboolean mirror) {
    ifc::guardNative(env, [&] {
        copyPixels(env, self, pixels, mirror, true);
    });
}

JNIEXPORT void JNICALL Java_com_lumeric_filter_QImage_CopyPixelsRGB(JNIEnv* env, jobject self, jintArray pixels,
                                                                    jboolean mirror) {
    ifc::guardNative(env, [&] {
        copyPixels(env, self, pixels, mirror, false);
    });
}

}  // extern "C"
