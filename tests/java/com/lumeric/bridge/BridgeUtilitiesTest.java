package com.lumeric.bridge;

import static org.junit.jupiter.api.Assertions.assertDoesNotThrow;
import static org.junit.jupiter.api.Assertions.assertEquals;
import static org.junit.jupiter.api.Assertions.assertSame;
import static org.junit.jupiter.api.Assertions.assertThrows;

import com.lumeric.util.Coffee;
import org.junit.jupiter.api.Test;

class BridgeUtilitiesTest {
    @Test
    void exceptionsCarryClassAndText() {
        IllegalStateException named = assertThrows(IllegalStateException.class,
                () -> BridgeProbe.throwNamed("java/lang/IllegalStateException", "named text"));
        assertEquals("named text", named.getMessage());
        NullPointerException npe =
                assertThrows(NullPointerException.class, () -> BridgeProbe.throwNull("npe text"));
        assertEquals("npe text", npe.getMessage());
        RuntimeException rt =
                assertThrows(RuntimeException.class, () -> BridgeProbe.throwRuntime("rt text"));
        assertSame(RuntimeException.class, rt.getClass());
        assertEquals("rt text", rt.getMessage());
        assertThrows(NoClassDefFoundError.class,
                () -> BridgeProbe.throwNamed("com/lumeric/NoSuchException", "lost"));
    }

    @Test
    void checkImageRejectsMissingImageOrPixels() {
        RuntimeException none = assertThrows(RuntimeException.class, () -> BridgeProbe.checkImage(0));
        assertSame(RuntimeException.class, none.getClass());
        assertEquals("image is empty", none.getMessage());

        android.graphics.Bitmap bitmap =
                android.graphics.Bitmap.createBitmap(2, 2, android.graphics.Bitmap.Config.ARGB_8888);
        bitmap.failNextLocks(1);
        long unlocked = BridgeProbe.bind(bitmap);
        try {
            RuntimeException noData =
                    assertThrows(RuntimeException.class, () -> BridgeProbe.checkImage(unlocked));
            assertEquals("image is empty", noData.getMessage());
        } finally {
            BridgeProbe.unbind(bitmap, unlocked);
        }

        long image = BridgeProbe.newImage(1, 1, 1);
        try {
            assertDoesNotThrow(() -> BridgeProbe.checkImage(image));
        } finally {
            BridgeProbe.freeImage(image);
        }
    }

    @Test
    void signKeyIsA24ByteTextStableAcrossCalls() {
        String key = Coffee.getDESSignKey();
        assertEquals("Lm7q-Fx2Rw9t_Kp4Zc8v!Nh3", key);
        assertEquals(key, Coffee.getDESSignKey());
    }
}
