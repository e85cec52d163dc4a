package com.lumeric.render;

import static org.junit.jupiter.api.Assertions.assertArrayEquals;
import static org.junit.jupiter.api.Assertions.assertEquals;
import static org.junit.jupiter.api.Assertions.assertNotEquals;
import static org.junit.jupiter.api.Assertions.assertThrows;

import android.graphics.Bitmap;
import com.lumeric.filter.BaseFilter;
import com.lumeric.filter.GLSLRender;
import com.lumeric.host.HostGL;
import org.junit.jupiter.api.Test;

class DirectRenderTest {
    private static final String SOLID_FRAGMENT =
            "precision mediump float; varying vec2 textureCoordinate; uniform sampler2D inputImageTexture;\n"
            + "void main() { gl_FragColor = vec4(textureCoordinate, 0.0, 1.0); }\n";

    @Test
    void zeroHandlesAndBadArrays() {
        BaseFilter filter = new BaseFilter();
        assertEquals(8223, filter.nativeGetVersion());
        assertEquals(-1, filter.nativeApplyFilter(0));
        assertEquals(1, filter.nativeClear(0));
        assertEquals(0, filter.nativeUpdateMatrix(0, new float[16]));
        assertEquals(0, filter.nativeSetRenderMode(0, 1));

        long handle = filter.nativeInitialWithString(0, false, null, SOLID_FRAGMENT);
        assertNotEquals(0, handle);
        assertThrows(RuntimeException.class, () -> filter.nativeUpdateMatrix(handle, new float[15]));
        assertThrows(RuntimeException.class, () -> filter.nativeSetGlobalTextureMatrix(handle, new float[8]));
        assertThrows(NullPointerException.class, () -> filter.nativeUpdateModelMatrix(handle, null));
        assertEquals(1, filter.nativeSetGlobalTextureMatrix(handle, new float[9]));
        assertEquals(1, filter.nativeClear(handle));

        assertThrows(RuntimeException.class, () -> GLSLRender.nativeToRGBData(new byte[15], 2, 2));
        assertThrows(NullPointerException.class, () -> GLSLRender.nativeTextCure(null, 1));
        GLSLRender.nativeFreeBuffer(0);
        GLSLRender.nativeCalHistogramFromGPU(0, 0, 0, 0, 4, 4, 0.1f, 0.9f, 3, 0, 1f, 0.1f);
    }

    @Test
    void renderThroughJavaAndSnapFlipsRows() {
        try (HostGL gl = HostGL.create(64, 64)) {
            BaseFilter filter = new BaseFilter();
            long handle = filter.nativeInitialWithString(0, false, null, SOLID_FRAGMENT);
            assertNotEquals(0, filter.nativeApplyFilter(handle));
            // Texture coordinates from Java: red = s, green = t everywhere 1.
            filter.nativeSetTexCords(handle, new float[] {1, 1, 1, 1, 1, 1, 1, 1});
            filter.nativeSetRotationAndFlip(handle, 0, 0, 0);
            assertEquals(1, filter.nativeRenderTexture(handle, 0, 64, 64));

            byte[] rgba = new byte[4 * 4];
            GLSLRender.nativeToRGBData(rgba, 2, 2);
            assertArrayEquals(new byte[] {-1, -1, 0, -1}, java.util.Arrays.copyOf(rgba, 4));

            // Default coordinates: bottom rows are dark green, top rows bright.
            filter.nativeSetTexCords(handle, new float[] {0, 0, 0, 1, 1, 1, 1, 0});
            filter.nativeRenderTexture(handle, 0, 64, 64);
            Bitmap bitmap = Bitmap.createBitmap(64, 64, Bitmap.Config.ARGB_8888);
            assertEquals(1, GLSLRender.nativeSnap(bitmap));
            int top = (bitmap.getPixel(0, 0) >> 8) & 0xFF;
            int bottom = (bitmap.getPixel(0, 63) >> 8) & 0xFF;
            assertEquals(253, top, 1);
            assertEquals(2, bottom, 1);
            assertEquals(0, bitmap.getLockCount());
            assertEquals(0, GLSLRender.nativeSnap(Bitmap.createBitmap(2, 2, Bitmap.Config.RGB_565)));
            filter.nativeClear(handle);
        }
    }
}
