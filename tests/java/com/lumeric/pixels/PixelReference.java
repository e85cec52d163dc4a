package com.lumeric.pixels;

import android.graphics.Bitmap;
import com.lumeric.filter.QImage;
import java.nio.ByteBuffer;
import java.nio.ByteOrder;
import java.util.Random;

/** Plain Java definitions of the pixel formulas the natives must match exactly. */
final class PixelReference {
    private PixelReference() {}

    /** A new RGBA image holding the given bytes. */
    static QImage rgbaImage(int width, int height, byte[] pixels) {
        Bitmap bitmap = Bitmap.createBitmap(width, height, Bitmap.Config.ARGB_8888);
        bitmap.copyPixelsFromBuffer(ByteBuffer.wrap(pixels));
        return new QImage().Bitmap2QImage(bitmap);
    }

    /** The image's 4-byte pixels as they lie in native memory. */
    static byte[] pixels(QImage image) {
        int[] colors = new int[image.width * image.height];
        image.CopyPixelsRGB(colors, false);
        ByteBuffer bytes = ByteBuffer.allocate(4 * colors.length).order(ByteOrder.nativeOrder());
        bytes.asIntBuffer().put(colors);
        return bytes.array();
    }

    static byte[] randomBytes(int n, long seed) {
        byte[] bytes = new byte[n];
        new Random(seed).nextBytes(bytes);
        return bytes;
    }

    private static int clamp(int x) {
        return x < 0 ? 0 : Math.min(x, 255);
    }

    /** R, G, B, 255 of one Y, U, V triple (BT.601 studio range in eighths). */
    static void rgba(int y, int u, int v, byte[] out, int at) {
        int luma = y < 16 ? 0 : (76309 * (y - 16)) >> 13;
        out[at] = (byte) clamp((luma + ((104597 * (v - 128)) >> 13)) >> 3);
        out[at + 1] = (byte) clamp((luma + ((-53278 * (v - 128)) >> 13) + ((-25674 * (u - 128)) >> 13)) >> 3);
        out[at + 2] = (byte) clamp((luma + ((132201 * (u - 128)) >> 13)) >> 3);
        out[at + 3] = (byte) 255;
    }

    /** NV21 to RGBA or packed Y, U, V, 255 over the continuous stream walk. */
    static byte[] nv21(byte[] frame, int width, int height, boolean yuv) {
        int total = width * height;
        int rowPixels = (width + 1) / 2 * 2;
        byte[] out = new byte[4 * total];
        for (int n = 0; n < total; n++) {
            int chroma = total + (n / rowPixels / 2) * width + ((n % rowPixels) & ~1);
            int y = frame[n] & 0xFF, v = frame[chroma] & 0xFF, u = frame[chroma + 1] & 0xFF;
            if (yuv) {
                out[4 * n] = (byte) y;
                out[4 * n + 1] = (byte) u;
                out[4 * n + 2] = (byte) v;
                out[4 * n + 3] = (byte) 255;
            } else {
                rgba(y, u, v, out, 4 * n);
            }
        }
        return out;
    }

    static byte[] yuv422(byte[] frame, int width, int height) {
        byte[] out = new byte[4 * width * height];
        for (int n = 0; n < width * height; n++) {
            int g = 4 * (n / 2);
            rgba(frame[g + 1 + 2 * (n % 2)] & 0xFF, frame[g + 2] & 0xFF, frame[g] & 0xFF, out, 4 * n);
        }
        return out;
    }

    static byte[] rgb565(byte[] frame, int width, int height) {
        byte[] out = new byte[4 * width * height];
        for (int n = 0; n < width * height; n++) {
            int v = (frame[2 * n] & 0xFF) | (frame[2 * n + 1] & 0xFF) << 8;
            out[4 * n] = (byte) (v >> 11);
            out[4 * n + 1] = (byte) ((v & 0x7E0) >> 5);
            out[4 * n + 2] = (byte) (v & 0x1F);
            out[4 * n + 3] = (byte) 255;
        }
        return out;
    }

    static byte[] nv21Decimated(byte[] frame, int width, int height, int step) {
        int w = width / step, h = height / step;
        byte[] out = new byte[4 * w * h];
        for (int j = 0; j < h; j++) {
            for (int i = 0; i < w; i++) {
                int o = 4 * (j * w + i);
                int chroma = width * height + j * width * (step / 2) + i * step;
                out[o] = frame[j * step * width + i * step];
                out[o + 1] = frame[chroma + 1];
                out[o + 2] = frame[chroma];
                out[o + 3] = (byte) 255;
            }
        }
        return out;
    }
}
