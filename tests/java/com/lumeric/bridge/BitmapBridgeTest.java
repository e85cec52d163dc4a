package com.lumeric.bridge;

import static org.junit.jupiter.api.Assertions.assertArrayEquals;
import static org.junit.jupiter.api.Assertions.assertEquals;
import static org.junit.jupiter.api.Assertions.assertSame;
import static org.junit.jupiter.api.Assertions.assertThrows;
import static org.junit.jupiter.api.Assertions.assertTrue;

import android.graphics.Bitmap;
import com.lumeric.util.FilterEngineJNILib;
import org.junit.jupiter.api.Test;

class BitmapBridgeTest {
    private static Bitmap filled(int w, int h, int color) {
        Bitmap bitmap = Bitmap.createBitmap(w, h, Bitmap.Config.ARGB_8888);
        for (int y = 0; y < h; y++) {
            for (int x = 0; x < w; x++) bitmap.setPixel(x, y, color);
        }
        return bitmap;
    }

    /** ARGB colour int of the RGBA bytes b, b+1, b+2, b+3 of the probe's pattern. */
    private static int patternPixel(int b) {
        return ((b + 3) << 24) | (b << 16) | ((b + 1) << 8) | (b + 2);
    }

    @Test
    void bindingLocksAndDescribesAs4ChannelsWhateverTheFormat() {
        Bitmap rgba = filled(3, 2, 0xFF102030);
        long header = BridgeProbe.bind(rgba);
        assertEquals(1, rgba.getLockCount());
        assertArrayEquals(new int[] {3, 2, 4, 12, 0, 1}, BridgeProbe.describe(header));
        BridgeProbe.unbind(rgba, header);
        assertEquals(0, rgba.getLockCount());

        Bitmap rgb565 = Bitmap.createBitmap(3, 2, Bitmap.Config.RGB_565);
        long quirky = BridgeProbe.bind(rgb565);
        assertArrayEquals(new int[] {3, 2, 4, 12, 0, 1}, BridgeProbe.describe(quirky));
        BridgeProbe.unbind(rgb565, quirky);
    }

    @Test
    void failedLockGivesAHeaderWithoutPixels() {
        Bitmap bitmap = filled(2, 2, 0);
        bitmap.failNextLocks(1);
        long header = BridgeProbe.bind(bitmap);
        assertArrayEquals(new int[] {2, 2, 4, 8, 0, 0}, BridgeProbe.describe(header));
        BridgeProbe.unbind(bitmap, header);
        assertEquals(0, bitmap.getLockCount());
    }

    @Test
    void copyWritesTheImageBytesInOrderAndStopsAtTheBitmapsEnd() {
        long image = BridgeProbe.newImage(2, 2, 4);
        long big = BridgeProbe.newImage(4, 4, 4);
        try {
            Bitmap bitmap = filled(2, 2, 0);
            assertEquals(0, FilterEngineJNILib.nativeCopyImage(bitmap, image));
            assertEquals(patternPixel(0), bitmap.getPixel(0, 0));
            assertEquals(patternPixel(4), bitmap.getPixel(1, 0));
            assertEquals(patternPixel(12), bitmap.getPixel(1, 1));
            assertEquals(0, bitmap.getLockCount());

            FilterEngineJNILib.nativeCopyImage(bitmap, big);
            // Flat bytes: the bitmap's second row holds the image's row 0, pixels 2 and 3.
            assertEquals(patternPixel(8), bitmap.getPixel(0, 1));
        } finally {
            BridgeProbe.freeImage(image);
            BridgeProbe.freeImage(big);
        }
    }

    @Test
    void copyRefusesBadArguments() {
        long image = BridgeProbe.newImage(1, 1, 4);
        try {
            assertThrows(NullPointerException.class, () -> FilterEngineJNILib.nativeCopyImage(null, image));
            Bitmap bitmap = filled(1, 1, 0x11223344);
            RuntimeException none =
                    assertThrows(RuntimeException.class, () -> FilterEngineJNILib.nativeCopyImage(bitmap, 0));
            assertSame(RuntimeException.class, none.getClass());

            bitmap.failNextLocks(1);
            assertTrue(FilterEngineJNILib.nativeCopyImage(bitmap, image) < 0);
            assertEquals(0x11223344, bitmap.getPixel(0, 0));
            assertEquals(0, bitmap.getLockCount());
        } finally {
            BridgeProbe.freeImage(image);
        }
    }
}
