package com.lumeric.qimage;

import static org.junit.jupiter.api.Assertions.assertArrayEquals;
import static org.junit.jupiter.api.Assertions.assertEquals;
import static org.junit.jupiter.api.Assertions.assertFalse;
import static org.junit.jupiter.api.Assertions.assertThrows;
import static org.junit.jupiter.api.Assertions.assertTrue;

import com.lumeric.filter.QImage;
import org.junit.jupiter.api.Test;

class QImagePixelsTest {
    private static final int W = 5;
    private static final int H = 3;

    private static int[] expected(boolean mirror, boolean raw) {
        int[] out = new int[W * H];
        for (int y = 0; y < H; y++) {
            for (int x = 0; x < W; x++) {
                int color = Pixels.colorAt(x, y);
                out[y * W + (mirror ? W - 1 - x : x)] = raw ? Pixels.rawInt(color) : color;
            }
        }
        return out;
    }

    @Test
    void copyPixelsGivesColorIntsPlainAndMirrored() {
        try (QImage image = Pixels.image(W, H)) {
            int[] out = new int[W * H];
            image.CopyPixels(out, false);
            assertArrayEquals(expected(false, false), out);
            image.CopyPixels(out, true);
            assertArrayEquals(expected(true, false), out);
        }
    }

    @Test
    void copyPixelsRgbKeepsByteOrder() {
        try (QImage image = Pixels.image(W, H)) {
            int[] out = new int[W * H];
            image.CopyPixelsRGB(out, false);
            assertArrayEquals(expected(false, true), out);
            image.CopyPixelsRGB(out, true);
            assertArrayEquals(expected(true, true), out);
        }
    }

    @Test
    void mirroredRowsOfThreeChannelImagesStartWidthTimesThreeBytesApart() {
        try (QImage image = new QImage()) {
            image.CreateImage(4, 2, 3);  // 24 bytes; the source is still read 4 bytes a pixel
            int[] out = new int[8];
            java.util.Arrays.fill(out, 0x55555555);
            image.CopyPixels(out, true);
            // Row 1 starts at byte 12 (int 3) and ends at int 6; int 7 is untouched.
            assertEquals(0x55555555, out[7]);
        }
    }

    @Test
    void badArraysRaise() {
        try (QImage image = Pixels.image(W, H)) {
            assertThrows(NullPointerException.class, () -> image.CopyPixels(null, false));
            RuntimeException e = assertThrows(RuntimeException.class, () -> image.CopyPixelsRGB(new int[W * H - 1], false));
            assertEquals(RuntimeException.class, e.getClass());
        }
    }

    @Test
    void flipsInPlaceWithoutTouchingFields() {
        try (QImage image = Pixels.image(W, H)) {
            assertTrue(image.nativeFlip(1, 1));
            int[] colors = Pixels.colors(image);
            for (int y = 0; y < H; y++) {
                for (int x = 0; x < W; x++) assertEquals(Pixels.colorAt(W - 1 - x, H - 1 - y), colors[y * W + x]);
            }
            assertTrue(image.nativeFlip(0, 1));
            assertEquals(Pixels.colorAt(W - 1, 0), Pixels.colors(image)[0]);
            image.width = 42;
            assertTrue(image.nativeFlip(1, 0));
            assertEquals(42, image.width);  // not refreshed
        }
    }

    @Test
    void rotateTurnsClockwiseAndSwapsFields() {
        try (QImage image = Pixels.image(3, 2)) {
            assertTrue(image.nativeRotate(90));
            assertEquals(2, image.width);
            assertEquals(3, image.height);
            int[] colors = Pixels.colors(image);
            // The first row is the old first column read bottom to top.
            assertEquals(Pixels.colorAt(0, 1), colors[0]);
            assertEquals(Pixels.colorAt(0, 0), colors[1]);
            for (int y = 0; y < 3; y++) {
                for (int x = 0; x < 2; x++) assertEquals(Pixels.colorAt(y, 1 - x), colors[y * 2 + x]);
            }
        }
    }

    @Test
    void rotateAngles() {
        try (QImage image = Pixels.image(3, 2); QImage reference = Pixels.image(3, 2)) {
            assertTrue(image.nativeRotate(-90));
            assertTrue(reference.nativeRotate(270));
            assertArrayEquals(Pixels.colors(reference), Pixels.colors(image));
            assertEquals(2, image.width);

            assertFalse(image.nativeRotate(45));
            assertFalse(image.nativeRotate(-450));  // remainder -90 is refused
            assertTrue(image.nativeRotate(720));
            assertArrayEquals(Pixels.colors(reference), Pixels.colors(image));

            assertTrue(image.nativeRotate(180));
            assertTrue(reference.nativeRotate(90));
            assertTrue(reference.nativeRotate(90));
            assertArrayEquals(Pixels.colors(reference), Pixels.colors(image));
        }
        assertTrue(new QImage().nativeRotate(0));
    }
}
