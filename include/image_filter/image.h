/*
 * Public C interface of the image core of libimage_filter_common.so.
 *
 * _Image is the one in-memory image record of the library: camera frames,
 * bitmaps, CPU filter inputs and raw resource blobs all travel as _Image*.
 * None of these functions validates its arguments or reports errors other
 * than by a null result where noted.
 */
#ifndef IMAGE_FILTER_IMAGE_H
#define IMAGE_FILTER_IMAGE_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

#if defined(__GNUC__)
#define IFC_API __attribute__((visibility("default")))
#else
#define IFC_API
#endif

/* One node of the metadata list an image may carry (EXIF and the like). */
typedef struct _ImageMarker {
    uint32_t id;                  /* not read by the library */
    unsigned char* data;          /* owned by the node */
    uint32_t length;              /* not read by the library */
    struct _ImageMarker* next;
} _ImageMarker;

/* Nine words on a 32-bit ABI; pointers are full width elsewhere. */
typedef struct _Image {
    unsigned char* data;     /* rows top to bottom, `stride` bytes apart; may be null */
    uint32_t size;           /* bytes allocated by the constructor; 0 for a header */
    int32_t width;
    int32_t height;
    int32_t channels;        /* bytes per pixel */
    int32_t stride;          /* bytes from one row to the next */
    uint32_t layout;         /* channel-order tag, 0x01020304 = R,G,B,A in memory */
    uint32_t reserved;
    _ImageMarker* markers;
} _Image;

typedef struct MRect {
    int32_t x;
    int32_t y;
    int32_t width;
    int32_t height;
} MRect;

typedef struct MPoint {
    int32_t x;
    int32_t y;
} MPoint;

/* Record and buffer life cycle. */
IFC_API _Image* create_image(int width, int height, unsigned int channels, int stride);
IFC_API _Image* create_image_header(int width, int height, unsigned int channels, int stride);
IFC_API _Image* create_empty_image(void);
IFC_API void image_init(_Image* image);
IFC_API _Image* create_image2(_Image* image, int width, int height, int channels);
IFC_API _Image* create_same_image(_Image* image, const _Image* source);
IFC_API _Image* clone_image(_Image* image, const _Image* source);
IFC_API _Image* clone_image2(const _Image* source);
IFC_API _Image* clone_image_ex(const _Image* source);
IFC_API void copy_image(_Image* destination, const _Image* source);
IFC_API void copy_image_roi(const _Image* source, _Image* destination, const MRect* region,
                            MPoint point);
IFC_API _Image* clone_image_roi(_Image* image, const _Image* source, const MRect* region);
IFC_API _Image* load_image_from_raw(const char* path, int width, int height, int channels);
IFC_API void clear_image(_Image* image, int value);
IFC_API void free_image(_Image** image);
IFC_API void free_image_header(_Image** image);
IFC_API void destroy_image(_Image* image);
IFC_API _ImageMarker* create_marker(void);
IFC_API void free_marker(_ImageMarker* head);
IFC_API void clear_mrect(MRect* rect);
IFC_API int is_empty_rect(const MRect* rect);

/* Geometry. */
IFC_API _Image* crop_image(_Image* out, const _Image* source, const MRect* rect);
IFC_API _Image* crop_image_with_angle(_Image* out, const _Image* source, const MRect* rect);
IFC_API _Image* scale_image_ptr(const _Image* source, int width, int height);
IFC_API _Image* scale_image2(_Image* out, const _Image* source, int width, int height);
IFC_API void scale_image(_Image* image, int width, int height);
IFC_API _Image* buildPyramid(const _Image* source, int factor);
IFC_API _Image* convert_image_gray(_Image* out, const unsigned char* pixels, int ignored,
                                   int width, int height, int step);
IFC_API void rotateImage(_Image* image, int degrees);
IFC_API void flipImage(_Image* image, int horizontal, int vertical);

/* Rectangle algebra; right = x + width, bottom = y + height. */
IFC_API void inflate_rect(MRect* rect, int dx, int dy);
IFC_API void validate_rect(MRect* out, const MRect* rect, const MRect* bounds);
IFC_API void intersect(MRect* out, const MRect* a, const MRect* b);
IFC_API void unionrect(MRect* out, const MRect* a, const MRect* b);
IFC_API int in_range(const MRect* rect, int width, int height);
IFC_API int rect_contains_rect(const MRect* outer, const MRect* inner);
IFC_API MRect* scale_rect(MRect* out, const MRect* in, float factor);
IFC_API MRect* scale_rect_xy(MRect* out, const MRect* in, float x_factor, float y_factor);

#ifdef __cplusplus
}
#endif

#endif /* IMAGE_FILTER_IMAGE_H */
