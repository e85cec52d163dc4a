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

    @Test
    void conversionsMatchTheFormulas() {
        // Even and odd widths and heights, one of them wider than any SIMD block.
        for (int[] size : new int[][] {{6, 4}, {7, 3}, {1, 5}, {33, 2}, {640, 11}}) {
            int w = size[0], h = size[1];
            byte[] frame = PixelReference.randomBytes(2 * w * h + 2, w * 100L + h);
            String where = w + "x" + h;
            assertArrayEquals(PixelReference.nv21(frame, w, h, false), converted(q -> q.YUV420sp2RGB(frame, w, h)), where);
            assertArrayEquals(PixelReference.nv21(frame, w, h, true), converted(q -> q.YUV420sp2YUV(frame, w, h)), where);
            assertArrayEquals(PixelReference.yuv422(frame, w, h), converted(q -> q.YUV422toRGB(frame, w, h)), where);
            assertArrayEquals(PixelReference.rgb565(frame, w, h), converted(q -> q.RGB565toRGB(frame, w, h)), where);
        }
        // An odd width walks one chroma byte past a w*h*3/2 array: that byte
        // reads as 0 rather than raising or reading past the array.
        byte[] frame = PixelReference.randomBytes(5 * 3 * 3 / 2, 7);
        assertArrayEquals(PixelReference.nv21(Arrays.copyOf(frame, 32), 5, 3, false),
                converted(q -> q.YUV420sp2RGB(frame, 5, 3)));
    }

    @Test
    void studioRangeEndsAndRgb565Fields() {
        // Two pixels sharing one chroma pair (V, U) = (128, 128).
        byte[] rgba = converted(q -> q.YUV420sp2RGB(new byte[] {16, (byte) 235, (byte) 128, (byte) 128}, 2, 1));
        assertArrayEquals(new byte[] {0, 0, 0, -1, (byte) 254, (byte) 254, (byte) 254, -1}, rgba);
        byte[] white = converted(q -> q.RGB565toRGB(new byte[] {-1, -1}, 1, 1));
        assertArrayEquals(new byte[] {31, 63, 31, -1}, white);
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
            assertArrayEquals(PixelReference.nv21(frame, 4, 6, false), PixelReference.pixels(image));
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
        assertArrayEquals(PixelReference.nv21Decimated(frame, w, h, 4), step4);
        assertArrayEquals(step4, converted(q -> q.YUV420sp2YUV2(frame, w, h, 3)));
        assertArrayEquals(PixelReference.nv21Decimated(frame, w, h, 2),
                converted(q -> q.YUV420sp2YUV2(frame, w, h, 1)));
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
