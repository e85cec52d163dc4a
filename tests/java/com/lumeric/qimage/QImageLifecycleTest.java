package com.lumeric.qimage;

import static org.junit.jupiter.api.Assertions.assertArrayEquals;
import static org.junit.jupiter.api.Assertions.assertEquals;
import static org.junit.jupiter.api.Assertions.assertFalse;
import static org.junit.jupiter.api.Assertions.assertNotEquals;
import static org.junit.jupiter.api.Assertions.assertNotNull;
import static org.junit.jupiter.api.Assertions.assertSame;
import static org.junit.jupiter.api.Assertions.assertThrows;

import android.graphics.Bitmap;
import com.lumeric.filter.QImage;
import org.junit.jupiter.api.function.Executable;
import org.junit.jupiter.api.Test;

class QImageLifecycleTest {
    @Test
    void createImageUsesUnpaddedRowsAndPublishesFields() {
        try (QImage image = new QImage()) {
            image.CreateImage(3, 2, 3);
            assertNotEquals(0, image.nativeImage);
            assertEquals(3, image.width);
            assertEquals(2, image.height);
            assertEquals(3, image.pixelBytes);
            assertEquals(18, image.getByteSize());  // stride 9, not 12
        }
    }

    @Test
    void createImageWithZeroAreaDropsTheImageButKeepsFields() {
        try (QImage image = new QImage()) {
            image.CreateImage(4, 4, 4);
            image.CreateImage(0, 10, 4);
            assertEquals(0, image.nativeImage);
            assertEquals(4, image.width);
            assertEquals(4, image.height);
            assertEquals(0, image.getByteSize());
        }
    }

    @Test
    void createImageOutOfMemoryRaisesWithTrailingBlank() {
        try (QImage image = new QImage()) {
            RuntimeException e = assertThrows(RuntimeException.class, () -> image.CreateImage(100000, 100000, 4));
            assertEquals("Out of memory of QImage.CreateImage ", e.getMessage());
            assertEquals(0, image.nativeImage);
        }
    }

    @Test
    void disposeTwiceIsHarmless() {
        QImage image = new QImage();
        image.CreateImage(2, 2, 4);
        image.Dispose();
        assertEquals(0, image.nativeImage);
        image.Dispose();
    }

    @Test
    void subImageClampsOriginButNotSize() {
        try (QImage image = Pixels.image(10, 10)) {
            image.createSubImage(-5, -5, 20, 20);
            assertEquals(10, image.width);
            assertEquals(10, image.height);
            assertArrayEquals(Pixels.colors(Pixels.image(10, 10)), Pixels.colors(image));

            image.createSubImage(-2, 3, 4, 20);  // w stays 4 although x moved to 0
            assertEquals(4, image.width);
            assertEquals(7, image.height);
            int[] colors = Pixels.colors(image);
            for (int y = 0; y < 7; y++) {
                for (int x = 0; x < 4; x++) assertEquals(Pixels.colorAt(x, y + 3), colors[y * 4 + x]);
            }
        }
    }

    @Test
    void subImageOutsideLeavesImageUnchanged() {
        try (QImage image = Pixels.image(10, 10)) {
            long before = image.nativeImage;
            image.createSubImage(12, 0, 5, 5);
            image.createSubImage(0, 0, 0, 5);
            assertEquals(before, image.nativeImage);
            assertEquals(10, image.width);
        }
    }

    @Test
    void subImageIsAPackedCopyOfTheRegion() {
        try (QImage image = Pixels.image(6, 5)) {
            image.createSubImage(2, 1, 3, 3);
            assertEquals(3 * 3 * 4, image.getByteSize());
            int[] colors = Pixels.colors(image);
            for (int y = 0; y < 3; y++) {
                for (int x = 0; x < 3; x++) assertEquals(Pixels.colorAt(x + 2, y + 1), colors[y * 3 + x]);
            }
        }
    }

    @Test
    void deepCopyIsIndependent() {
        try (QImage image = Pixels.image(5, 3); QImage copy = image.CreateImageFromQImage()) {
            assertNotNull(copy);
            assertNotEquals(image.nativeImage, copy.nativeImage);
            assertEquals(5, copy.width);
            assertEquals(4, copy.pixelBytes);
            assertArrayEquals(Pixels.colors(image), Pixels.colors(copy));
            image.nativeFlip(1, 0);
            assertEquals(Pixels.colorAt(0, 0), Pixels.colors(copy)[0]);
        }
    }

    @Test
    void updateRoiRepublishesFields() {
        try (QImage image = Pixels.image(4, 2)) {
            image.width = 99;
            image.pixelBytes = 1;
            image.nativeUpdateROI();
            assertEquals(4, image.width);
            assertEquals(4, image.pixelBytes);
        }
    }

    @Test
    void wrapExifAcceptsImagesWithoutMarkersAndRefusesNull() {
        try (QImage image = Pixels.image(2, 2); QImage other = Pixels.image(2, 2)) {
            image.WrapExif(other);
            assertThrows(NullPointerException.class, () -> image.WrapExif(null));
        }
    }

    private static void assertImageIsEmpty(Executable call) {
        RuntimeException e = assertThrows(RuntimeException.class, call);
        assertSame(RuntimeException.class, e.getClass());
        assertEquals("image is empty", e.getMessage());
    }

    @Test
    void nativesThatNeedPixelsRaiseWithoutANativeImage() {
        QImage empty = new QImage();
        assertImageIsEmpty(empty::CreateImageFromQImage);
        assertImageIsEmpty(() -> empty.createSubImage(0, 0, 1, 1));
        assertImageIsEmpty(() -> empty.CopyPixels(new int[4], false));
        assertImageIsEmpty(() -> empty.CopyPixelsRGB(new int[4], true));
        Bitmap bitmap = Bitmap.createBitmap(2, 2, Bitmap.Config.ARGB_8888);
        assertImageIsEmpty(() -> empty.FromBitmap(bitmap));
        assertEquals(0, bitmap.getLockCount());
        try (QImage image = Pixels.image(2, 2)) {
            assertImageIsEmpty(() -> image.WrapExif(empty));
            assertImageIsEmpty(() -> empty.WrapExif(image));
        }
        // These have an answer of their own for a missing image.
        assertEquals(0, empty.getByteSize());
        assertFalse(empty.nativeFlip(1, 1));
        assertFalse(empty.nativeRotate(90));
        empty.Dispose();
        assertEquals(0, empty.nativeImage);
    }
}
