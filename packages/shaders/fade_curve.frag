precision mediump float;
varying vec2 textureCoordinate;
uniform sampler2D inputImageTexture;
uniform float toneCurve[256];
void main() {
    vec4 color = texture2D(inputImageTexture, textureCoordinate);
    vec3 level = floor(clamp(color.rgb, 0.0, 1.0) * 255.0 + 0.5);
    vec3 toned = vec3(0.0);
    // GLSL ES 2.0 guarantees uniform array indexing by loop index only, so
    // one pass over the curve picks the entry of each channel.
    for (int k = 0; k < 256; k++) {
        float entry = toneCurve[k];
        vec3 hit = vec3(equal(level, vec3(float(k))));
        toned += hit * entry;
    }
    gl_FragColor = vec4(toned, color.a);
}
