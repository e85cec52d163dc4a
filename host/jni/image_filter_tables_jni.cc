// JNI side of com.lumeric.host.ImageFilterTables: on a device the app's own
// native code builds the conversion tables; host programs and tests do it
// through this class.
#include <jni.h>

#include "image_filter/filters.h"

extern "C" JNIEXPORT void JNICALL Java_com_lumeric_host_ImageFilterTables_initialize(JNIEnv*, jclass) {
    image_filter_initialize();
}
