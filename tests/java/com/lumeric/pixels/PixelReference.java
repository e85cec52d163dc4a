package com.lumeric.pixels;

import android.graphics.Bitmap;
import com.lumeric.filter.QImage;
import java.nio.ByteBuffer;
import java.nio.ByteOrder;
import java.util.Random;

/** RGBA images from bytes and back, for the pixel natives' tests. */
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
}
