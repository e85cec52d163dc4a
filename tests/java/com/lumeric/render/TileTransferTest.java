package com.lumeric.render;

import static org.junit.jupiter.api.Assertions.assertArrayEquals;
import static org.junit.jupiter.api.Assertions.assertEquals;
import static org.junit.jupiter.api.Assertions.assertThrows;
import static org.junit.jupiter.api.Assertions.assertTrue;

import com.lumeric.filter.GLSLRender;
import com.lumeric.filter.QImage;
import com.lumeric.host.HostGL;
import java.util.function.IntBinaryOperator;
import org.junit.jupiter.api.AfterEach;
import org.junit.jupiter.api.BeforeEach;
import org.junit.jupiter.api.Test;

/** Large images of the chart cut into tiles, uploaded one by one and read back into place. */
class TileTransferTest {
    private static final int TILE = 21;
    private HostGL gl;

    @BeforeEach
    void context() {
        gl = HostGL.create(64, 64);
    }

    @AfterEach
    void release() {
        GLSLRender.nativeDeinitMagicEngine(4);
        gl.close();
    }

    /** {x, y, width, height} of a tile: the last column and row take the remainder. */
    private static int[] tile(int width, int height, int col, int row, int cols, int rows) {
        int tw = width / cols, th = height / rows;
        return new int[] {col * tw, row * th, col == cols - 1 ? width - (cols - 1) * tw : tw,
                row == rows - 1 ? height - (rows - 1) * th : th};
    }

    private static int[] counts(QImage image) {
        int[] tiles = new int[2];
        GLSLRender.nativePreprocessJepg(image, tiles);
        return tiles;
    }

    /** Uploads a tile and draws it into the pool's target of its size. */
    private static void upload(QImage source, int col, int row, int cols, int rows, int slot, int[] t) {
        GLSLRender.nativePickJepgToTexture(source, col, row, cols, rows, TILE, new int[2]);
        GLSLRender.nativeCopyTexturToDataWithShare(TILE, new byte[t[2] * t[3] * 4], t[2], t[3], slot);
    }

    /**
     * Neighbouring pixels differ by at most 1 per channel, yet every column of a
     * row differs: the pooled copies sample with GL_LINEAR, and across a tile
     * thousands of texels wide no driver promises exact texel centres, so a
     * slightly off-centre sample must still round to the same byte.
     */
    static int gentleColor(int x, int y) {
        return 0xFF000000 | triangle(x >> 8) << 16 | triangle(x + 3 * y) << 8 | triangle(x >> 1);
    }

    private static int triangle(int v) { return (v & 256) == 0 ? v & 255 : 255 - (v & 255); }

    /** A 3-channel chart written tile by tile from the pool's target: the alpha-dropping read-back. */
    private static QImage rgbImage(int width, int height, int cols, int rows, IntBinaryOperator colors) {
        QImage rgba = GL.image(width, height, colors), rgb = GL.blank(width, height, 3);
        for (int row = 0; row < rows; row++) {
            for (int col = 0; col < cols; col++) {
                upload(rgba, col, row, cols, rows, 0, tile(width, height, col, row, cols, rows));
                GLSLRender.nativePushJepgFromTexture(rgb, col, row, cols, rows, 0);
            }
        }
        assertEquals(3, rgb.pixelBytes);
        assertArrayEquals(GL.pixels(width, height, 3, colors), GL.bytes(rgb));
        return rgb;
    }

    /**
     * Uploads every tile of the grid, checks the texture (RGBA, alpha 255 for
     * 3-channel images) and reads it back into the copy at the tile's place:
     * with a pool slot, from the pool's target of the tile's size; with slot -1,
     * from whatever is bound, here the target the pass draws into.
     */
    private static void roundTrip(QImage source, QImage copy, int cols, int rows, int slot, GL.Pass pass,
            IntBinaryOperator colors) {
        int opaque = source.pixelBytes == 3 ? 0xFF000000 : 0;
        for (int row = 0; row < rows; row++) {
            for (int col = 0; col < cols; col++) {
                int[] t = tile(source.width, source.height, col, row, cols, rows), size = new int[2];
                GLSLRender.nativePickJepgToTexture(source, col, row, cols, rows, TILE, size);
                assertArrayEquals(new int[] {t[2], t[3]}, size, "tile " + col + "," + row);
                assertArrayEquals(GL.rgba(t[2], t[3], (x, y) -> colors.applyAsInt(t[0] + x, t[1] + y) | opaque),
                        GL.readTexture(TILE, t[2], t[3]), "tile " + col + "," + row);
                if (pass == null) {
                    upload(source, col, row, cols, rows, slot, t);
                    GLSLRender.nativePushJepgFromTexture(copy, col, row, cols, rows, slot);
                } else {
                    GLSLRender.nativeBeginUseEglImage(t[2], t[3], 1);
                    pass.draw(TILE, t[2], t[3]);
                    GLSLRender.nativePushJepgFromTexture(copy, col, row, cols, rows, -1);
                    GLSLRender.nativeEndUseEglImage(t[2], t[3], 1);
                }
            }
        }
        assertArrayEquals(GL.bytes(source), GL.bytes(copy));
    }

    /** Counts follow the context's texture limit exactly at its edge; an image one pixel wider round-trips. */
    @Test
    void imagesWiderThanTheTextureLimitSplitIntoTiles() {
        int limit = HostGL.maxTextureSize();
        assertTrue(limit >= 64, "texture limit " + limit);
        assertArrayEquals(new int[] {1, 1}, counts(GL.blank(limit, 1, 1)));
        assertArrayEquals(new int[] {1, 1}, counts(GL.blank(1, limit, 1)));
        assertArrayEquals(new int[] {2, 1}, counts(GL.blank(limit + 1, 1, 1)));
        assertArrayEquals(new int[] {1, 2}, counts(GL.blank(1, limit + 1, 1)));

        // Two columns, the second one pixel wider, through the pool.
        assertEquals(0, GLSLRender.nativeInitMagicEngine(4, 0));
        roundTrip(rgbImage(limit + 1, 3, 2, 1, TileTransferTest::gentleColor), GL.blank(limit + 1, 3, 3), 2, 1, 0,
                null, TileTransferTest::gentleColor);
    }

    @Test
    void tilesWithRemaindersRoundTripAndLandInPlace() {
        assertEquals(1, GLSLRender.nativeInitMagicEngine(8, 1));
        try (GL.Pass copyPass = new GL.Pass(GL.COPY_FRAGMENT)) {
            roundTrip(GL.image(7, 5, GL::chartColor), GL.blank(7, 5, 4), 3, 2, -1, copyPass, GL::chartColor);
        }
        assertEquals(0, GLSLRender.nativeInitMagicEngine(8, 0));
        roundTrip(rgbImage(7, 5, 1, 1, GL::chartColor), GL.blank(7, 5, 3), 3, 2, 0, null, GL::chartColor);
    }

    /**
     * A caller that left the pixel-store alignment at 8: odd-width RGBA rows
     * still go up and come back tight (GL would otherwise shear them and read
     * or write past the buffer), and the caller finds its alignment unchanged.
     */
    @Test
    void callersAlignmentOfEightKeepsOddWidthRowsTight() {
        final int unpack = 0x0CF5, pack = 0x0D05;
        QImage chart = GL.image(7, 5, GL::chartColor);
        HostGL.pixelStore(unpack, 8);
        GLSLRender.nativePickJepgToTexture(chart, 0, 0, 1, 1, TILE, new int[2]);
        assertEquals(8, HostGL.integer(unpack));
        assertArrayEquals(GL.rgba(7, 5, GL::chartColor), GL.readTexture(TILE, 7, 5));

        long pixels = GLSLRender.nativeAllocBuffer(7 * 5 * 4), history = GLSLRender.nativeAllocBuffer(2 * 1024);
        try {
            HostGL.pixelStore(pack, 8);
            GLSLRender.nativeCalHistogramFromGPU(pixels, history, 0, 0, 7, 5, 0.05f, 0.95f, 2, 0, 1f, 0.1f);
            assertEquals(8, HostGL.integer(pack));
        } finally {
            GLSLRender.nativeFreeBuffer(pixels);
            GLSLRender.nativeFreeBuffer(history);
            HostGL.pixelStore(pack, 4);
            HostGL.pixelStore(unpack, 4);
        }
    }

    @Test
    void badArgumentsRaiseInsteadOfTouchingMemory() {
        QImage image = GL.image(4, 4, GL::chartColor);
        assertThrows(RuntimeException.class, () -> GLSLRender.nativePreprocessJepg(image, new int[1]));
        assertThrows(RuntimeException.class, () -> GLSLRender.nativePreprocessJepg(new QImage(), new int[2]));
        assertThrows(RuntimeException.class,
                () -> GLSLRender.nativePickJepgToTexture(image, 0, 0, 1, 1, TILE, new int[1]));
        int[] size = {-1, -1};
        assertThrows(RuntimeException.class, () -> GLSLRender.nativePickJepgToTexture(image, 2, 0, 2, 1, TILE, size));
        assertArrayEquals(new int[] {-1, -1}, size);
        byte[] before = GL.bytes(image);
        assertThrows(RuntimeException.class, () -> GLSLRender.nativePushJepgFromTexture(image, 0, -1, 1, 1, -1));
        assertArrayEquals(before, GL.bytes(image));
    }
}
