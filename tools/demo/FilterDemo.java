package com.lumeric.demo;

import com.lumeric.filter.FilterWraper;
import com.lumeric.filter.GLSLRender;
import com.lumeric.filter.QImage;
import com.lumeric.host.DirectoryBundle;
import com.lumeric.host.HostGL;
import com.lumeric.util.FilterEngineJNILib;

import java.awt.image.BufferedImage;
import java.io.File;
import java.io.IOException;
import java.nio.file.Files;
import java.nio.file.Path;
import java.nio.file.Paths;
import java.util.ArrayList;
import java.util.List;
import java.util.stream.Stream;

import javax.imageio.ImageIO;

/**
 * The library's main job, driven the way the app drives it: a camera frame in
 * NV21 becomes RGBA (QImage.YUV420sp2RGB), is uploaded as a GL texture
 * (GLSLRender.nativeTextImage), runs through every filter package of the
 * bundle (FilterWraper) and is read back (nativeCopyTexturToDataWithShare).
 * Writes one PNG per package and a contact sheet, prints milliseconds per frame.
 */
public final class FilterDemo {
    // Slot 4 and above read the texture through a temporary framebuffer, without drawing.
    private static final int DIRECT_READ_SLOT = 4;

    private final Options options;
    private final List<String[]> timings = new ArrayList<>();
    private final List<ContactSheet.Tile> tiles = new ArrayList<>();

    private FilterDemo(Options options) {
        this.options = options;
    }

    public static void main(String[] args) {
        int status = 0;
        try {
            new FilterDemo(Options.parse(args)).run();
        } catch (DemoFailure e) {
            System.err.println("demo: " + e.getMessage());
            status = e.status;
        } catch (LinkageError e) {
            System.err.println("demo: cannot load the native libraries: " + e);
            status = 3;
        }
        System.exit(status);
    }

    private void run() {
        BufferedImage picture = options.picture();
        int w = picture.getWidth();
        int h = picture.getHeight();
        List<String> packages = packageNames(options.bundle);
        byte[] nv21 = Nv21.fromImage(picture);
        System.out.printf("frame %dx%d NV21 (%d bytes), %d packages from %s%n", w, h, nv21.length, packages.size(),
                options.bundle);

        FilterEngineJNILib.setBundle(new DirectoryBundle(options.bundle));
        int failed = 0;
        try (HostGL gl = openGL(w, h); QImage frame = new QImage()) {
            System.out.println("GL renderer: " + DemoGL.renderer());
            time("NV21 -> RGBA (YUV420sp2RGB)", () -> frame.YUV420sp2RGB(nv21, w, h), () -> {});
            int input = DemoGL.genTexture();
            try {
                time("upload (nativeTextImage)", () -> GLSLRender.nativeTextImage(frame, input), DemoGL::finish);
                byte[] rgba = new byte[w * h * 4];
                time("read-back (nativeCopyTexturToDataWithShare)",
                        () -> GLSLRender.nativeCopyTexturToDataWithShare(input, rgba, w, h, DIRECT_READ_SLOT), () -> {});
                BufferedImage original = Pixels.fromRgba(rgba, w, h);
                write("input", original);
                tiles.add(new ContactSheet.Tile("input (NV21 frame)", original));
                for (String name : packages) {
                    if (!runPackage(name, input, w, h)) failed++;
                }
            } finally {
                DemoGL.deleteTexture(input);
            }
        } finally {
            FilterEngineJNILib.setBundle(null);
        }
        write("contact-sheet", ContactSheet.draw(tiles, Math.min(w, 320)));
        printTable();
        if (failed > 0) throw new DemoFailure(1, failed + " of " + packages.size() + " packages failed to build or render");
    }

    private boolean runPackage(String name, int input, int w, int h) {
        System.out.println("package " + name);
        try (FilterWraper filter = new FilterWraper(name)) {
            // The first frame loads the package and compiles its shaders.
            double first = once(() -> filter.render(input, w, h), DemoGL::finish);
            int output = filter.outputTexture();
            if (output == 0 || filter.lastError() != null) {
                String why = filter.lastError() != null ? filter.lastError() : "the package gave no output texture";
                System.out.println("  FAILED: " + why);
                addTiming(name, first, "failed");
                return false;
            }
            double perFrame = average(() -> filter.render(input, w, h), DemoGL::finish);
            if (filter.lastError() != null) {
                System.out.println("  FAILED: " + filter.lastError());
                addTiming(name, first, "failed");
                return false;
            }
            addTiming(name, first, String.format("%.2f", perFrame));
            byte[] rgba = new byte[w * h * 4];
            GLSLRender.nativeCopyTexturToDataWithShare(filter.outputTexture(), rgba, w, h, DIRECT_READ_SLOT);
            BufferedImage result = Pixels.fromRgba(rgba, w, h);
            write(name, result);
            tiles.add(new ContactSheet.Tile(name, result));
            return true;
        }
    }

    private void time(String label, Runnable work, Runnable sync) {
        double first = once(work, sync);
        addTiming(label, first, String.format("%.2f", average(work, sync)));
    }

    private void addTiming(String label, double first, String perFrame) {
        timings.add(new String[] {label, String.format("%.1f", first), perFrame});
    }

    private static double once(Runnable work, Runnable sync) {
        long start = System.nanoTime();
        work.run();
        sync.run();
        return (System.nanoTime() - start) / 1e6;
    }

    private double average(Runnable work, Runnable sync) {
        long start = System.nanoTime();
        for (int i = 0; i < options.frames; i++) {
            work.run();
            sync.run();
        }
        return (System.nanoTime() - start) / 1e6 / options.frames;
    }

    private void printTable() {
        int width = "step".length();
        for (String[] row : timings) width = Math.max(width, row[0].length());
        String format = "%-" + width + "s  %12s  %12s%n";
        System.out.printf("%nms per frame, averaged over %d frames%n", options.frames);
        System.out.printf(format, "step", "first frame", "per frame");
        for (String[] row : timings) System.out.printf(format, (Object[]) row);
    }

    private void write(String name, BufferedImage image) {
        Path file = options.out.resolve(name + ".png");
        try {
            Files.createDirectories(options.out);
            ImageIO.write(image, "png", file.toFile());
        } catch (IOException e) {
            throw new DemoFailure(1, "cannot write " + file + ": " + e.getMessage());
        }
        System.out.println("  wrote " + file);
    }

    // The filters draw into framebuffers of their own; the window surface only
    // stands in for the app's preview, so a big photograph need not fit it.
    private static HostGL openGL(int w, int h) {
        try {
            HostGL gl = HostGL.create(Math.min(w, 1920), Math.min(h, 1920));
            if (!gl.makeCurrent()) {
                gl.close();
                throw new IllegalStateException("no OpenGL ES 2.0 context could be made: eglMakeCurrent failed");
            }
            return gl;
        } catch (IllegalStateException e) {
            throw new DemoFailure(3, e.getMessage() + "; nothing rendered");
        } catch (UnsatisfiedLinkError e) {
            throw new DemoFailure(3, "no OpenGL ES 2.0 context could be made: " + e.getMessage());
        }
    }

    /** Every directory of bundle/filter with a filter.xml, except the shared gl descriptions. */
    private static List<String> packageNames(Path bundle) {
        Path filters = bundle.resolve("filter");
        try (Stream<Path> entries = Files.list(filters)) {
            List<String> names = entries
                    .filter(dir -> Files.isRegularFile(dir.resolve("filter.xml")))
                    .map(dir -> dir.getFileName().toString())
                    .filter(name -> !name.equals("gl"))
                    .sorted()
                    .toList();
            if (names.isEmpty()) throw new DemoFailure(2, "no filter packages in " + filters);
            if (!Files.isDirectory(filters.resolve("gl"))) {
                System.out.println("warning: " + filters.resolve("gl") + " is missing: the packages have no shaders"
                        + " (scripts/make-packages writes them)");
            }
            return names;
        } catch (IOException e) {
            throw new DemoFailure(2, "cannot list the packages in " + filters + ": " + e.getMessage());
        }
    }

    /** A failure reported as one line and an exit status, without a stack trace. */
    static final class DemoFailure extends RuntimeException {
        private static final long serialVersionUID = 1L;
        final int status;

        DemoFailure(int status, String message) {
            super(message);
            this.status = status;
        }
    }

    /** Command line: [--size WxH] [--frames N] [--bundle DIR] [--out DIR] [photo]. */
    record Options(int width, int height, int frames, Path bundle, Path out, String photo) {
        static final String USAGE =
                "usage: run-demo [--size WxH] [--frames N] [--bundle DIR] [--out DIR] [photo.png|jpg]";

        static Options parse(String[] args) {
            int width = 1280, height = 720, frames = 10;
            Path bundle = Paths.get("packages"), out = Paths.get("out/demo");
            String photo = null;
            for (int i = 0; i < args.length; i++) {
                String arg = args[i];
                if (arg.equals("--help") || arg.equals("-h")) throw new DemoFailure(0, USAGE);
                boolean known = List.of("--size", "--frames", "--bundle", "--out").contains(arg);
                if (arg.startsWith("--") && !known) throw new DemoFailure(2, "unknown option " + arg + "\n" + USAGE);
                if (known && i + 1 >= args.length) throw new DemoFailure(2, arg + " needs a value\n" + USAGE);
                switch (arg) {
                    case "--size" -> {
                        String[] parts = args[++i].split("x");
                        width = positive(parts[0], "--size");
                        height = positive(parts.length == 2 ? parts[1] : "", "--size");
                    }
                    case "--frames" -> frames = positive(args[++i], "--frames");
                    case "--bundle" -> bundle = Paths.get(args[++i]);
                    case "--out" -> out = Paths.get(args[++i]);
                    default -> photo = arg;
                }
            }
            if (width % 2 != 0 || height % 2 != 0 || width < 2 || height < 2) {
                throw new DemoFailure(2, "--size needs an even width and height, at least 2x2");
            }
            return new Options(width, height, frames, bundle, out, photo);
        }

        private static int positive(String text, String option) {
            try {
                int value = Integer.parseInt(text);
                if (value > 0) return value;
            } catch (NumberFormatException e) {
                // reported below
            }
            throw new DemoFailure(2, option + " wants a positive number, not '" + text + "'\n" + USAGE);
        }

        /** The photograph cut to an even size (NV21 needs one), or the drawn test chart. */
        BufferedImage picture() {
            if (photo == null) return TestChart.draw(width, height);
            BufferedImage image;
            try {
                image = ImageIO.read(new File(photo));
            } catch (IOException e) {
                throw new DemoFailure(2, "cannot read " + photo + ": " + e.getMessage());
            }
            if (image == null || image.getWidth() < 2 || image.getHeight() < 2) {
                throw new DemoFailure(2, photo + " is not an image javax.imageio can read");
            }
            return image.getSubimage(0, 0, image.getWidth() & ~1, image.getHeight() & ~1);
        }
    }
}
