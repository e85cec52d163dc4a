package com.lumeric.engine;

import java.io.IOException;
import java.nio.file.Files;
import java.nio.file.Path;

/** Package files written into a test's bundle folder: GL descriptions over one vertex shader, packages, leaves. */
final class Packages {
    static final String VERTEX =
            "attribute vec4 position; attribute vec2 inputTextureCoordinate; varying vec2 uv;"
            + " void main(){ gl_Position = position; uv = inputTextureCoordinate; }";

    private final Path root;

    Packages(Path root) { this.root = root; }

    void write(String path, String text) throws IOException {
        Files.createDirectories(root.resolve(path).getParent());
        Files.writeString(root.resolve(path), text);
    }

    /** filter/gl/NAME.xml; the fragment text starts on line 2 of the file. */
    void describe(String name, String fragment) throws IOException {
        write("filter/gl/" + name + ".xml",
                "<glfilter><vertex>" + VERTEX + "</vertex>\n<fragment>" + fragment + "</fragment></glfilter>");
    }

    void pack(String name, String xml) throws IOException { write("filter/" + name + "/filter.xml", xml); }

    static String leaf(String implement, String... params) {
        return "<filter implement='" + implement + "'>" + String.join("", params) + "</filter>";
    }

    static String param(String name, String type, String value) {
        return "<param><name>" + name + "</name><" + type + ">" + value + "</" + type + "></param>";
    }
}
