package com.lumeric.qimage;

import static org.junit.jupiter.api.Assertions.*;

import android.graphics.Bitmap;
import com.lumeric.filter.QImage;
import java.util.Arrays;
import java.util.Map;
import java.util.function.Consumer;
import org.junit.jupiter.api.Test;

class QImageBitmapTest {
    @Test
    void bitmapToQImageOwnsACopy() {
        Bitmap bitmap = Pixels.chart(4, 3);
        try (QImage image = new QImage().Bitmap2QImage(bitmap)) {
            assertArrayEquals(new int[] {4, 4, 48}, new int[] {image.width, image.pixelBytes, image.getByteSize()});
            assertEquals(0, bitmap.getLockCount());
            bitmap.setPixel(0, 0, 0);
            assertEquals(Pixels.colorAt(0, 0), Pixels.colors(image)[0]);
        }
    }

    @Test
    void fromBitmapCopiesFlatBytesUpToTheImageSize() {
        try (QImage image = Pixels.image(4, 3)) {
            Bitmap target = Bitmap.createBitmap(4, 3, Bitmap.Config.ARGB_8888);
            assertTrue(image.FromBitmap(target));
            assertArrayEquals(Pixels.colors(image), Pixels.colors(target));
            assertEquals(0, target.getLockCount());

            Bitmap larger = Bitmap.createBitmap(8, 8, Bitmap.Config.ARGB_8888);
            assertTrue(image.FromBitmap(larger));  // copies only what the image holds
            assertArrayEquals(new int[] {Pixels.colorAt(3, 2), 0}, Arrays.copyOfRange(Pixels.colors(larger), 11, 13));

        }
    }

    @Test
    void toBitmapDownSamplesInto565AndSkipsOtherFormats() {
        try (QImage image = Pixels.image(400, 300)) {
            Bitmap small = Bitmap.createBitmap(200, 100, Bitmap.Config.RGB_565);
            assertTrue(image.ToBitmap(small));
            assertEquals(0, small.getLockCount());
            // Every 2nd column and every 3rd row.
            assertArrayEquals(Pixels.grid(200, 100, (x, y) -> Pixels.through565(Pixels.colorAt(2 * x, 3 * y))),
                    Pixels.colors(small));
        }
        try (QImage image = Pixels.image(2, 2)) {
            Bitmap big = Bitmap.createBitmap(3, 3, Bitmap.Config.RGB_565);
            assertTrue(image.ToBitmap(big));  // ratio 0: pixel 0 everywhere
            assertArrayEquals(Pixels.grid(3, 3, (x, y) -> Pixels.through565(Pixels.colorAt(0, 0))), Pixels.colors(big));

            Bitmap alpha = Bitmap.createBitmap(2, 2, Bitmap.Config.ALPHA_8);
            assertTrue(image.ToBitmap(alpha));
            assertArrayEquals(new int[] {0, 0}, new int[] {alpha.getPixel(0, 0), alpha.getLockCount()});
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
        assertArrayEquals(new int[] {3, 4, 0, 1},
                new int[] {bound.width, bound.pixelBytes, bound.getByteSize(), bitmap.getLockCount()});

        bound.nativeFlip(1, 0);  // works on the bitmap's own pixels
        assertEquals(Pixels.colorAt(2, 0), bitmap.getPixel(0, 0));

        assertTrue(bound.UnBindBitmap(bitmap));
        assertArrayEquals(new long[] {0, 0}, new long[] {bound.nativeImage, bitmap.getLockCount()});
    }

    @Test
    void unusableBitmapsRaiseWithTheirTexts() {
        String format = "Bitmap format is not RGBA_8888", lock = "can't lock bitmap pixels";
        QImage image = Pixels.image(2, 2);
        Map<String, Consumer<Bitmap>> calls = Map.of(
                "Bitmap2QImage", b -> new QImage().Bitmap2QImage(b),
                "FromBitmap", image::FromBitmap,
                "ToBitmap", image::ToBitmap,
                "BindBitmap", b -> new QImage().BindBitmap(b));
        // call, bitmap ("565" or "unlockable"), exception, its text, locks left (null bitmaps: NullArgumentsTest)
        Object[][] cases = {
            {"Bitmap2QImage", "565", NullPointerException.class, format, 0},
            {"Bitmap2QImage", "unlockable", RuntimeException.class, lock, 0},
            {"FromBitmap", "565", NullPointerException.class, format, 0},
            {"ToBitmap", "unlockable", RuntimeException.class, lock, 0},
            // A binding raises and carries on: it keeps the lock.
            {"BindBitmap", "565", NullPointerException.class, format, 1},
            {"BindBitmap", "unlockable", RuntimeException.class, lock, 0},
        };
        for (Object[] c : cases) {
            String what = c[0] + " " + c[1];
            Bitmap bitmap = Bitmap.createBitmap(2, 2, c[1].equals("565") ? Bitmap.Config.RGB_565 : Bitmap.Config.ARGB_8888);
            if ("unlockable".equals(c[1])) bitmap.failNextLocks(1);
            Throwable e = assertThrows(Throwable.class, () -> calls.get((String) c[0]).accept(bitmap), what);
            assertSame(c[2], e.getClass(), what);
            assertEquals(c[3], e.getMessage(), what);
            assertEquals(c[4], bitmap.getLockCount(), what);
        }
        image.Dispose();
    }
}
