precision mediump float;
varying vec2 textureCoordinate;
uniform sampler2D inputImageTexture;
uniform mat4 colorMatrix;
uniform vec4 colorOffset;
void main() {
    vec4 color = texture2D(inputImageTexture, textureCoordinate);
    vec4 toned = colorMatrix * vec4(color.rgb, 1.0) + colorOffset;
    gl_FragColor = vec4(clamp(toned.rgb, 0.0, 1.0), color.a);
}
