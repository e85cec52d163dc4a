package com.lumeric.filter;

import android.graphics.Bitmap;
import com.lumeric.util.NativeLibrary;

/**
 * Moves pixels between GL textures or the bound framebuffer and Java memory,
 * uploads camera previews, JPEG tiles and curves, and keeps the automatic
 * brightness curve. Every method runs on the thread with the current GL context.
 */
public final class GLSLRender {
    static {
        NativeLibrary.load();
    }

    private GLSLRender() {}

    // Framebuffer pools (slots 0..3).
    public static native int nativeInitMagicEngine(int count, int slot);
    public static native int nativeCheckMagicEngine(int count, int slot);
    public static native void nativeBeginUseEglImage(int width, int height, int slot);
    public static native void nativeEndUseEglImage(int width, int height, int slot);
    public static native int nativeDeinitMagicEngine(int n);

    // Large images in tiles.
    public static native void nativePreprocessJepg(QImage image, int[] tiles);
    public static native void nativePickJepgToTexture(QImage image, int col, int row, int cols, int rows, int texture, int[] size);
    public static native void nativePushJepgFromTexture(QImage image, int col, int row, int cols, int rows, int slot);

    // Read-backs.
    public static native void nativePushDataFromTexture(byte[] data, int width, int height, int slot);
    public static native int nativePushBitmapFromTexture(Bitmap bitmap, int slot);
    public static native int nativeSnap(Bitmap bitmap);
    public static native QImage nativeCopyTexture(int width, int height);
    public static native void nativeCopyTexturToDataWithShare(int texture, byte[] data, int width, int height, int slot);
    public static native int nativeCopyPixelToBitmapWithShare(Bitmap bitmap, int texture, int slot);
    public static native QImage nativeCopyTextureWithShare(int width, int height, int texture, int slot);
    public static native void nativeToRGBData(byte[] data, int width, int height);
    public static native void nativeCopyTexture2(QImage image);
    public static native int nativeCopyPixelToBitmap(Bitmap bitmap);
    public static native int nativeRenderPixelToBitmap(Bitmap bitmap, int x, int y);

    // Uploads.
    public static native void nativePreviewData(byte[] data, int texture, int width, int height);
    public static native void nativePreviewYuvData(byte[] data, int texture, int width, int height);
    public static native void nativeTextCure(int[] curve, int texture);
    public static native void nativeTextImage(QImage image, int texture);
    public static native void nativeUpdateScaleBitmap(Bitmap src, Bitmap mask, Bitmap dst, int offY, int offX);

    // Native buffers and the automatic brightness curve.
    public static native long nativeAllocBuffer(int size);
    public static native void nativeFreeBuffer(long buffer);
    public static native void nativeCalHistogramFromGPU(long pixels, long history, int x, int y, int w, int h,
            float lowFrac, float highFrac, int frameCount, int frameIndex, float gammaScale, float threshold);
}
