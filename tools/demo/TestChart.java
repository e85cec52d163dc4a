package com.lumeric.demo;

import java.awt.BasicStroke;
import java.awt.Color;
import java.awt.Font;
import java.awt.Graphics2D;
import java.awt.RenderingHints;
import java.awt.image.BufferedImage;

/**
 * A camera-like test chart a person can judge filters on: colour bars, colour
 * and gray ramps, skin tones, circles and fine rings, and text that shows
 * which way is up. Everything scales with the frame height.
 */
final class TestChart {
    // 75% bars: white, yellow, cyan, green, magenta, red, blue, near black.
    private static final int[] BARS = {0xBFBFBF, 0xBFBF00, 0x00BFBF, 0x00BF00, 0xBF00BF, 0xBF0000, 0x0000BF, 0x101010};
    // Light to dark skin, from reference charts and portrait photographs.
    private static final int[] SKIN = {0xFFDBAC, 0xE8BEAC, 0xC29682, 0xC68642, 0x8D5524, 0x735244};

    private TestChart() {}

    static BufferedImage draw(int w, int h) {
        BufferedImage chart = new BufferedImage(w, h, BufferedImage.TYPE_INT_RGB);
        Graphics2D g = chart.createGraphics();
        g.setRenderingHint(RenderingHints.KEY_ANTIALIASING, RenderingHints.VALUE_ANTIALIAS_ON);
        g.setRenderingHint(RenderingHints.KEY_TEXT_ANTIALIASING, RenderingHints.VALUE_TEXT_ANTIALIAS_ON);
        g.setColor(new Color(0x202428));
        g.fillRect(0, 0, w, h);

        int barsBottom = h * 40 / 100;
        for (int i = 0; i < BARS.length; i++) {
            g.setColor(new Color(BARS[i]));
            int x0 = i * w / BARS.length;
            g.fillRect(x0, 0, (i + 1) * w / BARS.length - x0, barsBottom);
        }

        // Gray, red, green and blue ramps from 0 to 255, then a hue sweep.
        int rampHeight = Math.max(1, h * 4 / 100);
        int[] masks = {0xFFFFFF, 0xFF0000, 0x00FF00, 0x0000FF};
        for (int r = 0; r < masks.length; r++) {
            int y0 = barsBottom + r * rampHeight;
            for (int x = 0; x < w; x++) {
                int v = x * 255 / Math.max(1, w - 1);
                g.setColor(new Color((v << 16 | v << 8 | v) & masks[r]));
                g.fillRect(x, y0, 1, rampHeight);
            }
        }
        int hueTop = barsBottom + masks.length * rampHeight;
        for (int x = 0; x < w; x++) {
            g.setColor(Color.getHSBColor((float) x / w, 1f, 1f));
            g.fillRect(x, hueTop, 1, rampHeight);
        }

        int lowerTop = hueTop + rampHeight;
        int lowerHeight = h - lowerTop;
        drawSkinPatches(g, w, lowerTop, lowerHeight);
        drawCircles(chart, g, w, lowerTop, lowerHeight);
        drawText(g, w, h, barsBottom);
        drawSmallPrint(g, w, lowerTop, lowerHeight);
        g.dispose();
        return chart;
    }

    private static void drawSkinPatches(Graphics2D g, int w, int top, int height) {
        int margin = height / 10;
        int size = (height - 3 * margin) / 2;
        for (int i = 0; i < SKIN.length; i++) {
            g.setColor(new Color(SKIN[i]));
            g.fillRoundRect(margin + (i % 3) * (size + margin), top + margin + (i / 3) * (size + margin), size, size,
                    size / 5, size / 5);
        }
    }

    private static void drawCircles(BufferedImage chart, Graphics2D g, int w, int top, int height) {
        int cy = top + height / 2;
        drawDiscs(chart, w * 58 / 100, cy, height * 26 / 100);

        // Fine concentric rings: sharp on the input, grey mush after a blur.
        int ringsX = w * 84 / 100;
        int ringRadius = height * 40 / 100;
        g.setStroke(new BasicStroke(Math.max(1f, height / 200f)));
        g.setColor(Color.WHITE);
        for (int r = ringRadius; r > 2; r -= Math.max(3, ringRadius / 12)) {
            g.drawOval(ringsX - r, cy - r, 2 * r, 2 * r);
        }
        g.setColor(new Color(0xFFD000));
        g.fillOval(ringsX - ringRadius / 8, cy - ringRadius / 8, ringRadius / 4, ringRadius / 4);
    }

    // Red, green and blue discs added light-wise: yellow, cyan, magenta where
    // two overlap and white in the middle. Edges are anti-aliased by distance.
    private static void drawDiscs(BufferedImage chart, int cx, int cy, int radius) {
        int[][] centres = {{cx, cy - radius / 2}, {cx - radius / 2, cy + radius / 3}, {cx + radius / 2, cy + radius / 3}};
        int[] colours = {0xFF0000, 0x00FF00, 0x0000FF};
        int reach = radius * 2;
        for (int y = Math.max(0, cy - reach); y < Math.min(chart.getHeight(), cy + reach); y++) {
            for (int x = Math.max(0, cx - reach); x < Math.min(chart.getWidth(), cx + reach); x++) {
                float cover = 0f;
                float[] sum = new float[3];
                for (int i = 0; i < 3; i++) {
                    double distance = Math.hypot(x + 0.5 - centres[i][0], y + 0.5 - centres[i][1]);
                    float c = (float) Math.max(0, Math.min(1, radius - distance + 0.5));
                    cover = Math.max(cover, c);
                    for (int k = 0; k < 3; k++) sum[k] += c * (colours[i] >> (16 - 8 * k) & 0xFF);
                }
                if (cover == 0f) continue;
                int background = chart.getRGB(x, y);
                int rgb = 0;
                for (int k = 0; k < 3; k++) {
                    float v = (background >> (16 - 8 * k) & 0xFF) * (1 - cover) + Math.min(255f, sum[k]);
                    rgb |= Math.min(255, Math.round(v)) << (16 - 8 * k);
                }
                chart.setRGB(x, y, rgb);
            }
        }
    }

    // Small print between the skin patches and the discs: blur and grain show on it first.
    private static void drawSmallPrint(Graphics2D g, int w, int top, int height) {
        String[] lines = {"Sphinx of black", "quartz, judge", "my vow.", "0123456789"};
        int size = Math.max(6, height / 12);
        g.setFont(new Font(Font.SERIF, Font.PLAIN, size));
        g.setColor(new Color(0xE0E0E0));
        int x = w * 33 / 100;
        int y = top + (height - lines.length * size * 6 / 5) / 2 + size;
        for (String line : lines) {
            g.drawString(line, x, y);
            y += size * 6 / 5;
        }
    }

    private static void drawText(Graphics2D g, int w, int h, int barsBottom) {
        int big = Math.max(8, h / 14);
        g.setFont(new Font(Font.SANS_SERIF, Font.BOLD, big));
        g.setColor(Color.BLACK);
        g.drawString("TOP LEFT", big / 3 + 2, big + 2);
        g.setColor(Color.WHITE);
        g.drawString("TOP LEFT", big / 3, big);
        g.setFont(new Font(Font.SANS_SERIF, Font.PLAIN, Math.max(6, h / 28)));
        String caption = "filter demo  " + w + "x" + h + "  NV21 BT.601";
        int width = g.getFontMetrics().stringWidth(caption);
        g.setColor(Color.BLACK);
        g.fillRect(w - width - h / 20, barsBottom - h / 18, width + h / 40, h / 22);
        g.setColor(Color.WHITE);
        g.drawString(caption, w - width - h / 25, barsBottom - h / 60);
    }
}
