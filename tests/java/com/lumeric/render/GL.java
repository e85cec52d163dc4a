package com.lumeric.render;

import android.graphics.Bitmap;
import com.lumeric.filter.BaseFilter;
import com.lumeric.filter.GLSLRender;
import com.lumeric.filter.QImage;
import java.nio.ByteBuffer;
import java.util.Arrays;
import java.util.function.IntBinaryOperator;

/**
 * Textures and pixels for the render tests. Java owns no GL calls: textures
 * are made and read only through the natives under test (GL ES 2 creates a
 * texture on the first bind of an unused name).
 */
final class GL {
    private GL() {}

    static final String COPY_FRAGMENT =
            "precision mediump float; varying vec2 textureCoordinate; uniform sampler2D inputImageTexture;\n"
            + "void main() { gl_FragColor = texture2D(inputImageTexture, textureCoordinate); }\n";

    /** Distinct RGBA bytes per pixel, alpha varying too. */
    static int chartColor(int x, int y) {
        int r = (x * 7 + 3) & 0xFF, g = (y * 11 + 5) & 0xFF, b = (x * 13 + y * 3) & 0xFF, a = (250 - x - y) & 0xFF;
        return a << 24 | r << 16 | g << 8 | b;
    }

    static Bitmap bitmap(int width, int height, IntBinaryOperator colorAt) {
        Bitmap bitmap = blank(width, height);
        for (int y = 0; y < height; y++) for (int x = 0; x < width; x++) bitmap.setPixel(x, y, colorAt.applyAsInt(x, y));
        return bitmap;
    }

    static Bitmap blank(int width, int height) { return Bitmap.createBitmap(width, height, Bitmap.Config.ARGB_8888); }

    /** Bytes in memory order (R, G, B and, for 4 channels, A), rows top to bottom. */
    static byte[] pixels(int width, int height, int channels, IntBinaryOperator colorAt) {
        byte[] out = new byte[width * height * channels];
        for (int i = 0; i < width * height; i++) {
            int c = colorAt.applyAsInt(i % width, i / width);
            for (int k = 0; k < channels; k++) out[i * channels + k] = (byte) (c >>> (k == 3 ? 24 : 16 - 8 * k));
        }
        return out;
    }

    static byte[] rgba(int width, int height, IntBinaryOperator colorAt) { return pixels(width, height, 4, colorAt); }

    static byte[] solid(int bytes, int value) {
        byte[] out = new byte[bytes];
        Arrays.fill(out, (byte) value);
        return out;
    }

    static QImage image(int width, int height, IntBinaryOperator colorAt) {
        return new QImage().Bitmap2QImage(bitmap(width, height, colorAt));
    }

    static QImage blank(int width, int height, int channels) {
        QImage image = new QImage();
        image.CreateImage(width, height, channels);
        return image;
    }

    static byte[] bytes(Bitmap bitmap) {
        ByteBuffer out = ByteBuffer.allocate(bitmap.getByteCount());
        bitmap.copyPixelsToBuffer(out);
        return out.array();
    }

    static int[] colors(Bitmap bitmap) {
        int[] out = new int[bitmap.getWidth() * bitmap.getHeight()];
        bitmap.getPixels(out, 0, bitmap.getWidth(), 0, 0, bitmap.getWidth(), bitmap.getHeight());
        return out;
    }

    /** The first channels x width x height bytes of an image, as stored. */
    static byte[] bytes(QImage image) {
        Bitmap bitmap = blank(image.width, image.height);
        if (!image.FromBitmap(bitmap)) throw new AssertionError("FromBitmap failed");
        return Arrays.copyOf(bytes(bitmap), image.width * image.height * image.pixelBytes);
    }

    /** The texture's level 0 as RGBA bytes, read through a temporary framebuffer (slot 4 has no pool). */
    static byte[] readTexture(int texture, int width, int height) {
        byte[] out = new byte[width * height * 4];
        GLSLRender.nativeCopyTexturToDataWithShare(texture, out, width, height, 4);
        return out;
    }

    /** RGBA bytes of the bound framebuffer, bottom row first. */
    static byte[] readFramebuffer(int width, int height) {
        byte[] out = new byte[width * height * 4];
        GLSLRender.nativeToRGBData(out, width, height);
        return out;
    }

    /** A BaseFilter with the default vertex shader and the given fragment shader. */
    static final class Pass implements AutoCloseable {
        final BaseFilter filter = new BaseFilter();
        final long handle;

        Pass(String fragment) { handle = filter.nativeInitialWithString(0, false, null, fragment); }

        /**
         * Draws the texture over the current viewport of the bound framebuffer. The
         * render native leaves the current program alone and the pooled copies
         * switch it, so the program is rebuilt (and made current) first.
         */
        void draw(int texture, int width, int height) {
            if (filter.nativeApplyFilter(handle) == 0) throw new AssertionError("program did not build");
            filter.nativeRenderTexture(handle, texture, width, height);
        }

        @Override
        public void close() { filter.nativeClear(handle); }
    }
}
