precision mediump float;
varying vec2 textureCoordinate;
uniform sampler2D inputImageTexture;
uniform float radius;
uniform float softness;
uniform float strength;
void main() {
    vec4 color = texture2D(inputImageTexture, textureCoordinate);
    float d = distance(textureCoordinate, vec2(0.5));
    // Full brightness inside radius - softness, darkened by strength at radius.
    float shade = 1.0 - strength * smoothstep(radius - softness, radius, d);
    gl_FragColor = vec4(color.rgb * shade, color.a);
}
