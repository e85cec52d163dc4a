// QImage natives that flip and turn the native image in place.
#include "jni/bridge/bridge.h"
#include "jni/bridge/native_guard.h"
#include "jni/qimage/qimage_guards.h"
#include "jni/qimage/qimage_ops.h"

extern "C" {

// Dimensions do not change, so the Java fields are not refreshed.
JNIEXPORT jboolean JNICALL Java_com_lumeric_filter_QImage_nativeFlip(JNIEnv* env, jobject self, jint horizontal,
                                                                     jint vertical) {
    return ifc::guardNative(env, [&]() -> jboolean {
        ifc::QImageSelf qimage(env, self);
        if (qimage.image == nullptr) return JNI_FALSE;
        flipImage(qimage.image, horizontal, vertical);
        return JNI_TRUE;
    });
}

JNIEXPORT jboolean JNICALL Java_com_lumeric_filter_QImage_nativeRotate(JNIEnv* env, jobject self, jint degrees) {
    return ifc::guardNative(env, [&]() -> jboolean {
        // Below -360 the remainder stays negative (-450 gives -90) and is refused.
        int turn = ifc::rotationRemainder(degrees);
        if (turn == 0) return JNI_TRUE;
        if (turn != 90 && turn != 180 && turn != 270) return JNI_FALSE;
        ifc::QImageSelf qimage(env, self);
        if (qimage.image == nullptr) return JNI_FALSE;
        rotateImage(qimage.image, turn);
        qimage.attach(qimage.image);
        return JNI_TRUE;
    });
}

}  // extern "C"
