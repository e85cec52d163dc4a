#include "gl/tight_rgba_rows.h"

TightRgbaRows::TightRgbaRows(GLenum alignmentName) : name_(alignmentName) {
    glGetIntegerv(name_, &saved_);
    if (saved_ > 4) glPixelStorei(name_, 4);
}

TightRgbaRows::~TightRgbaRows() {
    if (saved_ > 4) glPixelStorei(name_, saved_);
}
