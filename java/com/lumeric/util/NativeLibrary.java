package com.lumeric.util;

/** Loads libimage_filter_common.so once, before any native of the library runs. */
public final class NativeLibrary {
    private static boolean loaded;

    private NativeLibrary() {}

    public static synchronized void load() {
        if (!loaded) {
            System.loadLibrary("image_filter_common");
            loaded = true;
        }
    }
}
