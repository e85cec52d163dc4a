package com.lumeric.engine;

import static org.junit.jupiter.api.Assertions.assertArrayEquals;
import static org.junit.jupiter.api.Assertions.assertEquals;
import static org.junit.jupiter.api.Assertions.assertFalse;
import static org.junit.jupiter.api.Assertions.assertNotEquals;
import static org.junit.jupiter.api.Assertions.assertNull;
import static org.junit.jupiter.api.Assertions.assertThrows;
import static org.junit.jupiter.api.Assertions.assertTrue;

import com.lumeric.filter.FilterWraper;
import com.lumeric.host.DirectoryBundle;
import com.lumeric.host.HostGL;
import com.lumeric.util.FilterEngineJNILib;
import java.io.IOException;
import java.nio.file.Path;
import java.util.concurrent.atomic.AtomicReference;
import java.util.function.Consumer;
import org.junit.jupiter.api.AfterEach;
import org.junit.jupiter.api.BeforeEach;
import org.junit.jupiter.api.Test;
import org.junit.jupiter.api.io.TempDir;

/**
 * Parameters changed at run time through FilterWraper, end to end: render,
 * change a value, render again, compare exact pixels. Also the wrapper's last
 * error and the HostGL texture helpers these tests rely on. Package names
 * are unique: the native caches live as long as the JVM.
 */
class RuntimeParametersTest {
    private static final String HEAD =
            "precision mediump float; varying vec2 uv; uniform sampler2D inputImageTexture;\n";
    private static final String SCALE = HEAD + "uniform float amount; void main(){"
            + " gl_FragColor = vec4(texture2D(inputImageTexture, uv).rgb * amount, 1.0); }";
    // 0xAARRGGBB; every channel divisible by 4 so halving twice is exact.
    private static final int[] INPUT = {0xff_c8_64_28, 0xff_10_20_30, 0xff_fc_80_04, 0xff_00_00_00};

    @TempDir Path root;
    private Packages files;
    private HostGL gl;

    @BeforeEach
    void setUp() throws IOException {
        FilterEngineJNILib.setBundle(new DirectoryBundle(root));
        files = new Packages(root);
        gl = HostGL.create(16, 16);
        assertTrue(gl.makeCurrent());
        files.describe("rt_scale", SCALE);
        files.describe("rt_tint", HEAD + "uniform vec4 tint; void main(){ gl_FragColor = tint; }");
        files.describe("rt_matrix", HEAD + "uniform mat4 colorMatrix; void main(){"
                + " gl_FragColor = colorMatrix * vec4(texture2D(inputImageTexture, uv).rgb, 1.0); }");
        files.describe("rt_curve", HEAD + "uniform float toneCurve[256]; void main(){"
                + " gl_FragColor = vec4(toneCurve[0], toneCurve[1], toneCurve[255], 1.0); }");
    }

    @AfterEach
    void tearDown() {
        gl.close();
        FilterEngineJNILib.setBundle(null);
    }

    private static String leaf(String implement, String name, String type, String value) {
        return Packages.leaf(implement, Packages.param(name, type, value));
    }

    private static int[] render(FilterWraper wraper) {
        int input = HostGL.createTexture(2, 2, INPUT);
        try {
            wraper.render(input, 2, 2);
            int output = wraper.outputTexture();
            assertNotEquals(0, output);
            return HostGL.readTexture(output, 2, 2);
        } finally {
            HostGL.deleteTexture(input);
        }
    }

    private static int[] each(int argb) { return new int[] {argb, argb, argb, argb}; }

    private static int[] scaled(int divisor) {
        int[] out = new int[INPUT.length];
        for (int i = 0; i < out.length; i++) {
            int p = INPUT[i];
            out[i] = 0xff000000 | (((p >> 16) & 0xff) / divisor) << 16 | (((p >> 8) & 0xff) / divisor) << 8
                    | (p & 0xff) / divisor;
        }
        return out;
    }

    /** Renders, applies the change, renders again: the pixels before and after. */
    private static void assertChange(String packageName, int[] before, Consumer<FilterWraper> change, int[] after) {
        try (FilterWraper wraper = new FilterWraper(packageName)) {
            assertNull(wraper.lastError(), packageName);
            assertArrayEquals(before, render(wraper), packageName + " as authored");
            change.accept(wraper);
            assertNull(wraper.lastError(), packageName);
            assertArrayEquals(after, render(wraper), packageName + " after the change");
            assertArrayEquals(after, render(wraper), packageName + " the value stays");
        }
    }

    @Test
    void everyKindChangesTheNextRender() throws IOException {
        files.pack("rt_float", leaf("rt_scale", "amount", "float", "1"));
        files.pack("rt_vec4", leaf("rt_tint", "tint", "vector4f", "<number>1</number><number>0</number>"));
        files.pack("rt_mat", leaf("rt_matrix", "colorMatrix", "matrix4f", "<number>1</number><number>0</number>"
                + "<number>0</number><number>0</number><number>0</number><number>1</number><number>0</number>"
                + "<number>0</number><number>0</number><number>0</number><number>1</number><number>0</number>"
                + "<number>0</number><number>0</number><number>0</number><number>1</number>"));
        files.pack("rt_crv", leaf("rt_curve", "toneCurve", "curve", "0,0"));

        assertChange("rt_float", scaled(1), w -> assertTrue(w.setFloat("amount", 0.5f)), scaled(2));
        assertChange("rt_vec4", each(0x00ff0000),
                w -> assertTrue(w.setVec4("tint", 0.2f, 0.4f, 0.6f, 1f)), each(0xff336699));
        // Column-major: red and blue swap, and the 4th column adds 0.2 to green.
        float[] swap = {0, 0, 1, 0, 0, 1, 0, 0, 1, 0, 0, 0, 0, 0.2f, 0, 1};
        int[] swapped = new int[INPUT.length];
        for (int i = 0; i < INPUT.length; i++) {
            int p = INPUT[i];
            swapped[i] = 0xff000000 | (p & 0xff) << 16 | Math.min(255, ((p >> 8) & 0xff) + 51) << 8 | (p >> 16) & 0xff;
        }
        assertChange("rt_mat", INPUT, w -> assertTrue(w.setMatrix4("colorMatrix", swap)), swapped);
        // A short curve leaves the remaining entries 0.
        float[] curve = new float[256];
        curve[0] = 0.2f;
        curve[1] = 1f;
        curve[255] = 0.6f;
        assertChange("rt_crv", each(0xff000000), w -> assertTrue(w.setCurve("toneCurve", curve)), each(0xff33ff99));
        assertChange("rt_crv", each(0xff000000), w -> assertTrue(w.setCurve("toneCurve", new float[] {1f})),
                each(0xffff0000));
    }

    @Test
    void aValueReachesEveryFilterThatDeclaresItNestedModelsIncluded() throws IOException {
        files.pack("rt_inner", leaf("rt_scale", "amount", "float", "1"));
        files.pack("rt_middle", "<model><filter include='rt_inner'/></model>");
        files.pack("rt_outer", "<model>" + leaf("rt_scale", "amount", "float", "1")
                + "<filter include='rt_middle'/></model>");
        assertChange("rt_outer", scaled(1), w -> assertTrue(w.setFloat("amount", 0.5f)), scaled(4));
        // Wrappers of one package share its descriptions but not their values.
        try (FilterWraper changed = new FilterWraper("rt_outer"); FilterWraper plain = new FilterWraper("rt_outer")) {
            assertTrue(changed.setFloat("amount", 0.25f));
            render(changed);
            assertArrayEquals(scaled(1), render(plain));
        }
    }

    @Test
    void refusedValuesAndBadArgumentsSayWhy() throws IOException {
        files.pack("rt_refuse", leaf("rt_scale", "amount", "float", "1"));
        try (FilterWraper wraper = new FilterWraper("rt_refuse")) {
            assertFalse(wraper.setFloat("amout", 1f));
            assertEquals("filter package rt_refuse: the package declares no param amout", wraper.lastError());
            assertFalse(wraper.setVec4("amount", 1f, 1f, 1f, 1f));
            assertEquals("filter package rt_refuse: param amount is a float, not a vector4f", wraper.lastError());
            assertThrows(NullPointerException.class, () -> wraper.setFloat(null, 1f));
            assertThrows(NullPointerException.class, () -> wraper.setMatrix4("amount", null));
            assertThrows(IllegalArgumentException.class, () -> wraper.setVec4("amount", 1f, 2f, 3f));
            assertThrows(IllegalArgumentException.class, () -> wraper.setMatrix4("amount", new float[15]));
            assertThrows(IllegalArgumentException.class, () -> wraper.setCurve("amount", new float[257]));
            assertThrows(IllegalArgumentException.class, () -> wraper.setCurve("amount", new float[0]));
            // None of the refused values reached the shader.
            assertArrayEquals(scaled(1), render(wraper));
        }
        FilterWraper unopened = new FilterWraper();
        assertFalse(unopened.setFloat("amount", 1f));
        assertFalse(unopened.setCurve("amount", new float[1]));
        assertNull(unopened.lastError());
    }

    /** The wrapper's problems (missing packages, shader errors, no context) are the engine tests'. */
    @Test
    void hostGLNeedsAContextOnTheCallingThread() throws Exception {
        AtomicReference<Throwable> hostGL = new AtomicReference<>();
        Thread other = new Thread(() -> {
            try {
                HostGL.createTexture(1, 1, new int[1]);
            } catch (IllegalStateException expected) {
                hostGL.set(expected);
            }
        });
        other.start();
        other.join();
        assertTrue(hostGL.get() instanceof IllegalStateException);
    }

    @Test
    void hostTexturesRoundTripRowByRow() {
        int[] pixels = {0xff010203, 0x80fffefd, 0x00000000, 0xff102030, 0x7f405060, 0xffa0b0c0};
        int texture = HostGL.createTexture(3, 2, pixels);
        assertArrayEquals(pixels, HostGL.readTexture(texture, 3, 2));
        int[] column = {0xff112233, 0xff445566};
        HostGL.fillTexture(texture, 1, 2, column);
        assertArrayEquals(column, HostGL.readTexture(texture, 1, 2));
        HostGL.deleteTexture(texture);
        assertThrows(IllegalArgumentException.class, () -> HostGL.createTexture(3, 2, new int[5]));
        assertThrows(IllegalArgumentException.class, () -> HostGL.createTexture(0, 2, new int[5]));
        assertThrows(IllegalArgumentException.class, () -> HostGL.readTexture(1, 65536, 65536));
        assertThrows(IllegalArgumentException.class, () -> HostGL.createTexture(1 << 20, 1, new int[1 << 20]));
        assertThrows(NullPointerException.class, () -> HostGL.fillTexture(1, 1, 1, null));
    }
}
