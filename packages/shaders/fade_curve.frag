precision mediump float;
varying vec2 textureCoordinate;
uniform sampler2D inputImageTexture;
// The tone curve: 256x1, the entry for level k in texel k of every channel.
uniform sampler2D inputImageTexture2;
void main() {
    vec4 color = texture2D(inputImageTexture, textureCoordinate);
    // Level k (color k / 255) is read at the centre of texel k, (k + 0.5) / 256.
    vec3 at = color.rgb * (255.0 / 256.0) + 0.5 / 256.0;
    gl_FragColor = vec4(texture2D(inputImageTexture2, vec2(at.r, 0.5)).r,
                        texture2D(inputImageTexture2, vec2(at.g, 0.5)).g,
                        texture2D(inputImageTexture2, vec2(at.b, 0.5)).b, color.a);
}
