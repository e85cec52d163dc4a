package android.graphics;

import java.nio.Buffer;
import java.nio.ByteBuffer;
import java.nio.ByteOrder;

/**
 * Host stand-in for Android's Bitmap, enough of its API for the library's
 * natives and tests. Pixels live in a direct buffer (so a locked address
 * stays valid) in the device's memory layout: ARGB_8888 is R,G,B,A bytes,
 * RGB_565 little-endian 16-bit words. Host only; never shipped.
 */
public final class Bitmap {
    /** Pixel configurations with their NDK format numbers. */
    public enum Config {
        ALPHA_8(8, 1), RGB_565(4, 2), ARGB_4444(7, 2), ARGB_8888(1, 4);

        final int nativeFormat;
        final int bytesPerPixel;

        Config(int nativeFormat, int bytesPerPixel) {
            this.nativeFormat = nativeFormat;
            this.bytesPerPixel = bytesPerPixel;
        }
    }

    // Read by the host libjnigraphics through JNI; keep names and types.
    private final int width;
    private final int height;
    private final int nativeFormat;
    private ByteBuffer pixels;
    private int lockCount;
    private int failLocks;

    private final Config config;

    private Bitmap(int width, int height, Config config) {
        if (width <= 0 || height <= 0) {
            throw new IllegalArgumentException("width and height must be > 0");
        }
        this.width = width;
        this.height = height;
        this.config = config;
        this.nativeFormat = config.nativeFormat;
        this.pixels = ByteBuffer.allocateDirect(width * height * config.bytesPerPixel)
                .order(ByteOrder.LITTLE_ENDIAN);
    }

    public static Bitmap createBitmap(int width, int height, Config config) {
        return new Bitmap(width, height, config);
    }

    public int getWidth() { return width; }
    public int getHeight() { return height; }
    public Config getConfig() { return config; }
    public int getRowBytes() { return width * config.bytesPerPixel; }
    public int getByteCount() { return getRowBytes() * height; }
    public boolean isRecycled() { return pixels == null; }
    public void recycle() { pixels = null; }

    /** Host only: how many locks are outstanding. */
    public int getLockCount() { return lockCount; }

    /** Host only: make the next {@code n} pixel locks fail. */
    public void failNextLocks(int n) { failLocks = n; }

    /** Colour int 0xAARRGGBB of one pixel, as Android returns it. */
    public int getPixel(int x, int y) {
        checkXY(x, y);
        int offset = (y * width + x) * config.bytesPerPixel;
        switch (config) {
            case ARGB_8888: {
                int r = pixels.get(offset) & 0xFF, g = pixels.get(offset + 1) & 0xFF;
                int b = pixels.get(offset + 2) & 0xFF, a = pixels.get(offset + 3) & 0xFF;
                return (a << 24) | (r << 16) | (g << 8) | b;
            }
            case RGB_565: {
                int v = pixels.getShort(offset) & 0xFFFF;
                int r = (v >> 11) & 0x1F, g = (v >> 5) & 0x3F, b = v & 0x1F;
                return 0xFF000000 | ((r << 3 | r >> 2) << 16) | ((g << 2 | g >> 4) << 8) | (b << 3 | b >> 2);
            }
            case ALPHA_8:
                return (pixels.get(offset) & 0xFF) << 24;
            default:
                throw new UnsupportedOperationException("getPixel on " + config);
        }
    }

    public void setPixel(int x, int y, int color) {
        checkXY(x, y);
        int offset = (y * width + x) * config.bytesPerPixel;
        int a = color >>> 24, r = (color >> 16) & 0xFF, g = (color >> 8) & 0xFF, b = color & 0xFF;
        switch (config) {
            case ARGB_8888:
                pixels.put(offset, (byte) r).put(offset + 1, (byte) g)
                        .put(offset + 2, (byte) b).put(offset + 3, (byte) a);
                break;
            case RGB_565:
                pixels.putShort(offset, (short) ((r >> 3) << 11 | (g >> 2) << 5 | (b >> 3)));
                break;
            case ALPHA_8:
                pixels.put(offset, (byte) a);
                break;
            default:
                throw new UnsupportedOperationException("setPixel on " + config);
        }
    }

    public void getPixels(int[] out, int offset, int stride, int x, int y, int w, int h) {
        for (int j = 0; j < h; j++) {
            for (int i = 0; i < w; i++) {
                out[offset + j * stride + i] = getPixel(x + i, y + j);
            }
        }
    }

    public void setPixels(int[] in, int offset, int stride, int x, int y, int w, int h) {
        for (int j = 0; j < h; j++) {
            for (int i = 0; i < w; i++) {
                setPixel(x + i, y + j, in[offset + j * stride + i]);
            }
        }
    }

    /** Copies the raw pixel bytes (device layout) into a byte buffer. */
    public void copyPixelsToBuffer(Buffer dst) {
        ByteBuffer out = (ByteBuffer) dst;
        ByteBuffer src = pixels.duplicate();
        src.clear();
        out.put(src);
    }

    /** Replaces the raw pixel bytes (device layout) from a byte buffer. */
    public void copyPixelsFromBuffer(Buffer src) {
        ByteBuffer in = (ByteBuffer) src;
        ByteBuffer dst = pixels.duplicate();
        dst.clear();
        ByteBuffer slice = in.duplicate();
        slice.limit(slice.position() + Math.min(slice.remaining(), dst.remaining()));
        dst.put(slice);
        in.position(slice.position());
    }

    private void checkXY(int x, int y) {
        if (x < 0 || y < 0 || x >= width || y >= height) {
            throw new IllegalArgumentException("pixel (" + x + ", " + y + ") outside " + width + "x" + height);
        }
    }
}
