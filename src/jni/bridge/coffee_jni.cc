// The signing key, kept only in packed form and assembled at run time.
#include <jni.h>

#include <cstdlib>

#include "jni/bridge/native_guard.h"
#include "jni/bridge/packed_string.h"

namespace {
// 24 bytes, plain packed form.
constexpr const char* kPackedSignKey =
    "mee24x1899457868x846743085x1949923154x879774559x1983406938x862473761x";
}

extern "C" JNIEXPORT jstring JNICALL Java_com_lumeric_util_Coffee_getDESSignKey(JNIEnv* env,
                                                                              jclass) {
    return ifc::guardNative(env, [&]() -> jstring {
        char* key = decodePackedString(kPackedSignKey);
        if (key == nullptr) return nullptr;
        jstring result = env->NewStringUTF(key);
        free(key);
        return result;
    });
}
