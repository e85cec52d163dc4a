package com.lumeric.demo;

/** The GL calls the demo makes itself, on the thread with the current context. */
final class DemoGL {
    static {
        System.loadLibrary("demo_gl_jni");
    }

    private DemoGL() {}

    static native int genTexture();
    static native void deleteTexture(int texture);
    /** Waits for the GPU, so that timings include the work queued so far. */
    static native void finish();
    static native String renderer();
}
