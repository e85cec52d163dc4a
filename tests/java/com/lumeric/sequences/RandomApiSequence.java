package com.lumeric.sequences;

import android.graphics.Bitmap;
import com.lumeric.filter.FilterWraper;
import com.lumeric.filter.GLSLRender;
import com.lumeric.filter.QImage;
import com.lumeric.host.DirectoryBundle;
import com.lumeric.host.HostGL;
import com.lumeric.util.FilterEngineJNILib;
import java.io.IOException;
import java.nio.file.Files;
import java.nio.file.Path;
import java.util.ArrayList;
import java.util.Arrays;
import java.util.List;
import java.util.Random;

/**
 * Drives the public Java API with a seeded random sequence of calls, valid
 * and absurd: images made, copied, cropped, turned, flipped, bound to
 * bitmaps, fed camera frames and freed, packages good and broken wrapped and
 * rendered, objects used again after they were freed. A Java model follows
 * every image whose pixels are known and checks them after each valid step;
 * an absurd call may raise a RuntimeException or do nothing, never more.
 *
 * Runs as its own JVM (main: seed, steps, bundle dir) so that a crash is
 * reported with the seed and step; each step is printed before it runs.
 */
public final class RandomApiSequence {
    /** An image with what the model knows of it. */
    private static final class Slot {
        QImage image = new QImage();
        boolean present;      // has a native image
        int width, height;
        int[] raw;            // RGBA bytes as little-endian ints, null when unknown
        Bitmap boundTo;       // the bitmap whose pixels it borrows
    }

    private static final String[] PACKAGES = {"mono", "dreamy", "blur", "sepia", "broken_xml", "broken_shader",
                                              "contains_itself", "no_such_package", "", "../filter/mono", null};
    private static final int[] ODD_INTS = {0, -1, 1, 2, 3, 7, 64, 4096, 65535, 1 << 20, Integer.MAX_VALUE,
                                           Integer.MIN_VALUE, -90, 90, 180, 270, 360, 45, -450, 720};

    private final Random random;
    private final Slot[] slots = new Slot[5];
    private final Bitmap[] bitmaps = new Bitmap[3];
    private final List<FilterWraper> wrapers = new ArrayList<>();
    private final boolean gl;
    private int texture;
    private int step;
    private int raised;

    private RandomApiSequence(long seed, boolean gl) {
        random = new Random(seed);
        this.gl = gl;
        for (int i = 0; i < slots.length; i++) slots[i] = new Slot();
        for (int i = 0; i < bitmaps.length; i++) bitmaps[i] = freshBitmap();
        if (gl) texture = HostGL.createTexture(4, 4, new int[16]);
    }

    public static void main(String[] args) throws IOException {
        long seed = Long.parseLong(args[0]);
        int steps = Integer.parseInt(args[1]);
        FilterEngineJNILib.setBundle(new DirectoryBundle(writeBundle(Path.of(args[2]), Path.of(args[3]))));
        HostGL context = HostGL.create(16, 16);
        RandomApiSequence sequence = new RandomApiSequence(seed, context != null);
        sequence.run(steps);
        if (context != null) context.close();
        System.out.println("seed " + seed + ": " + steps + " steps passed, " + sequence.raised + " raised an exception");
        System.out.flush();
    }

    /** The samples and three packages that must fail to build, never crash. */
    private static Path writeBundle(Path samples, Path scratch) throws IOException {
        Path root = scratch.resolve("bundle");
        for (Path from : (Iterable<Path>) Files.walk(samples)::iterator) {
            Path to = root.resolve(samples.relativize(from).toString());
            if (Files.isDirectory(from)) Files.createDirectories(to); else Files.copy(from, to);
        }
        write(root, "filter/broken_xml/filter.xml", "<model><filter implement=\"mono\"></model>");
        write(root, "filter/gl/no_compile.xml", "<glfilter><vertex>attribute vec4 position; void main(){"
                + " gl_Position = position; }</vertex><fragment>void main(){ gl_FragColor = oops; }</fragment></glfilter>");
        write(root, "filter/broken_shader/filter.xml", "<filter implement=\"no_compile\"/>");
        write(root, "filter/empty_model/filter.xml", "<model/>");
        write(root, "filter/contains_itself/filter.xml",
                "<model><filter include=\"empty_model\"><filter include=\"empty_model\"/></filter></model>");
        return root;
    }

    private static void write(Path root, String path, String text) throws IOException {
        Files.createDirectories(root.resolve(path).getParent());
        Files.writeString(root.resolve(path), text);
    }

    private void run(int steps) {
        for (step = 0; step < steps; step++) {
            int op = random.nextInt(gl ? 20 : 16);
            Slot slot = slots[random.nextInt(slots.length)];
            try {
                perform(op, slot);
            } catch (RuntimeException expected) {
                raised++;
                // An absurd call may raise; the model no longer knows this image.
                forget(slot);
            }
            check();
        }
        for (Slot slot : slots) release(slot);
        for (FilterWraper wraper : wrapers) wraper.close();
        if (gl) HostGL.deleteTexture(texture);
    }

    private void perform(int op, Slot slot) {
        switch (op) {
            case 0 -> fromBitmap(slot);
            case 1 -> bind(slot);
            case 2 -> unbind(slot);
            case 3 -> cloneInto(slot);
            case 4 -> crop(slot);
            case 5 -> rotate(slot);
            case 6 -> flip(slot);
            case 7 -> dispose(slot);
            case 8 -> create(slot);
            case 9 -> copyPixels(slot);
            case 10 -> bitmapCopies(slot);
            case 11 -> frame(slot);
            case 12 -> blurAndHistograms(slot);
            case 13 -> alphaMix(slot);
            case 14 -> replaceBitmap();
            case 15 -> wrapExif(slot);
            case 16 -> wrapPackage();
            case 17 -> renderPackage();
            case 18 -> setParameter();
            default -> textureTraffic(slot);
        }
    }

    private void log(String what) {
        System.out.println("step " + step + ": " + what);
    }

    private int odd() {
        return random.nextInt(3) == 0 ? ODD_INTS[random.nextInt(ODD_INTS.length)] : random.nextInt(12) - 2;
    }

    private Bitmap freshBitmap() {
        int w = 1 + random.nextInt(9), h = 1 + random.nextInt(9);
        Bitmap bitmap = Bitmap.createBitmap(w, h, random.nextInt(4) == 0 ? Bitmap.Config.RGB_565 : Bitmap.Config.ARGB_8888);
        int[] colors = new int[w * h];
        for (int i = 0; i < colors.length; i++) colors[i] = 0xFF000000 | random.nextInt(1 << 24);
        bitmap.setPixels(colors, 0, w, 0, 0, w, h);
        return bitmap;
    }

    private Bitmap someBitmap() {
        return random.nextInt(8) == 0 ? null : bitmaps[random.nextInt(bitmaps.length)];
    }

    /** RGBA bytes of the bitmap as little-endian ints (R in the low byte). */
    private static int[] rawOf(Bitmap bitmap) {
        int[] colors = new int[bitmap.getWidth() * bitmap.getHeight()];
        bitmap.getPixels(colors, 0, bitmap.getWidth(), 0, 0, bitmap.getWidth(), bitmap.getHeight());
        for (int i = 0; i < colors.length; i++) {
            int c = colors[i];
            colors[i] = c & 0xFF000000 | (c & 0xFF) << 16 | c & 0xFF00 | (c >> 16) & 0xFF;
        }
        return colors;
    }

    private static void forget(Slot slot) {
        slot.raw = null;
        slot.present = slot.image.nativeImage != 0;
        slot.width = slot.image.width;
        slot.height = slot.image.height;
    }

    private void know(Slot slot, int width, int height, int[] raw) {
        slot.present = true;
        slot.width = width;
        slot.height = height;
        slot.raw = raw;
    }

    // --- images ---

    private void fromBitmap(Slot slot) {
        Bitmap bitmap = someBitmap();
        log("Bitmap2QImage " + describe(bitmap));
        QImage made = new QImage().Bitmap2QImage(bitmap);
        if (made == null) return;
        release(slot);
        slot.image = made;
        boolean rgba = bitmap != null && bitmap.getConfig() == Bitmap.Config.ARGB_8888;
        know(slot, made.width, made.height, rgba ? rawOf(bitmap) : null);
    }

    private void bind(Slot slot) {
        Bitmap bitmap = someBitmap();
        log("BindBitmap " + describe(bitmap));
        if (bitmap != null && isBound(bitmap)) return;  // one image per bitmap keeps the model simple
        QImage made = new QImage().BindBitmap(bitmap);
        if (made == null) return;
        release(slot);
        slot.image = made;
        slot.boundTo = bitmap;
        boolean rgba = bitmap != null && bitmap.getConfig() == Bitmap.Config.ARGB_8888;
        know(slot, made.width, made.height, rgba ? rawOf(bitmap) : null);
    }

    private void unbind(Slot slot) {
        if (slot.boundTo == null || slot.image.nativeImage == 0) {
            log("UnBindBitmap null");
            slot.image.UnBindBitmap(null);
            return;
        }
        log("UnBindBitmap " + describe(slot.boundTo));
        if (!slot.image.UnBindBitmap(slot.boundTo)) throw new AssertionError("UnBindBitmap of a bound image failed");
        slot.boundTo = null;
        slot.present = false;
        slot.raw = null;
    }

    /** Frees what a slot holds before it takes another image; bound images are unbound first. */
    private void release(Slot slot) {
        if (slot.boundTo != null && slot.image.nativeImage != 0 && random.nextBoolean()) {
            slot.image.UnBindBitmap(slot.boundTo);
        } else if (slot.image.nativeImage != 0) {
            slot.image.Dispose();
        }
        slot.boundTo = null;
        slot.present = false;
    }

    private void cloneInto(Slot slot) {
        Slot from = slots[random.nextInt(slots.length)];
        log("CreateImageFromQImage of a " + from.width + "x" + from.height + (from.present ? "" : " (no image)"));
        QImage copy = from.image.CreateImageFromQImage();
        if (copy == null || copy.nativeImage == 0) return;
        int[] raw = from.raw == null ? null : from.raw.clone();
        int w = from.width, h = from.height;
        release(slot);
        slot.image = copy;
        know(slot, w, h, raw);
    }

    private void crop(Slot slot) {
        int x = odd(), y = odd(), w = odd(), h = odd();
        log("createSubImage " + x + "," + y + " " + w + "x" + h + " of " + slot.width + "x" + slot.height);
        slot.image.createSubImage(x, y, w, h);
        if (!slot.present) return;
        int x0 = Math.max(x, 0), y0 = Math.max(y, 0);
        long cw = (long) x0 + w > slot.width ? slot.width - x0 : w;
        long ch = (long) y0 + h > slot.height ? slot.height - y0 : h;
        if (cw < 1 || ch < 1) return;  // refused, image unchanged
        int[] raw = null;
        if (slot.raw != null) {
            raw = new int[(int) (cw * ch)];
            for (int r = 0; r < ch; r++) {
                System.arraycopy(slot.raw, (y0 + r) * slot.width + x0, raw, r * (int) cw, (int) cw);
            }
        }
        slot.boundTo = null;  // the crop owns its pixels
        know(slot, (int) cw, (int) ch, raw);
    }

    private void rotate(Slot slot) {
        int degrees = odd();
        log("nativeRotate " + degrees + " of " + slot.width + "x" + slot.height);
        boolean turned = slot.image.nativeRotate(degrees);
        long r = ((long) degrees + 360) % 360;
        boolean expected = r == 0 || (slot.present && (r == 90 || r == 180 || r == 270));
        if (turned != expected) throw new AssertionError("nativeRotate(" + degrees + ") returned " + turned);
        if (!turned || r == 0) return;
        int w = slot.width, h = slot.height;
        int[] raw = null;
        if (slot.raw != null) {
            raw = new int[w * h];
            for (int y = 0; y < h; y++) {
                for (int x = 0; x < w; x++) {
                    int v = slot.raw[y * w + x];
                    if (r == 180) raw[(h - 1 - y) * w + (w - 1 - x)] = v;
                    else if (r == 90) raw[x * h + (h - 1 - y)] = v;   // clockwise
                    else raw[(w - 1 - x) * h + y] = v;
                }
            }
        }
        if (r != 180) slot.boundTo = null;  // a quarter turn makes a new image
        know(slot, r == 180 ? w : h, r == 180 ? h : w, raw);  // a half turn stays in a bound bitmap's pixels
    }

    private void flip(Slot slot) {
        int horizontal = odd(), vertical = odd();
        log("nativeFlip " + horizontal + "," + vertical);
        boolean flipped = slot.image.nativeFlip(horizontal, vertical);
        if (flipped != slot.present) throw new AssertionError("nativeFlip returned " + flipped);
        if (!flipped || slot.raw == null) return;
        int w = slot.width, h = slot.height;
        int[] raw = new int[w * h];
        for (int y = 0; y < h; y++) {
            for (int x = 0; x < w; x++) {
                int sx = horizontal > 0 ? w - 1 - x : x, sy = vertical > 0 ? h - 1 - y : y;
                raw[y * w + x] = slot.raw[sy * w + sx];
            }
        }
        slot.raw = raw;
    }

    private void dispose(Slot slot) {
        log("Dispose" + (slot.boundTo != null ? " (bound)" : ""));
        slot.image.Dispose();
        slot.present = false;
        slot.raw = null;
        if (slot.boundTo != null) {
            // The bitmap's own pixels outlive the bound image.
            if (slot.boundTo.getWidth() > 0) rawOf(slot.boundTo);
            slot.boundTo = null;
        }
    }

    private void create(Slot slot) {
        int w = odd(), h = odd(), pixelBytes = random.nextInt(3) == 0 ? odd() : 4;
        log("CreateImage " + w + "x" + h + "x" + pixelBytes);
        slot.image.CreateImage(w, h, pixelBytes);
        slot.boundTo = null;
        forget(slot);
    }

    private void copyPixels(Slot slot) {
        int length = random.nextBoolean() ? slot.width * Math.max(slot.height, 0) : Math.max(0, odd() & 0xFFF);
        boolean mirror = random.nextBoolean();
        log("CopyPixels[" + length + "] mirror " + mirror);
        int[] out = new int[Math.max(length, 0)];
        if (random.nextBoolean()) slot.image.CopyPixels(out, mirror); else slot.image.CopyPixelsRGB(out, mirror);
    }

    private void bitmapCopies(Slot slot) {
        Bitmap bitmap = someBitmap();
        boolean to = random.nextBoolean();
        log((to ? "ToBitmap " : "FromBitmap ") + describe(bitmap) + " from " + slot.width + "x" + slot.height);
        if (bitmap != null && isBound(bitmap)) return;  // its pixels are an image's: covered by the model
        if (to) slot.image.ToBitmap(bitmap); else slot.image.FromBitmap(bitmap);
    }

    private boolean isBound(Bitmap bitmap) {
        for (Slot s : slots) if (s.boundTo == bitmap && s.image.nativeImage != 0) return true;
        return false;
    }

    private void frame(Slot slot) {
        int w = odd(), h = odd();
        int length = random.nextBoolean() ? Math.max(0, w * h * 3 / 2) : Math.max(0, odd() & 0xFFF);
        byte[] data = new byte[Math.min(length, 1 << 16)];
        random.nextBytes(data);
        int kind = random.nextInt(5);
        log("frame kind " + kind + " " + w + "x" + h + " from " + data.length + " bytes");
        switch (kind) {
            case 0 -> slot.image.YUV420sp2RGB(data, w, h);
            case 1 -> slot.image.YUV420sp2YUV(data, w, h);
            case 2 -> slot.image.YUV420sp2YUV2(data, w, h, odd());
            case 3 -> slot.image.YUV422toRGB(data, w, h);
            default -> slot.image.RGB565toRGB(data, w, h);
        }
        slot.boundTo = null;
        forget(slot);
    }

    private void blurAndHistograms(Slot slot) {
        int scale = odd(), sigma = odd();
        log("blur " + scale + "," + sigma + " and histograms of " + slot.width + "x" + slot.height);
        slot.image.nativeGetArrayHistogram();
        slot.image.nativeGetArrayHistogramChannels();
        QImage blurred = slot.image.InplaceBlur8bitQImage(scale, sigma);  // a new image; the source stays
        if (blurred != null) blurred.Dispose();
    }

    private void alphaMix(Slot slot) {
        Bitmap overlay = someBitmap();
        int x = odd(), y = odd();
        log("alphaMix " + describe(overlay) + " at " + x + "," + y);
        slot.image.alphaMix(overlay, x, y);
        forget(slot);
    }

    private void replaceBitmap() {
        int i = random.nextInt(bitmaps.length);
        if (isBound(bitmaps[i])) return;
        log("new bitmap " + i);
        bitmaps[i] = freshBitmap();
    }

    private void wrapExif(Slot slot) {
        Slot other = slots[random.nextInt(slots.length)];
        log("WrapExif");
        slot.image.WrapExif(random.nextInt(6) == 0 ? null : other.image);
    }

    // --- packages and textures ---

    private void wrapPackage() {
        String name = PACKAGES[random.nextInt(PACKAGES.length)];
        log("FilterWraper " + name);
        if (wrapers.size() > 4) wrapers.remove(0).close();
        wrapers.add(new FilterWraper(name));
    }

    private FilterWraper someWraper() {
        return wrapers.isEmpty() || random.nextInt(8) == 0 ? new FilterWraper() : wrapers.get(random.nextInt(wrapers.size()));
    }

    private void renderPackage() {
        FilterWraper wraper = someWraper();
        int which = random.nextInt(4);
        int name = which == 0 ? texture : which == 1 ? 0 : odd();
        int w = random.nextBoolean() ? 4 : odd(), h = random.nextBoolean() ? 4 : odd();
        log("render texture " + name + " " + w + "x" + h);
        wraper.render(name, w, h);
        wraper.outputTexture();
        wraper.lastError();
        if (random.nextInt(6) == 0) {
            log("close twice");
            wraper.close();
            wraper.close();
        }
    }

    private void setParameter() {
        FilterWraper wraper = someWraper();
        String name = random.nextBoolean() ? "strength" : random.nextBoolean() ? null : "tint";
        float[] values = new float[Math.max(0, odd() & 0x1FF)];
        log("set parameter " + name + " with " + values.length + " values");
        switch (random.nextInt(4)) {
            case 0 -> wraper.setFloat(name, random.nextBoolean() ? Float.NaN : random.nextFloat());
            case 1 -> wraper.setVec4(name, values);
            case 2 -> wraper.setMatrix4(name, random.nextBoolean() ? null : values);
            default -> wraper.setCurve(name, values);
        }
    }

    private void textureTraffic(Slot slot) {
        int w = odd(), h = odd(), slotIndex = odd();
        byte[] data = new byte[Math.max(0, odd() & 0xFFF)];
        log("texture traffic " + w + "x" + h + " slot " + slotIndex + " " + data.length + " bytes");
        switch (random.nextInt(3)) {
            case 0 -> GLSLRender.nativeTextImage(random.nextInt(6) == 0 ? null : slot.image, texture);
            case 1 -> GLSLRender.nativeCopyTexturToDataWithShare(texture, random.nextInt(6) == 0 ? null : data, w, h,
                    slotIndex);
            default -> GLSLRender.nativePreviewData(data, texture, w, h);
        }
    }

    // --- checks ---

    private void check() {
        for (Slot s : slots) {
            if (!s.present || s.raw == null) continue;
            if (s.image.nativeImage == 0) throw new AssertionError("image vanished at step " + step);
            if (s.image.width != s.width || s.image.height != s.height) {
                throw new AssertionError("size " + s.image.width + "x" + s.image.height + ", expected " + s.width + "x"
                        + s.height);
            }
            int[] raw = new int[s.width * s.height];
            s.image.CopyPixelsRGB(raw, false);
            if (!Arrays.equals(raw, s.raw)) {
                throw new AssertionError("slot " + Arrays.asList(slots).indexOf(s) + " (" + s.width + "x" + s.height
                        + (s.boundTo != null ? ", bound" : "") + "): pixel " + Arrays.mismatch(raw, s.raw)
                        + " differs from the model");
            }
            if (s.boundTo != null && s.boundTo.getWidth() == s.width && s.boundTo.getHeight() == s.height
                    && !Arrays.equals(rawOf(s.boundTo), s.raw)) {
                throw new AssertionError("bound bitmap and image disagree");
            }
        }
    }

    private static String describe(Bitmap bitmap) {
        return bitmap == null ? "null" : bitmap.getWidth() + "x" + bitmap.getHeight() + " " + bitmap.getConfig();
    }
}
