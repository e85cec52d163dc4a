package com.lumeric.render;

import static org.junit.jupiter.api.Assertions.assertArrayEquals;
import static org.junit.jupiter.api.Assertions.assertEquals;
import static org.junit.jupiter.api.Assertions.assertThrows;
import static org.junit.jupiter.api.Assertions.assertTrue;

import com.lumeric.filter.GLSLRender;
import com.lumeric.filter.QImage;
import com.lumeric.host.HostGL;
import org.junit.jupiter.api.AfterEach;
import org.junit.jupiter.api.BeforeEach;
import org.junit.jupiter.api.Test;

/** Large images cut into tiles, uploaded one by one and read back into place. */
class TileTransferTest {
    private static final int TILE_TEXTURE = 21;
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

    /** The tile's pixels as the upload must hold them: RGBA, alpha 255 for 3-channel images. */
    private static byte[] tileRGBA(byte[] image, int width, int channels, int[] t) {
        byte[] out = new byte[t[2] * t[3] * 4];
        for (int y = 0; y < t[3]; y++) {
            for (int x = 0; x < t[2]; x++) {
                int s = ((t[1] + y) * width + t[0] + x) * channels, d = (y * t[2] + x) * 4;
                out[d] = image[s];
                out[d + 1] = image[s + 1];
                out[d + 2] = image[s + 2];
                out[d + 3] = channels == 4 ? image[s + 3] : (byte) 255;
            }
        }
        return out;
    }

    private static int[] counts(QImage image) {
        int[] tiles = new int[2];
        GLSLRender.nativePreprocessJepg(image, tiles);
        return tiles;
    }

    private static QImage blank(int width, int height, int channels) {
        QImage image = new QImage();
        image.CreateImage(width, height, channels);
        return image;
    }

    /**
     * A 3-channel image of the colours, written tile by tile from the pool's
     * target: checks the alpha-dropping read-back on the way.
     */
    private static QImage rgbImage(int width, int height, int cols, int rows) {
        QImage rgba = GL.image(width, height, GL::chartColor);
        QImage rgb = blank(width, height, 3);
        for (int row = 0; row < rows; row++) {
            for (int col = 0; col < cols; col++) {
                int[] t = tile(width, height, col, row, cols, rows);
                GLSLRender.nativePickJepgToTexture(rgba, col, row, cols, rows, TILE_TEXTURE, new int[2]);
                GLSLRender.nativeCopyTexturToDataWithShare(TILE_TEXTURE, new byte[t[2] * t[3] * 4], t[2], t[3], 0);
                GLSLRender.nativePushJepgFromTexture(rgb, col, row, cols, rows, 0);
            }
        }
        assertEquals(3, rgb.pixelBytes);
        assertArrayEquals(GL.pixels(width, height, 3, GL::chartColor), GL.bytes(rgb));
        return rgb;
    }

    /**
     * Uploads every tile of the grid, checks the texture against the image and
     * reads it back into the copy at the tile's position: with a pool slot,
     * from the pool's target of the tile's size; with slot -1, from whatever
     * is bound, here the target the pass draws into between begin and end.
     */
    private static void roundTrip(QImage source, QImage copy, int cols, int rows, int slot, GL.Pass pass) {
        byte[] sourceBytes = GL.bytes(source);
        for (int row = 0; row < rows; row++) {
            for (int col = 0; col < cols; col++) {
                int[] t = tile(source.width, source.height, col, row, cols, rows);
                int[] size = new int[2];
                GLSLRender.nativePickJepgToTexture(source, col, row, cols, rows, TILE_TEXTURE, size);
                assertArrayEquals(new int[] {t[2], t[3]}, size, "tile " + col + "," + row);
                assertArrayEquals(tileRGBA(sourceBytes, source.width, source.pixelBytes, t),
                        GL.readTexture(TILE_TEXTURE, t[2], t[3]), "tile " + col + "," + row);
                if (pass == null) {
                    GLSLRender.nativeCopyTexturToDataWithShare(TILE_TEXTURE, new byte[t[2] * t[3] * 4], t[2], t[3], slot);
                    GLSLRender.nativePushJepgFromTexture(copy, col, row, cols, rows, slot);
                } else {
                    GLSLRender.nativeBeginUseEglImage(t[2], t[3], 1);
                    pass.draw(TILE_TEXTURE, t[2], t[3]);
                    GLSLRender.nativePushJepgFromTexture(copy, col, row, cols, rows, -1);
                    GLSLRender.nativeEndUseEglImage(t[2], t[3], 1);
                }
            }
        }
        assertArrayEquals(sourceBytes, GL.bytes(copy));
    }

    /** Counts follow the texture limit (their arithmetic is checked natively); a large image round-trips. */
    @Test
    void imagesWiderThanTheTextureLimitSplitIntoTiles() {
        int limit = 0;
        for (int size = 1024; size <= 1 << 16 && counts(blank(size, 1, 1))[0] == 1; size *= 2) limit = size;
        assertTrue(limit >= 2048, "texture limit " + limit);
        assertArrayEquals(new int[] {2, 1}, counts(blank(limit + 1, 1, 1)));
        assertArrayEquals(new int[] {1, 2}, counts(blank(1, limit + 1, 1)));

        // Two columns, the second one pixel wider, through the pool.
        assertEquals(0, GLSLRender.nativeInitMagicEngine(4, 0));
        QImage large = rgbImage(limit + 1, 3, 2, 1);
        QImage copy = blank(limit + 1, 3, 3);
        roundTrip(large, copy, 2, 1, 0, null);
    }

    @Test
    void tilesWithRemaindersRoundTripAndLandInPlace() {
        assertEquals(1, GLSLRender.nativeInitMagicEngine(8, 1));
        try (GL.Pass copyPass = new GL.Pass(GL.COPY_FRAGMENT)) {
            roundTrip(GL.image(7, 5, GL::chartColor), blank(7, 5, 4), 3, 2, -1, copyPass);
        }
        assertEquals(0, GLSLRender.nativeInitMagicEngine(8, 0));
        QImage source = rgbImage(7, 5, 1, 1);
        roundTrip(source, blank(7, 5, 3), 3, 2, 0, null);

        // A single tile lands at its place and nowhere else.
        QImage one = blank(7, 5, 3);
        byte[] expected = GL.bytes(one);
        GLSLRender.nativePickJepgToTexture(source, 2, 1, 3, 2, TILE_TEXTURE, new int[2]);
        GLSLRender.nativeCopyTexturToDataWithShare(TILE_TEXTURE, new byte[3 * 3 * 4], 3, 3, 0);
        GLSLRender.nativePushJepgFromTexture(one, 2, 1, 3, 2, 0);
        byte[] sourceBytes = GL.bytes(source);
        for (int y = 2; y < 5; y++) System.arraycopy(sourceBytes, (y * 7 + 4) * 3, expected, (y * 7 + 4) * 3, 9);
        assertArrayEquals(expected, GL.bytes(one));
    }

    @Test
    void otherChannelCountsReportTheTileButMoveNoPixels() {
        QImage rgba = GL.image(4, 4, GL::chartColor);
        GLSLRender.nativePickJepgToTexture(rgba, 0, 0, 1, 1, TILE_TEXTURE, new int[2]);
        byte[] before = GL.readTexture(TILE_TEXTURE, 4, 4);

        QImage gray = blank(9, 4, 1);
        byte[] grayBytes = GL.bytes(gray);
        int[] size = {-1, -1};
        GLSLRender.nativePickJepgToTexture(gray, 1, 0, 2, 1, TILE_TEXTURE, size);
        assertArrayEquals(new int[] {5, 4}, size);
        assertArrayEquals(before, GL.readTexture(TILE_TEXTURE, 4, 4));
        GLSLRender.nativePushJepgFromTexture(gray, 1, 0, 2, 1, -1);
        assertArrayEquals(grayBytes, GL.bytes(gray));
    }

    @Test
    void badArgumentsRaiseInsteadOfTouchingMemory() {
        QImage image = GL.image(4, 4, GL::chartColor);
        assertThrows(NullPointerException.class, () -> GLSLRender.nativePreprocessJepg(null, new int[2]));
        assertThrows(NullPointerException.class, () -> GLSLRender.nativePreprocessJepg(image, null));
        assertThrows(RuntimeException.class, () -> GLSLRender.nativePreprocessJepg(image, new int[1]));
        assertThrows(RuntimeException.class, () -> GLSLRender.nativePreprocessJepg(new QImage(), new int[2]));
        assertThrows(NullPointerException.class,
                () -> GLSLRender.nativePickJepgToTexture(null, 0, 0, 1, 1, TILE_TEXTURE, new int[2]));
        assertThrows(NullPointerException.class,
                () -> GLSLRender.nativePickJepgToTexture(image, 0, 0, 1, 1, TILE_TEXTURE, null));
        assertThrows(RuntimeException.class,
                () -> GLSLRender.nativePickJepgToTexture(image, 0, 0, 1, 1, TILE_TEXTURE, new int[1]));
        int[] size = {-1, -1};
        assertThrows(RuntimeException.class,
                () -> GLSLRender.nativePickJepgToTexture(image, 2, 0, 2, 1, TILE_TEXTURE, size));
        assertArrayEquals(new int[] {-1, -1}, size);
        assertThrows(RuntimeException.class,
                () -> GLSLRender.nativePickJepgToTexture(image, 0, 0, 0, 1, TILE_TEXTURE, new int[2]));
        assertThrows(NullPointerException.class, () -> GLSLRender.nativePushJepgFromTexture(null, 0, 0, 1, 1, -1));
        byte[] before = GL.bytes(image);
        assertThrows(RuntimeException.class, () -> GLSLRender.nativePushJepgFromTexture(image, 0, -1, 1, 1, -1));
        assertArrayEquals(before, GL.bytes(image));
    }
}
