package com.lumeric.pixels;

import static org.junit.jupiter.api.Assertions.assertArrayEquals;
import static org.junit.jupiter.api.Assertions.assertEquals;
import static org.junit.jupiter.api.Assertions.assertThrows;
import static org.junit.jupiter.api.Assertions.assertTrue;

import com.lumeric.filter.QImage;
import com.lumeric.host.ImageFilterTables;
import java.util.Arrays;
import java.util.function.Consumer;
import org.junit.jupiter.api.BeforeAll;
import org.junit.jupiter.api.Test;

class CameraFramesTest {
    @BeforeAll
    static void buildTables() {
        ImageFilterTables.initialize();
    }

    private static byte[] converted(Consumer<QImage> convert) {
        try (QImage image = new QImage()) {
            convert.accept(image);
            return PixelReference.pixels(image);
        }
    }

    /** Each pixel's bytes are checked in C++ for every format and size; here that each native reaches its own. */
    @Test
    void eachFormatReachesItsConversion() {
        // Two pixels sharing one chroma pair (V, U) = (128, 128): the studio range's ends.
        byte[] ends = {0, 0, 0, -1, (byte) 254, (byte) 254, (byte) 254, -1};
        assertArrayEquals(ends, converted(q -> q.YUV420sp2RGB(new byte[] {16, (byte) 235, (byte) 128, (byte) 128}, 2, 1)));
        assertArrayEquals(ends, converted(q -> q.YUV422toRGB(new byte[] {(byte) 128, 16, (byte) 128, (byte) 235}, 2, 1)));
        // RGB565 little-endian words as their 5, 6 and 5-bit fields.
        assertArrayEquals(new byte[] {31, 63, 31, -1, 1, 1, 0, -1},
                converted(q -> q.RGB565toRGB(new byte[] {-1, -1, 0x20, 0x08}, 2, 1)));
        // Y, U, V of a 3 x 2 frame of w * h * 3 / 2 bytes: the pixels run on as
        // one stream in rows of two pairs (pixels 4 and 5 take the first pair
        // again), and the byte one past the array reads as 0.
        byte[] frame = {10, 11, 12, 13, 14, 15, 100, 101, 102};
        assertArrayEquals(new byte[] {10, 101, 100, -1, 11, 101, 100, -1, 12, 0, 102, -1, 13, 0, 102, -1,
                14, 101, 100, -1, 15, 101, 100, -1}, converted(q -> q.YUV420sp2YUV(frame, 3, 2)));
    }

    @Test
    void samePixelCountReusesTheImageWithoutResizing() {
        try (QImage image = new QImage()) {
            byte[] frame = PixelReference.randomBytes(64, 3);
            image.YUV420sp2RGB(frame, 6, 4);
            long first = image.nativeImage;
            image.YUV420sp2RGB(frame, 4, 6);
            assertEquals(first, image.nativeImage);
            assertEquals(6, image.width);
            assertEquals(4, image.height);
            assertArrayEquals(converted(q -> q.YUV420sp2RGB(frame, 4, 6)), PixelReference.pixels(image));
            image.YUV420sp2RGB(frame, 5, 5);
            assertEquals(5, image.width);
            assertEquals(100, image.getByteSize());
            // The same pixel count in one byte per pixel has no room for RGBA.
            image.CreateImage(6, 4, 1);
            image.YUV420sp2RGB(frame, 6, 4);
            assertEquals(4, image.pixelBytes);
            assertEquals(96, image.getByteSize());
        }
    }

    @Test
    void decimationRoundsOddStepsUp() {
        int w = 16, h = 12;
        byte[] frame = PixelReference.randomBytes(w * h * 3 / 2, 4);
        byte[] step4 = converted(q -> q.YUV420sp2YUV2(frame, w, h, 4));
        assertEquals(4 * (w / 4) * (h / 4), step4.length);
        assertArrayEquals(new byte[] {frame[0], frame[w * h + 1], frame[w * h], -1}, Arrays.copyOf(step4, 4));
        assertArrayEquals(step4, converted(q -> q.YUV420sp2YUV2(frame, w, h, 3)));
        byte[] step2 = converted(q -> q.YUV420sp2YUV2(frame, w, h, 2));
        assertEquals(4 * (w / 2) * (h / 2), step2.length);
        assertArrayEquals(step2, converted(q -> q.YUV420sp2YUV2(frame, w, h, 1)));
    }

    @Test
    void badFramesRaiseAndLeaveTheImageAlone() {
        try (QImage image = new QImage()) {
            RuntimeException shortFrame = assertThrows(RuntimeException.class,
                    () -> image.YUV420sp2RGB(new byte[23], 4, 4));
            assertTrue(shortFrame.getMessage().contains("too short"), shortFrame.getMessage());
            assertThrows(RuntimeException.class, () -> image.YUV422toRGB(new byte[31], 4, 4));
            assertThrows(RuntimeException.class, () -> image.RGB565toRGB(new byte[31], 4, 4));
            assertThrows(RuntimeException.class, () -> image.YUV420sp2YUV2(new byte[24], 4, 4, 0));
            assertThrows(RuntimeException.class, () -> image.YUV420sp2YUV2(new byte[24], 4, 4, -2));
            assertThrows(RuntimeException.class, () -> image.YUV420sp2RGB(new byte[24], -4, 4));
            assertEquals(0, image.nativeImage);
            // Exactly the frame's size is enough.
            image.YUV420sp2RGB(new byte[24], 4, 4);
            image.YUV420sp2YUV2(new byte[24], 4, 4, 2);
            assertEquals(2, image.width);
            assertEquals(16, image.getByteSize());
        }
        // Without bytes the frame image is still made and attached (the
        // exception's text is in the null-argument table).
        try (QImage image = new QImage()) {
            assertThrows(RuntimeException.class, () -> image.YUV420sp2RGB(null, 4, 2));
            assertArrayEquals(new int[] {4, 2, 4, 32}, new int[] {image.width, image.height, image.pixelBytes, image.getByteSize()});
        }
    }
}
