// QImage natives that create, replace, copy and free the native image.
#include <cstdint>

#include "jni/bridge/bridge.h"
#include "jni/bridge/native_guard.h"
#include "jni/qimage/qimage_guards.h"
#include "jni/qimage/qimage_ops.h"

extern "C" {

JNIEXPORT void JNICALL Java_com_lumeric_filter_QImage_CreateImage(JNIEnv* env, jobject self, jint width,
                                                                  jint height, jint pixelBytes) {
    ifc::guardNative(env, [&] {
        ifc::QImageSelf qimage(env, self);
        free_image(&qimage.image);
        qimage.attach(nullptr);
        if (static_cast<int64_t>(width) * height == 0) return;  // Java width/height keep their old values
        // Rows are not padded: stride width x pixelBytes.
        int64_t stride = static_cast<int64_t>(width) * pixelBytes;
        _Image* image = stride < INT32_MIN || stride > INT32_MAX
                            ? nullptr
                            : create_image(width, height, static_cast<unsigned int>(pixelBytes),
                                           static_cast<int>(stride));
        if (image == nullptr) {
            jniThrowRuntimeException(env, "Out of memory of QImage.CreateImage ");  // trailing blank intended
            return;
        }
        qimage.attach(image);
    });
}

JNIEXPORT void JNICALL Java_com_lumeric_filter_QImage_Dispose(JNIEnv* env, jobject self) {
    ifc::guardNative(env, [&] {
        ifc::QImageSelf qimage(env, self);
        free_image(&qimage.image);
        qimage.attach(nullptr);
    });
}

JNIEXPORT void JNICALL Java_com_lumeric_filter_QImage_createSubImage(JNIEnv* env, jobject self, jint x, jint y,
                                                                     jint w, jint h) {
    ifc::guardNative(env, [&] {
        ifc::QImageSelf qimage(env, self);
        if (qimage.image == nullptr) {
            Check_Image(env, qimage.image);
            return;
        }
        _Image* old = qimage.image;
        _Image* crop = ifc::cropSubImage(old, x, y, w, h);
        if (crop == nullptr) {
            log_printE("sub image rect error");
            return;
        }
        qimage.attach(crop);
        log_printE("2");  // a leftover trace, kept as the log shows it
        free_image(&old);
    });
}

JNIEXPORT jobject JNICALL Java_com_lumeric_filter_QImage_CreateImageFromQImage(JNIEnv* env, jobject self) {
    return ifc::guardNative(env, [&]() -> jobject {
        ifc::QImageSelf qimage(env, self);
        if (qimage.image == nullptr) {
            Check_Image(env, qimage.image);
            return nullptr;
        }
        jobject copy = CreateQImage(env, &qimage.info);
        if (copy == nullptr) return nullptr;
        _Image* pixels = ifc::duplicateImage(qimage.image);
        if (pixels == nullptr) {
            jniThrowRuntimeException(env, "Out of memory of QImage.CreateImageFromQImage");
            return nullptr;
        }
        SetNativeImage(env, &qimage.info, copy, pixels);
        return copy;
    });
}

JNIEXPORT jint JNICALL Java_com_lumeric_filter_QImage_getByteSize(JNIEnv* env, jobject self) {
    return ifc::guardNative(env, [&]() -> jint {
        ifc::QImageSelf qimage(env, self);
        return qimage.image == nullptr ? 0 : static_cast<jint>(qimage.image->size);
    });
}

JNIEXPORT void JNICALL Java_com_lumeric_filter_QImage_nativeUpdateROI(JNIEnv* env, jobject self) {
    ifc::guardNative(env, [&] {
        ifc::QImageSelf qimage(env, self);
        qimage.attach(qimage.image);
    });
}

JNIEXPORT void JNICALL Java_com_lumeric_filter_QImage_WrapExif(JNIEnv* env, jobject self, jobject other) {
    ifc::guardNative(env, [&] {
        if (other == nullptr) {
            jniThrowNullPointerException(env, "other QImage is null");
            return;
        }
        ifc::QImageSelf qimage(env, self);
        _Image* from = GetNativeImage(env, &qimage.info, other);
        if (qimage.image == nullptr || from == nullptr) {
            Check_Image(env, nullptr);  // both lists must exist
            return;
        }
        ifc::moveMarkers(qimage.image, from);
    });
}

}  // extern "C"
