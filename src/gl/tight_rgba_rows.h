// GL state both the direct renderer and the filter engine set for a scope.
#ifndef IFC_GL_TIGHT_RGBA_ROWS_H
#define IFC_GL_TIGHT_RGBA_ROWS_H

#include <GLES2/gl2.h>

// RGBA rows are whole 4-byte words, so pack or unpack alignments up to 4 keep
// them tight; a caller's alignment of 8 would make GL read or write padding
// past a tightly packed buffer of odd width. For its scope the alignment named
// (GL_PACK_ALIGNMENT or GL_UNPACK_ALIGNMENT) is at most 4; the caller's value
// comes back afterwards, so what a caller can see is unchanged.
class TightRgbaRows {
public:
    explicit TightRgbaRows(GLenum alignmentName);
    ~TightRgbaRows();
    TightRgbaRows(const TightRgbaRows&) = delete;
    TightRgbaRows& operator=(const TightRgbaRows&) = delete;

private:
    GLenum name_;
    GLint saved_ = 4;
};

#endif  // IFC_GL_TIGHT_RGBA_ROWS_H
