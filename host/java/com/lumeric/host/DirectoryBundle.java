package com.lumeric.host;

import android.graphics.Bitmap;

import com.lumeric.filter.QImage;
import com.lumeric.util.BundleSource;

import java.awt.color.ColorSpace;
import java.awt.image.BufferedImage;
import java.awt.image.Raster;
import java.io.IOException;
import java.nio.file.Files;
import java.nio.file.Path;
import java.nio.file.Paths;
import java.util.concurrent.atomic.AtomicInteger;

import javax.imageio.ImageIO;

/**
 * Host only: a resource bundle laid out in a directory, images decoded by
 * javax.imageio into 4-channel RGBA QImages. Counts reads so tests can see
 * what the engine fetched.
 */
public final class DirectoryBundle implements BundleSource {
    private final Path root;
    private final AtomicInteger reads = new AtomicInteger();

    public DirectoryBundle(String root) {
        this(Paths.get(root));
    }

    public DirectoryBundle(Path root) {
        this.root = root;
    }

    public Path root() {
        return root;
    }

    /** How many reads (data and images) this bundle has served or refused. */
    public int readCount() {
        return reads.get();
    }

    @Override
    public byte[] readData(String path) {
        reads.incrementAndGet();
        try {
            Path file = resolve(path);
            return file == null ? null : Files.readAllBytes(file);
        } catch (IOException e) {
            return null;
        }
    }

    @Override
    public QImage readImage(String path) {
        reads.incrementAndGet();
        try {
            Path file = resolve(path);
            BufferedImage decoded = file == null ? null : ImageIO.read(file.toFile());
            return decoded == null ? null : toQImage(decoded);
        } catch (IOException e) {
            return null;
        }
    }

    /** Decoded pixels as an RGBA QImage, through a bitmap as on a device. */
    public static QImage toQImage(BufferedImage image) {
        int w = image.getWidth();
        int h = image.getHeight();
        int[] argb = argbPixels(image);
        Bitmap bitmap = Bitmap.createBitmap(w, h, Bitmap.Config.ARGB_8888);
        bitmap.setPixels(argb, 0, w, 0, 0, w, h);
        return new QImage().Bitmap2QImage(bitmap);
    }

    /**
     * 0xAARRGGBB per pixel as a device decoder gives it. Gray images keep
     * their stored levels: getRGB would map them from linear gray to sRGB.
     */
    private static int[] argbPixels(BufferedImage image) {
        int w = image.getWidth();
        int h = image.getHeight();
        if (image.getColorModel().getColorSpace().getType() != ColorSpace.TYPE_GRAY) {
            return image.getRGB(0, 0, w, h, null, 0, w);
        }
        Raster raster = image.getRaster();
        int shift = Math.max(0, image.getColorModel().getComponentSize(0) - 8);
        boolean alpha = raster.getNumBands() > 1;
        int[] argb = new int[w * h];
        for (int y = 0; y < h; y++) {
            for (int x = 0; x < w; x++) {
                int g = raster.getSample(x, y, 0) >> shift;
                int a = alpha ? raster.getSample(x, y, 1) >> shift : 255;
                argb[y * w + x] = a << 24 | g << 16 | g << 8 | g;
            }
        }
        return argb;
    }

    private Path resolve(String path) {
        Path file = root.resolve(path).normalize();
        if (!file.startsWith(root.normalize()) || !Files.isRegularFile(file)) return null;
        return file;
    }
}
