package com.lumeric.bridge;

import static org.junit.jupiter.api.Assertions.*;

import android.graphics.Bitmap;
import com.lumeric.filter.MRect;
import com.lumeric.filter.QImage;
import com.lumeric.util.Coffee;
import com.lumeric.util.FilterEngineJNILib;
import org.junit.jupiter.api.Test;

/** The bridge's exported helpers driven through the probe: exceptions, QImage fields, bitmaps. */
class BridgeHelpersTest {
    private static Bitmap filled(int w, int h, int color) {
        Bitmap bitmap = Bitmap.createBitmap(w, h, Bitmap.Config.ARGB_8888);
        for (int i = 0; i < w * h; i++) bitmap.setPixel(i % w, i / w, color);
        return bitmap;
    }

    /** ARGB colour int of the RGBA bytes b, b+1, b+2, b+3 of the probe's pattern. */
    private static int patternPixel(int b) {
        return ((b + 3) << 24) | (b << 16) | ((b + 1) << 8) | (b + 2);
    }

    private static void assertMessage(Class<? extends Throwable> type, String text, Runnable call) {
        Throwable e = assertThrows(Throwable.class, call::run);
        assertSame(type, e.getClass());
        assertEquals(text, e.getMessage());
    }

    /** The null-pointer and runtime helpers' classes and texts are in the null-argument table. */
    @Test
    void exceptionsCarryClassAndText() {
        assertMessage(IllegalStateException.class, "named text",
                () -> BridgeProbe.throwNamed("java/lang/IllegalStateException", "named text"));
        assertThrows(NoClassDefFoundError.class, () -> BridgeProbe.throwNamed("com/lumeric/NoSuchException", "lost"));
        assertEquals("Lm7q-Fx2Rw9t_Kp4Zc8v!Nh3", Coffee.getDESSignKey());
    }

    @Test
    void bindingLocksAndDescribesAs4ChannelsWhateverTheFormat() {
        for (Bitmap.Config config : new Bitmap.Config[] {Bitmap.Config.ARGB_8888, Bitmap.Config.RGB_565}) {
            Bitmap bitmap = Bitmap.createBitmap(3, 2, config);
            long header = BridgeProbe.bind(bitmap);
            assertEquals(1, bitmap.getLockCount());
            assertArrayEquals(new int[] {3, 2, 4, 12, 0, 1}, BridgeProbe.describe(header), config.toString());
            BridgeProbe.unbind(bitmap, header);
            assertEquals(0, bitmap.getLockCount());
        }
    }

    @Test
    void failedLockGivesAHeaderWithoutPixelsThatCheckImageRefuses() {
        assertMessage(RuntimeException.class, "image is empty", () -> BridgeProbe.checkImage(0));
        Bitmap bitmap = filled(2, 2, 0);
        bitmap.failNextLocks(1);
        long header = BridgeProbe.bind(bitmap);
        try {
            assertArrayEquals(new int[] {2, 2, 4, 8, 0, 0}, BridgeProbe.describe(header));
            assertMessage(RuntimeException.class, "image is empty", () -> BridgeProbe.checkImage(header));
        } finally {
            BridgeProbe.unbind(bitmap, header);
        }
        assertEquals(0, bitmap.getLockCount());
    }

    /** Where the copy stops for every size and stride is the bridge's C++ test. */
    @Test
    void copyWritesTheImageBytesInOrder() {
        long image = BridgeProbe.newImage(2, 2, 4);
        try {
            Bitmap bitmap = filled(2, 2, 0);
            assertEquals(0, FilterEngineJNILib.nativeCopyImage(bitmap, image));
            int[] got = new int[4];
            bitmap.getPixels(got, 0, 2, 0, 0, 2, 2);
            assertArrayEquals(new int[] {patternPixel(0), patternPixel(4), patternPixel(8), patternPixel(12)}, got);
            assertEquals(0, bitmap.getLockCount());
        } finally {
            BridgeProbe.freeImage(image);
        }
    }

    @Test
    void copyRefusesBadArguments() {
        long image = BridgeProbe.newImage(1, 1, 4);
        try {
            Bitmap bitmap = filled(1, 1, 0x11223344);
            assertSame(RuntimeException.class,
                    assertThrows(RuntimeException.class, () -> FilterEngineJNILib.nativeCopyImage(bitmap, 0)).getClass());
            bitmap.failNextLocks(1);
            assertTrue(FilterEngineJNILib.nativeCopyImage(bitmap, image) < 0);
            assertEquals(0x11223344, bitmap.getPixel(0, 0));
            assertEquals(0, bitmap.getLockCount());
        } finally {
            BridgeProbe.freeImage(image);
        }
    }

    @Test
    void attachingMirrorsTheRecordAndDetachingKeepsTheSizes() {
        long image = BridgeProbe.newImage(5, 3, 3);
        try {
            QImage q = new QImage();
            q.pixelFormat = 77;
            BridgeProbe.attach(q, image);
            assertEquals(image, BridgeProbe.attached(q));
            assertArrayEquals(new int[] {5, 3, 3, 77}, new int[] {q.width, q.height, q.pixelBytes, q.pixelFormat});
            BridgeProbe.attach(q, 0);
            assertEquals(0, q.nativeImage);
            assertArrayEquals(new int[] {5, 3, 3, 77}, new int[] {q.width, q.height, q.pixelBytes, q.pixelFormat});
        } finally {
            BridgeProbe.freeImage(image);
        }
        // Handles are read at the pointer's full width: all 64 bits on a 64-bit
        // ABI, the low word as a sign-extended address on a 32-bit one. These
        // are only read back, never dereferenced.
        boolean narrow = "32".equals(System.getProperty("sun.arch.data.model"));
        QImage q = new QImage();
        for (long handle : new long[] {0x7654_3210_89AB_CDE0L, 0xFFFF_FFFF_0000_0010L}) {
            q.nativeImage = handle;
            assertEquals(narrow ? (long) (int) handle : handle, BridgeProbe.attached(q));
        }
        QImage created = BridgeProbe.newQImage();
        assertSame(QImage.class, created.getClass());
        assertEquals(0, created.nativeImage);
    }

    @Test
    void rectFieldsMapInOrder() {
        assertArrayEquals(new int[] {-3, 4, 50, -7}, BridgeProbe.rect(new MRect(-3, 4, 50, -7)));
        assertArrayEquals(new int[] {0, 0, 0, 0}, BridgeProbe.rect(null));  // nothing read
    }
}
