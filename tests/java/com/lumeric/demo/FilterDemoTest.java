package com.lumeric.demo;

import static org.junit.jupiter.api.Assertions.assertEquals;
import static org.junit.jupiter.api.Assertions.assertFalse;
import static org.junit.jupiter.api.Assertions.assertNotEquals;
import static org.junit.jupiter.api.Assertions.assertTrue;
import static org.junit.jupiter.api.Assumptions.assumeTrue;

import java.awt.image.BufferedImage;
import java.io.File;
import java.io.IOException;
import java.net.URISyntaxException;
import java.nio.charset.StandardCharsets;
import java.nio.file.Files;
import java.nio.file.Path;
import java.util.ArrayList;
import java.util.Arrays;
import java.util.List;
import java.util.Map;
import java.util.stream.IntStream;
import java.util.stream.Stream;
import javax.imageio.ImageIO;
import org.junit.jupiter.api.BeforeAll;
import org.junit.jupiter.api.Test;
import org.junit.jupiter.api.io.TempDir;

/**
 * The demo end to end, in its own JVM through the built launcher: a small
 * frame through every sample package of the repository.
 */
class FilterDemoTest {
    private static final int W = 160, H = 90;
    private static Path launcher, packages;

    @BeforeAll
    static void locate() throws URISyntaxException {
        // The test jar sits in BUILD/java, the launcher in BUILD/tools/demo.
        Path jar = Path.of(FilterDemoTest.class.getProtectionDomain().getCodeSource().getLocation().toURI());
        launcher = jar.getParent().resolveSibling("tools/demo/run-demo");
        assumeTrue(Files.isExecutable(launcher), "demo not built (IFC_BUILD_TOOLS=OFF)");
        packages = Path.of(System.getProperty("com.lumeric.packages"));
    }

    private record Run(int status, String output) {}

    private static Run demo(Path out, Map<String, String> environment) throws IOException, InterruptedException {
        return demo(out, packages, environment);
    }

    private static Run demo(Path out, Path bundle, Map<String, String> environment)
            throws IOException, InterruptedException {
        ProcessBuilder builder = new ProcessBuilder(launcher.toString(), "--size", W + "x" + H, "--frames", "2",
                "--bundle", bundle.toString(), "--out", out.toString());
        builder.environment().put("IFC_DEMO_JAVA_OPTIONS", "-Xcheck:jni");
        builder.environment().putAll(environment);
        Process process = builder.redirectErrorStream(true).start();
        String output = new String(process.getInputStream().readAllBytes(), StandardCharsets.UTF_8);
        return new Run(process.waitFor(), output);
    }

    private static List<String> packageNames() throws IOException {
        try (Stream<Path> dirs = Files.list(packages.resolve("filter"))) {
            return dirs.filter(dir -> Files.isRegularFile(dir.resolve("filter.xml")))
                    .map(dir -> dir.getFileName().toString()).sorted().toList();
        }
    }

    private static int[] rgb(BufferedImage image, double fx, double fy) {
        int p = image.getRGB((int) (fx * image.getWidth()), (int) (fy * image.getHeight()));
        return new int[] {p >> 16 & 0xFF, p >> 8 & 0xFF, p & 0xFF};
    }

    private static void assertNear(int[] expected, int[] actual, String where) {
        boolean near = IntStream.range(0, 3).allMatch(c -> Math.abs(expected[c] - actual[c]) <= 3);
        assertTrue(near, where + ": expected ~" + Arrays.toString(expected) + ", got " + Arrays.toString(actual));
    }

    // -Xcheck:jni also flags the JDK's own font natives; only ours count.
    private static List<String> jniWarningsInOurNatives(String output) {
        List<String> lines = output.lines().map(String::trim).toList();
        List<String> ours = new ArrayList<>();
        for (int i = 0; i < lines.size(); i++) {
            if (!lines.get(i).startsWith("WARNING in native method")) continue;
            int frame = i + 1;
            while (frame < lines.size() && !lines.get(frame).startsWith("at ")) frame++;
            if (frame < lines.size() && lines.get(frame).contains("com.lumeric.")) {
                ours.add(lines.get(i) + " " + lines.get(frame));
            }
        }
        return ours;
    }

    @Test
    void everyPackageWritesItsOwnPictureOfTheFrame(@TempDir Path out) throws Exception {
        Run run = demo(out, Map.of());
        assertEquals(0, run.status(), run.output());
        assertEquals(List.of(), jniWarningsInOurNatives(run.output()));

        // The NV21 round trip keeps colours and orientation: 75% bars along
        // the top (white, then red sixth), dark background at the bottom right.
        BufferedImage input = ImageIO.read(out.resolve("input.png").toFile());
        assertEquals(List.of(W, H), List.of(input.getWidth(), input.getHeight()));
        assertNear(new int[] {191, 191, 191}, rgb(input, 1 / 16.0, 0.3), "white bar");
        assertNear(new int[] {191, 0, 0}, rgb(input, 11 / 16.0, 0.3), "red bar");
        assertNear(new int[] {0, 0, 191}, rgb(input, 13 / 16.0, 0.3), "blue bar");
        assertNear(new int[] {0x20, 0x24, 0x28}, rgb(input, 0.995, 0.99), "background");

        List<String> names = packageNames();
        assertFalse(names.isEmpty());
        int[] inputPixels = input.getRGB(0, 0, W, H, null, 0, W);
        for (String name : names) {
            File file = out.resolve(name + ".png").toFile();
            assertTrue(file.length() > 0, name + ".png missing or empty\n" + run.output());
            BufferedImage result = ImageIO.read(file);
            assertEquals(List.of(W, H), List.of(result.getWidth(), result.getHeight()), name);
            int[] pixels = result.getRGB(0, 0, W, H, null, 0, W);
            assertFalse(Arrays.equals(inputPixels, pixels), name + " left the frame unchanged");
            assertTrue(Arrays.stream(pixels).anyMatch(p -> (p & 0xFFFFFF) != 0), name + " is black");
            assertTrue(run.output().lines().anyMatch(line -> line.startsWith(name + " ")), "no timing for " + name);
        }
        BufferedImage sheet = ImageIO.read(out.resolve("contact-sheet.png").toFile());
        assertTrue(sheet.getWidth() > W && sheet.getHeight() > H);
    }

    @Test
    void aPackageWhoseShaderDoesNotCompileFailsTheRun(@TempDir Path out, @TempDir Path bundle) throws Exception {
        String vertex = "attribute vec4 position; attribute vec2 inputTextureCoordinate; varying vec2 uv;"
                + " void main(){ gl_Position = position; uv = inputTextureCoordinate; }";
        String head = "precision mediump float; varying vec2 uv; uniform sampler2D inputImageTexture;";
        Files.createDirectories(bundle.resolve("filter/gl"));
        Files.writeString(bundle.resolve("filter/gl/fine.xml"), "<glfilter><vertex>" + vertex
                + "</vertex><fragment>" + head + " void main(){ gl_FragColor = texture2D(inputImageTexture, uv).bgra; }"
                + "</fragment></glfilter>");
        Files.writeString(bundle.resolve("filter/gl/typo.xml"), "<glfilter><vertex>" + vertex
                + "</vertex>\n<fragment>" + head + "\nvoid main(){ gl_FragColor = texture2D(inputImageTexure, uv); }"
                + "</fragment></glfilter>");
        for (String name : List.of("fine", "typo")) {
            Files.createDirectories(bundle.resolve("filter/" + name));
            Files.writeString(bundle.resolve("filter/" + name + "/filter.xml"), "<filter implement='" + name + "'/>");
        }
        Run run = demo(out, bundle, Map.of());
        assertEquals(1, run.status(), run.output());
        assertTrue(run.output().contains("FAILED: filter package typo: filter/gl/typo.xml:3: fragment shader"),
                run.output());
        assertTrue(run.output().contains("1 of 2 packages failed"), run.output());
        assertTrue(Files.exists(out.resolve("fine.png")));
    }

    @Test
    void withoutAGLContextItSaysSoAndFails(@TempDir Path out) throws Exception {
        // glvnd finds no EGL vendor, so eglInitialize fails.
        Run run = demo(out, Map.of("__EGL_VENDOR_LIBRARY_FILENAMES", "/nonexistent.json"));
        assertNotEquals(0, run.status());
        assertTrue(run.output().contains("demo: no OpenGL ES 2.0 context could be made"), run.output());
        assertFalse(run.output().contains("Exception"), run.output());
        assertFalse(Files.exists(out.resolve("contact-sheet.png")));
    }
}
