// Buffers that Java holds as handles (GLSLRender.nativeAllocBuffer). The
// library remembers each one and its size, so that a handle it never gave
// out is neither freed nor written through.
#ifndef IFC_RENDER_NATIVE_BUFFERS_H
#define IFC_RENDER_NATIVE_BUFFERS_H

#include <cstddef>

// malloc(size), remembered; null for a negative size or a failed allocation.
void* allocateNativeBuffer(int size);

// Frees a remembered buffer. False (nothing freed) for any other non-null address.
bool releaseNativeBuffer(void* buffer);

// True when `buffer` is a remembered buffer of at least `bytes` bytes.
bool nativeBufferHolds(const void* buffer, size_t bytes);

#endif  // IFC_RENDER_NATIVE_BUFFERS_H
