package com.lumeric.render;

import static org.junit.jupiter.api.Assertions.assertEquals;

import com.lumeric.filter.BaseFilter;
import com.lumeric.filter.GLSLRender;
import com.lumeric.filter.QImage;
import com.lumeric.forked.ForkedJvm;
import com.lumeric.host.HostGL;
import org.junit.jupiter.api.Test;

/**
 * Native objects Java holds as long handles: only buffers from
 * nativeAllocBuffer are freed, once, and the brightness curve writes only
 * through buffers large enough; a BaseFilter handle is used only while its
 * renderer lives. Before these checks each case freed or overran memory (a
 * glibc abort), so they run in a child JVM that prints one outcome per case.
 */
class JavaHandleTest {
    @Test
    void foreignStaleAndShortHandlesAreRefused() throws Exception {
        String[] expected = {
            "free foreign: RuntimeException",
            "free twice: RuntimeException",
            "free null: ok",
            "negative size: 0",
            "short pixels: RuntimeException",
            "short history: RuntimeException",
            "reset short history: RuntimeException",
            "wrapping pixels: RuntimeException",
            "wrapping history: RuntimeException",
            "large enough: ok",
            "clear twice: RuntimeException",
            "apply cleared: RuntimeException",
            "replace cleared: RuntimeException",
            "made-up handle: RuntimeException",
            "live renderer: ok",
        };
        String log = ForkedJvm.run(Child.class);
        StringBuilder got = new StringBuilder();
        for (String line : log.split("\n")) if (line.startsWith("case ")) got.append(line.substring(5)).append('\n');
        assertEquals(String.join("\n", expected) + "\n", got.toString());
    }

    public static final class Child {
        private static void run(String name, Runnable call) {
            String outcome = "ok";
            try {
                call.run();
            } catch (RuntimeException e) {
                outcome = e.getClass().getSimpleName();
            }
            System.out.println("case " + name + ": " + outcome);
        }

        private static void histogram(long pixels, long history, int side, int frames, int index) {
            GLSLRender.nativeCalHistogramFromGPU(pixels, history, 0, 0, side, side, 0.05f, 0.95f, frames, index, 1f, 0.1f);
        }

        public static void main(String[] args) {
            try (HostGL gl = HostGL.create(8, 8); QImage image = new QImage()) {
                image.CreateImage(4, 4, 4);
                run("free foreign", () -> GLSLRender.nativeFreeBuffer(image.nativeImage));
                long buffer = GLSLRender.nativeAllocBuffer(16);
                GLSLRender.nativeFreeBuffer(buffer);
                run("free twice", () -> GLSLRender.nativeFreeBuffer(buffer));
                run("free null", () -> GLSLRender.nativeFreeBuffer(0));
                System.out.println("case negative size: " + GLSLRender.nativeAllocBuffer(-1));

                long pixels = GLSLRender.nativeAllocBuffer(8 * 8 * 4), history = GLSLRender.nativeAllocBuffer(2 * 1024);
                long small = GLSLRender.nativeAllocBuffer(100);
                run("short pixels", () -> histogram(small, history, 8, 2, 0));
                run("short history", () -> histogram(pixels, small, 8, 2, 1));
                run("reset short history", () -> histogram(pixels, small, 8, 2, -1));
                // 65536^2 x 4 pixel bytes and 2^22 x 1024 history bytes are 2^34 and 2^32: 0 in a 32-bit size_t.
                run("wrapping pixels", () -> histogram(small, history, 65536, 2, 0));
                run("wrapping history", () -> histogram(pixels, small, 8, 1 << 22, -1));
                run("large enough", () -> {
                    histogram(pixels, history, 8, 2, -1);
                    histogram(pixels, history, 8, 2, 1);
                });
                for (long b : new long[] {pixels, history, small}) GLSLRender.nativeFreeBuffer(b);

                BaseFilter filter = new BaseFilter();
                long cleared = filter.nativeInitialWithString(0, false, null, GL.COPY_FRAGMENT);
                filter.nativeClear(cleared);
                run("clear twice", () -> filter.nativeClear(cleared));
                run("apply cleared", () -> filter.nativeApplyFilter(cleared));
                run("replace cleared", () -> filter.nativeInitialWithString(cleared, false, null, GL.COPY_FRAGMENT));
                run("made-up handle", () -> filter.nativeSetRenderMode(image.nativeImage, 1));
                run("live renderer", () -> {
                    long live = filter.nativeInitialWithString(0, false, null, GL.COPY_FRAGMENT);
                    live = filter.nativeInitialWithString(live, false, null, GL.COPY_FRAGMENT);
                    if (filter.nativeApplyFilter(live) == 0 || filter.nativeSetRenderMode(live, 1) != 1) {
                        throw new IllegalStateException("live renderer refused");
                    }
                    filter.nativeClear(live);
                });
            }
        }
    }
}
