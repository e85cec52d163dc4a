package com.lumeric.forked;

import android.graphics.Bitmap;
import com.lumeric.filter.QImage;
import com.lumeric.host.HostGL;
import java.io.File;
import java.nio.charset.StandardCharsets;
import java.util.ArrayList;
import java.util.List;
import java.util.concurrent.TimeUnit;

/**
 * Runs a main class in a JVM of its own (with -Xcheck:jni and this JVM's
 * library path) so that a native crash fails the test that started it
 * instead of ending the suite.
 */
public final class ForkedJvm {
    private ForkedJvm() {}

    /** The child's output; fails when it did not exit with 0 or -Xcheck:jni warned. */
    public static String run(Class<?> main, String... args) throws Exception {
        List<String> command = new ArrayList<>(List.of(javaCommand(), "-Xcheck:jni",
                "-Djava.library.path=" + System.getProperty("java.library.path"),
                "-cp", classPath(), main.getName()));
        command.addAll(List.of(args));
        Process child = new ProcessBuilder(command).redirectErrorStream(true).start();
        child.getOutputStream().close();
        byte[] output = child.getInputStream().readAllBytes();
        if (!child.waitFor(120, TimeUnit.SECONDS)) child.destroyForcibly();
        String log = new String(output, StandardCharsets.UTF_8);
        int status = child.exitValue();
        // -Xcheck:jni reports a JNI call made with an exception pending as a warning.
        if (status != 0 || log.contains("WARNING in native method")) {
            throw new AssertionError(main.getSimpleName() + " in a child JVM ended with status " + status + ":\n" + log);
        }
        return log;
    }

    /** The program that starts a child JVM: in a cross build a wrapper that runs the target JVM through the emulator. */
    public static String javaCommand() {
        String java = System.getProperty("com.lumeric.test.java", "");
        return java.isEmpty() ? System.getProperty("java.home") + File.separator + "bin" + File.separator + "java" : java;
    }

    /** The jars of the tests, the API and the host stand-ins (JUnit's launcher keeps its own class path). */
    private static String classPath() throws Exception {
        List<String> jars = new ArrayList<>();
        for (Class<?> c : new Class<?>[] {ForkedJvm.class, QImage.class, HostGL.class, Bitmap.class}) {
            String jar = new File(c.getProtectionDomain().getCodeSource().getLocation().toURI()).getPath();
            if (!jars.contains(jar)) jars.add(jar);
        }
        return String.join(File.pathSeparator, jars);
    }
}
