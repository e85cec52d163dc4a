package com.lumeric.pixels;

import com.lumeric.filter.QImage;
import com.lumeric.util.NativeLibrary;

/** Test natives (libifc_pixels_probe) that fill and read QImage native images. */
final class PixelsProbe {
    static {
        NativeLibrary.load();
        System.loadLibrary("ifc_pixels_probe");
    }

    private PixelsProbe() {}

    /** Attaches a new image (derived stride) holding the given bytes. */
    static native void attach(QImage qimage, int width, int height, int channels, byte[] pixels);
    /** Frees the native image and clears the handle. */
    static native void dispose(QImage qimage);
    /** The native image's first size bytes, or null. */
    static native byte[] pixels(QImage qimage);
    /** {width, height, channels, stride, size, layout} */
    static native int[] describe(QImage qimage);
}
