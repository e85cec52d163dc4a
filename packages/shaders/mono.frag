precision mediump float;
varying vec2 textureCoordinate;
uniform sampler2D inputImageTexture;
uniform float amount;
void main() {
    vec4 color = texture2D(inputImageTexture, textureCoordinate);
    float luma = dot(color.rgb, vec3(0.299, 0.587, 0.114));
    gl_FragColor = vec4(mix(color.rgb, vec3(luma), amount), color.a);
}
