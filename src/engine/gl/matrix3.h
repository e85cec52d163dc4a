// 3x3 float matrices, row-major, for row vectors: a point (x, y, 1) is
// multiplied on the left, so the translation lives in elements 6 and 7.
// Translate, scale and rotate multiply the matrix on the right.
#ifndef IFC_ENGINE_GL_MATRIX3_H
#define IFC_ENGINE_GL_MATRIX3_H

void matrix3Identity(float m[9]);
// out = a * b; out may be a or b.
void matrix3Multiply(float out[9], const float a[9], const float b[9]);
void matrix3Translate(float m[9], float tx, float ty);
void matrix3Scale(float m[9], float sx, float sy);
void matrix3Rotate(float m[9], float radians);

#endif  // IFC_ENGINE_GL_MATRIX3_H
