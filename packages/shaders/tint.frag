precision mediump float;
varying vec2 textureCoordinate;
uniform sampler2D inputImageTexture;
uniform sampler2D inputImageTexture2;
uniform vec4 tint;
void main() {
    vec4 soft = texture2D(inputImageTexture, textureCoordinate);
    vec4 original = texture2D(inputImageTexture2, textureCoordinate);
    vec3 dreamy = mix(original.rgb, soft.rgb, 0.6) * tint.rgb;
    gl_FragColor = vec4(clamp(dreamy, 0.0, 1.0), original.a);
}
