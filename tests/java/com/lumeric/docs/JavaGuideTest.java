package com.lumeric.docs;

import static org.junit.jupiter.api.Assertions.assertEquals;
import static org.junit.jupiter.api.Assertions.assertFalse;
import static org.junit.jupiter.api.Assertions.assertNotEquals;
import static org.junit.jupiter.api.Assertions.assertTrue;

import com.lumeric.filter.FilterWraper;
import com.lumeric.host.DirectoryBundle;
import com.lumeric.host.HostGL;
import com.lumeric.util.FilterEngineJNILib;
import java.io.IOException;
import java.nio.file.Files;
import java.nio.file.Path;
import java.util.ArrayList;
import java.util.List;
import java.util.regex.Matcher;
import java.util.regex.Pattern;
import org.junit.jupiter.api.AfterEach;
import org.junit.jupiter.api.Test;

/**
 * docs/java.md shows only code that is compiled here (every ```java block is
 * a verbatim excerpt of JavaGuideExamples.java, indentation aside), and that
 * code runs on the sample packages.
 */
class JavaGuideTest {
    private static final Path DATA = Path.of(System.getProperty("com.lumeric.test.data"));
    private static final Path GUIDE = DATA.resolve("../../docs/java.md").normalize();
    private static final Path EXAMPLES = DATA.resolve("../java/com/lumeric/docs/JavaGuideExamples.java").normalize();
    private static final Path PACKAGES = Path.of(System.getProperty("com.lumeric.packages"));
    // Opaque, distinct colours; four pixels of a 2x2 picture.
    private static final int[] PICTURE = {0xffc86428, 0xff102030, 0xfffc8004, 0xff3c3c3c};

    @AfterEach
    void noBundle() { FilterEngineJNILib.setBundle(null); }

    private static List<String> lines(String text) {
        return text.lines().map(String::strip).filter(line -> !line.isEmpty()).toList();
    }

    @Test
    void everyJavaBlockOfTheGuideIsCompiledHere() throws IOException {
        String guide = Files.readString(GUIDE);
        List<String> source = lines(Files.readString(EXAMPLES));
        Matcher block = Pattern.compile("```java\\n(.*?)```", Pattern.DOTALL).matcher(guide);
        List<List<String>> blocks = new ArrayList<>();
        while (block.find()) blocks.add(lines(block.group(1)));
        assertTrue(blocks.size() >= 3, "the guide lost its examples");
        for (List<String> example : blocks) {
            assertNotEquals(-1, java.util.Collections.indexOfSubList(source, example),
                    "not in JavaGuideExamples.java:\n" + String.join("\n", example));
        }
    }

    @Test
    void hostProgramRunsASamplePackage() {
        int[] grey = JavaGuideExamples.runPackage(PACKAGES, "mono", PICTURE, 2, 2);
        assertNotEquals(List.of(PICTURE), List.of(grey));
        // mono fades 85% of the way to luma: the channels draw together.
        for (int i = 0; i < PICTURE.length; i++) {
            assertTrue(spread(grey[i]) < spread(PICTURE[i]) || spread(PICTURE[i]) == 0, Integer.toHexString(grey[i]));
        }
    }

    private static int spread(int p) {
        return spread(new byte[] {(byte) (p >> 16), (byte) (p >> 8), (byte) p}, 0);
    }

    private static int spread(byte[] rgb, int at) {
        int r = rgb[at] & 0xff, g = rgb[at + 1] & 0xff, b = rgb[at + 2] & 0xff;
        return Math.max(r, Math.max(g, b)) - Math.min(r, Math.min(g, b));
    }

    @Test
    void cameraFrameAndSliderExamplesChangeThePicture() {
        FilterEngineJNILib.setBundle(new DirectoryBundle(PACKAGES));
        // A 2x2 NV21 frame: four luma bytes, one V,U pair of a strong colour.
        byte[] nv21 = {60, (byte) 120, (byte) 160, (byte) 200, (byte) 200, 60};
        try (HostGL gl = HostGL.create(2, 2); FilterWraper filter = new FilterWraper("mono")) {
            int texture = HostGL.createTexture(2, 2, new int[4]);
            byte[] authored = JavaGuideExamples.filterCameraFrame(filter, nv21, 2, 2, texture);
            assertTrue(JavaGuideExamples.onIntensityChanged(filter, 0f));
            byte[] colourful = JavaGuideExamples.filterCameraFrame(filter, nv21, 2, 2, texture);
            for (int i = 0; i < 16; i += 4) {
                assertEquals(-1, authored[i + 3], "opaque");
                // amount 0 keeps the colour that amount 0.85 nearly removed.
                assertTrue(spread(colourful, i) > spread(authored, i) + 40, "pixel " + i / 4);
            }
            assertFalse(filter.setFloat("amonut", 1f));
            assertFalse(JavaGuideExamples.onIntensityChanged(new FilterWraper(), 1f));
            HostGL.deleteTexture(texture);
        }
    }
}
