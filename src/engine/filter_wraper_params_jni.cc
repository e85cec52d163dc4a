// Natives of com/lumeric/filter/FilterWraper added for callers that change a
// package's parameters at run time or ask what went wrong. A 0 handle gives
// false or null at once; no C++ exception reaches Java.
#include <jni.h>

#include <algorithm>
#include <exception>
#include <string>

#include "engine/filter_wraper.h"
#include "jni/bridge/bridge.h"

namespace {

// Runs the body, turning any C++ exception into a RuntimeException.
template <typename Body>
jboolean guarded(JNIEnv* env, Body body) {
    try {
        return body() ? JNI_TRUE : JNI_FALSE;
    } catch (const std::exception& error) {
        jniThrowRuntimeException(env, error.what());
    } catch (...) {
        jniThrowRuntimeException(env, "filter parameter could not be set");
    }
    return JNI_FALSE;
}

// The parameter name, or empty with a NullPointerException raised.
bool readName(JNIEnv* env, jstring name, std::string* out) {
    if (name == nullptr) {
        jniThrowNullPointerException(env, "parameter name is null");
        return false;
    }
    const char* chars = env->GetStringUTFChars(name, nullptr);
    if (chars == nullptr) return false;  // OutOfMemoryError is pending
    out->assign(chars);
    env->ReleaseStringUTFChars(name, chars);
    return true;
}

// Copies a float[] of `min`..`max` elements; raises otherwise.
bool readFloats(JNIEnv* env, jfloatArray array, jsize min, jsize max, float* out) {
    if (array == nullptr) {
        jniThrowNullPointerException(env, "parameter values are null");
        return false;
    }
    const jsize length = env->GetArrayLength(array);
    if (length < min || length > max) {
        const std::string message = "parameter needs " +
                                    (min == max ? std::to_string(min) : std::to_string(min) + " to " + std::to_string(max)) +
                                    " values, got " + std::to_string(length);
        jniThrowException(env, "java/lang/IllegalArgumentException", message.c_str());
        return false;
    }
    env->GetFloatArrayRegion(array, 0, length, out);
    return !env->ExceptionCheck();
}

// UTF-8 to a Java string; bytes that are not UTF-8 (a driver's log may hold
// any) become U+FFFD instead of upsetting NewStringUTF.
jstring javaString(JNIEnv* env, const std::string& text) {
    std::u16string units;
    for (size_t i = 0; i < text.size();) {
        const unsigned char lead = static_cast<unsigned char>(text[i]);
        const int extra = lead < 0x80 ? 0 : (lead >> 5) == 6 ? 1 : (lead >> 4) == 14 ? 2 : (lead >> 3) == 30 ? 3 : -1;
        uint32_t code = extra == 0 ? lead : extra == 1 ? (lead & 0x1f) : extra == 2 ? (lead & 0x0f) : (lead & 0x07);
        bool ok = extra >= 0 && i + static_cast<size_t>(extra) < text.size();
        for (int k = 1; ok && k <= extra; ++k) {
            const unsigned char next = static_cast<unsigned char>(text[i + k]);
            ok = (next >> 6) == 2;
            code = (code << 6) | (next & 0x3f);
        }
        if (!ok || code > 0x10ffff || (code >= 0xd800 && code < 0xe000)) {
            units.push_back(u'\ufffd');
            ++i;
            continue;
        }
        if (code >= 0x10000) {
            code -= 0x10000;
            units.push_back(static_cast<char16_t>(0xd800 + (code >> 10)));
            units.push_back(static_cast<char16_t>(0xdc00 + (code & 0x3ff)));
        } else {
            units.push_back(static_cast<char16_t>(code));
        }
        i += static_cast<size_t>(extra) + 1;
    }
    return env->NewString(reinterpret_cast<const jchar*>(units.data()), static_cast<jsize>(units.size()));
}

template <typename Param>
shared_ptr<HFFilterParam> named(Param* param, const std::string& name) {
    param->name = name;
    return shared_ptr<HFFilterParam>(param);
}

// A vector, matrix or curve param of `min` to `Size` values.
template <typename Param, jsize Size>
jboolean setValues(JNIEnv* env, jlong handle, jstring name, jfloatArray values, jsize min) {
    HFFilterWraper* wraper = fromJavaHandle<HFFilterWraper>(handle);
    std::string key;
    if (wraper == nullptr || !readName(env, name, &key)) return JNI_FALSE;
    float data[Size] = {};
    if (!readFloats(env, values, min, Size, data)) return JNI_FALSE;
    return guarded(env, [&] {
        auto* param = new Param();
        shared_ptr<HFFilterParam> held = named(param, key);
        std::copy(data, data + Size, param->values);
        return wraper->setParameter(held);
    });
}

}  // namespace

extern "C" {

JNIEXPORT jboolean JNICALL Java_com_lumeric_filter_FilterWraper_nativeSetFloat(JNIEnv* env, jobject, jlong handle,
                                                                               jstring name, jfloat value) {
    HFFilterWraper* wraper = fromJavaHandle<HFFilterWraper>(handle);
    std::string key;
    if (wraper == nullptr || !readName(env, name, &key)) return JNI_FALSE;
    return guarded(env, [&] {
        auto* param = new HFFloatParam();
        shared_ptr<HFFilterParam> held = named(param, key);
        param->value = value;
        return wraper->setParameter(held);
    });
}

JNIEXPORT jboolean JNICALL Java_com_lumeric_filter_FilterWraper_nativeSetVec4(JNIEnv* env, jobject, jlong handle,
                                                                              jstring name, jfloatArray values) {
    return setValues<HFVec4Param, 4>(env, handle, name, values, 4);
}

JNIEXPORT jboolean JNICALL Java_com_lumeric_filter_FilterWraper_nativeSetMatrix4(JNIEnv* env, jobject, jlong handle,
                                                                                 jstring name, jfloatArray values) {
    return setValues<HFMatrix4Param, 16>(env, handle, name, values, 16);
}

// 1 to 256 values; the entries not given are 0.
JNIEXPORT jboolean JNICALL Java_com_lumeric_filter_FilterWraper_nativeSetCurve(JNIEnv* env, jobject, jlong handle,
                                                                               jstring name, jfloatArray values) {
    return setValues<HFCurveParam, HFCurveParam::kSize>(env, handle, name, values, 1);
}

JNIEXPORT jstring JNICALL Java_com_lumeric_filter_FilterWraper_nativeGetLastError(JNIEnv* env, jobject,
                                                                                  jlong handle) {
    HFFilterWraper* wraper = fromJavaHandle<HFFilterWraper>(handle);
    if (wraper == nullptr || wraper->lastProblem().empty()) return nullptr;
    try {
        return javaString(env, wraper->lastProblem());
    } catch (...) {
        jniThrowRuntimeException(env, "cannot read the filter package's last problem");
    }
    return nullptr;
}

}  // extern "C"
