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

    /**
     * Sets the {@code <float>} param {@code name} of every filter of the package
     * that declares it; the value is used from the next {@link #render} on.
     *
     * @return false when the package declares no float param of that name
     *         ({@link #lastError} says why)
     */
    public boolean setFloat(String name, float value) {
        return nativeSetFloat(handle, name, value);
    }

    /** As {@link #setFloat} for a {@code <vector4f>} param: exactly 4 values. */
    public boolean setVec4(String name, float... values) {
        return nativeSetVec4(handle, name, values);
    }

    /** As {@link #setFloat} for a {@code <matrix4f>} param: 16 values, column-major. */
    public boolean setMatrix4(String name, float[] values) {
        return nativeSetMatrix4(handle, name, values);
    }

    /**
     * As {@link #setFloat} for a {@code <curve>} param: 1 to 256 values as the
     * shader sees them (the package file's integer n is n / 256f); missing
     * entries are 0.
     */
    public boolean setCurve(String name, float[] values) {
        return nativeSetCurve(handle, name, values);
    }

    /**
     * The most recent problem of this wrapper (the package did not load, a
     * shader did not compile or link, render ran without a GL context, a param
     * was refused), kept until a later one replaces it; null when there was none.
     */
    public String lastError() {
        return nativeGetLastError(handle);
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
    public native boolean nativeSetFloat(long handle, String name, float value);
    public native boolean nativeSetVec4(long handle, String name, float[] values);
    public native boolean nativeSetMatrix4(long handle, String name, float[] values);
    public native boolean nativeSetCurve(long handle, String name, float[] values);
    public native String nativeGetLastError(long handle);
}
