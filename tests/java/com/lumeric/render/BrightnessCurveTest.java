package com.lumeric.render;

import static org.junit.jupiter.api.Assertions.assertArrayEquals;
import static org.junit.jupiter.api.Assertions.assertEquals;

import com.lumeric.filter.GLSLRender;
import com.lumeric.host.HostGL;
import java.util.Arrays;
import java.util.function.IntBinaryOperator;
import java.util.stream.IntStream;
import org.junit.jupiter.api.AfterEach;
import org.junit.jupiter.api.BeforeEach;
import org.junit.jupiter.api.Test;

/**
 * The automatic brightness curve against a small Java reference. Frames are
 * drawn into an 8 x 8 pool target; the table is uploaded to the texture bound
 * on unit 0 (LUT, bound with a 4 x 3 placeholder before each frame) and read
 * back by drawing it through the pool's copy program.
 */
class BrightnessCurveTest {
    private static final int FRAME = 71;
    private static final int LUT = 72;
    private static final int SIDE = 8;
    private static final byte[] PLACEHOLDER = {1, 2, 3, 4, 11, 22, 33, 44, 5, 6, 7, 8};
    private HostGL gl;
    private long pixels;
    private long history;

    @BeforeEach
    void buffers() {
        gl = HostGL.create(64, 64);
        // Both names are taken before the pool generates its own (Mesa hands out names above the highest used).
        GLSLRender.nativePreviewData(PLACEHOLDER, LUT, 4, 2);
        GLSLRender.nativePreviewData(PLACEHOLDER, FRAME, 4, 2);
        assertEquals(0, GLSLRender.nativeInitMagicEngine(4, 0));
        pixels = GLSLRender.nativeAllocBuffer(SIDE * SIDE * 4);
        history = GLSLRender.nativeAllocBuffer(2 * 1024);
    }

    @AfterEach
    void release() {
        GLSLRender.nativeFreeBuffer(pixels);
        GLSLRender.nativeFreeBuffer(history);
        GLSLRender.nativeDeinitMagicEngine(4);
        gl.close();
    }

    /** Spread colours: pixel i has R 60 + 3i, G 100 + 2i, B 80 + i. */
    private static final IntBinaryOperator BRIGHT = (x, y) -> {
        int i = y * SIDE + x;
        return 0xFF000000 | (60 + 3 * i) << 16 | (100 + 2 * i) << 8 | (80 + i);
    };
    private static final IntBinaryOperator BLACK = (x, y) -> 0xFF000000;
    private static final IntBinaryOperator DARK = (x, y) -> 0xFF000000 | (10 + y * SIDE + x) * 0x010101;

    /** The table for a running histogram of `frames` copies of one image. */
    private static int[] expectedCurve(IntBinaryOperator colors, int frames, float gammaScale) {
        int[] running = new int[256], lut = identity();
        for (int i = 0; i < SIDE * SIDE; i++) {
            int c = colors.applyAsInt(i % SIDE, i / SIDE);
            for (int shift = 0; shift <= 16; shift += 8) running[(c >> shift) & 0xFF] += frames;
        }
        long total = 0, weighted = 0;
        for (int i = 0; i < 256; i++) {
            total += running[i];
            weighted += (long) i * running[i];
        }
        int lowTarget = (int) ((float) total * 0.05f), highTarget = (int) ((float) total * 0.95f);
        int low = -1, high = 255;
        long sum = 0;
        for (int i = 0; i < 256 && low < 0; i++) if ((sum += running[i]) > lowTarget) low = i;
        for (int i = low + 1; i < 256 && high == 255; i++) if ((sum += running[i]) > highTarget) high = i;
        float norm = (float) (weighted / total - low) / (float) (high - low);
        float gamma = (float) (Math.log(0.5) / Math.log(norm));
        gamma = (gamma < 0.1f ? 0.1f : gamma > 10.0f ? 10.0f : gamma) * gammaScale;
        Arrays.fill(lut, 0, low, 0);
        for (int k = 0; k < high - low; k++) {
            lut[low + k] = (int) (long) (Math.pow((float) k / (float) (high - low), gamma) * 255.0) & 0xFF;
        }
        Arrays.fill(lut, high, 256, 255);
        return lut;
    }

    private static int[] identity() { return IntStream.range(0, 256).toArray(); }

    /** Shows the frame, runs one step of the curve with the LUT texture bound, and reads the texture back. */
    private int[] step(IntBinaryOperator colors, int index, int frameCount, float gammaScale) {
        GLSLRender.nativePickJepgToTexture(GL.image(SIDE, SIDE, colors), 0, 0, 1, 1, FRAME, new int[2]);
        GLSLRender.nativeCopyTexturToDataWithShare(FRAME, new byte[SIDE * SIDE * 4], SIDE, SIDE, 0);
        GLSLRender.nativePreviewData(PLACEHOLDER, LUT, 4, 2);
        GLSLRender.nativeBeginUseEglImage(SIDE, SIDE, 0);
        GLSLRender.nativeCalHistogramFromGPU(pixels, history, 0, 0, SIDE, SIDE, 0.05f, 0.95f, frameCount, index,
                gammaScale, 0.1f);
        GLSLRender.nativeEndUseEglImage(SIDE, SIDE, 0);
        byte[] rgba = new byte[256 * 4];
        GLSLRender.nativeCopyTexturToDataWithShare(LUT, rgba, 256, 1, 0);
        int[] table = new int[256];
        for (int i = 0; i < 256; i++) table[i] = rgba[i * 4 + 3] & 0xFF;
        return table;
    }

    private int[] reset(int frameCount) { return step(BLACK, -1, frameCount, 1f); }

    @Test
    void identityUntilEnoughFramesThenTheGammaCurve() {
        assertArrayEquals(identity(), reset(2));
        assertArrayEquals(identity(), step(BRIGHT, 0, 2, 2f));
        int[] curve = expectedCurve(BRIGHT, 2, 2f);
        assertArrayEquals(curve, step(BRIGHT, 1, 2, 2f));
        assertEquals(255, curve[255]);
        // The same frame again changes nothing in the running histogram.
        assertArrayEquals(curve, step(BRIGHT, 0, 2, 2f));
    }

    @Test
    void sceneChangeResetsAndDarkFramesLeaveTheTextureAlone() {
        reset(2);
        step(BRIGHT, 0, 2, 1f);
        int[] curve = step(BRIGHT, 1, 2, 1f);
        // Black after bright: six changed counts per pixel.
        assertArrayEquals(identity(), step(BLACK, 1, 2, 1f));
        // Had the ring kept its counts, the running histogram would stay empty and no curve could follow.
        assertArrayEquals(identity(), step(BRIGHT, 0, 2, 1f));
        assertArrayEquals(curve, step(BRIGHT, 1, 2, 1f));

        reset(2);
        assertArrayEquals(identity(), step(DARK, 0, 2, 1f));
        assertArrayEquals(IntStream.range(0, 256).map(i -> PLACEHOLDER[4 + i / 64]).toArray(), step(DARK, 1, 2, 1f),
                "no upload: the placeholder's middle row, 64 texels per entry");
    }
}
