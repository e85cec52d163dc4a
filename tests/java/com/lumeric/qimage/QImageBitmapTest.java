package com.lumeric.qimage;

import static org.junit.jupiter.api.Assertions.assertArrayEquals;
import static org.junit.jupiter.api.Assertions.assertEquals;
import static org.junit.jupiter.api.Assertions.assertFalse;
import static org.junit.jupiter.api.Assertions.assertNotEquals;
import static org.junit.jupiter.api.Assertions.assertThrows;
import static org.junit.jupiter.api.Assertions.assertTrue;

import android.graphics.Bitmap;
import com.lumeric.filter.QImage;
import org.junit.jupiter.api.Test;

class QImageBitmapTest {
    private static int[] pixelsOf(Bitmap bitmap) {
        int[] out = new int[bitmap.getWidth() * bitmap.getHeight()];
        bitmap.getPixels(out, 0, bitmap.getWidth(), 0, 0, bitmap.getWidth(), bitmap.getHeight());
        return out;
    }

    @Test
    void bitmapToQImageOwnsACopy() {
        Bitmap bitmap = Pixels.chart(4, 3);
        try (QImage image = new QImage().Bitmap2QImage(bitmap)) {
            assertEquals(4, image.width);
            assertEquals(4, image.pixelBytes);
            assertEquals(48, image.getByteSize());
            assertEquals(0, bitmap.getLockCount());
            bitmap.setPixel(0, 0, 0);
            assertEquals(Pixels.colorAt(0, 0), Pixels.colors(image)[0]);
        }
    }

    @Test
    void bitmapToQImageErrors() {
        QImage any = new QImage();
        Bitmap rgb565 = Bitmap.createBitmap(2, 2, Bitmap.Config.RGB_565);
        NullPointerException npe = assertThrows(NullPointerException.class, () -> any.Bitmap2QImage(rgb565));
        assertEquals("Bitmap format is not RGBA_8888", npe.getMessage());
        assertEquals(0, rgb565.getLockCount());

        Bitmap locked = Pixels.chart(2, 2);
        locked.failNextLocks(1);
        RuntimeException e = assertThrows(RuntimeException.class, () -> any.Bitmap2QImage(locked));
        assertEquals("can't lock bitmap pixels", e.getMessage());
        assertEquals(0, locked.getLockCount());
        assertThrows(NullPointerException.class, () -> any.Bitmap2QImage(null));
    }

    @Test
    void fromBitmapCopiesImageIntoBitmap() {
        try (QImage image = Pixels.image(4, 3)) {
            Bitmap target = Bitmap.createBitmap(4, 3, Bitmap.Config.ARGB_8888);
            assertTrue(image.FromBitmap(target));
            assertArrayEquals(Pixels.colors(image), pixelsOf(target));
            assertEquals(0, target.getLockCount());

            Bitmap larger = Bitmap.createBitmap(8, 8, Bitmap.Config.ARGB_8888);
            assertTrue(image.FromBitmap(larger));  // copies only what the image holds
            assertEquals(Pixels.colorAt(3, 2), pixelsOf(larger)[11]);
            assertEquals(0, pixelsOf(larger)[12]);

            Bitmap smaller = Bitmap.createBitmap(2, 2, Bitmap.Config.ARGB_8888);
            assertTrue(image.FromBitmap(smaller));  // flat bytes: the first 4 pixels of row 0
            assertEquals(Pixels.colorAt(2, 0), pixelsOf(smaller)[2]);
        }
    }

    @Test
    void fromBitmapErrors() {
        try (QImage image = Pixels.image(2, 2)) {
            NullPointerException info = assertThrows(NullPointerException.class, () -> image.FromBitmap(null));
            assertEquals("can't get Bitmap info", info.getMessage());
            Bitmap rgb565 = Bitmap.createBitmap(2, 2, Bitmap.Config.RGB_565);
            NullPointerException format = assertThrows(NullPointerException.class, () -> image.FromBitmap(rgb565));
            assertEquals("Bitmap format is not RGBA_8888", format.getMessage());
            Bitmap bitmap = Bitmap.createBitmap(2, 2, Bitmap.Config.ARGB_8888);
            bitmap.failNextLocks(1);
            RuntimeException lock = assertThrows(RuntimeException.class, () -> image.FromBitmap(bitmap));
            assertEquals("can't lock bitmap pixels", lock.getMessage());
            assertEquals(0, bitmap.getLockCount());
        }
    }

    @Test
    void toBitmapDownSamplesInto565() {
        try (QImage image = Pixels.image(400, 300)) {
            Bitmap small = Bitmap.createBitmap(200, 100, Bitmap.Config.RGB_565);
            assertTrue(image.ToBitmap(small));
            assertEquals(0, small.getLockCount());
            // Every 2nd column and every 3rd row.
            for (int j = 0; j < 100; j += 7) {
                for (int i = 0; i < 200; i += 3) {
                    int expected = Pixels.expand565(Pixels.pack565(Pixels.colorAt(2 * i, 3 * j)));
                    assertEquals(expected, small.getPixel(i, j), "pixel " + i + "," + j);
                }
            }
        }
    }

    @Test
    void toBitmapIntoLarger565RepeatsPixelZero() {
        try (QImage image = Pixels.image(2, 2)) {
            Bitmap big = Bitmap.createBitmap(3, 3, Bitmap.Config.RGB_565);
            assertTrue(image.ToBitmap(big));
            int expected = Pixels.expand565(Pixels.pack565(Pixels.colorAt(0, 0)));
            for (int v : pixelsOf(big)) assertEquals(expected, v);
        }
    }

    @Test
    void toBitmapOtherFormatsAndErrors() {
        try (QImage image = Pixels.image(2, 2)) {
            Bitmap alpha = Bitmap.createBitmap(2, 2, Bitmap.Config.ALPHA_8);
            assertTrue(image.ToBitmap(alpha));
            assertEquals(0, alpha.getPixel(0, 0));
            assertEquals(0, alpha.getLockCount());
            NullPointerException info = assertThrows(NullPointerException.class, () -> image.ToBitmap(null));
            assertEquals("can't get Bitmap info", info.getMessage());
            Bitmap bitmap = Bitmap.createBitmap(2, 2, Bitmap.Config.ARGB_8888);
            bitmap.failNextLocks(1);
            RuntimeException lock = assertThrows(RuntimeException.class, () -> image.ToBitmap(bitmap));
            assertEquals("can't lock bitmap pixels", lock.getMessage());
        }
        Bitmap left = Bitmap.createBitmap(2, 2, Bitmap.Config.ARGB_8888);
        assertFalse(new QImage().ToBitmap(left));
        assertEquals(1, left.getLockCount());  // left locked without an image
    }

    @Test
    void bindSharesPixelsUntilUnbind() {
        Bitmap bitmap = Pixels.chart(3, 2);
        QImage bound = new QImage().BindBitmap(bitmap);
        assertNotEquals(0, bound.nativeImage);
        assertEquals(3, bound.width);
        assertEquals(4, bound.pixelBytes);
        assertEquals(0, bound.getByteSize());
        assertEquals(1, bitmap.getLockCount());

        bound.nativeFlip(1, 0);  // works on the bitmap's own pixels
        assertEquals(Pixels.colorAt(2, 0), bitmap.getPixel(0, 0));

        assertTrue(bound.UnBindBitmap(bitmap));
        assertEquals(0, bound.nativeImage);
        assertEquals(0, bitmap.getLockCount());
        assertEquals(Pixels.colorAt(2, 0), bitmap.getPixel(0, 0));
    }

    @Test
    void bindErrorsCarryOnLikeABinding() {
        QImage any = new QImage();
        Bitmap rgb565 = Bitmap.createBitmap(2, 2, Bitmap.Config.RGB_565);
        NullPointerException format = assertThrows(NullPointerException.class, () -> any.BindBitmap(rgb565));
        assertEquals("Bitmap format is not RGBA_8888", format.getMessage());
        assertEquals(1, rgb565.getLockCount());  // binding went on and kept the lock
        assertTrue(any.UnBindBitmap(rgb565));
        assertEquals(0, rgb565.getLockCount());
        Bitmap bitmap = Pixels.chart(2, 2);
        bitmap.failNextLocks(1);
        RuntimeException e = assertThrows(RuntimeException.class, () -> any.BindBitmap(bitmap));
        assertEquals("can't lock bitmap pixels", e.getMessage());
        assertThrows(NullPointerException.class, () -> any.BindBitmap(null));
        assertThrows(NullPointerException.class, () -> any.UnBindBitmap(null));
    }
}
