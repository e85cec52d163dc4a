package com.lumeric.filter;

/** A rectangle as the natives read it: x, y, width w and height h, in pixels. */
public class MRect {
    public int x;
    public int y;
    public int w;
    public int h;

    public MRect() {}

    public MRect(int x, int y, int w, int h) {
        this.x = x;
        this.y = y;
        this.w = w;
        this.h = h;
    }

    @Override
    public String toString() {
        return "MRect(" + x + ", " + y + ", " + w + ", " + h + ")";
    }
}
