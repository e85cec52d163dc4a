package com.lumeric.bridge;

import static org.junit.jupiter.api.Assertions.*;

import com.lumeric.filter.QImage;
import com.lumeric.util.BundleSource;
import com.lumeric.util.FilterEngineJNILib;
import java.util.HashMap;
import java.util.HashSet;
import java.util.Map;
import java.util.Set;
import java.util.function.ToLongBiFunction;
import org.junit.jupiter.api.AfterEach;
import org.junit.jupiter.api.BeforeEach;
import org.junit.jupiter.api.Test;

class ResourceCallbackTest {
    /** Serves byte arrays from a map and images made natively on demand. */
    static final class MemoryBundle implements BundleSource {
        final Map<String, byte[]> data = new HashMap<>();
        final Map<String, int[]> images = new HashMap<>();  // path -> {w, h, channels}
        QImage lastImage;
        long lastHandle;
        Thread lastThread;

        @Override
        public byte[] readData(String path) {
            lastThread = Thread.currentThread();
            if (path.equals("throws")) throw new IllegalStateException("bundle failure");
            return data.get(path);
        }

        @Override
        public QImage readImage(String path) {
            lastThread = Thread.currentThread();
            int[] size = images.get(path);
            if (size == null) return null;
            lastImage = new QImage();
            lastHandle = BridgeProbe.newImage(size[0], size[1], size[2]);
            BridgeProbe.attach(lastImage, lastHandle);
            return lastImage;
        }
    }

    private final MemoryBundle bundle = new MemoryBundle();

    @BeforeEach
    void install() {
        bundle.data.put("filter/a/filter.xml", new byte[] {1, 2, 3, (byte) 250, 5});
        bundle.data.put("empty.bin", new byte[0]);
        bundle.images.put("filter/a/lut.png", new int[] {3, 2, 4});
        FilterEngineJNILib.setBundle(bundle);
    }

    @AfterEach
    void uninstall() {
        FilterEngineJNILib.setBundle(null);
    }

    /** Data of every kind comes back as one row of bytes; images pass to the native caller. */
    private void checkLoads(ToLongBiFunction<String, Integer> load) {
        for (int kind : new int[] {1, 2, -1}) {
            long image = load.applyAsLong("filter/a/filter.xml", kind);
            assertNotEquals(0, image, "kind " + kind);
            try {
                assertArrayEquals(new int[] {5, 1, 1, 5, 5, 1}, BridgeProbe.describe(image));
                assertArrayEquals(new byte[] {1, 2, 3, (byte) 250, 5}, BridgeProbe.bytes(image));
            } finally {
                BridgeProbe.freeImage(image);
            }
        }
        long image = load.applyAsLong("filter/a/lut.png", 0);
        try {
            // Detached from the QImage so Java cannot free it; sizes stay.
            QImage q = bundle.lastImage;
            assertArrayEquals(new long[] {bundle.lastHandle, 0, 3}, new long[] {image, q.nativeImage, q.width});
            assertArrayEquals(new int[] {3, 2, 4, 12, 24, 1}, BridgeProbe.describe(image));
            assertEquals(23, BridgeProbe.bytes(image)[23]);
        } finally {
            BridgeProbe.freeImage(image);
        }
    }

    @Test
    void dataComesBackAsOneRowOfBytesAndImagesPassToTheNativeCaller() {
        checkLoads(BridgeProbe::loadResource);
    }

    @Test
    void emptyArrayIsAnImageOfWidthZeroAndMissingResourcesGiveNull() {
        long image = BridgeProbe.loadResource("empty.bin", 1);
        assertNotEquals(0, image);
        int[] d = BridgeProbe.describe(image);
        BridgeProbe.freeImage(image);
        assertArrayEquals(new int[] {0, 1, 0}, new int[] {d[0], d[1], d[4]});

        assertEquals(0, BridgeProbe.loadResource("nope.xml", 1));
        // A data file asked for as an image goes to the image reader.
        assertEquals(0, BridgeProbe.loadResource("filter/a/filter.xml", 0));
        assertEquals(0, BridgeProbe.loadResource("throws", 1));
        FilterEngineJNILib.setBundle(null);
        assertEquals(0, BridgeProbe.loadResource("filter/a/filter.xml", 1));
    }

    @Test
    void callbacksWorkFromANativeThreadAndDetachIt() {
        Set<Thread> before = new HashSet<>(Thread.getAllStackTraces().keySet());
        checkLoads(BridgeProbe::loadResourceOnNativeThread);
        assertNotEquals(Thread.currentThread(), bundle.lastThread);
        assertEquals(0, BridgeProbe.loadResourceOnNativeThread("throws", 1));

        Set<Thread> after = new HashSet<>(Thread.getAllStackTraces().keySet());
        after.removeAll(before);
        assertTrue(after.stream().noneMatch(t -> t == bundle.lastThread), "attached thread left behind");
        assertTrue(!bundle.lastThread.isAlive(), "native thread still attached");
    }
}
