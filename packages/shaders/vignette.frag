precision mediump float;
varying vec2 textureCoordinate;
uniform sampler2D inputImageTexture;
uniform float radius;
uniform float softness;
void main() {
    vec4 color = texture2D(inputImageTexture, textureCoordinate);
    float d = distance(textureCoordinate, vec2(0.5));
    float shade = smoothstep(radius, radius - softness, d);
    gl_FragColor = vec4(color.rgb * shade, color.a);
}
