package com.lumeric.render;

import android.graphics.Bitmap;
import com.lumeric.filter.BaseFilter;
import com.lumeric.filter.GLSLRender;
import com.lumeric.filter.QImage;
import java.nio.ByteBuffer;
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

    /** A pool slot no engine ever uses: reads go straight to a temporary framebuffer. */
    static final int NO_POOL = 4;

    /** Distinct opaque-or-not RGBA bytes per pixel, as an Android colour int. */
    static int chartColor(int x, int y) {
        int r = (x * 7 + 3) & 0xFF, g = (y * 11 + 5) & 0xFF, b = (x * 13 + y * 3) & 0xFF, a = (250 - x - y) & 0xFF;
        return a << 24 | r << 16 | g << 8 | b;
    }

    static Bitmap bitmap(int width, int height, IntBinaryOperator colorAt) {
        Bitmap bitmap = Bitmap.createBitmap(width, height, Bitmap.Config.ARGB_8888);
        for (int y = 0; y < height; y++) {
            for (int x = 0; x < width; x++) bitmap.setPixel(x, y, colorAt.applyAsInt(x, y));
        }
        return bitmap;
    }

    /** Bytes in memory order (R, G, B and, for 4 channels, A), rows top to bottom. */
    static byte[] pixels(int width, int height, int channels, IntBinaryOperator colorAt) {
        byte[] out = new byte[width * height * channels];
        for (int y = 0; y < height; y++) {
            for (int x = 0; x < width; x++) {
                int c = colorAt.applyAsInt(x, y), i = (y * width + x) * channels;
                out[i] = (byte) (c >> 16);
                out[i + 1] = (byte) (c >> 8);
                out[i + 2] = (byte) c;
                if (channels == 4) out[i + 3] = (byte) (c >>> 24);
            }
        }
        return out;
    }

    static byte[] rgba(int width, int height, IntBinaryOperator colorAt) {
        return pixels(width, height, 4, colorAt);
    }

    /** A 4-channel QImage holding the colours. */
    static QImage image(int width, int height, IntBinaryOperator colorAt) {
        return new QImage().Bitmap2QImage(bitmap(width, height, colorAt));
    }

    /** The first channels x width x height bytes of an image, as stored. */
    static byte[] bytes(QImage image) {
        Bitmap bitmap = Bitmap.createBitmap(image.width, image.height, Bitmap.Config.ARGB_8888);
        if (!image.FromBitmap(bitmap)) throw new AssertionError("FromBitmap failed");
        ByteBuffer all = ByteBuffer.allocate(bitmap.getByteCount());
        bitmap.copyPixelsToBuffer(all);
        byte[] out = new byte[image.width * image.height * image.pixelBytes];
        System.arraycopy(all.array(), 0, out, 0, out.length);
        return out;
    }

    /** The texture's level 0 as RGBA bytes, read through a temporary framebuffer. */
    static byte[] readTexture(int texture, int width, int height) {
        byte[] out = new byte[width * height * 4];
        GLSLRender.nativeCopyTexturToDataWithShare(texture, out, width, height, NO_POOL);
        return out;
    }

    /** RGBA bytes of the bound framebuffer, bottom row first. */
    static byte[] readFramebuffer(int width, int height) {
        byte[] out = new byte[width * height * 4];
        GLSLRender.nativeToRGBData(out, width, height);
        return out;
    }

    /** Rows of tightly packed pixels in reverse order. */
    static byte[] flipRows(byte[] pixels, int rowBytes) {
        byte[] out = new byte[pixels.length];
        int rows = pixels.length / rowBytes;
        for (int r = 0; r < rows; r++) System.arraycopy(pixels, r * rowBytes, out, (rows - 1 - r) * rowBytes, rowBytes);
        return out;
    }

    /** A BaseFilter with a built program from the default vertex shader and the given fragment shader. */
    static final class Pass implements AutoCloseable {
        final BaseFilter filter = new BaseFilter();
        final long handle;

        Pass(String fragment) {
            handle = filter.nativeInitialWithString(0, false, null, fragment);
            if (filter.nativeApplyFilter(handle) == 0) throw new AssertionError("program did not build");
        }

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
        public void close() {
            filter.nativeClear(handle);
        }
    }
}
