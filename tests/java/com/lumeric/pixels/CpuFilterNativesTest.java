package com.lumeric.pixels;

import static org.junit.jupiter.api.Assertions.assertArrayEquals;
import static org.junit.jupiter.api.Assertions.assertEquals;
import static org.junit.jupiter.api.Assertions.assertFalse;
import static org.junit.jupiter.api.Assertions.assertThrows;
import static org.junit.jupiter.api.Assertions.assertTrue;

import android.graphics.Bitmap;
import com.lumeric.filter.QImage;
import java.util.Arrays;
import java.util.Random;
import org.junit.jupiter.api.Test;

class CpuFilterNativesTest {
    /** The blur's bytes are checked against the reference sweeps in C++; here what reaches the native. */
    @Test
    void blurReturnsANewDownSampledImageOfChannelZero() {
        int w = 37, h = 29, sw = w / 3, sh = h / 3;
        byte[] pixels = PixelReference.randomBytes(w * h * 4, 7);
        try (QImage source = PixelReference.rgbaImage(w, h, pixels);
                QImage sampled = source.InplaceBlur8bitQImage(3, 0);
                QImage blurred = source.InplaceBlur8bitQImage(3, 5)) {
            assertArrayEquals(new int[] {sw, sh, 4, sw, sh, 4}, new int[] {sampled.width, sampled.height,
                    sampled.pixelBytes, blurred.width, blurred.height, blurred.pixelBytes});
            byte[] samples = PixelReference.pixels(sampled), smooth = PixelReference.pixels(blurred);
            for (int i = 0; i < samples.length; i++) {
                int p = i / 4;
                int want = i % 4 == 0 ? pixels[4 * (w * 3 * (p / sw) + 3 * (p % sw))] : 0;
                assertEquals(want, samples[i], "sigma 0, byte " + i);
                if (i % 4 != 0) assertEquals(0, smooth[i], "sigma 5, byte " + i);
            }
            assertFalse(Arrays.equals(samples, smooth), "sigma 5 reached the blur");
            assertArrayEquals(pixels, PixelReference.pixels(source));  // the source is not blurred
            assertThrows(RuntimeException.class, () -> source.InplaceBlur8bitQImage(0, 2));
        }
    }

    @Test
    void histogramsCountBytesZeroToTwoOfFourBytePixels() {
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
        try (QImage image = PixelReference.rgbaImage(w, h, pixels)) {
            assertArrayEquals(combined, image.nativeGetArrayHistogram());
            assertArrayEquals(channels, image.nativeGetArrayHistogramChannels());
            // Three bytes per pixel are still read 4 apart: of a 4x1 row only
            // three pixels fit in its 12 bytes.
            image.CreateImage(4, 1, 3);
            assertEquals(9, Arrays.stream(image.nativeGetArrayHistogram()).sum());
        }
    }

    @Test
    void alphaMixBlendsPremultipliedOverlayFromLeftEdgeAndVerticalCentre() {
        int w = 6, h = 5;
        byte[] pixels = PixelReference.randomBytes(w * h * 4, 11);
        Bitmap overlay = Bitmap.createBitmap(3, 4, Bitmap.Config.ARGB_8888);
        int[] argb = new int[12];
        Random random = new Random(12);
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
        try (QImage image = PixelReference.rgbaImage(w, h, pixels)) {
            assertTrue(image.alphaMix(overlay, x, y));
            assertArrayEquals(expected, PixelReference.pixels(image));
            assertEquals(0, overlay.getLockCount());

            assertFalse(image.alphaMix(Bitmap.createBitmap(2, 2, Bitmap.Config.RGB_565), 0, 0));
            overlay.failNextLocks(1);
            assertFalse(image.alphaMix(overlay, 0, 0));
            assertEquals(0, overlay.getLockCount());
            assertArrayEquals(expected, PixelReference.pixels(image));
        }
    }
}
