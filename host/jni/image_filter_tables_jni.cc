// JNI side of com.lumeric.host.ImageFilterTables: image_filter_initialize for
// Java programs on a host (the tables are already built at load).
#include <jni.h>

#include "image_filter/filters.h"

extern "C" JNIEXPORT void JNICALL Java_com_lumeric_host_ImageFilterTables_initialize(JNIEnv*, jclass) {
    image_filter_initialize();
}
