package com.lumeric.host;

import com.lumeric.util.NativeLibrary;

/**
 * Host only: builds the library's conversion tables (image_filter_initialize),
 * which the app's native code does on a device before the first camera frame.
 */
public final class ImageFilterTables {
    static {
        NativeLibrary.load();
        System.loadLibrary("ifc_host_jni");
    }

    private ImageFilterTables() {}

    public static native void initialize();
}
