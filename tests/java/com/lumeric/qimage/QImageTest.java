package com.lumeric.qimage;

import static org.junit.jupiter.api.Assertions.*;

import android.graphics.Bitmap;
import com.lumeric.filter.QImage;
import org.junit.jupiter.api.Test;
import org.junit.jupiter.api.function.Executable;

/** QImage natives on their own: creation, copies, read-outs, flips, rotation and missing images. */
class QImageTest {
    private static final int W = 5;
    private static final int H = 3;

    private static int[] fields(QImage q) {
        return new int[] {q.width, q.height, q.pixelBytes};
    }

    @Test
    void createImagePublishesFieldsAndDisposeIsRepeatable() {
        QImage image = new QImage();
        image.CreateImage(3, 2, 3);
        assertNotEquals(0, image.nativeImage);
        assertArrayEquals(new int[] {3, 2, 3}, fields(image));
        assertEquals(18, image.getByteSize());  // stride 9, not 12

        image.width = 99;
        image.pixelBytes = 1;
        image.nativeUpdateROI();
        assertArrayEquals(new int[] {3, 2, 3}, fields(image));

        // Zero area drops the image but leaves the fields as they were.
        image.CreateImage(0, 10, 4);
        assertEquals(0, image.nativeImage);
        assertArrayEquals(new int[] {3, 2, 3}, fields(image));
        assertEquals(0, image.getByteSize());

        RuntimeException e = assertThrows(RuntimeException.class, () -> image.CreateImage(100000, 100000, 4));
        assertEquals("Out of memory of QImage.CreateImage ", e.getMessage());
        assertEquals(0, image.nativeImage);

        image.CreateImage(2, 2, 4);
        image.Dispose();
        image.Dispose();
        assertEquals(0, image.nativeImage);
    }

    @Test
    void subImageClampsOriginButNotSize() {
        // x, y, w, h asked for; width and height got; the origin read from.
        int[][] cases = {{-5, -5, 20, 20, 10, 10, 0, 0}, {-2, 3, 4, 20, 4, 7, 0, 3}, {2, 1, 3, 3, 3, 3, 2, 1}};
        for (int[] c : cases) {
            try (QImage image = Pixels.image(10, 10)) {
                image.createSubImage(c[0], c[1], c[2], c[3]);
                assertArrayEquals(new int[] {c[4], c[5], c[4] * c[5] * 4},
                        new int[] {image.width, image.height, image.getByteSize()});
                assertArrayEquals(Pixels.grid(c[4], c[5], (x, y) -> Pixels.colorAt(x + c[6], y + c[7])), Pixels.colors(image));
            }
        }
        try (QImage image = Pixels.image(10, 10)) {
            long before = image.nativeImage;
            image.createSubImage(12, 0, 5, 5);
            image.createSubImage(0, 0, 0, 5);
            assertEquals(before, image.nativeImage);
            assertEquals(10, image.width);
        }
    }

    private static void assertImageIsEmpty(Executable call) {
        Throwable e = assertThrows(Throwable.class, call);
        assertSame(RuntimeException.class, e.getClass());
        assertEquals("image is empty", e.getMessage());
    }

    /** What each native does without a native image is tabled in NullArgumentsTest; here the mixed cases. */
    @Test
    void emptyImagesAsArgumentsRaiseAndLeaveBitmapsUnlocked() {
        QImage empty = new QImage();
        Bitmap bitmap = Bitmap.createBitmap(2, 2, Bitmap.Config.ARGB_8888);
        assertImageIsEmpty(() -> empty.FromBitmap(bitmap));
        assertEquals(0, bitmap.getLockCount());
        try (QImage image = Pixels.image(2, 2); QImage other = Pixels.image(2, 2)) {
            image.WrapExif(other);  // no markers to move
            assertImageIsEmpty(() -> image.WrapExif(empty));
        }
    }

    /** The chart as CopyPixels (colour ints) or CopyPixelsRGB (raw RGBA ints) gives it, rows mirrored or not. */
    private static int[] expected(boolean mirror, boolean raw) {
        return Pixels.grid(W, H, (x, y) -> {
            int color = Pixels.colorAt(mirror ? W - 1 - x : x, y);
            return raw ? Pixels.rawInt(color) : color;
        });
    }

    @Test
    void copyPixelsGivesColorOrRawIntsPlainAndMirrored() {
        try (QImage image = Pixels.image(W, H)) {
            for (boolean raw : new boolean[] {false, true}) {
                for (boolean mirror : new boolean[] {false, true}) {
                    int[] out = new int[W * H];
                    if (raw) image.CopyPixelsRGB(out, mirror);
                    else image.CopyPixels(out, mirror);
                    assertArrayEquals(expected(mirror, raw), out, "raw " + raw + " mirror " + mirror);
                }
            }
            RuntimeException e = assertThrows(RuntimeException.class, () -> image.CopyPixelsRGB(new int[W * H - 1], false));
            assertSame(RuntimeException.class, e.getClass());
        }
    }

    @Test
    void flipsInPlaceWithoutTouchingFieldsAndCopiesAreDeep() {
        try (QImage image = Pixels.image(W, H); QImage copy = image.CreateImageFromQImage()) {
            assertTrue(image.nativeFlip(1, 1));
            assertArrayEquals(Pixels.grid(W, H, (x, y) -> Pixels.colorAt(W - 1 - x, H - 1 - y)), Pixels.colors(image));
            image.width = 42;
            assertTrue(image.nativeFlip(0, 1));
            assertEquals(42, image.width);  // not refreshed
            assertArrayEquals(new int[] {W, H, 4}, fields(copy));
            assertArrayEquals(Pixels.grid(W, H, Pixels::colorAt), Pixels.colors(copy));
        }
    }

    @Test
    void rotateTurnsClockwiseSwapsFieldsAndRefusesOtherAngles() {
        try (QImage image = Pixels.image(3, 2); QImage reference = Pixels.image(3, 2)) {
            assertTrue(reference.nativeRotate(90));
            assertArrayEquals(new int[] {2, 3}, new int[] {reference.width, reference.height});
            // Each row is an old column read bottom to top.
            assertArrayEquals(Pixels.grid(2, 3, (x, y) -> Pixels.colorAt(y, 1 - x)), Pixels.colors(reference));
            assertTrue(reference.nativeRotate(180));  // 270 in all
            assertTrue(image.nativeRotate(-90));
            assertArrayEquals(Pixels.colors(reference), Pixels.colors(image));

            assertFalse(image.nativeRotate(45));
            assertFalse(image.nativeRotate(-450));  // remainder -90 is refused
            assertFalse(image.nativeRotate(Integer.MAX_VALUE));
            assertTrue(image.nativeRotate(720));
        }
        assertTrue(new QImage().nativeRotate(0));
    }
}
