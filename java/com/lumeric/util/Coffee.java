package com.lumeric.util;

/** Gives out the signing key, assembled in native code at run time. */
public final class Coffee {
    static {
        NativeLibrary.load();
    }

    private Coffee() {}

    public static native String getDESSignKey();
}
