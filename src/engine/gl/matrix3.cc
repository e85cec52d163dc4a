#include "engine/gl/matrix3.h"

#include <cmath>
#include <cstring>

void matrix3Identity(float m[9]) {
    static const float kIdentity[9] = {1, 0, 0, 0, 1, 0, 0, 0, 1};
    memcpy(m, kIdentity, sizeof kIdentity);
}

void matrix3Multiply(float out[9], const float a[9], const float b[9]) {
    float product[9];
    for (int row = 0; row < 3; ++row) {
        for (int col = 0; col < 3; ++col) {
            product[3 * row + col] = a[3 * row] * b[col] + a[3 * row + 1] * b[3 + col] +
                                     a[3 * row + 2] * b[6 + col];
        }
    }
    memcpy(out, product, sizeof product);
}

void matrix3Translate(float m[9], float tx, float ty) {
    const float translation[9] = {1, 0, 0, 0, 1, 0, tx, ty, 1};
    matrix3Multiply(m, m, translation);
}

void matrix3Scale(float m[9], float sx, float sy) {
    m[0] *= sx;
    m[3] *= sx;
    m[6] *= sx;
    m[1] *= sy;
    m[4] *= sy;
    m[7] *= sy;
}

void matrix3Rotate(float m[9], float radians) {
    const float c = cosf(radians);
    const float s = sinf(radians);
    const float rotation[9] = {c, s, 0, -s, c, 0, 0, 0, 1};
    matrix3Multiply(m, m, rotation);
}
