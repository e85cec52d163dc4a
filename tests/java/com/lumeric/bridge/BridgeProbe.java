package com.lumeric.bridge;

import android.graphics.Bitmap;

import com.lumeric.filter.MRect;
import com.lumeric.filter.QImage;
import com.lumeric.util.NativeLibrary;

/** Test natives (libifc_bridge_probe) that call the bridge's exported helpers. */
final class BridgeProbe {
    static {
        NativeLibrary.load();
        System.loadLibrary("ifc_bridge_probe");
    }

    private BridgeProbe() {}

    /** create_image with a derived stride; byte i holds i & 0xFF. */
    static native long newImage(int width, int height, int channels);
    static native void freeImage(long image);
    /** {width, height, channels, stride, size, data != null ? 1 : 0} */
    static native int[] describe(long image);
    /** The image's first size bytes. */
    static native byte[] bytes(long image);

    /** GetImageInfo + SetNativeImage (0 clears). */
    static native void attach(QImage qimage, long image);
    static native long attached(QImage qimage);
    static native QImage newQImage();
    /** convertObj2Rect: {x, y, width, height} */
    static native int[] rect(MRect rect);

    static native long loadResource(String path, int kind);
    static native long loadResourceOnNativeThread(String path, int kind);

    static native void throwNamed(String className, String message);
    static native void checkImage(long image);

    static native long bind(Bitmap bitmap);
    static native void unbind(Bitmap bitmap, long image);
}
