package com.lumeric.filter;

import android.graphics.Bitmap;
import com.lumeric.util.NativeLibrary;

/**
 * A handle on a native image. The native record lives in native memory and is
 * referenced from {@link #nativeImage}; {@link #width}, {@link #height} and
 * {@link #pixelBytes} mirror it whenever a native changes it. Closing the
 * image frees the native memory ({@link #Dispose()}).
 */
public class QImage implements AutoCloseable {
    static {
        NativeLibrary.load();
    }

    public int width;
    public int height;
    public int pixelFormat;
    /** Address of the native image, 0 when there is none. */
    public long nativeImage;
    /** Bytes per pixel: 1 gray, 3 RGB, 4 RGBA. */
    public int pixelBytes;

    public QImage() {}

    @Override
    public void close() {
        Dispose();
    }

    // Life cycle and copies.
    public native void CreateImage(int width, int height, int pixelBytes);
    public native void Dispose();
    public native void createSubImage(int x, int y, int w, int h);
    public native QImage CreateImageFromQImage();
    public native int getByteSize();
    public native void nativeUpdateROI();
    public native void WrapExif(QImage other);

    // Pixels to Java.
    public native void CopyPixels(int[] pixels, boolean mirror);
    public native void CopyPixelsRGB(int[] pixels, boolean mirror);

    // Bitmaps.
    public native QImage Bitmap2QImage(Bitmap bitmap);
    public native boolean FromBitmap(Bitmap bitmap);
    public native boolean ToBitmap(Bitmap bitmap);
    public native QImage BindBitmap(Bitmap bitmap);
    public native boolean UnBindBitmap(Bitmap bitmap);
    public native boolean alphaMix(Bitmap overlay, int x, int y);

    // Geometry.
    public native boolean nativeFlip(int horizontal, int vertical);
    public native boolean nativeRotate(int degrees);

    // Camera frames.
    public native void RGB565toRGB(byte[] data, int width, int height);
    public native void YUV422toRGB(byte[] data, int width, int height);
    public native void YUV420sp2RGB(byte[] data, int width, int height);
    public native void YUV420sp2YUV(byte[] data, int width, int height);
    public native void YUV420sp2YUV2(byte[] data, int width, int height, int step);

    // CPU filters.
    public native QImage InplaceBlur8bitQImage(int scale, int sigma);
    public native int[] nativeGetArrayHistogram();
    public native int[] nativeGetArrayHistogramChannels();
}
