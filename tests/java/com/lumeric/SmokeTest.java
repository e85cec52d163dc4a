package com.lumeric;

import static org.junit.jupiter.api.Assertions.assertEquals;

import com.lumeric.filter.QImage;
import org.junit.jupiter.api.Test;

class SmokeTest {
    @Test
    void libraryLoads() {
        QImage image = new QImage();
        assertEquals(0, image.nativeImage);
    }
}
