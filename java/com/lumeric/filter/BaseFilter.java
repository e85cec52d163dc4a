package com.lumeric.filter;

import com.lumeric.util.NativeLibrary;

/**
 * One shader pass from a texture to the bound framebuffer, driven on the GL
 * thread. The native renderer is held as a handle; 0 means none.
 */
public class BaseFilter {
    static {
        NativeLibrary.load();
    }

    public static final int TEXTURE_2D = 3553;
    public static final int TEXTURE_EXTERNAL_OES = 36197;

    public native long nativeInitialWithString(long oldHandle, boolean external, String vertex, String fragment);
    public native int nativeApplyFilter(long handle);
    public native int nativeClear(long handle);
    public native int nativeUpdateMatrix(long handle, float[] m);
    public native int nativeSetGlobalTextureMatrix(long handle, float[] m);
    public native int nativeUpdateModelMatrix(long handle, float[] m);
    public native int nativeSetRotationAndFlip(long handle, int degrees, int flipX, int flipY);
    public native int nativeRenderTexture(long handle, int texture, int width, int height);
    public native int nativeSetPositions(long handle, float[] positions);
    public native int nativeSetTexCords(long handle, float[] texCoords);
    public native int nativeSetRenderMode(long handle, int mode);
    public native int nativeGetVersion();
}
