package com.lumeric.forked;

import android.graphics.Bitmap;
import com.lumeric.filter.BaseFilter;
import com.lumeric.filter.QImage;
import com.lumeric.host.HostGL;
import java.lang.reflect.InvocationTargetException;
import java.lang.reflect.Method;
import java.lang.reflect.Modifier;
import java.util.Arrays;
import java.util.Comparator;
import java.util.LinkedHashMap;
import java.util.Map;

/**
 * Calls every native of a class in a JVM of its own, so that a crash is
 * reported instead of taking the suite down, and reports how each returned.
 *
 * Mode "null": every native with an object parameter, all object arguments
 * null; instance natives run on a QImage holding a 4 x 4 RGBA image (or a
 * fresh object of the class), handles are live ones where the class has
 * them. Mode "empty": QImage natives on a QImage without a native image, with
 * real arguments. Ints are 1, floats 0, booleans false.
 */
public final class NullCalls {
    private NullCalls() {}

    static final String COPY_FRAGMENT =
            "precision mediump float; varying vec2 textureCoordinate; uniform sampler2D inputImageTexture;\n"
            + "void main() { gl_FragColor = texture2D(inputImageTexture, textureCoordinate); }\n";

    /** Native name to "return VALUE" (void: "return") or "ExceptionName: message". */
    public static Map<String, String> outcomes(Class<?> type, String mode) throws Exception {
        Map<String, String> outcomes = new LinkedHashMap<>();
        for (String line : ForkedJvm.run(NullCalls.class, type.getName(), mode).split("\n")) {
            if (!line.startsWith("call ")) continue;
            String[] parts = line.substring(5).split(" ", 2);
            outcomes.put(parts[0], parts[1]);
        }
        return outcomes;
    }

    public static void main(String[] args) throws Exception {
        Class<?> type = Class.forName(args[0]);
        boolean empty = args[1].equals("empty");
        HostGL gl = null;
        try {
            gl = HostGL.create(16, 16);
        } catch (RuntimeException | UnsatisfiedLinkError noContext) {
            // the natives must survive these arguments with or without GL
        }
        Method[] natives = type.getDeclaredMethods();
        Arrays.sort(natives, Comparator.comparing(Method::getName));
        for (Method m : natives) {
            if (!Modifier.isNative(m.getModifiers())) continue;
            Class<?>[] params = m.getParameterTypes();
            if (!empty && Arrays.stream(params).allMatch(Class::isPrimitive)) continue;
            Object receiver = Modifier.isStatic(m.getModifiers()) ? null : receiver(type, empty);
            Object[] values = new Object[params.length];
            for (int i = 0; i < params.length; i++) values[i] = argument(params[i], receiver, empty);
            System.out.println("begin " + m.getName());
            System.out.flush();
            String outcome;
            try {
                m.setAccessible(true);
                Object result = m.invoke(receiver, values);
                outcome = m.getReturnType() == void.class ? "return" : "return " + describe(result);
            } catch (InvocationTargetException e) {
                Throwable cause = e.getCause();
                outcome = cause.getClass().getSimpleName() + ": " + cause.getMessage();
            }
            System.out.println("call " + m.getName() + " " + outcome);
            System.out.flush();
            if (receiver instanceof QImage) ((QImage) receiver).Dispose();
        }
        if (gl != null) gl.close();
    }

    private static Object receiver(Class<?> type, boolean empty) throws Exception {
        if (type == QImage.class) {
            QImage image = new QImage();
            if (!empty) image.CreateImage(4, 4, 4);
            return image;
        }
        return type.getDeclaredConstructor().newInstance();
    }

    private static Object argument(Class<?> p, Object receiver, boolean empty) {
        if (p == int.class) return 1;
        if (p == float.class) return 0f;
        if (p == boolean.class) return false;
        if (p == long.class) {
            // A live renderer for BaseFilter (made afresh: nativeClear frees it); no handle elsewhere.
            return receiver instanceof BaseFilter
                    ? ((BaseFilter) receiver).nativeInitialWithString(0, false, null, COPY_FRAGMENT) : 0L;
        }
        if (!empty) return null;
        if (p == int[].class) return new int[64];
        if (p == byte[].class) return new byte[64];
        if (p == float[].class) return new float[16];
        if (p == Bitmap.class) return Bitmap.createBitmap(4, 4, Bitmap.Config.ARGB_8888);
        if (p == QImage.class) return new QImage();
        return null;
    }

    private static String describe(Object result) {
        if (result instanceof QImage) return ((QImage) result).nativeImage == 0 ? "QImage without image" : "QImage with image";
        if (result instanceof int[]) return "int[" + ((int[]) result).length + "]";
        return String.valueOf(result);
    }
}
