// Natives of com/lumeric/filter/FilterWraper: marshal and forward only.
#include <jni.h>

#include <exception>

#include "engine/filter_wraper.h"
#include "jni/bridge.h"

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

}  // namespace

extern "C" {

JNIEXPORT jlong JNICALL Java_com_lumeric_filter_FilterWraper_nativeInitialWithString(JNIEnv* env, jobject,
                                                                                      jstring name) {
    if (name == nullptr) {
        jniThrowNullPointerException(env, "package name is null");
        return 0;
    }
    StringChars chars(env, name);
    if (chars.get() == nullptr) return 0;
    try {
        return toJavaHandle(new HFFilterWraper(chars.get()));
    } catch (const std::exception& error) {
        jniThrowRuntimeException(env, error.what());
    } catch (...) {
        jniThrowRuntimeException(env, "cannot load filter package");
    }
    return 0;
}

JNIEXPORT void JNICALL Java_com_lumeric_filter_FilterWraper_nativeDispose(JNIEnv*, jobject, jlong handle) {
    delete fromJavaHandle<HFFilterWraper>(handle);
}

JNIEXPORT void JNICALL Java_com_lumeric_filter_FilterWraper_nativeRenderContext(JNIEnv*, jobject, jlong handle,
                                                                                jint texture, jint width,
                                                                                jint height) {
    if (HFFilterWraper* wraper = fromJavaHandle<HFFilterWraper>(handle)) wraper->renderTexture(texture, width, height);
}

JNIEXPORT jint JNICALL Java_com_lumeric_filter_FilterWraper_nativeGetOutputText(JNIEnv*, jobject, jlong handle) {
    HFFilterWraper* wraper = fromJavaHandle<HFFilterWraper>(handle);
    return wraper != nullptr ? wraper->outputTexture() : 0;
}

}  // extern "C"
