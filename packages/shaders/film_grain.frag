// Tile coordinates need more than mediump on large pictures.
#ifdef GL_FRAGMENT_PRECISION_HIGH
precision highp float;
#else
precision mediump float;
#endif
varying vec2 textureCoordinate;
uniform sampler2D inputImageTexture;
uniform sampler2D inputImageTexture2;
uniform float strength;
uniform float horStep;
uniform float verStep;
void main() {
    vec4 color = texture2D(inputImageTexture, textureCoordinate);
    // The grain tile repeats every 128 pixels of the image.
    vec2 tile = fract(textureCoordinate / (vec2(horStep, verStep) * 128.0));
    float grain = texture2D(inputImageTexture2, tile).r - 0.5;
    gl_FragColor = vec4(clamp(color.rgb + grain * strength, 0.0, 1.0), color.a);
}
