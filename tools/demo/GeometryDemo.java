package com.lumeric.demo;

import android.graphics.Bitmap;
import com.lumeric.filter.QImage;
import com.lumeric.host.DirectoryBundle;

import java.awt.Color;
import java.awt.Font;
import java.awt.Graphics2D;
import java.awt.image.BufferedImage;
import java.io.File;
import java.io.IOException;
import java.nio.file.Files;
import java.nio.file.Path;
import java.nio.file.Paths;

import javax.imageio.ImageIO;

/**
 * Draws a test chart (or loads the PNG given as first argument), hands it to
 * the native library as a QImage and writes cropped, turned, flipped and
 * down-sampled versions as PNG files into the output directory (second
 * argument, default out/demo).
 */
public final class GeometryDemo {
    private GeometryDemo() {}

    public static void main(String[] args) throws IOException {
        BufferedImage chart = args.length > 0 && !args[0].isEmpty() ? ImageIO.read(new File(args[0])) : drawChart(320, 240);
        Path out = Paths.get(args.length > 1 ? args[1] : "out/demo");
        Files.createDirectories(out);
        int w = chart.getWidth(), h = chart.getHeight();

        write(out, "original", chart);
        try (QImage image = DirectoryBundle.toQImage(chart)) {
            image.createSubImage(w / 4, h / 4, w / 2, h / 2);
            write(out, "cropped", image);
        }
        try (QImage image = DirectoryBundle.toQImage(chart)) {
            image.nativeRotate(90);
            write(out, "rotated-90", image);
        }
        try (QImage image = DirectoryBundle.toQImage(chart)) {
            image.nativeFlip(1, 0);
            write(out, "flipped-horizontal", image);
        }
        try (QImage image = DirectoryBundle.toQImage(chart)) {
            image.nativeFlip(0, 1);
            write(out, "flipped-vertical", image);
        }
        try (QImage image = DirectoryBundle.toQImage(chart)) {
            Bitmap small = Bitmap.createBitmap(Math.max(1, w / 2), Math.max(1, h / 3), Bitmap.Config.RGB_565);
            image.ToBitmap(small);
            write(out, "downsampled-565", toBuffered(small));
        }
    }

    private static BufferedImage drawChart(int w, int h) {
        BufferedImage chart = new BufferedImage(w, h, BufferedImage.TYPE_INT_ARGB);
        Graphics2D g = chart.createGraphics();
        Color[] bars = {Color.WHITE, Color.YELLOW, Color.CYAN, Color.GREEN, Color.MAGENTA, Color.RED, Color.BLUE, Color.BLACK};
        for (int i = 0; i < bars.length; i++) {
            g.setColor(bars[i]);
            g.fillRect(i * w / bars.length, 0, w / bars.length + 1, h * 2 / 3);
        }
        for (int x = 0; x < w; x++) {
            int v = x * 255 / Math.max(1, w - 1);
            g.setColor(new Color(v, v, v));
            g.drawLine(x, h * 2 / 3, x, h - 1);
        }
        g.setColor(Color.RED);
        g.setFont(new Font(Font.SANS_SERIF, Font.BOLD, h / 8));
        g.drawString("TOP LEFT", 8, h / 6);
        g.dispose();
        return chart;
    }

    private static BufferedImage toBuffered(QImage image) {
        Bitmap bitmap = Bitmap.createBitmap(image.width, image.height, Bitmap.Config.ARGB_8888);
        image.ToBitmap(bitmap);
        return toBuffered(bitmap);
    }

    private static BufferedImage toBuffered(Bitmap bitmap) {
        int w = bitmap.getWidth(), h = bitmap.getHeight();
        int[] argb = new int[w * h];
        bitmap.getPixels(argb, 0, w, 0, 0, w, h);
        BufferedImage out = new BufferedImage(w, h, BufferedImage.TYPE_INT_ARGB);
        out.setRGB(0, 0, w, h, argb, 0, w);
        return out;
    }

    private static void write(Path dir, String name, QImage image) throws IOException {
        write(dir, name, toBuffered(image));
    }

    private static void write(Path dir, String name, BufferedImage image) throws IOException {
        Path file = dir.resolve(name + ".png");
        ImageIO.write(image, "png", file.toFile());
        System.out.println("wrote " + file + " (" + image.getWidth() + "x" + image.getHeight() + ")");
    }
}
