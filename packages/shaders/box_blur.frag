precision mediump float;
varying vec2 textureCoordinate;
uniform sampler2D inputImageTexture;
uniform float horStep;
uniform float verStep;
void main() {
    vec4 sum = vec4(0.0);
    for (int y = -2; y <= 2; y++) {
        for (int x = -2; x <= 2; x++) {
            sum += texture2D(inputImageTexture, textureCoordinate + vec2(float(x) * horStep, float(y) * verStep) * 2.0);
        }
    }
    gl_FragColor = sum / 25.0;
}
