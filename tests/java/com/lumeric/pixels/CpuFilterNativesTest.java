package com.lumeric.pixels;

import static org.junit.jupiter.api.Assertions.assertArrayEquals;
import static org.junit.jupiter.api.Assertions.assertEquals;
import static org.junit.jupiter.api.Assertions.assertFalse;
import static org.junit.jupiter.api.Assertions.assertThrows;
import static org.junit.jupiter.api.Assertions.assertTrue;

import android.graphics.Bitmap;
import com.lumeric.filter.QImage;
import org.junit.jupiter.api.Test;

class CpuFilterNativesTest {
    private static QImage imageOf(int w, int h, int channels, byte[] pixels) {
        QImage image = new QImage();
        PixelsProbe.attach(image, w, h, channels, pixels);
        return image;
    }

    @Test
    void blurMatchesTheRecursiveReference() {
        int w = 37, h = 29, channels = 4;
        byte[] pixels = PixelReference.randomBytes(w * h * channels, 7);
        QImage source = imageOf(w, h, channels, pixels);
        try {
            int[][] cases = {{1, 1}, {2, 2}, {3, 5}, {1, 10}, {2, 0}, {1, -1}};
            for (int[] c : cases) {
                QImage result = source.InplaceBlur8bitQImage(c[0], c[1]);
                try {
                    int bw = w / c[0], bh = h / c[0];
                    int[] expected = PixelReference.blur(pixels, w, channels, h, c[0], c[1]);
                    byte[] got = PixelsProbe.pixels(result);
                    for (int i = 0; i < got.length; i++) {
                        int want = i % channels == 0 ? expected[i / channels] : 0;
                        assertEquals(want, got[i] & 0xFF, "scale " + c[0] + " sigma " + c[1] + " byte " + i);
                    }
                    assertEquals(bw, result.width);
                    assertEquals(bh, result.height);
                    assertEquals(channels, result.pixelBytes);
                } finally {
                    PixelsProbe.dispose(result);
                }
            }
            assertArrayEquals(pixels, PixelsProbe.pixels(source));  // the source is not blurred
        } finally {
            PixelsProbe.dispose(source);
        }
    }

    @Test
    void blurRejectsScaleZeroAndEmptyImages() {
        QImage source = imageOf(4, 4, 4, new byte[64]);
        try {
            assertThrows(RuntimeException.class, () -> source.InplaceBlur8bitQImage(0, 2));
        } finally {
            PixelsProbe.dispose(source);
        }
        RuntimeException empty = assertThrows(RuntimeException.class, () -> new QImage().InplaceBlur8bitQImage(1, 2));
        assertEquals("image is empty", empty.getMessage());
    }

    @Test
    void histogramsCountBytesZeroToTwoOfEachPixel() {
        int w = 19, h = 7;
        byte[] pixels = PixelReference.randomBytes(w * h * 4, 9);
        int[] combined = new int[256];
        int[] channels = new int[768];
        for (int p = 0; p < w * h; p++) {
            for (int c = 0; c < 3; c++) {
                int value = pixels[4 * p + c] & 0xFF;
                combined[value]++;
                channels[256 * c + value]++;
            }
        }
        QImage image = imageOf(w, h, 4, pixels);
        try {
            assertArrayEquals(combined, image.nativeGetArrayHistogram());
            assertArrayEquals(channels, image.nativeGetArrayHistogramChannels());
        } finally {
            PixelsProbe.dispose(image);
        }
        QImage empty = new QImage();
        RuntimeException e = assertThrows(RuntimeException.class, empty::nativeGetArrayHistogram);
        assertEquals("image is empty", e.getMessage());
    }

    @Test
    void alphaMixBlendsPremultipliedOverlayFromLeftEdgeAndVerticalCentre() {
        int w = 6, h = 5;
        byte[] pixels = PixelReference.randomBytes(w * h * 4, 11);
        Bitmap overlay = Bitmap.createBitmap(3, 4, Bitmap.Config.ARGB_8888);
        int[] argb = new int[12];
        java.util.Random random = new java.util.Random(12);
        for (int i = 0; i < 12; i++) {
            int a = random.nextInt(256);
            argb[i] = a << 24 | random.nextInt(a + 1) << 16 | random.nextInt(a + 1) << 8 | random.nextInt(a + 1);
            overlay.setPixel(i % 3, i / 3, argb[i]);
        }
        int x = 4, y = 2, top = y - 2;  // cut at the right edge: 2 columns
        byte[] expected = pixels.clone();
        for (int i = 0; i < 4 && top + i < h; i++) {
            for (int j = 0; j < 2; j++) {
                int s = argb[i * 3 + j], a = s >>> 24;
                int[] rgb = {s >> 16 & 0xFF, s >> 8 & 0xFF, s & 0xFF};
                int d = ((top + i) * w + x + j) * 4;
                for (int c = 0; c < 3; c++) {
                    expected[d + c] = (byte) (((expected[d + c] & 0xFF) * (255 - a) + rgb[c] * 255) / 255);
                }
            }
        }
        QImage image = imageOf(w, h, 4, pixels);
        try {
            assertTrue(image.alphaMix(overlay, x, y));
            assertArrayEquals(expected, PixelsProbe.pixels(image));
            assertEquals(0, overlay.getLockCount());

            assertFalse(image.alphaMix(Bitmap.createBitmap(2, 2, Bitmap.Config.RGB_565), 0, 0));
            overlay.failNextLocks(1);
            assertFalse(image.alphaMix(overlay, 0, 0));
            assertEquals(0, overlay.getLockCount());
            assertThrows(NullPointerException.class, () -> image.alphaMix(null, 0, 0));
            assertArrayEquals(expected, PixelsProbe.pixels(image));
        } finally {
            PixelsProbe.dispose(image);
        }
        assertFalse(new QImage().alphaMix(overlay, 0, 0));
    }
}
