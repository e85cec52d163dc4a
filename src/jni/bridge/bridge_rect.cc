// Binding of com/lumeric/filter/MRect to the native MRect.
#include "jni/bridge/bridge.h"
#include "jni/bridge/bridge_internal.h"

extern "C" {

void getRectID(JNIEnv* env, RectInfo* info) {
    info->clazz = jniFindAppClass(env, "com/lumeric/filter/MRect");
    if (info->clazz == nullptr) return;
    info->x = env->GetFieldID(info->clazz, "x", "I");
    info->y = env->GetFieldID(info->clazz, "y", "I");
    info->w = env->GetFieldID(info->clazz, "w", "I");
    info->h = env->GetFieldID(info->clazz, "h", "I");
}

void getRectObject(JNIEnv* env, RectInfo* info, jobject rect, MRect* out) {
    out->x = env->GetIntField(rect, info->x);
    out->y = env->GetIntField(rect, info->y);
    out->width = env->GetIntField(rect, info->w);
    out->height = env->GetIntField(rect, info->h);
}

void convertObj2Rect(JNIEnv* env, jobject rect, MRect* out) {
    if (rect == nullptr || out == nullptr) return;  // nothing to read: out keeps its values
    RectInfo info;
    getRectID(env, &info);
    if (info.clazz == nullptr) {
        // The lookup cleared the class-not-found error: nothing is pending,
        // nothing to read.
        return;
    }
    getRectObject(env, &info, rect, out);
    env->DeleteLocalRef(info.clazz);
}

}  // extern "C"
