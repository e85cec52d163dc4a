package com.lumeric.demo;

import java.awt.image.BufferedImage;

/** Read-back bytes to images. */
final class Pixels {
    private Pixels() {}

    /**
     * RGBA bytes read from a texture through a framebuffer: row 0 is the
     * texture's first row, which is the frame's top row as uploaded. Alpha is
     * dropped, as on an opaque preview surface.
     */
    static BufferedImage fromRgba(byte[] rgba, int w, int h) {
        BufferedImage image = new BufferedImage(w, h, BufferedImage.TYPE_INT_RGB);
        int[] row = new int[w];
        for (int y = 0; y < h; y++) {
            for (int x = 0; x < w; x++) {
                int i = (y * w + x) * 4;
                row[x] = (rgba[i] & 0xFF) << 16 | (rgba[i + 1] & 0xFF) << 8 | (rgba[i + 2] & 0xFF);
            }
            image.setRGB(0, y, w, 1, row, 0, w);
        }
        return image;
    }
}
