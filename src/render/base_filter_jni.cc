// Natives of com/lumeric/filter/BaseFilter: a thin shell over one
// BaseFilteRender held by Java as a handle (0 = none).
#include <GLES2/gl2.h>
#include <GLES2/gl2ext.h>
#include <jni.h>

#include <algorithm>
#include <cstdlib>
#include <memory>

#include "jni/bridge/bridge.h"
#include "jni/bridge/native_guard.h"
#include "jni/bridge/packed_string.h"
#include "render/base_filte_render.h"
#include "render/jni_guards.h"
#include "render/renderer_handles.h"

namespace {

constexpr jint kVersion = 8223;
constexpr size_t kMatrix4Floats = 16;
constexpr size_t kMatrix3Floats = 9;
constexpr size_t kQuadFloats = 8;  // four (x, y) or (s, t) pairs

// The live renderer behind a non-zero handle, or null with a
// RuntimeException for a handle already cleared or never given out.
BaseFilteRender* renderer(JNIEnv* env, jlong handle) {
    auto* render = fromJavaHandle<BaseFilteRender>(handle);
    if (isLiveRenderer(render)) return render;
    jniThrowRuntimeException(env, "BaseFilter: not a live renderer handle");
    return nullptr;
}

// Stores a shader source given as plain text or in a packed form.
template <typename Setter>
void storeSource(JNIEnv* env, jstring text, Setter store) {
    const char* chars = env->GetStringUTFChars(text, nullptr);
    if (chars == nullptr) return;
    char* decoded = decodePackedString(chars);
    store(decoded != nullptr ? decoded : chars);
    free(decoded);
    env->ReleaseStringUTFChars(text, chars);
}

// Copies a whole Java float array into a new[] array for the renderer. The
// draw reads a full quad from it, so shorter arrays are refused.
float* copyQuadArray(JNIEnv* env, jfloatArray array, const char* what) {
    FloatElements elements(env, array, kQuadFloats, what);
    if (elements.data() == nullptr) return nullptr;
    float* copy = new float[elements.length()];
    std::copy(elements.data(), elements.data() + elements.length(), copy);
    return copy;
}

// The renderer owns the copy from then on.
template <typename Store>
jint withQuadArray(JNIEnv* env, jlong handle, jfloatArray array, const char* what, Store store) {
    if (handle == 0) return 0;
    BaseFilteRender* render = renderer(env, handle);
    if (render == nullptr) return 0;
    float* copy = copyQuadArray(env, array, what);
    if (copy == nullptr) return 0;
    store(render, copy);
    return 1;
}

template <typename Apply>
jint withMatrix(JNIEnv* env, jlong handle, jfloatArray m, size_t floats, Apply apply) {
    if (handle == 0) return 0;
    BaseFilteRender* render = renderer(env, handle);
    if (render == nullptr) return 0;
    FloatElements elements(env, m, floats, "matrix");
    if (elements.data() == nullptr) return 0;
    apply(render, elements.data());
    return 1;
}

}  // namespace

extern "C" {

JNIEXPORT jlong JNICALL Java_com_lumeric_filter_BaseFilter_nativeInitialWithString(
    JNIEnv* env, jobject, jlong oldHandle, jboolean external, jstring vertex, jstring fragment) {
    return ifc::guardNative(env, [&]() -> jlong {
        // Checked before the old renderer goes, so that Java's handle stays valid.
        if (fragment == nullptr) {
            throwNullArgument(env, "fragment source is null");
            return 0;
        }
        // Arrays handed to the old renderer are not released here: only
        // nativeClear releases them.
        if (oldHandle != 0) {
            BaseFilteRender* old = renderer(env, oldHandle);
            if (old == nullptr) return 0;
            forgetRenderer(old);
            delete old;
        }
        auto render = std::make_unique<BaseFilteRender>(external ? GL_TEXTURE_EXTERNAL_OES : GL_TEXTURE_2D);
        storeSource(env, fragment, [&](const char* s) { render->setFragmentShaderSource(s); });
        if (vertex != nullptr) {
            storeSource(env, vertex, [&](const char* s) { render->setVertexShaderSource(s); });
        }
        rememberRenderer(render.get());
        return toJavaHandle(render.release());
    });
}

JNIEXPORT jint JNICALL Java_com_lumeric_filter_BaseFilter_nativeApplyFilter(JNIEnv* env, jobject,
                                                                             jlong handle) {
    return ifc::guardNative(env, [&]() -> jint {
        if (handle == 0) return -1;
        BaseFilteRender* render = renderer(env, handle);
        if (render == nullptr) return -1;
        render->InitializeGLProgram();
        return static_cast<jint>(render->program);
    });
}

JNIEXPORT jint JNICALL Java_com_lumeric_filter_BaseFilter_nativeClear(JNIEnv* env, jobject, jlong handle) {
    return ifc::guardNative(env, [&]() -> jint {
        if (handle == 0) return 1;
        BaseFilteRender* render = renderer(env, handle);
        if (render == nullptr) return 1;
        forgetRenderer(render);
        render->clear();
        delete render;
        return 1;
    });
}

JNIEXPORT jint JNICALL Java_com_lumeric_filter_BaseFilter_nativeUpdateMatrix(JNIEnv* env, jobject,
                                                                              jlong handle, jfloatArray m) {
    return ifc::guardNative(env, [&]() -> jint {
        return withMatrix(env, handle, m, kMatrix4Floats,
                          [](BaseFilteRender* r, const float* f) { r->updateTextureMatrix(f); });
    });
}

JNIEXPORT jint JNICALL Java_com_lumeric_filter_BaseFilter_nativeSetGlobalTextureMatrix(
    JNIEnv* env, jobject, jlong handle, jfloatArray m) {
    return ifc::guardNative(env, [&]() -> jint {
        return withMatrix(env, handle, m, kMatrix3Floats,
                          [](BaseFilteRender* r, const float* f) { r->setGlobalTextureMatrix(f); });
    });
}

JNIEXPORT jint JNICALL Java_com_lumeric_filter_BaseFilter_nativeUpdateModelMatrix(
    JNIEnv* env, jobject, jlong handle, jfloatArray m) {
    return ifc::guardNative(env, [&]() -> jint {
        return withMatrix(env, handle, m, kMatrix4Floats,
                          [](BaseFilteRender* r, const float* f) { r->updateModelMatrix(f); });
    });
}

JNIEXPORT jint JNICALL Java_com_lumeric_filter_BaseFilter_nativeSetRotationAndFlip(
    JNIEnv* env, jobject, jlong handle, jint degrees, jint flipX, jint flipY) {
    return ifc::guardNative(env, [&]() -> jint {
        BaseFilteRender* render = handle == 0 ? nullptr : renderer(env, handle);
        if (render == nullptr) return 0;
        render->Rotation(degrees);
        render->FlipX(flipX);
        render->FlipY(flipY);
        return 1;
    });
}

JNIEXPORT jint JNICALL Java_com_lumeric_filter_BaseFilter_nativeRenderTexture(
    JNIEnv* env, jobject, jlong handle, jint texture, jint width, jint height) {
    return ifc::guardNative(env, [&]() -> jint {
        GLRenderBase* render = handle == 0 ? nullptr : renderer(env, handle);
        if (render == nullptr) return 0;
        render->RenderProcess(static_cast<GLuint>(texture), 0, width, height);
        return 1;
    });
}

JNIEXPORT jint JNICALL Java_com_lumeric_filter_BaseFilter_nativeSetPositions(JNIEnv* env, jobject,
                                                                              jlong handle, jfloatArray p) {
    return ifc::guardNative(env, [&]() -> jint {
        return withQuadArray(env, handle, p, "positions", [](BaseFilteRender* r, float* a) { r->setPositions(a); });
    });
}

JNIEXPORT jint JNICALL Java_com_lumeric_filter_BaseFilter_nativeSetTexCords(JNIEnv* env, jobject,
                                                                             jlong handle, jfloatArray t) {
    return ifc::guardNative(env, [&]() -> jint {
        return withQuadArray(env, handle, t, "texture coordinates",
                             [](BaseFilteRender* r, float* a) { r->setTexCords(a); });
    });
}

JNIEXPORT jint JNICALL Java_com_lumeric_filter_BaseFilter_nativeSetRenderMode(JNIEnv* env, jobject,
                                                                               jlong handle, jint mode) {
    return ifc::guardNative(env, [&]() -> jint {
        BaseFilteRender* render = handle == 0 ? nullptr : renderer(env, handle);
        if (render == nullptr) return 0;
        render->setRenderMode(mode);
        return 1;
    });
}

JNIEXPORT jint JNICALL Java_com_lumeric_filter_BaseFilter_nativeGetVersion(JNIEnv* env, jobject) {
    return ifc::guardNative(env, [&]() -> jint {
        return kVersion;
    });
}

}  // extern "C"
