package com.lumeric.tools;

import static org.junit.jupiter.api.Assertions.assertArrayEquals;
import static org.junit.jupiter.api.Assertions.assertEquals;
import static org.junit.jupiter.api.Assertions.assertFalse;
import static org.junit.jupiter.api.Assertions.assertTrue;
import static org.junit.jupiter.api.Assumptions.assumeTrue;

import com.lumeric.filter.FilterWraper;
import com.lumeric.filter.GLSLRender;
import com.lumeric.filter.QImage;
import com.lumeric.host.DirectoryBundle;
import com.lumeric.host.HostGL;
import com.lumeric.util.FilterEngineJNILib;
import java.awt.image.BufferedImage;
import java.io.File;
import java.nio.file.Files;
import java.nio.file.Path;
import java.nio.file.Paths;
import java.util.Arrays;
import javax.imageio.ImageIO;
import org.junit.jupiter.api.Test;
import org.junit.jupiter.api.io.TempDir;

/**
 * `filterpack render` must draw exactly what the app draws: the same sample
 * packages, once through the tool and once through the Java API the app uses
 * (QImage upload, FilterWraper for three frames, read-back), compared byte
 * for byte.
 */
class FilterpackMatchesAppPathTest {
    private static final int W = 24, H = 16;

    @TempDir Path dir;

    @Test
    void toolAndAppRenderTheSamePixels() throws Exception {
        Path tool = Paths.get(System.getProperty("com.lumeric.filterpack", ""));
        Path packages = Paths.get(System.getProperty("com.lumeric.packages", ""));
        assumeTrue(Files.isExecutable(tool), "filterpack not built");

        BufferedImage input = gradient();
        File inputPng = dir.resolve("in.png").toFile();
        ImageIO.write(input, "png", inputPng);
        FilterEngineJNILib.setBundle(new DirectoryBundle(packages));
        try (HostGL gl = HostGL.create(64, 64); QImage image = DirectoryBundle.toQImage(input)) {
            for (String name : new String[] {"mono", "sepia", "fade_curve", "film_grain", "blur", "soft_glow", "dreamy"}) {
                File toolPng = dir.resolve(name + ".png").toFile();
                Process run = new ProcessBuilder(tool.toString(), "render", packages.toString(), name,
                        inputPng.toString(), toolPng.toString()).redirectErrorStream(true).start();
                String log = new String(run.getInputStream().readAllBytes());
                assertEquals(0, run.waitFor(), name + ": " + log);
                byte[] app = renderInJava(image, name);
                assertArrayEquals(rgba(ImageIO.read(toolPng)), app, name);
                assertFalse(Arrays.equals(rgba(input), app), name + " changed nothing");
            }
        } finally {
            FilterEngineJNILib.setBundle(null);
        }
    }

    /**
     * fade_curve maps every level k of each colour channel to the fade's tone
     * curve, 24 + floor(4k / 5) in 1/256 units, within one level (drivers
     * may round the last bit differently); alpha passes unchanged.
     */
    @Test
    void fadeCurveFollowsItsToneCurve() throws Exception {
        Path packages = Paths.get(System.getProperty("com.lumeric.packages", ""));
        BufferedImage levels = new BufferedImage(256, 2, BufferedImage.TYPE_INT_ARGB);
        for (int k = 0; k < 256; k++) {
            levels.setRGB(k, 0, 0xFF000000 | k << 16 | (255 - k) << 8 | (k * 37) % 256);
            levels.setRGB(k, 1, 0xFF000000 | (k * 37) % 256 << 16 | k << 8 | (255 - k));
        }
        FilterEngineJNILib.setBundle(new DirectoryBundle(packages));
        try (HostGL gl = HostGL.create(64, 64); QImage image = DirectoryBundle.toQImage(levels)) {
            byte[] input = rgba(levels);
            byte[] out = renderInJava(image, "fade_curve", 256, 2);
            for (int i = 0; i < out.length; i++) {
                int in = input[i] & 0xff, got = out[i] & 0xff;
                if (i % 4 == 3) {
                    assertEquals(in, got, "alpha at byte " + i);
                } else {
                    double expected = (24 + 4 * in / 5) * 255.0 / 256.0;
                    assertTrue(Math.abs(got - expected) <= 1.0, "level " + in + " gave " + got);
                }
            }
        } finally {
            FilterEngineJNILib.setBundle(null);
        }
    }

    private static byte[] renderInJava(QImage image, String name) { return renderInJava(image, name, W, H); }

    private static byte[] renderInJava(QImage image, String name, int width, int height) {
        int texture = 700;  // any unused name: GL ES creates it on first bind
        GLSLRender.nativeTextImage(image, texture);
        try (FilterWraper filter = new FilterWraper(name)) {
            // Frames after the first take the steady path (wrapper, locations,
            // uniforms and bindings reused): they must draw what it drew.
            for (int frame = 0; frame < 3; frame++) filter.render(texture, width, height);
            byte[] out = new byte[width * height * 4];
            GLSLRender.nativeCopyTexturToDataWithShare(filter.outputTexture(), out, width, height, 4);
            return out;
        }
    }

    private static BufferedImage gradient() {
        BufferedImage image = new BufferedImage(W, H, BufferedImage.TYPE_INT_ARGB);
        for (int i = 0; i < W * H; i++) {
            int x = i % W, y = i / W;
            image.setRGB(x, y, 0xFF000000 | (x * 10) << 16 | (y * 15) << 8 | ((x + y) * 6));
        }
        return image;
    }

    private static byte[] rgba(BufferedImage image) {
        int w = image.getWidth(), h = image.getHeight();
        int[] argb = image.getRGB(0, 0, w, h, null, 0, w);
        byte[] out = new byte[w * h * 4];
        for (int i = 0; i < argb.length; i++) {
            byte[] p = {(byte) (argb[i] >> 16), (byte) (argb[i] >> 8), (byte) argb[i], (byte) (argb[i] >>> 24)};
            System.arraycopy(p, 0, out, 4 * i, 4);
        }
        return out;
    }
}
