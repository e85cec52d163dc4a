package com.lumeric.util;

import com.lumeric.filter.QImage;

/**
 * Where the library's resources come from: filter packages, GL descriptions
 * and parameter images, addressed by bundle-relative paths such as
 * "filter/gl/sepia.xml".
 */
public interface BundleSource {
    /** The file's bytes, or null when it does not exist. */
    byte[] readData(String path);

    /** The image decoded into a 4-channel RGBA QImage, or null. */
    QImage readImage(String path);
}
