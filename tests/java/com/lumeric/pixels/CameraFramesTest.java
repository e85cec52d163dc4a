package com.lumeric.pixels;

import static org.junit.jupiter.api.Assertions.assertArrayEquals;
import static org.junit.jupiter.api.Assertions.assertEquals;
import static org.junit.jupiter.api.Assertions.assertThrows;
import static org.junit.jupiter.api.Assertions.assertTrue;

import com.lumeric.filter.QImage;
import java.util.Arrays;
import java.util.function.Consumer;
import org.junit.jupiter.api.Test;

class CameraFramesTest {
    /** Even and odd widths and heights, one of them wider than any SIMD block. */
    private static final int[][] SIZES = {{6, 4}, {7, 3}, {1, 5}, {33, 2}, {640, 11}};

    private static byte[] converted(Consumer<QImage> convert) {
        QImage image = new QImage();
        try {
            convert.accept(image);
            return PixelsProbe.pixels(image);
        } finally {
            PixelsProbe.dispose(image);
        }
    }

    private static byte[] head(byte[] bytes, int n) {
        return Arrays.copyOf(bytes, n);
    }

    @Test
    void conversionsMatchTheFormulas() {
        for (int[] size : SIZES) {
            int w = size[0], h = size[1];
            byte[] frame = PixelReference.randomBytes(2 * w * h + 2, w * 100L + h);
            String where = w + "x" + h;
            assertArrayEquals(PixelReference.nv21(frame, w, h, false),
                    head(converted(q -> q.YUV420sp2RGB(frame, w, h)), 4 * w * h), where);
            assertArrayEquals(PixelReference.nv21(frame, w, h, true),
                    head(converted(q -> q.YUV420sp2YUV(frame, w, h)), 4 * w * h), where);
            assertArrayEquals(PixelReference.yuv422(frame, w, h),
                    head(converted(q -> q.YUV422toRGB(frame, w, h)), 4 * w * h), where);
            assertArrayEquals(PixelReference.rgb565(frame, w, h),
                    head(converted(q -> q.RGB565toRGB(frame, w, h)), 4 * w * h), where);
        }
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
    void imageIsTaggedRgbaAndAttached() {
        QImage image = new QImage();
        try {
            image.YUV420sp2RGB(new byte[6 * 4 * 3 / 2], 6, 4);
            assertArrayEquals(new int[] {6, 4, 4, 24, 96, 0x01020304}, PixelsProbe.describe(image));
            assertEquals(6, image.width);
            assertEquals(4, image.height);
            assertEquals(4, image.pixelBytes);
        } finally {
            PixelsProbe.dispose(image);
        }
    }

    @Test
    void samePixelCountReusesTheImageWithoutResizing() {
        QImage image = new QImage();
        try {
            byte[] frame = PixelReference.randomBytes(64, 3);
            image.YUV420sp2RGB(frame, 6, 4);
            long first = image.nativeImage;
            image.YUV420sp2RGB(frame, 4, 6);
            assertEquals(first, image.nativeImage);
            assertEquals(6, image.width);
            assertArrayEquals(new int[] {6, 4, 4, 24, 96, 0x01020304}, PixelsProbe.describe(image));
            assertArrayEquals(PixelReference.nv21(frame, 4, 6, false), PixelsProbe.pixels(image));
            image.YUV420sp2RGB(frame, 5, 5);
            assertArrayEquals(new int[] {5, 5, 4, 20, 100, 0x01020304}, PixelsProbe.describe(image));
        } finally {
            PixelsProbe.dispose(image);
        }
    }

    @Test
    void decimationRoundsOddStepsUp() {
        int w = 16, h = 12;
        byte[] frame = PixelReference.randomBytes(w * h * 3 / 2, 4);
        byte[] step4 = converted(q -> q.YUV420sp2YUV2(frame, w, h, 4));
        assertArrayEquals(PixelReference.nv21Decimated(frame, w, h, 4), head(step4, 4 * 4 * 3));
        assertArrayEquals(step4, converted(q -> q.YUV420sp2YUV2(frame, w, h, 3)));
        assertArrayEquals(PixelReference.nv21Decimated(frame, w, h, 2),
                converted(q -> q.YUV420sp2YUV2(frame, w, h, 1)));
    }

    @Test
    void badFramesRaiseAndLeaveTheImageAlone() {
        QImage image = new QImage();
        try {
            assertThrows(NullPointerException.class, () -> image.YUV420sp2RGB(null, 4, 4));
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
            assertArrayEquals(new int[] {2, 2, 4, 8, 16, 0x01020304}, PixelsProbe.describe(image));
        } finally {
            PixelsProbe.dispose(image);
        }
    }
}
