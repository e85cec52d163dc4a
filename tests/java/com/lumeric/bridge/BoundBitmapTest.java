package com.lumeric.bridge;

import static org.junit.jupiter.api.Assertions.assertTrue;

import android.graphics.Bitmap;
import com.lumeric.filter.QImage;
import com.lumeric.forked.ForkedJvm;
import com.lumeric.util.BundleSource;
import com.lumeric.util.FilterEngineJNILib;
import java.util.Arrays;
import java.util.function.Consumer;
import org.junit.jupiter.api.Test;

/**
 * A QImage bound to a bitmap borrows the bitmap's pixels: whatever replaces or
 * frees the image must leave them alone. Freeing them aborts the JVM (glibc
 * double free) or lets malloc scribble over the bitmap, so the sequence runs
 * in a child JVM and checks the bitmap's pixels after every step.
 */
class BoundBitmapTest {
    private static final int W = 6, H = 4;

    @Test
    void boundPixelsSurviveEveryWayOfDroppingTheImage() throws Exception {
        assertTrue(ForkedJvm.run(Child.class).contains("bitmap intact"));
    }

    static int color(int x, int y) {
        return (200 + x) << 24 | x << 16 | y << 8 | (x * 16 + y);
    }

    static int[] chart(int width, int height, java.util.function.IntBinaryOperator f) {
        int[] out = new int[width * height];
        for (int i = 0; i < out.length; i++) out[i] = f.applyAsInt(i % width, i / width);
        return out;
    }

    static int[] colors(Bitmap bitmap) {
        int[] out = new int[W * H];
        bitmap.getPixels(out, 0, W, 0, 0, W, H);
        return out;
    }

    /** The image's pixels as colour ints, through a bitmap of its own. */
    static int[] colors(QImage image) {
        Bitmap out = Bitmap.createBitmap(image.width, image.height, Bitmap.Config.ARGB_8888);
        check(image.ToBitmap(out), "ToBitmap");
        int[] got = new int[image.width * image.height];
        out.getPixels(got, 0, image.width, 0, 0, image.width, image.height);
        return got;
    }

    static void check(boolean ok, String what) {
        if (!ok) throw new AssertionError(what);
    }

    public static final class Child {
        public static void main(String[] args) {
            int[] original = chart(W, H, BoundBitmapTest::color);
            Bitmap bitmap = Bitmap.createBitmap(W, H, Bitmap.Config.ARGB_8888);
            bitmap.setPixels(original, 0, W, 0, 0, W, H);

            // Each way of dropping a bound image, twice over (a second free of
            // the same pixels is what glibc aborts on).
            Object[][] steps = {
                {"Dispose", (Consumer<QImage>) QImage::Dispose},
                {"CreateImage", (Consumer<QImage>) q -> q.CreateImage(2, 2, 4)},
                {"createSubImage", (Consumer<QImage>) q -> {
                    q.createSubImage(1, 1, 3, 2);
                    check(Arrays.equals(chart(3, 2, (x, y) -> color(x + 1, y + 1)), colors(q)), "crop pixels");
                }},
                {"nativeRotate 90", (Consumer<QImage>) q -> {
                    check(q.nativeRotate(90) && q.width == H && q.height == W, "turned 90");
                    // Source (x, y) lands in row x, column H - 1 - y, in a buffer of the image's own.
                    check(Arrays.equals(chart(H, W, (c, r) -> color(r, H - 1 - c)), colors(q)), "turned pixels");
                    check(Arrays.equals(original, colors(bitmap)), "bitmap left as it was");
                    check(q.nativeRotate(270) && q.width == W, "turned back");
                }},
                {"nativeRotate 270", (Consumer<QImage>) q -> check(q.nativeRotate(270) && q.nativeRotate(90), "270")},
            };
            for (int round = 0; round < 2; round++) {
                for (Object[] step : steps) {
                    @SuppressWarnings("unchecked")
                    Consumer<QImage> drop = (Consumer<QImage>) step[1];
                    QImage bound = new QImage().BindBitmap(bitmap);
                    drop.accept(bound);
                    if (round == 0) bound.Dispose();  // else UnBindBitmap drops what is left
                    check(bound.UnBindBitmap(bitmap) && bitmap.getLockCount() == 0, step[0] + ": unbound");
                    check(Arrays.equals(original, colors(bitmap)), step[0] + ": bitmap pixels changed");
                }
            }

            // A bound QImage served as a bundle image: the native caller frees
            // what it gets, which must be a copy.
            QImage[] served = new QImage[1];
            FilterEngineJNILib.setBundle(new BundleSource() {
                @Override public byte[] readData(String path) { return null; }
                @Override public QImage readImage(String path) { return served[0]; }
            });
            for (int i = 0; i < 2; i++) {
                served[0] = new QImage().BindBitmap(bitmap);
                long image = BridgeProbe.loadResource("filter/a/bound.png", 0);
                check(image != 0 && BridgeProbe.bytes(image)[4] == 1, "served copy");  // pixel (1, 0) has R = 1
                BridgeProbe.freeImage(image);
                check(served[0].UnBindBitmap(bitmap) && bitmap.getLockCount() == 0, "served: unbound");
            }
            FilterEngineJNILib.setBundle(null);

            // bindBitmap2Image headers go the same way.
            long header = BridgeProbe.bind(bitmap);
            BridgeProbe.freeImage(header);
            BridgeProbe.unbind(bitmap, 0);
            long empty = BridgeProbe.bind(null);  // a null bitmap gives a header without pixels
            check(empty != 0 && BridgeProbe.describe(empty)[5] == 0, "null bitmap header");
            BridgeProbe.freeImage(empty);

            for (int i = 0; i < 1000; i++) new QImage().CreateImage(W, H, 4);  // malloc reuses what was freed
            check(Arrays.equals(original, colors(bitmap)), "bitmap pixels changed at the end");
            System.out.println("bitmap intact");
        }
    }
}
