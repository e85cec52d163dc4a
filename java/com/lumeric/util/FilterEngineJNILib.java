package com.lumeric.util;

import android.graphics.Bitmap;

import com.lumeric.filter.QImage;

/**
 * The library's door back into Java: the native filter engine fetches every
 * resource through {@link #readBundleData} and {@link #readBundleImage}, which
 * serve the installed {@link BundleSource}. Without one, the system property
 * "com.lumeric.bundle" may name a bundle directory (host builds).
 */
public final class FilterEngineJNILib {
    static {
        NativeLibrary.load();
    }

    private static volatile BundleSource bundle;

    private FilterEngineJNILib() {}

    public static void setBundle(BundleSource source) {
        bundle = source;
    }

    public static BundleSource getBundle() {
        BundleSource source = bundle;
        if (source == null) {
            String root = System.getProperty("com.lumeric.bundle");
            if (root != null) {
                source = directoryBundle(root);
                bundle = source;
            }
        }
        return source;
    }

    /** Called from native code: the bytes of a bundle file, or null. */
    public static byte[] readBundleData(String path) {
        BundleSource source = getBundle();
        return source == null ? null : source.readData(path);
    }

    /** Called from native code: a bundle image as a 4-channel RGBA QImage, or null. */
    public static QImage readBundleImage(String path) {
        BundleSource source = getBundle();
        return source == null ? null : source.readImage(path);
    }

    /** Copies the native image's stride x height bytes into the bitmap's pixels. */
    public static native int nativeCopyImage(Bitmap bitmap, long nativeImage);

    private static BundleSource directoryBundle(String root) {
        try {
            return (BundleSource) Class.forName("com.lumeric.host.DirectoryBundle")
                    .getConstructor(String.class).newInstance(root);
        } catch (ReflectiveOperationException e) {
            return null;
        }
    }
}
