package com.lumeric.sequences;

import static org.junit.jupiter.api.Assertions.assertEquals;

import com.lumeric.forked.ForkedJvm;
import java.io.IOException;
import java.nio.file.Path;
import java.util.ArrayList;
import java.util.List;
import java.util.concurrent.TimeUnit;
import org.junit.jupiter.api.io.TempDir;
import org.junit.jupiter.params.ParameterizedTest;
import org.junit.jupiter.params.provider.MethodSource;

/**
 * Random call sequences through the public Java API, each seed in a JVM of
 * its own (with -Xcheck:jni and, in the sanitizer build, the sanitizers) so
 * that a crash fails the test with the seed and the step instead of taking
 * the suite down. Replay one seed with -Dcom.lumeric.random.seed=N; set the
 * length with -Dcom.lumeric.random.steps=N.
 */
class RandomApiSequenceTest {
    static List<Long> seeds() {
        String one = System.getProperty("com.lumeric.random.seed");
        if (one != null) return List.of(Long.parseLong(one));
        return List.of(1L, 2L, 3L, 4L);
    }

    @ParameterizedTest(name = "seed {0}")
    @MethodSource("seeds")
    void survivesAndKeepsPixels(long seed, @TempDir Path scratch) throws IOException, InterruptedException {
        String steps = System.getProperty("com.lumeric.random.steps", "2500");
        List<String> command = new ArrayList<>(List.of(
                ForkedJvm.javaCommand(), "-Xcheck:jni",
                "-Djava.library.path=" + System.getProperty("java.library.path"),
                "-Djava.awt.headless=true",
                "-cp", System.getProperty("com.lumeric.test.classpath"),
                RandomApiSequence.class.getName(), Long.toString(seed), steps,
                System.getProperty("com.lumeric.packages"), scratch.toString()));
        Process child = new ProcessBuilder(command).redirectErrorStream(true).start();
        List<String> tail = new ArrayList<>();
        try (var lines = child.inputReader().lines()) {
            lines.forEach(line -> {
                tail.add(line);
                if (tail.size() > 40) tail.remove(0);
            });
        }
        boolean finished = child.waitFor(10, TimeUnit.MINUTES);
        if (!finished) child.destroyForcibly();
        String lastStep = tail.stream().filter(l -> l.startsWith("step ")).reduce((a, b) -> b).orElse("before step 0");
        assertEquals(0, finished ? child.exitValue() : -1, "seed " + seed + " failed at " + lastStep
                + " (replay with -Dcom.lumeric.random.seed=" + seed + ")\n" + String.join("\n", tail));
    }
}
