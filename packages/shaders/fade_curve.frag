precision mediump float;
varying vec2 textureCoordinate;
uniform sampler2D inputImageTexture;
uniform float toneCurve[256];
float tone(float v) {
    int i = int(clamp(v, 0.0, 1.0) * 255.0 + 0.5);
    float result = 0.0;
    // GLSL ES 2.0 indexes uniform arrays with loop indices only.
    for (int k = 0; k < 256; k++) {
        if (k == i) result = toneCurve[k];
    }
    return result;
}
void main() {
    vec4 color = texture2D(inputImageTexture, textureCoordinate);
    gl_FragColor = vec4(tone(color.r), tone(color.g), tone(color.b), color.a);
}
