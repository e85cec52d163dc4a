precision mediump float;
varying vec2 textureCoordinate;
uniform sampler2D inputImageTexture;
uniform sampler2D inputImageTexture2;
uniform float glow;
void main() {
    vec4 blurred = texture2D(inputImageTexture, textureCoordinate);
    vec4 original = texture2D(inputImageTexture2, textureCoordinate);
    // Screen blend of the blurred copy over the original.
    vec3 screen = 1.0 - (1.0 - original.rgb) * (1.0 - blurred.rgb);
    gl_FragColor = vec4(mix(original.rgb, screen, glow), original.a);
}
