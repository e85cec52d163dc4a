package com.lumeric.demo;

import java.awt.Color;
import java.awt.Font;
import java.awt.FontMetrics;
import java.awt.Graphics2D;
import java.awt.RenderingHints;
import java.awt.image.BufferedImage;
import java.util.List;

/** Tiles with a caption under each, in rows of a fixed number of columns. */
final class ContactSheet {
    record Tile(String caption, BufferedImage image) {}

    private static final int COLUMNS = 4;
    private static final int GAP = 12;

    private ContactSheet() {}

    static BufferedImage draw(List<Tile> tiles, int tileWidth) {
        BufferedImage first = tiles.get(0).image();
        int tileHeight = Math.max(1, first.getHeight() * tileWidth / first.getWidth());
        int captionHeight = Math.max(14, tileWidth / 12);
        int columns = Math.min(COLUMNS, tiles.size());
        int rows = (tiles.size() + columns - 1) / columns;
        int cellHeight = tileHeight + captionHeight + GAP;
        BufferedImage sheet = new BufferedImage(GAP + columns * (tileWidth + GAP), GAP + rows * cellHeight,
                BufferedImage.TYPE_INT_RGB);
        Graphics2D g = sheet.createGraphics();
        g.setRenderingHint(RenderingHints.KEY_INTERPOLATION, RenderingHints.VALUE_INTERPOLATION_BICUBIC);
        g.setRenderingHint(RenderingHints.KEY_RENDERING, RenderingHints.VALUE_RENDER_QUALITY);
        g.setRenderingHint(RenderingHints.KEY_TEXT_ANTIALIASING, RenderingHints.VALUE_TEXT_ANTIALIAS_ON);
        g.setColor(new Color(0x303030));
        g.fillRect(0, 0, sheet.getWidth(), sheet.getHeight());
        g.setFont(new Font(Font.SANS_SERIF, Font.PLAIN, captionHeight * 7 / 10));
        FontMetrics metrics = g.getFontMetrics();
        for (int i = 0; i < tiles.size(); i++) {
            int x = GAP + (i % columns) * (tileWidth + GAP);
            int y = GAP + (i / columns) * cellHeight;
            g.drawImage(scaled(tiles.get(i).image(), tileWidth, tileHeight), x, y, null);
            String caption = tiles.get(i).caption();
            g.setColor(Color.WHITE);
            g.drawString(caption, x + (tileWidth - metrics.stringWidth(caption)) / 2,
                    y + tileHeight + (captionHeight + metrics.getAscent() - metrics.getDescent()) / 2);
        }
        g.dispose();
        return sheet;
    }

    /** Halves the image while it is more than twice too wide, then one bicubic step: no aliasing. */
    static BufferedImage scaled(BufferedImage image, int width, int height) {
        BufferedImage current = image;
        while (current.getWidth() >= 2 * width && current.getHeight() >= 2 * height) {
            current = resize(current, current.getWidth() / 2, current.getHeight() / 2);
        }
        return resize(current, width, height);
    }

    private static BufferedImage resize(BufferedImage image, int width, int height) {
        BufferedImage out = new BufferedImage(width, height, BufferedImage.TYPE_INT_RGB);
        Graphics2D g = out.createGraphics();
        g.setRenderingHint(RenderingHints.KEY_INTERPOLATION, RenderingHints.VALUE_INTERPOLATION_BICUBIC);
        g.drawImage(image, 0, 0, width, height, null);
        g.dispose();
        return out;
    }
}
