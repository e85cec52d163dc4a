package com.lumeric.demo;

import java.awt.image.BufferedImage;

/**
 * RGB to an NV21 camera frame with the BT.601 studio-range formulas (Y in
 * 16..235, chroma in 16..240): a full-resolution Y plane, then one chroma row
 * per two image rows holding V,U pairs, each pair the average of a 2x2 block.
 */
final class Nv21 {
    private Nv21() {}

    /** The frame of an image whose width and height are even. */
    static byte[] fromImage(BufferedImage image) {
        int w = image.getWidth();
        int h = image.getHeight();
        if (w % 2 != 0 || h % 2 != 0) throw new IllegalArgumentException("NV21 needs an even width and height, not " + w + "x" + h);
        int[] rgb = image.getRGB(0, 0, w, h, null, 0, w);
        byte[] frame = new byte[w * h * 3 / 2];
        for (int i = 0; i < w * h; i++) {
            int p = rgb[i];
            frame[i] = (byte) luma(p >> 16 & 0xFF, p >> 8 & 0xFF, p & 0xFF);
        }
        int chroma = w * h;
        for (int y = 0; y < h; y += 2) {
            for (int x = 0; x < w; x += 2) {
                int r = 0, g = 0, b = 0;
                for (int k = 0; k < 4; k++) {
                    int p = rgb[(y + k / 2) * w + x + k % 2];
                    r += p >> 16 & 0xFF;
                    g += p >> 8 & 0xFF;
                    b += p & 0xFF;
                }
                r = (r + 2) / 4;
                g = (g + 2) / 4;
                b = (b + 2) / 4;
                frame[chroma++] = (byte) v(r, g, b);
                frame[chroma++] = (byte) u(r, g, b);
            }
        }
        return frame;
    }

    // 8-bit fixed point of 0.257, 0.504, 0.098 (Y), -0.148, -0.291, 0.439 (U)
    // and 0.439, -0.368, -0.071 (V), rounded.
    static int luma(int r, int g, int b) {
        return ((66 * r + 129 * g + 25 * b + 128) >> 8) + 16;
    }

    static int u(int r, int g, int b) {
        return ((-38 * r - 74 * g + 112 * b + 128) >> 8) + 128;
    }

    static int v(int r, int g, int b) {
        return ((112 * r - 94 * g - 18 * b + 128) >> 8) + 128;
    }
}
