package com.lumeric.pixels;

import static org.junit.jupiter.api.Assertions.assertArrayEquals;

import com.lumeric.filter.QImage;
import com.lumeric.host.ImageFilterTables;
import java.util.ArrayList;
import java.util.Arrays;
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

    private static byte[] convert(byte[] frame) {
        try (QImage image = new QImage()) {
            image.YUV420sp2RGB(frame, W, H);
            return PixelReference.pixels(image);
        }
    }

    @Test
    void framesConvertWithoutAnExplicitInitializeAndAnInitializeIsHarmless() throws Exception {
        // Y 128, V 90, U 150 everywhere: every table takes part (without them
        // the pixels would be opaque black).
        byte[] flat = new byte[2 * W * H], rgba = new byte[4 * W * H], pixel = {69, (byte) 152, (byte) 174, -1};
        Arrays.fill(flat, 0, W * H, (byte) 128);
        for (int i = W * H; i < flat.length; i++) flat[i] = (byte) (i % 2 == 0 ? 90 : 150);
        for (int i = 0; i < rgba.length; i++) rgba[i] = pixel[i % 4];
        assertArrayEquals(rgba, convert(flat));
        // Every conversion while the tables are built again gives what one before gave.
        byte[] expected = convert(FRAME);

        ExecutorService pool = Executors.newFixedThreadPool(4);
        try {
            List<Future<byte[]>> results = new ArrayList<>();
            for (int i = 0; i < 16; i++) {
                pool.submit(ImageFilterTables::initialize);
                results.add(pool.submit(() -> convert(FRAME)));
            }
            for (Future<byte[]> result : results) assertArrayEquals(expected, result.get());
        } finally {
            pool.shutdown();
        }
    }
}
