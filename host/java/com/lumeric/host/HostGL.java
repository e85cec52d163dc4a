package com.lumeric.host;

/**
 * Host only: a headless OpenGL ES 2.0 context (Mesa) made current on the
 * calling thread, with a pbuffer of the given size as framebuffer 0, and the
 * texture calls a host program needs around the library: make a texture
 * from pixels, refill it, read one back, delete it.
 *
 * <p>Pixels are {@code 0xAARRGGBB} ints as in {@code android.graphics.Bitmap},
 * row by row; row 0 of the array is texture row 0 (t = 0), the row the
 * library's own uploads and read-backs put first. The texture calls need a
 * current context on the calling thread and throw
 * {@link IllegalStateException} without one.
 */
public final class HostGL implements AutoCloseable {
    static {
        System.loadLibrary("hostgl_jni");
    }

    private long handle;

    private HostGL(long handle) {
        this.handle = handle;
    }

    /** @throws IllegalStateException when no context can be made */
    public static HostGL create(int width, int height) {
        return new HostGL(nativeCreate(width, height));
    }

    public boolean makeCurrent() {
        return nativeMakeCurrent(handle);
    }

    /**
     * A new RGBA texture of {@code width} x {@code height} holding {@code argb},
     * with linear filtering and clamp-to-edge wrapping.
     *
     * @throws IllegalArgumentException for a size beyond GL_MAX_TEXTURE_SIZE
     *         or fewer pixels than the size needs
     */
    public static int createTexture(int width, int height, int[] argb) {
        checkPixels(width, height, argb);
        int texture = nativeGenTexture();
        nativeFillTexture(texture, width, height, argb);
        return texture;
    }

    /** Replaces the storage and contents of {@code texture} with {@code argb}. */
    public static void fillTexture(int texture, int width, int height, int[] argb) {
        checkPixels(width, height, argb);
        nativeFillTexture(texture, width, height, argb);
    }

    /** The first {@code width} x {@code height} pixels of an RGBA texture. */
    public static int[] readTexture(int texture, int width, int height) {
        int[] argb = new int[checkSize(width, height)];
        nativeReadTexture(texture, width, height, argb);
        return argb;
    }

    public static void deleteTexture(int texture) {
        nativeDeleteTexture(texture);
    }

    private static int checkSize(int width, int height) {
        if (width <= 0 || height <= 0 || (long) width * height > Integer.MAX_VALUE / 4) {
            throw new IllegalArgumentException("texture size " + width + "x" + height);
        }
        return width * height;
    }

    private static void checkPixels(int width, int height, int[] argb) {
        int count = checkSize(width, height);
        if (argb.length < count) {
            throw new IllegalArgumentException(argb.length + " pixels for a " + width + "x" + height + " texture");
        }
    }

    /** GL_MAX_TEXTURE_SIZE of the current context. */
    public static int maxTextureSize() {
        return nativeMaxTextureSize();
    }

    /** glPixelStorei: lets tests leave the pixel-store state a caller might. */
    public static void pixelStore(int name, int value) {
        nativePixelStore(name, value);
    }

    /** glGetIntegerv of a single value. */
    public static int integer(int name) {
        return nativeInteger(name);
    }

    @Override
    public void close() {
        if (handle != 0) {
            nativeDestroy(handle);
            handle = 0;
        }
    }

    private static native long nativeCreate(int width, int height);
    private static native boolean nativeMakeCurrent(long handle);
    private static native void nativeDestroy(long handle);
    private static native int nativeGenTexture();
    private static native void nativeFillTexture(int texture, int width, int height, int[] argb);
    private static native void nativeReadTexture(int texture, int width, int height, int[] argb);
    private static native void nativeDeleteTexture(int texture);
    private static native int nativeMaxTextureSize();
    private static native void nativePixelStore(int name, int value);
    private static native int nativeInteger(int name);
}
