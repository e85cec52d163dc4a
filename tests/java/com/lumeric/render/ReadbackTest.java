package com.lumeric.render;

import static org.junit.jupiter.api.Assertions.assertArrayEquals;
import static org.junit.jupiter.api.Assertions.assertEquals;
import static org.junit.jupiter.api.Assertions.assertNotEquals;
import static org.junit.jupiter.api.Assertions.assertThrows;
import static org.junit.jupiter.api.Assertions.assertTrue;

import android.graphics.Bitmap;
import com.lumeric.filter.GLSLRender;
import com.lumeric.filter.QImage;
import com.lumeric.host.HostGL;
import java.nio.ByteBuffer;
import java.util.List;
import java.util.function.ToIntFunction;
import org.junit.jupiter.api.AfterEach;
import org.junit.jupiter.api.BeforeEach;
import org.junit.jupiter.api.Test;

/**
 * Read-backs of the bound framebuffer and of textures into arrays, bitmaps
 * and new QImages. The framebuffer shows a 64 x 64 chart: texel row r of the
 * chart texture lands on GL row r, so bottom-up reads give the chart's rows
 * in order.
 */
class ReadbackTest {
    private static final int SIZE = 64;
    private static final int CHART = 31;
    private static final int SMALL = 32;
    private HostGL gl;
    private byte[] chart;

    @BeforeEach
    void drawChart() {
        gl = HostGL.create(SIZE, SIZE);
        chart = GL.rgba(SIZE, SIZE, GL::chartColor);
        GLSLRender.nativeTextImage(GL.image(SIZE, SIZE, GL::chartColor), CHART);
        try (GL.Pass pass = new GL.Pass(GL.COPY_FRAGMENT)) {
            pass.draw(CHART, SIZE, SIZE);
        }
        // The tile upload also sets the filters that make the texture complete for sampling.
        GLSLRender.nativePickJepgToTexture(GL.image(5, 3, (x, y) -> 0x80000000 | y << 8 | x), 0, 0, 1, 1, SMALL,
                new int[2]);
    }

    @AfterEach
    void release() {
        GLSLRender.nativeDeinitMagicEngine(4);
        gl.close();
    }

    /** Rows y0.. of the chart, columns x0.., as tight RGBA bytes. */
    private byte[] chartPart(int x0, int y0, int width, int height) {
        byte[] out = new byte[width * height * 4];
        for (int y = 0; y < height; y++) System.arraycopy(chart, ((y0 + y) * SIZE + x0) * 4, out, y * width * 4, width * 4);
        return out;
    }

    private static byte[] bitmapBytes(Bitmap bitmap) {
        ByteBuffer out = ByteBuffer.allocate(bitmap.getByteCount());
        bitmap.copyPixelsToBuffer(out);
        return out.array();
    }

    private static Bitmap blankBitmap(int width, int height) {
        return Bitmap.createBitmap(width, height, Bitmap.Config.ARGB_8888);
    }

    @Test
    void framebufferReadsIntoArraysAndBitmaps() {
        assertArrayEquals(chartPart(0, 0, 6, 4), GL.readFramebuffer(6, 4));

        byte[] data = new byte[6 * 4 * 4];
        GLSLRender.nativePushDataFromTexture(data, 6, 4, -1);
        assertArrayEquals(chartPart(0, 0, 6, 4), data);

        Bitmap bitmap = blankBitmap(5, 3);
        assertEquals(1, GLSLRender.nativeCopyPixelToBitmap(bitmap));
        assertArrayEquals(chartPart(0, 0, 5, 3), bitmapBytes(bitmap));
        assertEquals(0, bitmap.getLockCount());

        assertEquals(1, GLSLRender.nativeRenderPixelToBitmap(bitmap, 7, 11));
        assertArrayEquals(chartPart(7, 11, 5, 3), bitmapBytes(bitmap));
        assertEquals(0, bitmap.getLockCount());

        Bitmap pushed = blankBitmap(4, 2);
        assertEquals(0, GLSLRender.nativePushBitmapFromTexture(pushed, -1));
        assertArrayEquals(chartPart(0, 0, 4, 2), bitmapBytes(pushed));
        assertEquals(0, pushed.getLockCount());

        Bitmap snap = blankBitmap(SIZE, SIZE);
        assertEquals(1, GLSLRender.nativeSnap(snap));
        assertArrayEquals(GL.flipRows(chart, SIZE * 4), bitmapBytes(snap));
        assertEquals(0, snap.getLockCount());
    }

    @Test
    void newQImagesHoldExactPixels() {
        QImage copy = GLSLRender.nativeCopyTexture(6, 5);
        assertEquals(6, copy.width);
        assertEquals(5, copy.height);
        assertEquals(4, copy.pixelBytes);
        assertNotEquals(0, copy.nativeImage);
        assertArrayEquals(chartPart(0, 0, 6, 5), GL.bytes(copy));
        copy.Dispose();

        // From a texture: straight through a temporary framebuffer, and drawn through a pool.
        byte[] small = GL.rgba(5, 3, (x, y) -> 0x80000000 | y << 8 | x);
        for (int slot : new int[] {-1, 4, 2}) {
            QImage shared = GLSLRender.nativeCopyTextureWithShare(5, 3, SMALL, slot);
            assertEquals(5, shared.width);
            assertEquals(3, shared.height);
            assertEquals(4, shared.pixelBytes);
            assertArrayEquals(small, GL.bytes(shared), "slot " + slot);
            shared.Dispose();
        }
        // The pooled copy leaves framebuffer 0 bound with the target's viewport.
        assertArrayEquals(chartPart(0, 0, 2, 2), GL.readFramebuffer(2, 2));

        QImage into = GL.image(3, 2, (x, y) -> 0);
        GLSLRender.nativeCopyTexture2(into);
        assertArrayEquals(chartPart(0, 0, 3, 2), GL.bytes(into));
    }

    @Test
    void texturesCopyIntoArraysAndBitmapsWithAndWithoutPool() {
        byte[] small = GL.rgba(5, 3, (x, y) -> 0x80000000 | y << 8 | x);
        for (int slot : new int[] {-1, 1}) {
            byte[] data = new byte[5 * 3 * 4];
            GLSLRender.nativeCopyTexturToDataWithShare(SMALL, data, 5, 3, slot);
            assertArrayEquals(small, data, "slot " + slot);

            Bitmap bitmap = blankBitmap(5, 3);
            assertEquals(1, GLSLRender.nativeCopyPixelToBitmapWithShare(bitmap, SMALL, slot));
            assertArrayEquals(small, bitmapBytes(bitmap), "slot " + slot);
            assertEquals(0, bitmap.getLockCount());
        }

        // The pool's target keeps the last copy: pooled reads fetch it, not the framebuffer.
        byte[] pooled = new byte[5 * 3 * 4];
        GLSLRender.nativePushDataFromTexture(pooled, 5, 3, 1);
        assertArrayEquals(small, pooled);
        Bitmap bitmap = blankBitmap(5, 3);
        assertEquals(0, GLSLRender.nativePushBitmapFromTexture(bitmap, 1));
        assertArrayEquals(small, bitmapBytes(bitmap));
        assertEquals(0, bitmap.getLockCount());
        // Slots 4 and up have no pool: the bound framebuffer is read.
        GLSLRender.nativePushDataFromTexture(pooled, 5, 3, 6);
        assertArrayEquals(chartPart(0, 0, 5, 3), pooled);
    }

    @Test
    void unusableBitmapsAreRefusedAndLeftUnlocked() {
        List<ToIntFunction<Bitmap>> calls = List.of(
                GLSLRender::nativeCopyPixelToBitmap,
                b -> GLSLRender.nativeRenderPixelToBitmap(b, 1, 1),
                b -> GLSLRender.nativeCopyPixelToBitmapWithShare(b, SMALL, -1),
                GLSLRender::nativeSnap,
                b -> GLSLRender.nativePushBitmapFromTexture(b, -1));
        for (int i = 0; i < calls.size(); i++) {
            ToIntFunction<Bitmap> call = calls.get(i);
            Bitmap rgb565 = Bitmap.createBitmap(4, 4, Bitmap.Config.RGB_565);
            byte[] untouched = bitmapBytes(rgb565);
            assertEquals(0, call.applyAsInt(rgb565), "call " + i);
            assertArrayEquals(untouched, bitmapBytes(rgb565));
            Bitmap locked = blankBitmap(4, 4);
            locked.failNextLocks(1);
            int answer = call.applyAsInt(locked);
            // The push answers with the lock's own (negative) result, the others with 0.
            assertTrue(i == 4 ? answer < 0 : answer == 0, "call " + i + " gave " + answer);
            assertArrayEquals(new byte[4 * 4 * 4], bitmapBytes(locked));
            assertEquals(0, rgb565.getLockCount() + locked.getLockCount(), "call " + i);
            assertThrows(NullPointerException.class, () -> call.applyAsInt(null), "call " + i);
        }
    }

    @Test
    void nullAndShortArraysRaise() {
        byte[] tooShort = new byte[5 * 3 * 4 - 1];
        assertThrows(RuntimeException.class, () -> GLSLRender.nativeToRGBData(tooShort, 5, 3));
        assertThrows(RuntimeException.class, () -> GLSLRender.nativePushDataFromTexture(tooShort, 5, 3, -1));
        assertThrows(RuntimeException.class, () -> GLSLRender.nativePushDataFromTexture(tooShort, 5, 3, 1));
        assertThrows(RuntimeException.class,
                () -> GLSLRender.nativeCopyTexturToDataWithShare(SMALL, tooShort, 5, 3, 1));
        assertArrayEquals(new byte[tooShort.length], tooShort);
        assertThrows(NullPointerException.class, () -> GLSLRender.nativeToRGBData(null, 1, 1));
        assertThrows(NullPointerException.class, () -> GLSLRender.nativePushDataFromTexture(null, 1, 1, -1));
        assertThrows(NullPointerException.class,
                () -> GLSLRender.nativeCopyTexturToDataWithShare(SMALL, null, 1, 1, -1));
        assertThrows(NullPointerException.class, () -> GLSLRender.nativeCopyTexture2(null));
        // A 3-channel image has too few bytes for the RGBA read.
        QImage rgb = new QImage();
        rgb.CreateImage(4, 4, 3);
        assertThrows(RuntimeException.class, () -> GLSLRender.nativeCopyTexture2(rgb));
    }
}
