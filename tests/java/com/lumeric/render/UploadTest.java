package com.lumeric.render;

import static org.junit.jupiter.api.Assertions.assertArrayEquals;
import static org.junit.jupiter.api.Assertions.assertEquals;
import static org.junit.jupiter.api.Assertions.assertThrows;

import android.graphics.Bitmap;
import com.lumeric.filter.GLSLRender;
import com.lumeric.host.HostGL;
import org.junit.jupiter.api.Test;

/** Camera frames, curve tables and the masked bitmap copy. */
class UploadTest {
    private static final int TEXTURE = 41;
    private static final int BACKGROUND = 0xFF24211F;  // bytes 0x24, 0x21, 0x1F, 0xFF as a colour int

    private static byte[] ramp(int length) {
        byte[] out = new byte[length];
        for (int i = 0; i < length; i++) out[i] = (byte) (i * 5 + 1);
        return out;
    }

    /** Alpha bytes of a texture drawn through a pool's copy program; an alpha texture has no colour. */
    private static byte[] alphaOf(int texture, int width, int height) {
        byte[] rgba = new byte[width * height * 4];
        GLSLRender.nativeCopyTexturToDataWithShare(texture, rgba, width, height, 0);
        byte[] alpha = new byte[width * height], colour = new byte[width * height * 3];
        for (int i = 0; i < alpha.length; i++) {
            System.arraycopy(rgba, i * 4, colour, i * 3, 3);
            alpha[i] = rgba[i * 4 + 3];
        }
        assertArrayEquals(new byte[colour.length], colour);
        return alpha;
    }

    @Test
    void previewFramesUploadAsAlphaRowsOrRgbaTexels() {
        try (HostGL gl = HostGL.create(64, 64)) {
            assertEquals(0, GLSLRender.nativeInitMagicEngine(4, 0));
            // 4 rows of luminance and 2 of chroma, one byte per texel.
            byte[] odd = ramp(4 * 4);  // 3 rows x 1.5 = 4.5: 4 rows
            GLSLRender.nativePreviewData(odd, TEXTURE, 4, 3);
            assertArrayEquals(odd, alphaOf(TEXTURE, 4, 4));
            assertThrows(RuntimeException.class, () -> GLSLRender.nativePreviewData(new byte[8 * 6 - 1], TEXTURE, 8, 4));

            byte[] rgba = ramp(3 * 2 * 4);
            GLSLRender.nativePreviewYuvData(rgba, TEXTURE, 3, 2);
            assertArrayEquals(rgba, GL.readTexture(TEXTURE, 3, 2));
            assertThrows(RuntimeException.class, () -> GLSLRender.nativePreviewYuvData(new byte[23], TEXTURE, 3, 2));
            // Byte counts of exactly 2^32, 0 in a 32-bit size_t: 65536 x (43691 x 1.5) alpha
            // bytes and 65536 x 16384 RGBA texels. The texture keeps its texels.
            byte[] tiny = new byte[16];
            assertThrows(RuntimeException.class, () -> GLSLRender.nativePreviewData(tiny, TEXTURE, 65536, 43691));
            assertThrows(RuntimeException.class, () -> GLSLRender.nativePreviewYuvData(tiny, TEXTURE, 65536, 16384));
            assertArrayEquals(rgba, GL.readTexture(TEXTURE, 3, 2));
            GLSLRender.nativeDeinitMagicEngine(4);
        }
    }

    @Test
    void curveTableRepeatsLowBytesOverSixteenRows() {
        try (HostGL gl = HostGL.create(64, 64)) {
            int[] curve = {0, 255, 256, -1, 300, 77};
            GLSLRender.nativeTextCure(curve, TEXTURE);
            byte[] texels = GL.readTexture(TEXTURE, curve.length, 16);
            byte[] rgb = new byte[curve.length * 16 * 3], expected = new byte[rgb.length];
            for (int i = 0; i < curve.length * 16; i++) {
                System.arraycopy(texels, i * 4, rgb, i * 3, 3);
                java.util.Arrays.fill(expected, i * 3, i * 3 + 3, (byte) curve[i % curve.length]);
            }
            assertArrayEquals(expected, rgb);
            // An empty curve uploads nothing.
            GLSLRender.nativeTextCure(new int[0], TEXTURE);
            assertArrayEquals(texels, GL.readTexture(TEXTURE, curve.length, 16));
        }
    }

    /** dst word r x maskWidth + c: cleared, the source at the offset, or the background. */
    private static int[] scaleReference(Bitmap src, Bitmap mask, Bitmap dst, int offY, int offX) {
        int[] out = GL.colors(dst);
        for (int r = 0; r < mask.getHeight(); r++) {
            for (int c = 0; c < mask.getWidth(); c++) {
                int sy = r + offY, sx = c + offX;
                boolean inside = sy >= 0 && sx >= 0 && sy < src.getHeight() && sx < src.getWidth();
                out[r * mask.getWidth() + c] = mask.getPixel(c, r) == 0xFFFFFFFF ? 0
                        : inside ? src.getPixel(sx, sy) : BACKGROUND;
            }
        }
        return out;
    }

    @Test
    void scaleBitmapMasksCopiesOrFillsBackground() {
        Bitmap src = GL.bitmap(4, 3, GL::chartColor);
        // All-ones words at (1, 0) and (2, 1); everything else lets the source through.
        Bitmap mask = GL.bitmap(3, 2, (x, y) -> x == y + 1 ? 0xFFFFFFFF : 0x7F000000);
        for (int[] off : new int[][] {{1, 2}, {0, -1}}) {
            // A wider destination: its words are addressed with the mask's width.
            Bitmap dst = GL.bitmap(5, 2, (x, y) -> 0x11223344);
            int[] expected = scaleReference(src, mask, dst, off[0], off[1]);
            GLSLRender.nativeUpdateScaleBitmap(src, mask, dst, off[0], off[1]);
            assertArrayEquals(expected, GL.colors(dst), "offY " + off[0] + " offX " + off[1]);
            assertEquals(0, src.getLockCount() + mask.getLockCount() + dst.getLockCount());
        }
        // A bitmap that cannot be locked: nothing written, the others unlocked again.
        Bitmap target = GL.blank(3, 2);
        mask.failNextLocks(1);
        GLSLRender.nativeUpdateScaleBitmap(src, mask, target, 0, 0);
        assertArrayEquals(new int[6], GL.colors(target));

        assertThrows(NullPointerException.class, () -> GLSLRender.nativeUpdateScaleBitmap(src, null, target, 0, 0));
        assertEquals(0, src.getLockCount() + mask.getLockCount() + target.getLockCount());
    }
}
