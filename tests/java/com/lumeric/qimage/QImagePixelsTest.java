package com.lumeric.qimage;

import static org.junit.jupiter.api.Assertions.assertArrayEquals;
import static org.junit.jupiter.api.Assertions.assertEquals;
import static org.junit.jupiter.api.Assertions.assertFalse;
import static org.junit.jupiter.api.Assertions.assertSame;
import static org.junit.jupiter.api.Assertions.assertThrows;
import static org.junit.jupiter.api.Assertions.assertTrue;

import com.lumeric.filter.QImage;
import org.junit.jupiter.api.Test;

class QImagePixelsTest {
    private static final int W = 5;
    private static final int H = 3;

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
            assertThrows(NullPointerException.class, () -> image.CopyPixels(null, false));
            RuntimeException e = assertThrows(RuntimeException.class, () -> image.CopyPixelsRGB(new int[W * H - 1], false));
            assertSame(RuntimeException.class, e.getClass());
        }
    }

    @Test
    void flipsInPlaceWithoutTouchingFields() {
        try (QImage image = Pixels.image(W, H)) {
            assertTrue(image.nativeFlip(1, 1));
            assertArrayEquals(Pixels.grid(W, H, (x, y) -> Pixels.colorAt(W - 1 - x, H - 1 - y)), Pixels.colors(image));
            image.width = 42;
            assertTrue(image.nativeFlip(0, 1));
            assertEquals(42, image.width);  // not refreshed
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
            assertArrayEquals(Pixels.colors(reference), Pixels.colors(image));
        }
        assertTrue(new QImage().nativeRotate(0));
    }
}
