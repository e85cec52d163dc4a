package com.lumeric.qimage;

import android.graphics.Bitmap;
import com.lumeric.filter.QImage;
import java.util.function.IntBinaryOperator;

/** Test images with known pixels and small references of the native formulas. */
final class Pixels {
    private Pixels() {}

    /** Distinct RGBA bytes per pixel: R = x, G = y, B = x * 16 + y, A = 200 + x. */
    static int colorAt(int x, int y) {
        int r = x & 0xFF, g = y & 0xFF, b = (x * 16 + y) & 0xFF, a = (200 + x) & 0xFF;
        return a << 24 | r << 16 | g << 8 | b;
    }

    /** Row-major values f(x, y) of a width x height grid. */
    static int[] grid(int width, int height, IntBinaryOperator f) {
        int[] out = new int[width * height];
        for (int i = 0; i < out.length; i++) out[i] = f.applyAsInt(i % width, i / width);
        return out;
    }

    static Bitmap chart(int width, int height) {
        Bitmap bitmap = Bitmap.createBitmap(width, height, Bitmap.Config.ARGB_8888);
        bitmap.setPixels(grid(width, height, Pixels::colorAt), 0, width, 0, 0, width, height);
        return bitmap;
    }

    static QImage image(int width, int height) {
        return new QImage().Bitmap2QImage(chart(width, height));
    }

    static int[] colors(Bitmap bitmap) {
        int[] out = new int[bitmap.getWidth() * bitmap.getHeight()];
        bitmap.getPixels(out, 0, bitmap.getWidth(), 0, 0, bitmap.getWidth(), bitmap.getHeight());
        return out;
    }

    /** The image as Android colour ints, read back through a bitmap. */
    static int[] colors(QImage image) {
        Bitmap bitmap = Bitmap.createBitmap(image.width, image.height, Bitmap.Config.ARGB_8888);
        if (!image.ToBitmap(bitmap)) throw new AssertionError("ToBitmap failed");
        return colors(bitmap);
    }

    /** A 565 word as the native down-sampler packs it, read back as Bitmap.getPixel expands it. */
    static int through565(int color) {
        int r = (color >> 19) & 0x1F, g = (color >> 10) & 0x3F, b = (color >> 3) & 0x1F;
        return 0xFF000000 | (r << 3 | r >> 2) << 16 | (g << 2 | g >> 4) << 8 | (b << 3 | b >> 2);
    }

    /** RGBA bytes of a colour int read as one little-endian int (CopyPixelsRGB). */
    static int rawInt(int color) {
        int r = (color >> 16) & 0xFF, g = (color >> 8) & 0xFF, b = color & 0xFF, a = color >>> 24;
        return a << 24 | b << 16 | g << 8 | r;
    }
}
