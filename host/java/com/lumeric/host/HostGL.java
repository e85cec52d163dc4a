package com.lumeric.host;

/**
 * Host only: a headless OpenGL ES 2.0 context (Mesa) made current on the
 * calling thread, with a pbuffer of the given size as framebuffer 0.
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

    /** GL_MAX_TEXTURE_SIZE of the current context. */
    public static int maxTextureSize() {
        return nativeMaxTextureSize();
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
    private static native int nativeMaxTextureSize();
}
