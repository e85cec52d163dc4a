package com.lumeric.render;

import static org.junit.jupiter.api.Assertions.assertArrayEquals;
import static org.junit.jupiter.api.Assertions.assertEquals;

import com.lumeric.filter.GLSLRender;
import com.lumeric.host.HostGL;
import java.util.Arrays;
import org.junit.jupiter.api.AfterEach;
import org.junit.jupiter.api.BeforeEach;
import org.junit.jupiter.api.Test;

/** Framebuffer pools seen from Java: return values, and bindings seen through reads. */
class MagicEngineTest {
    private static final int WHITE = 61;
    private static final int BLACK = 62;
    private HostGL gl;
    private GL.Pass copy;

    @BeforeEach
    void context() {
        gl = HostGL.create(64, 64);
        copy = new GL.Pass(GL.COPY_FRAGMENT);
        GLSLRender.nativePickJepgToTexture(GL.image(1, 1, (x, y) -> 0xFFFFFFFF), 0, 0, 1, 1, WHITE, new int[2]);
        GLSLRender.nativePickJepgToTexture(GL.image(1, 1, (x, y) -> 0), 0, 0, 1, 1, BLACK, new int[2]);
        copy.draw(BLACK, 1, 1);
    }

    @AfterEach
    void release() {
        GLSLRender.nativeDeinitMagicEngine(4);
        copy.close();
        gl.close();
    }

    private static byte[] solid(int pixels, int value) {
        byte[] out = new byte[pixels * 4];
        Arrays.fill(out, (byte) value);
        return out;
    }

    /** A pooled read into an array filled with 7 first. */
    private static byte[] pooledRead(int width, int height, int slot) {
        byte[] out = solid(width * height, 7);
        GLSLRender.nativePushDataFromTexture(out, width, height, slot);
        return out;
    }

    @Test
    void initCheckAndDeinitAnswers() {
        assertEquals(-1, GLSLRender.nativeInitMagicEngine(5, 4));
        assertEquals(-1, GLSLRender.nativeCheckMagicEngine(5, 7));
        assertEquals(2, GLSLRender.nativeInitMagicEngine(40, 2));
        assertEquals(2, GLSLRender.nativeInitMagicEngine(3, 2));
        assertEquals(2, GLSLRender.nativeCheckMagicEngine(3, 2));
        assertEquals(0, GLSLRender.nativeCheckMagicEngine(5, 0));

        // Slot 2 holds white, slot 0 black, each in its 4 x 4 target.
        GLSLRender.nativeBeginUseEglImage(4, 4, 2);
        copy.draw(WHITE, 1, 1);
        GLSLRender.nativeEndUseEglImage(4, 4, 2);
        GLSLRender.nativeBeginUseEglImage(4, 4, 0);
        copy.draw(BLACK, 1, 1);
        GLSLRender.nativeEndUseEglImage(4, 4, 0);
        assertArrayEquals(solid(16, 255), pooledRead(4, 4, 2));
        assertArrayEquals(solid(16, 0), pooledRead(4, 4, 0));

        // Deinit frees slots from 0 up to the first empty one (1), whatever it is given.
        assertEquals(0, GLSLRender.nativeDeinitMagicEngine(0));
        assertArrayEquals(solid(16, 7), pooledRead(4, 4, 0), "no engine: nothing read");
        assertArrayEquals(solid(16, 255), pooledRead(4, 4, 2), "behind the empty slot");
        assertEquals(1, GLSLRender.nativeDeinitMagicEngine(4));
        assertArrayEquals(solid(16, 255), pooledRead(4, 4, 2));
        assertEquals(0, GLSLRender.nativeInitMagicEngine(2, 0));
        assertEquals(1, GLSLRender.nativeInitMagicEngine(2, 1));
        assertEquals(1, GLSLRender.nativeDeinitMagicEngine(4));
        assertArrayEquals(solid(16, 7), pooledRead(4, 4, 2));
    }

    @Test
    void beginAndEndSwitchTheBoundFramebuffer() {
        assertEquals(0, GLSLRender.nativeInitMagicEngine(4, 0));
        GLSLRender.nativeBeginUseEglImage(8, 8, 0);
        copy.draw(WHITE, 1, 1);
        assertArrayEquals(solid(64, 255), GL.readFramebuffer(8, 8), "drawn into the pool's target");
        GLSLRender.nativeEndUseEglImage(8, 8, 0);
        assertArrayEquals(solid(4, 0), GL.readFramebuffer(2, 2), "framebuffer 0 again, untouched");

        // The target's viewport stays: a draw now covers only 8 x 8 of framebuffer 0.
        copy.draw(WHITE, 1, 1);
        byte[] screen = GL.readFramebuffer(9, 9);
        assertEquals(-1, screen[(7 * 9 + 7) * 4]);
        assertEquals(0, screen[(8 * 9 + 8) * 4]);
        assertEquals(0, screen[(0 * 9 + 8) * 4]);

        // No size, no engine: nothing is bound, reads stay on framebuffer 0.
        GLSLRender.nativeBeginUseEglImage(0, 8, 0);
        GLSLRender.nativeBeginUseEglImage(8, 8, 3);
        assertArrayEquals(screen, GL.readFramebuffer(9, 9));
        // The pooled read still finds the target's white; the unpooled one reads framebuffer 0.
        assertArrayEquals(solid(64, 255), pooledRead(8, 8, 0));
        byte[] direct = pooledRead(9, 9, -1);
        assertArrayEquals(screen, direct);
    }
}
