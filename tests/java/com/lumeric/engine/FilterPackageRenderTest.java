package com.lumeric.engine;

import static com.lumeric.engine.Packages.leaf;
import static com.lumeric.engine.Packages.param;
import static org.junit.jupiter.api.Assertions.assertArrayEquals;
import static org.junit.jupiter.api.Assertions.assertDoesNotThrow;
import static org.junit.jupiter.api.Assertions.assertEquals;
import static org.junit.jupiter.api.Assertions.assertNotEquals;
import static org.junit.jupiter.api.Assertions.assertThrows;
import static org.junit.jupiter.api.Assertions.assertTrue;

import android.graphics.Bitmap;
import com.lumeric.filter.FilterWraper;
import com.lumeric.filter.GLSLRender;
import com.lumeric.filter.QImage;
import com.lumeric.host.DirectoryBundle;
import com.lumeric.host.HostGL;
import com.lumeric.util.FilterEngineJNILib;
import java.awt.image.BufferedImage;
import java.io.IOException;
import java.nio.file.Path;
import java.util.Arrays;
import java.util.function.IntUnaryOperator;
import java.util.stream.IntStream;
import javax.imageio.ImageIO;
import org.junit.jupiter.api.AfterEach;
import org.junit.jupiter.api.BeforeEach;
import org.junit.jupiter.api.Test;
import org.junit.jupiter.api.io.TempDir;

/**
 * Filter packages through the FilterWraper natives: package files written
 * into a bundle directory, a caller texture uploaded from a bitmap, the output
 * texture read back and compared byte for byte with small Java references of
 * the shaders. Package and description names are unique: the native caches
 * live as long as the JVM.
 */
class FilterPackageRenderTest {
    private static final String HEAD = "precision mediump float; varying vec2 uv;"
            + " uniform sampler2D inputImageTexture; uniform sampler2D inputImageTexture2;";
    private static final String INVERT = HEAD
            + " void main(){ vec4 c = texture2D(inputImageTexture, uv); gl_FragColor = vec4(1.0 - c.rgb, 1.0); }";

    // 0xRRGGBB, alpha 255; all channels even so halving is exact.
    private static final int[] INPUT = {0x0a141e, 0x283c50, 0x64788c, 0xc8d2dc};

    @TempDir Path root;
    private Packages files;
    private DirectoryBundle bundle;
    private HostGL gl;
    private static int nextTexture = 1000;

    @BeforeEach
    void setUp() throws IOException {
        files = new Packages(root);
        files.describe("invert", INVERT);
        files.describe("noblue", body("gl_FragColor = vec4(c.rg, 0.0, 1.0);"));
        files.describe("rotate", body("gl_FragColor = vec4(c.gbr, 1.0);"));
        files.describe("copy", body("gl_FragColor = c;"));
        files.describe("mixsecond", body("gl_FragColor = vec4(c.rg, texture2D(inputImageTexture2, uv).b, 1.0);"));
        bundle = new DirectoryBundle(root);
        FilterEngineJNILib.setBundle(bundle);
        gl = HostGL.create(64, 64);
        assertTrue(gl.makeCurrent());
    }

    @AfterEach
    void tearDown() { gl.close(); FilterEngineJNILib.setBundle(null); }

    private static int r(int p) { return (p >> 16) & 0xff; }
    private static int g(int p) { return (p >> 8) & 0xff; }
    private static int b(int p) { return p & 0xff; }
    private static int rgb(int r, int g, int b) { return (r << 16) | (g << 8) | b; }

    private static final IntUnaryOperator INVERT_REF = p -> rgb(255 - r(p), 255 - g(p), 255 - b(p));
    private static final IntUnaryOperator NOBLUE_REF = p -> rgb(r(p), g(p), 0);
    private static final IntUnaryOperator ROTATE_REF = p -> rgb(g(p), b(p), r(p));

    private static byte[] rgba(int[] pixels) {
        byte[] bytes = new byte[pixels.length * 4];
        for (int i = 0; i < pixels.length; i++) {
            byte[] p = {(byte) r(pixels[i]), (byte) g(pixels[i]), (byte) b(pixels[i]), (byte) 255};
            System.arraycopy(p, 0, bytes, 4 * i, 4);
        }
        return bytes;
    }

    private static byte[] expected(IntUnaryOperator op) { return rgba(Arrays.stream(INPUT).map(op).toArray()); }

    private static String body(String statement) {
        return HEAD + " void main(){ vec4 c = texture2D(inputImageTexture, uv); " + statement + " }";
    }

    /** A fresh texture name holding the pixels (alpha 255), uploaded through a QImage. */
    private static int texture(int width, int height, int[] pixels) {
        Bitmap bitmap = Bitmap.createBitmap(width, height, Bitmap.Config.ARGB_8888);
        bitmap.setPixels(Arrays.stream(pixels).map(p -> 0xff000000 | p).toArray(), 0, width, 0, 0, width, height);
        int name = nextTexture++;
        try (QImage image = new QImage().Bitmap2QImage(bitmap)) {
            GLSLRender.nativeTextImage(image, name);
        }
        return name;
    }

    private static byte[] read(int texture, int width, int height) {
        byte[] data = new byte[width * height * 4];
        GLSLRender.nativeCopyTexturToDataWithShare(texture, data, width, height, 4);
        return data;
    }

    private static byte[] render(String packageName, int texture, int width, int height) {
        try (FilterWraper wraper = new FilterWraper(packageName)) {
            wraper.render(texture, width, height);
            int output = wraper.outputTexture();
            assertNotEquals(0, output, packageName);
            return read(output, width, height);
        }
    }

    private byte[] renderInput(String packageName) { return render(packageName, texture(2, 2, INPUT), 2, 2); }

    @Test
    void leafAndModelsFollowTheirWiring() throws IOException {
        files.pack("single", leaf("invert"));
        files.pack("chain", "<model>" + leaf("noblue") + leaf("rotate") + leaf("invert") + "</model>");
        // Child 0 feeds child 2 directly; child 1 still renders but feeds nobody.
        files.pack("skip", "<model>" + leaf("noblue") + leaf("rotate") + leaf("invert")
                + "<relation output='0' input='2' index='0'/></model>");
        // Written before the filters, applied after them: the package input also
        // reaches child 1 at its input 1 (numbers read like atoi).
        files.pack("tap", "<model><relation output=' -1' input='1' index='1x'/>"
                + leaf("invert") + leaf("mixsecond") + "</model>");

        assertArrayEquals(expected(INVERT_REF), renderInput("single"));
        assertArrayEquals(expected(NOBLUE_REF.andThen(ROTATE_REF).andThen(INVERT_REF)), renderInput("chain"));
        assertArrayEquals(expected(NOBLUE_REF.andThen(INVERT_REF)), renderInput("skip"));
        assertArrayEquals(expected(p -> rgb(255 - r(p), 255 - g(p), b(p))), renderInput("tap"));
    }

    @Test
    void includedPackageIsReadOnceAndEachWrapperOwnsItsFilters() throws IOException {
        files.describe("inc_invert", INVERT);
        files.describe("inc_noblue", body("gl_FragColor = vec4(c.rg, 0.0, 1.0);"));
        files.pack("inc_shared", leaf("inc_invert"));
        files.pack("inc_first", "<model><filter include='inc_shared'/>" + leaf("inc_noblue") + "</model>");
        files.pack("inc_second", "<model>" + leaf("inc_noblue") + "<filter include='inc_shared'/></model>");

        assertArrayEquals(expected(INVERT_REF.andThen(NOBLUE_REF)), renderInput("inc_first"));
        // inc_first, inc_shared and the two GL descriptions.
        assertEquals(4, bundle.readCount());
        assertArrayEquals(expected(NOBLUE_REF.andThen(INVERT_REF)), renderInput("inc_second"));
        assertEquals(5, bundle.readCount());
        // An including element is parsed into the shared node: it renames the
        // leaf for every user.
        files.pack("inc_rename", "<model><filter include='inc_shared' implement='inc_noblue'/></model>");
        assertArrayEquals(expected(NOBLUE_REF), renderInput("inc_rename"));
        assertArrayEquals(expected(NOBLUE_REF), renderInput("inc_first"));
        try (FilterWraper first = new FilterWraper("inc_first");
                FilterWraper second = new FilterWraper("inc_first")) {
            first.render(0, 8, 8);
            second.render(0, 8, 8);
            assertNotEquals(first.outputTexture(), second.outputTexture());
        }
        assertEquals(6, bundle.readCount());
    }

    /** Authored float, vector, matrix and curve values reach the shader in RuntimeParametersTest. */
    @Test
    void imageParamFeedsTheInputSlotItNames() throws IOException {
        files.describe("grain", HEAD + " void main(){ gl_FragColor = vec4(texture2D(inputImageTexture, uv).r,"
                + " texture2D(inputImageTexture2, uv).gb, 1.0); }");
        // An image param's name is the input slot; its file lies in the package.
        int[] grain = {0x010203, 0x040506, 0x070809, 0xfafbfc};
        BufferedImage png = new BufferedImage(2, 2, BufferedImage.TYPE_INT_ARGB);
        png.setRGB(0, 0, 2, 2, Arrays.stream(grain).map(p -> 0xff000000 | p).toArray(), 0, 2);
        files.pack("p_image", leaf("grain", param("1", "image", "grain.png")));
        ImageIO.write(png, "png", root.resolve("filter/p_image/grain.png").toFile());

        int[] mixed = IntStream.range(0, 4).map(i -> rgb(r(INPUT[i]), g(grain[i]), b(grain[i]))).toArray();
        assertArrayEquals(rgba(mixed), renderInput("p_image"));
    }

    @Test
    void brokenPackagesGiveNoOutputAndThrowNothing() throws IOException {
        files.write("filter/gl/novertex.xml", "<glfilter><fragment>" + INVERT + "</fragment></glfilter>");
        files.pack("br_badxml", "<model>" + leaf("invert").replace("</filter>", "") + "</model>");
        files.pack("br_root", "<shader>" + leaf("invert") + "</shader>");
        files.pack("br_nodesc", leaf("no_such_description"));
        files.pack("br_novertex", leaf("novertex"));
        files.pack("br_relation", "<model>" + leaf("invert") + leaf("invert") + "<relation output='0' input='1'/></model>");
        files.pack("br_cycle_a", "<model><filter include='br_cycle_b'/></model>");
        files.pack("br_cycle_b", "<model>" + leaf("invert") + "<filter include='br_cycle_a'/></model>");
        files.pack("br_self", "<model>" + leaf("invert") + "<filter include='br_self'/></model>");
        files.pack("br_child", "<model>" + leaf("invert") + "<filter include='br_missing'/></model>");
        files.pack("br_unbuildable", "<model>" + leaf("invert") + leaf("no_such_description")
                + "</model>");
        files.pack("br_empty", "");

        int input = texture(2, 2, INPUT);
        String[] names = {"br_missing", "br_badxml", "br_root", "br_nodesc", "br_novertex", "br_relation",
                "br_cycle_a", "br_cycle_b", "br_self", "br_child", "br_unbuildable", "br_empty"};
        // That failures are not cached, and why each fails, the engine's own tests check.
        for (String name : names) {
            assertDoesNotThrow(() -> {
                try (FilterWraper wraper = new FilterWraper(name)) {
                    wraper.render(input, 2, 2);
                    assertEquals(0, wraper.outputTexture(), name);
                }
            }, name);
        }
        assertArrayEquals(rgba(INPUT), read(input, 2, 2));
    }

    /** Sizes no GL can allocate, zero handles and a null name: the JVM lives on, no C++ exception escapes. */
    @Test
    void nativesTakeNullAndAbsurdArguments() throws IOException {
        files.pack("absurd", leaf("invert"));
        int input = texture(2, 2, INPUT);
        int[][] sizes = {{Integer.MAX_VALUE, Integer.MAX_VALUE}, {Integer.MIN_VALUE, 2}, {1 << 20, 1 << 20},
                {-1, -1}, {0, 0}, {2, 0}};
        for (int[] size : sizes) {
            try (FilterWraper wraper = new FilterWraper("absurd")) {
                assertDoesNotThrow(() -> wraper.render(input, size[0], size[1]), Arrays.toString(size));
                assertDoesNotThrow(wraper::outputTexture, Arrays.toString(size));
            }
        }
        assertArrayEquals(expected(INVERT_REF), render("absurd", input, 2, 2));
        assertArrayEquals(rgba(INPUT), read(input, 2, 2));

        FilterWraper unopened = new FilterWraper();
        assertDoesNotThrow(() -> unopened.nativeDispose(0));
        assertDoesNotThrow(() -> unopened.nativeRenderContext(0, input, 2, 2));
        assertEquals(0, unopened.nativeGetOutputText(0));
        RuntimeException thrown = assertThrows(RuntimeException.class, () -> new FilterWraper(null));
        assertEquals(RuntimeException.class, thrown.getClass());
        assertEquals(0, unopened.nativeGetOutputText(0), "usable after the exception");
    }

    @Test
    void callerTextureKeepsItsPixelsAndSamplesLinearlyClampedToTheEdge() throws IOException {
        files.pack("sampling", leaf("copy"));
        // A fresh name: its default minification filter needs mipmaps, so it
        // would sample black unless the engine set the filtering.
        int[] columns = {0x000000, 0xc8c8c8, 0x000000, 0xc8c8c8};
        int input = texture(2, 2, columns);
        // Drawn at 4x4, each row samples x = 0.125, 0.375, 0.625, 0.875: linear
        // weights 1/4 and 3/4 between the columns, the edges clamped (repeat
        // would blend the outer pixels with the opposite column).
        int[] row = {0x000000, 0x323232, 0x969696, 0xc8c8c8};
        int[] expectedPixels = IntStream.range(0, 16).map(i -> row[i % 4]).toArray();
        assertArrayEquals(rgba(expectedPixels), render("sampling", input, 4, 4));
        assertArrayEquals(rgba(columns), read(input, 2, 2));
    }
}
