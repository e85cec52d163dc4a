package com.lumeric.docs;

import com.lumeric.filter.FilterWraper;
import com.lumeric.filter.GLSLRender;
import com.lumeric.filter.QImage;
import com.lumeric.host.DirectoryBundle;
import com.lumeric.host.HostGL;
import com.lumeric.util.FilterEngineJNILib;
import java.nio.file.Path;

/**
 * The code examples of docs/java.md, compiled and run by JavaGuideTest. The
 * guide quotes these methods verbatim; JavaGuideTest fails when a block of
 * the guide is not found here.
 */
final class JavaGuideExamples {
    private JavaGuideExamples() {}

    // --- host program
    /** Runs one package of the bundle on ARGB pixels and returns its output. */
    static int[] runPackage(Path bundle, String name, int[] argb, int width, int height) {
        FilterEngineJNILib.setBundle(new DirectoryBundle(bundle));
        try (HostGL gl = HostGL.create(width, height)) {      // current on this thread
            int input = HostGL.createTexture(width, height, argb);
            try (FilterWraper filter = new FilterWraper(name)) {
                filter.render(input, width, height);
                if (filter.lastError() != null) {
                    throw new IllegalStateException(filter.lastError());
                }
                return HostGL.readTexture(filter.outputTexture(), width, height);
            } finally {
                HostGL.deleteTexture(input);
            }
        }
    }

    // --- camera frame
    /** One NV21 camera frame through a package; the output as RGBA bytes. */
    static byte[] filterCameraFrame(FilterWraper filter, byte[] nv21, int width, int height, int texture) {
        try (QImage frame = new QImage()) {
            frame.YUV420sp2RGB(nv21, width, height);     // no table set-up needed
            GLSLRender.nativeTextImage(frame, texture);   // RGBA upload on unit 0
        }
        filter.render(texture, width, height);
        byte[] rgba = new byte[width * height * 4];
        // Slot 4: read through a temporary framebuffer, no drawing, no pool.
        GLSLRender.nativeCopyTexturToDataWithShare(filter.outputTexture(), rgba, width, height, 4);
        return rgba;
    }

    // --- runtime parameter
    /** An intensity slider: the value reaches the shader at the next render. */
    static boolean onIntensityChanged(FilterWraper filter, float value) {
        boolean accepted = filter.setFloat("amount", value);
        if (!accepted) {
            System.err.println("intensity not applied: " + filter.lastError());
        }
        return accepted;
    }
}
