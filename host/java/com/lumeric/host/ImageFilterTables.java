package com.lumeric.host;

import com.lumeric.util.NativeLibrary;

/**
 * Host only: calls the library's image_filter_initialize. The conversion
 * tables are built when the library loads, so nothing needs this; it stays
 * for programs that always called it, and a call changes nothing.
 */
public final class ImageFilterTables {
    static {
        NativeLibrary.load();
        System.loadLibrary("ifc_host_jni");
    }

    private ImageFilterTables() {}

    public static native void initialize();
}
