package com.lumeric.render;

import static org.junit.jupiter.api.Assertions.assertArrayEquals;
import static org.junit.jupiter.api.Assertions.assertEquals;
import static org.junit.jupiter.api.Assertions.assertThrows;
import static org.junit.jupiter.api.Assertions.assertTrue;

import android.graphics.Bitmap;
import com.lumeric.filter.GLSLRender;
import com.lumeric.filter.QImage;
import com.lumeric.host.HostGL;
import java.util.List;
import java.util.function.ToIntFunction;
import org.junit.jupiter.api.AfterEach;
import org.junit.jupiter.api.BeforeEach;
import org.junit.jupiter.api.Test;

/**
 * Read-backs of the bound framebuffer and of textures into arrays, bitmaps
 * and new QImages, and the framebuffer pools behind them. The framebuffer
 * shows a 64 x 64 chart: texel row r of the chart texture lands on GL row r,
 * so bottom-up reads give the chart's rows in order.
 */
class ReadbackTest {
    private static final int SIZE = 64;
    private static final int CHART = 31;
    private static final int SMALL = 32;
    private static final int WHITE = 33;
    private static final int BLACK = 34;
    private final byte[] chart = GL.rgba(SIZE, SIZE, GL::chartColor);
    private final byte[] small = GL.rgba(5, 3, (x, y) -> 0x80000000 | y << 8 | x);
    private HostGL gl;
    private GL.Pass copy;

    @BeforeEach
    void drawChart() {
        gl = HostGL.create(SIZE, SIZE);
        copy = new GL.Pass(GL.COPY_FRAGMENT);
        GLSLRender.nativeTextImage(GL.image(SIZE, SIZE, GL::chartColor), CHART);
        copy.draw(CHART, SIZE, SIZE);
        // The tile upload also sets the filters that make the texture complete for sampling.
        GLSLRender.nativePickJepgToTexture(GL.image(5, 3, (x, y) -> 0x80000000 | y << 8 | x), 0, 0, 1, 1, SMALL,
                new int[2]);
        GLSLRender.nativePickJepgToTexture(GL.image(1, 1, (x, y) -> -1), 0, 0, 1, 1, WHITE, new int[2]);
        GLSLRender.nativePickJepgToTexture(GL.image(1, 1, (x, y) -> 0), 0, 0, 1, 1, BLACK, new int[2]);
    }

    @AfterEach
    void release() {
        // Deinit stops at the first empty slot: fill them all so that every one goes.
        for (int slot = 0; slot < 4; slot++) GLSLRender.nativeInitMagicEngine(1, slot);
        GLSLRender.nativeDeinitMagicEngine(4);
        copy.close();
        gl.close();
    }

    /** Rows y0.. of the chart, columns x0.., as tight RGBA bytes. */
    private byte[] chartPart(int x0, int y0, int width, int height) {
        byte[] out = new byte[width * height * 4];
        for (int y = 0; y < height; y++) System.arraycopy(chart, ((y0 + y) * SIZE + x0) * 4, out, y * width * 4, width * 4);
        return out;
    }

    /** A pooled read into an array filled with 7 first. */
    private static byte[] pooledRead(int width, int height, int slot) {
        byte[] out = GL.solid(width * height * 4, 7);
        GLSLRender.nativePushDataFromTexture(out, width, height, slot);
        return out;
    }

    @Test
    void framebufferReadsIntoArraysAndBitmaps() {
        assertArrayEquals(chartPart(0, 0, 6, 4), GL.readFramebuffer(6, 4));
        assertArrayEquals(chartPart(0, 0, 6, 4), pooledRead(6, 4, -1));

        Bitmap bitmap = GL.blank(5, 3);
        assertEquals(1, GLSLRender.nativeCopyPixelToBitmap(bitmap));
        assertEquals(1, GLSLRender.nativeRenderPixelToBitmap(bitmap, 7, 11));
        assertArrayEquals(chartPart(7, 11, 5, 3), GL.bytes(bitmap));

        Bitmap snap = GL.blank(SIZE, SIZE);
        assertEquals(1, GLSLRender.nativeSnap(snap));
        assertArrayEquals(GL.rgba(SIZE, SIZE, (x, y) -> GL.chartColor(x, SIZE - 1 - y)), GL.bytes(snap));
        assertEquals(0, bitmap.getLockCount() + snap.getLockCount());
    }

    @Test
    void newQImagesHoldExactPixels() {
        QImage copied = GLSLRender.nativeCopyTexture(6, 5);
        assertArrayEquals(new int[] {6, 5, 4}, new int[] {copied.width, copied.height, copied.pixelBytes});
        assertArrayEquals(chartPart(0, 0, 6, 5), GL.bytes(copied));
        copied.Dispose();

        // From a texture: straight through a temporary framebuffer, and drawn through a pool.
        for (int slot : new int[] {-1, 2}) {
            QImage shared = GLSLRender.nativeCopyTextureWithShare(5, 3, SMALL, slot);
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
        Bitmap copied = GL.blank(5, 3);
        assertEquals(1, GLSLRender.nativeCopyPixelToBitmapWithShare(copied, SMALL, 1));
        assertArrayEquals(small, GL.bytes(copied));
        // The pool's target keeps the last copy: pooled reads fetch it, not the framebuffer.
        assertArrayEquals(small, pooledRead(5, 3, 1));
        Bitmap pushed = GL.blank(5, 3);
        assertEquals(0, GLSLRender.nativePushBitmapFromTexture(pushed, 1));
        assertArrayEquals(small, GL.bytes(pushed));
        assertEquals(0, copied.getLockCount() + pushed.getLockCount());
        // Slots 4 and up have no pool: the bound framebuffer is read.
        assertArrayEquals(chartPart(0, 0, 5, 3), pooledRead(5, 3, 6));
    }

    @Test
    void poolInitCheckAndDeinitAnswers() {
        assertEquals(-1, GLSLRender.nativeInitMagicEngine(5, 4));
        assertEquals(-1, GLSLRender.nativeCheckMagicEngine(5, 7));
        assertEquals(2, GLSLRender.nativeInitMagicEngine(40, 2));
        assertEquals(2, GLSLRender.nativeInitMagicEngine(3, 2));
        assertEquals(2, GLSLRender.nativeCheckMagicEngine(3, 2));
        assertEquals(0, GLSLRender.nativeCheckMagicEngine(5, 0));

        // Slot 2 holds white, slot 0 black, each in its 4 x 4 target.
        for (int slot : new int[] {2, 0}) {
            GLSLRender.nativeBeginUseEglImage(4, 4, slot);
            copy.draw(slot == 2 ? WHITE : BLACK, 1, 1);
            GLSLRender.nativeEndUseEglImage(4, 4, slot);
        }
        assertArrayEquals(GL.solid(64, 255), pooledRead(4, 4, 2));
        assertArrayEquals(GL.solid(64, 0), pooledRead(4, 4, 0));

        // Deinit frees slots from 0 up to the first empty one (1), whatever it is given.
        assertEquals(0, GLSLRender.nativeDeinitMagicEngine(0));
        assertArrayEquals(GL.solid(64, 7), pooledRead(4, 4, 0), "no engine: nothing read");
        assertArrayEquals(GL.solid(64, 255), pooledRead(4, 4, 2), "behind the empty slot");
        assertEquals(1, GLSLRender.nativeDeinitMagicEngine(4));
        assertArrayEquals(GL.solid(64, 255), pooledRead(4, 4, 2));
        assertEquals(0, GLSLRender.nativeInitMagicEngine(2, 0));
        assertEquals(1, GLSLRender.nativeInitMagicEngine(2, 1));
        assertEquals(1, GLSLRender.nativeDeinitMagicEngine(4));
        assertArrayEquals(GL.solid(64, 7), pooledRead(4, 4, 2));
    }

    @Test
    void poolBeginAndEndSwitchTheBoundFramebuffer() {
        assertEquals(0, GLSLRender.nativeInitMagicEngine(4, 0));
        GLSLRender.nativeBeginUseEglImage(8, 8, 0);
        copy.draw(WHITE, 1, 1);
        assertArrayEquals(GL.solid(256, 255), GL.readFramebuffer(8, 8), "drawn into the pool's target");
        GLSLRender.nativeEndUseEglImage(8, 8, 0);
        // No size, no engine: nothing is bound, reads stay on framebuffer 0.
        GLSLRender.nativeBeginUseEglImage(0, 8, 0);
        GLSLRender.nativeBeginUseEglImage(8, 8, 3);
        assertArrayEquals(chartPart(0, 0, 9, 9), pooledRead(9, 9, -1), "framebuffer 0 again, untouched");
    }

    @Test
    void unusableBitmapsAreRefusedAndLeftUnlocked() {
        List<ToIntFunction<Bitmap>> calls = List.of(
                GLSLRender::nativeCopyPixelToBitmap,
                GLSLRender::nativeSnap,
                b -> GLSLRender.nativePushBitmapFromTexture(b, -1));
        for (int i = 0; i < calls.size(); i++) {
            ToIntFunction<Bitmap> call = calls.get(i);
            Bitmap rgb565 = Bitmap.createBitmap(4, 4, Bitmap.Config.RGB_565);
            byte[] untouched = GL.bytes(rgb565);
            assertEquals(0, call.applyAsInt(rgb565), "call " + i);
            assertArrayEquals(untouched, GL.bytes(rgb565));
            Bitmap locked = GL.blank(4, 4);
            locked.failNextLocks(1);
            int answer = call.applyAsInt(locked);
            // The push answers with the lock's own (negative) result, the others with 0.
            assertTrue(i == 2 ? answer < 0 : answer == 0, "call " + i + " gave " + answer);
            assertArrayEquals(new byte[4 * 4 * 4], GL.bytes(locked));
            assertEquals(0, rgb565.getLockCount() + locked.getLockCount(), "call " + i);
        }
    }

    @Test
    void nullAndShortArraysRaise() {
        byte[] tooShort = new byte[5 * 3 * 4 - 1];
        assertThrows(RuntimeException.class, () -> GLSLRender.nativeToRGBData(tooShort, 5, 3));
        assertThrows(RuntimeException.class, () -> GLSLRender.nativePushDataFromTexture(tooShort, 5, 3, 1));
        assertThrows(RuntimeException.class,
                () -> GLSLRender.nativeCopyTexturToDataWithShare(SMALL, tooShort, 5, 3, 1));
        // Sizes whose byte counts wrap a 32-bit size_t (2^34 and 4 mod 2^32).
        for (int[] size : new int[][] {{4096, 1 << 20}, {Integer.MAX_VALUE, Integer.MAX_VALUE}}) {
            assertThrows(RuntimeException.class, () -> GLSLRender.nativeToRGBData(tooShort, size[0], size[1]));
            assertThrows(RuntimeException.class,
                    () -> GLSLRender.nativeCopyTexturToDataWithShare(SMALL, tooShort, size[0], size[1], -2));
            assertThrows(RuntimeException.class,
                    () -> GLSLRender.nativePushDataFromTexture(tooShort, size[0], size[1], -1));
        }
        assertArrayEquals(new byte[tooShort.length], tooShort);
        // A 3-channel image has too few bytes for the RGBA read.
        assertThrows(RuntimeException.class, () -> GLSLRender.nativeCopyTexture2(GL.blank(4, 4, 3)));
    }
}
