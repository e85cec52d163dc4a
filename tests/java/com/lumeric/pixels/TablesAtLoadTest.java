package com.lumeric.pixels;

import static org.junit.jupiter.api.Assertions.assertArrayEquals;

import com.lumeric.filter.QImage;
import com.lumeric.host.ImageFilterTables;
import java.util.ArrayList;
import java.util.List;
import java.util.concurrent.ExecutorService;
import java.util.concurrent.Executors;
import java.util.concurrent.Future;
import org.junit.jupiter.api.Test;

/**
 * In a JVM of its own (one per test class), a camera frame converts right
 * without anyone building the conversion tables; building them again later,
 * even while frames convert on other threads, changes nothing.
 */
class TablesAtLoadTest {
    private static final int W = 33, H = 2;
    private static final byte[] FRAME = PixelReference.randomBytes(2 * W * H, 11);

    private static byte[] convert() {
        try (QImage image = new QImage()) {
            image.YUV420sp2RGB(FRAME, W, H);
            return PixelReference.pixels(image);
        }
    }

    @Test
    void framesConvertWithoutAnExplicitInitializeAndAnInitializeIsHarmless() throws Exception {
        byte[] expected = PixelReference.nv21(FRAME, W, H, false);
        assertArrayEquals(expected, convert());

        ExecutorService pool = Executors.newFixedThreadPool(4);
        try {
            List<Future<byte[]>> results = new ArrayList<>();
            for (int i = 0; i < 16; i++) {
                pool.submit(ImageFilterTables::initialize);
                results.add(pool.submit(TablesAtLoadTest::convert));
            }
            for (Future<byte[]> result : results) assertArrayEquals(expected, result.get());
        } finally {
            pool.shutdown();
        }
    }
}
