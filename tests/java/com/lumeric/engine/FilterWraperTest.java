package com.lumeric.engine;

import static org.junit.jupiter.api.Assertions.assertDoesNotThrow;
import static org.junit.jupiter.api.Assertions.assertEquals;
import static org.junit.jupiter.api.Assertions.assertNotEquals;
import static org.junit.jupiter.api.Assertions.assertThrows;
import static org.junit.jupiter.api.Assertions.assertTrue;

import com.lumeric.filter.FilterWraper;
import com.lumeric.host.DirectoryBundle;
import com.lumeric.host.HostGL;
import com.lumeric.util.FilterEngineJNILib;
import java.io.IOException;
import java.nio.charset.StandardCharsets;
import java.nio.file.Files;
import java.nio.file.Path;
import org.junit.jupiter.api.AfterEach;
import org.junit.jupiter.api.BeforeEach;
import org.junit.jupiter.api.Test;
import org.junit.jupiter.api.io.TempDir;

/** FilterWraper natives through the JVM on a headless GL context. */
class FilterWraperTest {
    private static final String VERTEX =
            "attribute vec4 position; attribute vec2 inputTextureCoordinate; varying vec2 uv;"
            + " void main(){ gl_Position = position; uv = inputTextureCoordinate; }";
    private static final String FRAGMENT =
            "precision mediump float; varying vec2 uv; uniform sampler2D inputImageTexture;"
            + " void main(){ gl_FragColor = vec4(1.0) - texture2D(inputImageTexture, uv); }";

    @TempDir Path root;
    private DirectoryBundle bundle;
    private HostGL gl;

    @BeforeEach
    void setUp() throws IOException {
        write("filter/gl/invert.xml",
                "<glfilter><vertex>" + VERTEX + "</vertex><fragment>" + FRAGMENT + "</fragment></glfilter>");
        bundle = new DirectoryBundle(root);
        FilterEngineJNILib.setBundle(bundle);
        gl = HostGL.create(64, 64);
        assertTrue(gl.makeCurrent());
    }

    @AfterEach
    void tearDown() {
        gl.close();
        FilterEngineJNILib.setBundle(null);
    }

    private void write(String path, String text) throws IOException {
        Path file = root.resolve(path);
        Files.createDirectories(file.getParent());
        Files.write(file, text.getBytes(StandardCharsets.UTF_8));
    }

    // Package names are unique per test: the native cache lives for the process.
    private void leafPackage(String name) throws IOException {
        write("filter/" + name + "/filter.xml", "<filter implement='invert'/>");
    }

    @Test
    void packageIsReadOnceAndEachWrapperRendersItsOwnOutput() throws IOException {
        leafPackage("once");
        try (FilterWraper first = new FilterWraper("once");
                FilterWraper second = new FilterWraper("once")) {
            first.render(0, 8, 8);
            second.render(0, 8, 8);
            assertNotEquals(0, first.outputTexture());
            assertNotEquals(first.outputTexture(), second.outputTexture());
        }
        // filter.xml once, the GL description once.
        assertEquals(2, bundle.readCount());
    }

    @Test
    void thousandCyclesDoNotGrowTheProcess() throws IOException {
        leafPackage("cycles");
        runCycles("cycles", 100);
        long before = residentBytes();
        runCycles("cycles", 1000);
        long growth = residentBytes() - before;
        // A leaked 64x64 output texture alone is 16 KiB a cycle (16 MB here),
        // before counting framebuffers and linked programs.
        assertTrue(growth < 6L << 20, "resident growth " + growth);
    }

    private static void runCycles(String name, int cycles) {
        for (int cycle = 0; cycle < cycles; cycle++) {
            try (FilterWraper wraper = new FilterWraper(name)) {
                wraper.render(0, 64, 64);
                assertNotEquals(0, wraper.outputTexture());
            }
        }
    }

    private static long residentBytes() throws IOException {
        String[] fields = Files.readString(Path.of("/proc/self/statm")).trim().split(" ");
        return Long.parseLong(fields[1]) * 4096L;
    }

    @Test
    void brokenPackagesAreHarmless() throws IOException {
        write("filter/noroot/filter.xml", "<shader/>");
        write("filter/badxml/filter.xml", "<model><filter implement='invert'></model>");
        for (String name : new String[] {"absent", "noroot", "badxml"}) {
            try (FilterWraper wraper = new FilterWraper(name)) {
                wraper.render(0, 4, 4);
                assertEquals(0, wraper.outputTexture(), name);
            }
        }
        FilterWraper unopened = new FilterWraper();
        assertDoesNotThrow(() -> unopened.nativeDispose(0));
        assertEquals(0, unopened.nativeGetOutputText(0));
    }

    @Test
    void nullPackageNameRaisesNullPointerException() {
        assertThrows(NullPointerException.class, () -> new FilterWraper(null));
    }
}
