package com.lumeric.filter;

import com.lumeric.util.NativeLibrary;

/**
 * A filter package ("filter/NAME/filter.xml" in the resource bundle) running
 * on a caller's GL texture. All methods run on the GL thread.
 */
public class FilterWraper implements AutoCloseable {
    static {
        NativeLibrary.load();
    }

    private long handle;

    public FilterWraper() {}

    public FilterWraper(String packageName) {
        handle = nativeInitialWithString(packageName);
    }

    /** Runs the package on {@code texture} of the given size. */
    public void render(int texture, int width, int height) {
        nativeRenderContext(handle, texture, width, height);
    }

    /** GL texture name of the package's output, 0 when there is none. */
    public int outputTexture() {
        return nativeGetOutputText(handle);
    }

    @Override
    public void close() {
        nativeDispose(handle);
        handle = 0;
    }

    public native long nativeInitialWithString(String packageName);
    public native void nativeDispose(long handle);
    public native void nativeRenderContext(long handle, int texture, int width, int height);
    public native int nativeGetOutputText(long handle);
}
