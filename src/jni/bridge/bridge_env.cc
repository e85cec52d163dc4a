// Load hook and the per-thread JNIEnv store used by code that runs outside a
// Java call (the filter engine's resource loading on GL or worker threads).
#include <android/log.h>
#include <pthread.h>

#include <cstdlib>

#include "jni/bridge/bridge.h"
#include "jni/bridge/bridge_internal.h"

namespace {

constexpr jint kJniVersion = JNI_VERSION_1_6;

JavaVM* g_vm = nullptr;
pthread_key_t g_env_key;
pthread_once_t g_key_once = PTHREAD_ONCE_INIT;
// Loader of the class that loaded this library: a thread attached from
// native code finds only system classes with FindClass.
jobject g_loader = nullptr;

// Runs at the exit of every thread that has an env stored under the key.
void detachThread(void*) {
    if (g_vm == nullptr) return;
    __android_log_print(ANDROID_LOG_VERBOSE, "JNIB", "detaching thread");
    g_vm->DetachCurrentThread();
}

void createKey() {
    if (pthread_key_create(&g_env_key, detachThread) != 0) abort();
}

void storeEnv(JNIEnv* env) {
    if (pthread_setspecific(g_env_key, env) != 0) abort();
}

// In the load hook FindClass resolves through the loading class's loader.
// Any of the library's Java classes will do as the anchor: the app may load
// the library from its own class rather than through NativeLibrary.
jclass findAnchorClass(JNIEnv* env) {
    static const char* const kAnchors[] = {"com/lumeric/util/NativeLibrary", "com/lumeric/filter/QImage",
                                           "com/lumeric/util/FilterEngineJNILib"};
    for (const char* name : kAnchors) {
        jclass found = env->FindClass(name);
        if (found != nullptr) return found;
        env->ExceptionClear();
    }
    return nullptr;
}

void rememberLoader(JNIEnv* env) {
    LocalRef<jclass> anchor(env, findAnchorClass(env));
    if (anchor.get() == nullptr) return;
    LocalRef<jclass> classClass(env, env->GetObjectClass(anchor.get()));
    jmethodID getLoader =
        env->GetMethodID(classClass.get(), "getClassLoader", "()Ljava/lang/ClassLoader;");
    LocalRef<jobject> loader(env, env->CallObjectMethod(anchor.get(), getLoader));
    if (env->ExceptionCheck()) {
        env->ExceptionClear();
        return;
    }
    if (loader.get() != nullptr) g_loader = env->NewGlobalRef(loader.get());
}

}  // namespace

jclass jniFindAppClass(JNIEnv* env, const char* name) {
    jclass found = env->FindClass(name);
    if (found != nullptr) return found;
    env->ExceptionClear();
    if (g_loader == nullptr) return nullptr;

    std::string dotted(name);
    for (char& c : dotted) {
        if (c == '/') c = '.';
    }
    LocalRef<jclass> loaderClass(env, env->GetObjectClass(g_loader));
    jmethodID loadClass =
        env->GetMethodID(loaderClass.get(), "loadClass", "(Ljava/lang/String;)Ljava/lang/Class;");
    LocalRef<jstring> javaName(env, env->NewStringUTF(dotted.c_str()));
    if (loadClass == nullptr || javaName.get() == nullptr) {
        env->ExceptionClear();
        return nullptr;
    }
    jobject loaded = env->CallObjectMethod(g_loader, loadClass, javaName.get());
    if (env->ExceptionCheck()) {
        env->ExceptionClear();
        return nullptr;
    }
    return static_cast<jclass>(loaded);
}

extern "C" {

jint JNI_OnLoad(JavaVM* vm, void*) {
    JNIEnv* env = nullptr;
    if (vm->GetEnv(reinterpret_cast<void**>(&env), kJniVersion) != JNI_OK) return -1;

    g_vm = vm;
    vm->AttachCurrentThread(reinterpret_cast<void**>(&env), nullptr);
    pthread_once(&g_key_once, createKey);
    storeEnv(env);
    rememberLoader(env);
    log_printD("JNI_OnLoad");
    return kJniVersion;
}

JNIEnv* jniGetEnv() {
    pthread_once(&g_key_once, createKey);
    if (auto* env = static_cast<JNIEnv*>(pthread_getspecific(g_env_key))) return env;
    if (g_vm == nullptr) return nullptr;

    JNIEnv* env = nullptr;
    if (g_vm->AttachCurrentThread(reinterpret_cast<void**>(&env), nullptr) != JNI_OK) return nullptr;
    storeEnv(env);
    return env;
}

}  // extern "C"
