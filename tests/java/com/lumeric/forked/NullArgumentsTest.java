package com.lumeric.forked;

import static org.junit.jupiter.api.Assertions.assertEquals;

import com.lumeric.filter.BaseFilter;
import com.lumeric.filter.GLSLRender;
import com.lumeric.filter.QImage;
import com.lumeric.util.FilterEngineJNILib;
import java.util.Map;
import java.util.TreeMap;
import org.junit.jupiter.api.Test;

/**
 * Every native of a class called with null objects (and QImage's on an
 * object without a native image), each class in a child JVM: no crash, no
 * JNI call with an exception pending, and per native the result or the
 * exception Java sees. A native added to a class without a row here fails
 * the table, so that its null handling gets decided.
 */
class NullArgumentsTest {
    private static final String NPE = "NullPointerException: ", RTE = "RuntimeException: ";
    private static final String EMPTY = RTE + "image is empty", FRAME = RTE + "Out of memory of QImage.DecodeYUV420sp";

    private static void check(Class<?> type, String mode, String[][] table) throws Exception {
        Map<String, String> expected = new TreeMap<>();
        for (String[] row : table) expected.put(row[0], row[1]);
        assertEquals(expected, new TreeMap<>(NullCalls.outcomes(type, mode)));
    }

    @Test
    void qimageWithNullArguments() throws Exception {
        check(QImage.class, "null", new String[][] {
            // A null bitmap has no readable info: null or false, no exception.
            {"BindBitmap", "return null"},
            {"Bitmap2QImage", "return null"},
            {"UnBindBitmap", "return false"},
            {"alphaMix", "return false"},
            {"FromBitmap", NPE + "can't get Bitmap info"},
            {"ToBitmap", NPE + "can't get Bitmap info"},
            {"CopyPixels", NPE + "pixels is null"},
            {"CopyPixelsRGB", NPE + "pixels is null"},
            {"WrapExif", NPE + "other QImage is null"},
            // Frames: the image is made, the missing bytes reported as for every format.
            {"RGB565toRGB", FRAME},
            {"YUV420sp2RGB", FRAME},
            {"YUV420sp2YUV", FRAME},
            {"YUV420sp2YUV2", FRAME},
            {"YUV422toRGB", FRAME},
        });
    }

    @Test
    void qimageWithoutANativeImage() throws Exception {
        check(QImage.class, "empty", new String[][] {
            {"BindBitmap", "return QImage with image"},
            {"Bitmap2QImage", "return QImage with image"},
            {"CreateImage", "return"},
            {"Dispose", "return"},
            {"nativeUpdateROI", "return"},
            {"getByteSize", "return 0"},
            {"nativeFlip", "return false"},
            {"nativeRotate", "return false"},
            {"ToBitmap", "return false"},
            {"UnBindBitmap", "return true"},
            {"alphaMix", "return false"},
            {"RGB565toRGB", "return"},
            {"YUV420sp2RGB", "return"},
            {"YUV420sp2YUV", "return"},
            {"YUV420sp2YUV2", "return"},
            {"YUV422toRGB", "return"},
            {"CopyPixels", EMPTY},
            {"CopyPixelsRGB", EMPTY},
            {"CreateImageFromQImage", EMPTY},
            {"FromBitmap", EMPTY},
            {"InplaceBlur8bitQImage", EMPTY},
            {"WrapExif", EMPTY},
            {"createSubImage", EMPTY},
            {"nativeGetArrayHistogram", EMPTY},
            {"nativeGetArrayHistogramChannels", EMPTY},
        });
    }

    @Test
    void glslRenderWithNullArguments() throws Exception {
        String bitmap = NPE + "bitmap is null", image = NPE + "image is null", data = NPE + "data";
        check(GLSLRender.class, "null", new String[][] {
            {"nativeCopyPixelToBitmap", bitmap},
            {"nativeCopyPixelToBitmapWithShare", bitmap},
            {"nativePushBitmapFromTexture", bitmap},
            {"nativeRenderPixelToBitmap", bitmap},
            {"nativeSnap", bitmap},
            {"nativeUpdateScaleBitmap", bitmap},
            {"nativeCopyTexture2", image},
            {"nativePickJepgToTexture", image},
            {"nativePreprocessJepg", image},
            {"nativePushJepgFromTexture", image},
            {"nativeTextImage", image},
            {"nativeCopyTexturToDataWithShare", data},
            {"nativePreviewData", data},
            {"nativePreviewYuvData", data},
            {"nativePushDataFromTexture", data},
            {"nativeToRGBData", data},
            {"nativeTextCure", NPE + "curve"},
        });
    }

    @Test
    void baseFilterWithNullArgumentsOnALiveRenderer() throws Exception {
        check(BaseFilter.class, "null", new String[][] {
            {"nativeInitialWithString", NPE + "fragment source is null"},
            {"nativeUpdateMatrix", NPE + "matrix"},
            {"nativeSetGlobalTextureMatrix", NPE + "matrix"},
            {"nativeUpdateModelMatrix", NPE + "matrix"},
            {"nativeSetPositions", NPE + "positions"},
            {"nativeSetTexCords", NPE + "texture coordinates"},
        });
    }

    @Test
    void filterEngineLibWithANullBitmap() throws Exception {
        check(FilterEngineJNILib.class, "null", new String[][] {{"nativeCopyImage", NPE + "bitmap is null"}});
    }
}
