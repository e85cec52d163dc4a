package com.lumeric.bridge;

import static org.junit.jupiter.api.Assertions.assertArrayEquals;
import static org.junit.jupiter.api.Assertions.assertEquals;
import static org.junit.jupiter.api.Assertions.assertNotNull;
import static org.junit.jupiter.api.Assertions.assertSame;
import static org.junit.jupiter.api.Assertions.assertTrue;

import com.lumeric.filter.MRect;
import com.lumeric.filter.QImage;
import org.junit.jupiter.api.Test;

class QImageBindingTest {
    @Test
    void attachingMirrorsTheRecordAndDetachingKeepsTheSizes() {
        long image = BridgeProbe.newImage(5, 3, 3);
        try {
            QImage q = new QImage();
            q.pixelFormat = 77;
            BridgeProbe.attach(q, image);
            assertEquals(image, BridgeProbe.attached(q));
            assertArrayEquals(new int[] {5, 3, 3, 77}, new int[] {q.width, q.height, q.pixelBytes, q.pixelFormat});
            BridgeProbe.attach(q, 0);
            assertEquals(0, q.nativeImage);
            assertArrayEquals(new int[] {5, 3, 3, 77}, new int[] {q.width, q.height, q.pixelBytes, q.pixelFormat});
        } finally {
            BridgeProbe.freeImage(image);
        }
    }

    @Test
    void handlesAreReadAtFullWidth() {
        QImage q = new QImage();
        // Only read back, never dereferenced.
        q.nativeImage = 0x7654_3210_89AB_CDE0L;
        assertEquals(0x7654_3210_89AB_CDE0L, BridgeProbe.attached(q));
        q.nativeImage = 0xFFFF_FFFF_0000_0010L;
        assertEquals(0xFFFF_FFFF_0000_0010L, BridgeProbe.attached(q));
    }

    @Test
    void createdQImageHasNoNativeImage() {
        QImage q = BridgeProbe.newQImage();
        assertNotNull(q);
        assertSame(QImage.class, q.getClass());
        assertEquals(0, q.nativeImage);
        assertEquals(0, q.width);
    }

    @Test
    void rectFieldsMapInOrder() {
        assertArrayEquals(new int[] {-3, 4, 50, -7}, BridgeProbe.rect(new MRect(-3, 4, 50, -7)));
        assertArrayEquals(new int[] {0, 0, 0, 0}, BridgeProbe.rect(new MRect()));
    }

    @Test
    void envOfAJavaThreadIsTheCallersEnv() throws Exception {
        assertTrue(BridgeProbe.envIsCallers());
        boolean[] seen = new boolean[1];
        Thread other = new Thread(() -> seen[0] = BridgeProbe.envIsCallers());
        other.start();
        other.join();
        assertTrue(seen[0]);
    }
}
