// The preview page's HTML, with its script and style inline.
#ifndef FILTERPACK_SERVE_PREVIEW_PAGE_H
#define FILTERPACK_SERVE_PREVIEW_PAGE_H

namespace filterpack {

const char* previewPage();

}  // namespace filterpack

#endif  // FILTERPACK_SERVE_PREVIEW_PAGE_H
