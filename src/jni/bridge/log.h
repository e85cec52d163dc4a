// Logging under the tag "filter process": info (4), error (6); debug is a no-op.
#ifndef IFC_JNI_LOG_H
#define IFC_JNI_LOG_H

#include "image_filter/image.h"  // IFC_API

#ifdef __cplusplus
extern "C" {
#endif

IFC_API int log_printI(const char* format, ...) __attribute__((format(printf, 1, 2)));
IFC_API int log_printE(const char* format, ...) __attribute__((format(printf, 1, 2)));
IFC_API void log_printD(const char* format, ...) __attribute__((format(printf, 1, 2)));

#ifdef __cplusplus
}
#endif

#endif  // IFC_JNI_LOG_H
