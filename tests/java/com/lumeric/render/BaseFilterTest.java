package com.lumeric.render;

import static org.junit.jupiter.api.Assertions.assertArrayEquals;
import static org.junit.jupiter.api.Assertions.assertEquals;
import static org.junit.jupiter.api.Assertions.assertNotEquals;
import static org.junit.jupiter.api.Assertions.assertThrows;

import com.lumeric.filter.BaseFilter;
import com.lumeric.filter.GLSLRender;
import com.lumeric.host.HostGL;
import java.util.List;
import java.util.function.Consumer;
import org.junit.jupiter.api.AfterEach;
import org.junit.jupiter.api.BeforeEach;
import org.junit.jupiter.api.Test;

/** One shader pass driven from Java: matrices, quads, uniforms and handles. */
class BaseFilterTest {
    private static final int SIZE = 64;
    private static final int CHART = 51;
    private final BaseFilter filter = new BaseFilter();
    private final byte[] chart = GL.rgba(SIZE, SIZE, GL::chartColor);
    private HostGL gl;

    @BeforeEach
    void context() {
        gl = HostGL.create(SIZE, SIZE);
        GLSLRender.nativeTextImage(GL.image(SIZE, SIZE, GL::chartColor), CHART);
    }

    @AfterEach
    void release() {
        gl.close();
    }

    private long copyFilter() {
        long handle = filter.nativeInitialWithString(0, false, null, GL.COPY_FRAGMENT);
        assertNotEquals(0, filter.nativeApplyFilter(handle));
        return handle;
    }

    private byte[] render(long handle) {
        assertEquals(1, filter.nativeRenderTexture(handle, CHART, SIZE, SIZE));
        return GL.readFramebuffer(SIZE, SIZE);
    }

    /** The chart with columns or rows reversed. */
    private static byte[] mirrored(boolean columns, boolean rows) {
        return GL.rgba(SIZE, SIZE, (x, y) -> GL.chartColor(columns ? SIZE - 1 - x : x, rows ? SIZE - 1 - y : y));
    }

    @Test
    void zeroHandlesAnswerAtOnceAndBrokenProgramsFail() {
        assertEquals(-1, filter.nativeApplyFilter(0));
        assertEquals(1, filter.nativeClear(0));
        assertEquals(0, filter.nativeUpdateMatrix(0, null));
        assertEquals(0, filter.nativeSetGlobalTextureMatrix(0, null));
        assertEquals(0, filter.nativeUpdateModelMatrix(0, new float[16]));
        assertEquals(0, filter.nativeSetRotationAndFlip(0, 90, 1, 1));
        assertEquals(0, filter.nativeRenderTexture(0, CHART, SIZE, SIZE));
        assertEquals(0, filter.nativeSetPositions(0, null));
        assertEquals(0, filter.nativeSetTexCords(0, new float[8]));
        assertEquals(0, filter.nativeSetRenderMode(0, 1));
        long broken = filter.nativeInitialWithString(0, false, null, "void main() { gl_FragColor = nonsense; }");
        assertEquals(0, filter.nativeApplyFilter(broken));
        assertEquals(1, filter.nativeClear(broken));
    }

    @Test
    void flipsMirrorTheQuadAndRotationStartsAfresh() {
        long handle = copyFilter();
        assertArrayEquals(chart, render(handle));
        for (int[] f : new int[][] {{1, 0}, {0, 1}}) {
            assertEquals(1, filter.nativeSetRotationAndFlip(handle, 0, f[0], f[1]));
            assertArrayEquals(mirrored(f[0] == 1, f[1] == 1), render(handle), "earlier flips are discarded");
        }

        // The model matrix from Java replaces the rotation; the texture matrix mirrors s.
        assertEquals(1, filter.nativeUpdateModelMatrix(handle, new float[] {-1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1}));
        assertArrayEquals(mirrored(true, false), render(handle));
        filter.nativeUpdateModelMatrix(handle, new float[] {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1});
        assertEquals(1, filter.nativeUpdateMatrix(handle, new float[] {1, 0, 0, 0, 0, -1, 0, 0, 0, 0, 1, 0, 0, 1, 0, 1}));
        assertArrayEquals(mirrored(false, true), render(handle));
        filter.nativeClear(handle);
    }

    @Test
    void positionsAndTextureCoordinatesFromJava() {
        long handle = copyFilter();
        byte[] before = render(handle);
        // Only the left half of the screen, the chart squeezed into it.
        assertEquals(1, filter.nativeSetPositions(handle, new float[] {-1, -1, -1, 1, 0, 1, 0, -1}));
        GLSLRender.nativeTextImage(GL.image(1, 1, (x, y) -> 0xFF0A141E), CHART + 1);
        // Texture coordinates all at the centre of a 1 x 1 texture: a solid colour.
        assertEquals(1, filter.nativeSetTexCords(handle, new float[] {.5f, .5f, .5f, .5f, .5f, .5f, .5f, .5f}));
        filter.nativeRenderTexture(handle, CHART + 1, 1, 1);
        for (int i = 0; i < SIZE * SIZE; i++) {
            if (i % SIZE < SIZE / 2) System.arraycopy(new byte[] {0x0A, 0x14, 0x1E, (byte) 0xFF}, 0, before, i * 4, 4);
        }
        assertArrayEquals(before, GL.readFramebuffer(SIZE, SIZE));
        filter.nativeClear(handle);
    }

    @Test
    void sizeAndStepUniformsAndTheGlobalMatrix() {
        String fragment = "precision highp float; uniform int width; uniform int height;\n"
                + "uniform float horStep; uniform float verStep; uniform float textualwidth; uniform float textualheight;\n"
                + "void main() { float w = float(width), h = float(height);\n"
                + "gl_FragColor = vec4(w / 255.0, h * verStep * 0.4, w * horStep * w * textualwidth * 0.2,\n"
                + "    h * textualheight * 0.6); }\n";
        long handle = filter.nativeInitialWithString(0, false, null, fragment);
        assertNotEquals(0, filter.nativeApplyFilter(handle));
        filter.nativeRenderTexture(handle, CHART, 51, 102);
        // The textual pair carries the steps: 102 x (1 / 102) x 0.6 is 153, not a saturated 255.
        assertArrayEquals(new byte[] {51, 102, 51, (byte) 153}, GL.readFramebuffer(1, 1));

        String global = "precision highp float; uniform mat3 globalTexCoMat;\n"
                + "void main() { gl_FragColor = vec4(globalTexCoMat[0][0], globalTexCoMat[1][0], globalTexCoMat[2][2], 1.0); }\n";
        long replaced = filter.nativeInitialWithString(handle, false, null, global);
        assertNotEquals(0, filter.nativeApplyFilter(replaced));
        filter.nativeRenderTexture(replaced, CHART, SIZE, SIZE);
        assertArrayEquals(new byte[] {(byte) 255, 0, (byte) 255, (byte) 255}, GL.readFramebuffer(1, 1), "identity until set");
        assertEquals(1, filter.nativeSetGlobalTextureMatrix(replaced, new float[] {0.2f, 0, 0, 0.4f, 1, 0, 0, 0, 0.6f}));
        filter.nativeRenderTexture(replaced, CHART, SIZE, SIZE);
        assertArrayEquals(new byte[] {51, 102, (byte) 153, (byte) 255}, GL.readFramebuffer(1, 1));
        filter.nativeClear(replaced);
    }

    @Test
    void nullAndShortArraysRaise() {
        long handle = copyFilter();
        int[] lengths = {16, 16, 9, 8, 8};
        List<Consumer<float[]>> calls = List.of(
                m -> filter.nativeUpdateMatrix(handle, m),
                m -> filter.nativeUpdateModelMatrix(handle, m),
                m -> filter.nativeSetGlobalTextureMatrix(handle, m),
                m -> filter.nativeSetPositions(handle, m),
                m -> filter.nativeSetTexCords(handle, m));
        for (int i = 0; i < lengths.length; i++) {
            Consumer<float[]> call = calls.get(i);
            float[] tooShort = new float[lengths[i] - 1];
            assertThrows(RuntimeException.class, () -> call.accept(tooShort), "call " + i);
        }
        // Refused calls changed nothing: the old renderer still draws the chart as it is.
        assertArrayEquals(chart, render(handle));
        assertEquals(1, filter.nativeClear(handle));
    }
}
