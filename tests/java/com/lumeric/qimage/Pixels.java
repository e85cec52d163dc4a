package com.lumeric.qimage;

import android.graphics.Bitmap;
import com.lumeric.filter.QImage;

/** Test images with known pixels and small references of the native formulas. */
final class Pixels {
    private Pixels() {}

    /** Distinct RGBA bytes per pixel: R = x, G = y, B = x * 16 + y, A = 200 + x. */
    static int colorAt(int x, int y) {
        int r = x & 0xFF, g = y & 0xFF, b = (x * 16 + y) & 0xFF, a = (200 + x) & 0xFF;
        return a << 24 | r << 16 | g << 8 | b;
    }

    static Bitmap chart(int width, int height) {
        Bitmap bitmap = Bitmap.createBitmap(width, height, Bitmap.Config.ARGB_8888);
        for (int y = 0; y < height; y++) {
            for (int x = 0; x < width; x++) bitmap.setPixel(x, y, colorAt(x, y));
        }
        return bitmap;
    }

    static QImage image(int width, int height) {
        return new QImage().Bitmap2QImage(chart(width, height));
    }

    /** The image as Android colour ints, read back through a bitmap. */
    static int[] colors(QImage image) {
        Bitmap bitmap = Bitmap.createBitmap(image.width, image.height, Bitmap.Config.ARGB_8888);
        if (!image.ToBitmap(bitmap)) throw new AssertionError("ToBitmap failed");
        int[] out = new int[image.width * image.height];
        bitmap.getPixels(out, 0, image.width, 0, 0, image.width, image.height);
        return out;
    }

    /** Reference RGB_565 packing of the native down-sampler. */
    static int pack565(int color) {
        int r = (color >> 16) & 0xFF, g = (color >> 8) & 0xFF, b = color & 0xFF;
        return (r >> 3) << 11 | ((g << 3) & 0x7E0) | (b >> 3);
    }

    /** What Bitmap.getPixel returns for a stored 565 word. */
    static int expand565(int v) {
        int r = (v >> 11) & 0x1F, g = (v >> 5) & 0x3F, b = v & 0x1F;
        return 0xFF000000 | (r << 3 | r >> 2) << 16 | (g << 2 | g >> 4) << 8 | (b << 3 | b >> 2);
    }

    /** RGBA bytes of a colour int read as one little-endian int (CopyPixelsRGB). */
    static int rawInt(int color) {
        int r = (color >> 16) & 0xFF, g = (color >> 8) & 0xFF, b = color & 0xFF, a = color >>> 24;
        return a << 24 | b << 16 | g << 8 | r;
    }
}
