// Natives of com/lumeric/filter/FilterWraper: marshal and forward only.
#include <jni.h>

#include <exception>
#include <utility>

#include "engine/filter_wraper.h"
#include "jni/bridge/bridge.h"

namespace {

class StringChars {
public:
    StringChars(JNIEnv* env, jstring string)
        : env(env), string(string), chars(env->GetStringUTFChars(string, nullptr)) {}
    ~StringChars() {
        if (chars != nullptr) env->ReleaseStringUTFChars(string, chars);
    }
    StringChars(const StringChars&) = delete;
    StringChars& operator=(const StringChars&) = delete;

    const char* get() const { return chars; }

private:
    JNIEnv* env;
    jstring string;
    const char* chars;
};

// Runs a native's work; a C++ exception (an allocation failure, a failure
// inside the filter tree) becomes a java/lang/RuntimeException instead of
// ending the JVM.
template <typename Body>
auto guarded(JNIEnv* env, decltype(std::declval<Body>()()) onFailure, Body&& body) -> decltype(body()) {
    try {
        return body();
    } catch (const std::exception& error) {
        jniThrowRuntimeException(env, error.what());
    } catch (...) {
        jniThrowRuntimeException(env, "filter engine failure");
    }
    return onFailure;
}

}  // namespace

extern "C" {

JNIEXPORT jlong JNICALL Java_com_lumeric_filter_FilterWraper_nativeInitialWithString(JNIEnv* env, jobject,
                                                                                      jstring name) {
    if (name == nullptr) {
        jniThrowRuntimeException(env, "package name is null");
        return 0;
    }
    StringChars chars(env, name);
    if (chars.get() == nullptr) return 0;
    return guarded(env, jlong{0}, [&] { return toJavaHandle(new HFFilterWraper(chars.get())); });
}

JNIEXPORT void JNICALL Java_com_lumeric_filter_FilterWraper_nativeDispose(JNIEnv*, jobject, jlong handle) {
    delete fromJavaHandle<HFFilterWraper>(handle);
}

JNIEXPORT void JNICALL Java_com_lumeric_filter_FilterWraper_nativeRenderContext(JNIEnv* env, jobject, jlong handle,
                                                                                jint texture, jint width,
                                                                                jint height) {
    HFFilterWraper* wraper = fromJavaHandle<HFFilterWraper>(handle);
    if (wraper == nullptr) return;
    guarded(env, 0, [&] {
        wraper->renderTexture(texture, width, height);
        return 0;
    });
}

JNIEXPORT jint JNICALL Java_com_lumeric_filter_FilterWraper_nativeGetOutputText(JNIEnv* env, jobject, jlong handle) {
    HFFilterWraper* wraper = fromJavaHandle<HFFilterWraper>(handle);
    if (wraper == nullptr) return 0;
    return guarded(env, jint{0}, [&] { return static_cast<jint>(wraper->outputTexture()); });
}

}  // extern "C"
