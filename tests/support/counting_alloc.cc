// Counts heap allocations of the calling thread made outside GL calls:
// every operator new, and malloc/calloc/realloc where no sanitizer owns them
// (AddressSanitizer replaces malloc itself; there only operator new counts).
#include <cstdlib>
#include <new>

#include "support/counting.h"

#if defined(__SANITIZE_ADDRESS__)
#define IFC_COUNT_MALLOC 0
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define IFC_COUNT_MALLOC 0
#endif
#endif
#ifndef IFC_COUNT_MALLOC
#define IFC_COUNT_MALLOC 1
#endif

#if IFC_COUNT_MALLOC
// glibc's own allocator behind the counted entry points below.
extern "C" {
void* __libc_malloc(size_t size);
void* __libc_calloc(size_t count, size_t size);
void* __libc_realloc(void* block, size_t size);
}
#define IFC_RAW_MALLOC __libc_malloc
#else
#define IFC_RAW_MALLOC std::malloc
#endif

namespace counting {

namespace {

thread_local long allocations = 0;

void countOne() {
    if (!insideGL()) ++allocations;
}

void* allocate(size_t size) {
    countOne();
    void* block = IFC_RAW_MALLOC(size == 0 ? 1 : size);
    if (block == nullptr) throw std::bad_alloc();
    return block;
}

}  // namespace

long allocationsSoFar() { return allocations; }

}  // namespace counting

void* operator new(size_t size) { return counting::allocate(size); }
void* operator new[](size_t size) { return counting::allocate(size); }
void* operator new(size_t size, const std::nothrow_t&) noexcept {
    try {
        return counting::allocate(size);
    } catch (...) {
        return nullptr;
    }
}
void* operator new[](size_t size, const std::nothrow_t& tag) noexcept { return operator new(size, tag); }
void operator delete(void* block) noexcept { std::free(block); }
void operator delete[](void* block) noexcept { std::free(block); }
void operator delete(void* block, size_t) noexcept { std::free(block); }
void operator delete[](void* block, size_t) noexcept { std::free(block); }

#if IFC_COUNT_MALLOC
extern "C" {
void* malloc(size_t size) {
    counting::countOne();
    return __libc_malloc(size);
}

void* calloc(size_t count, size_t size) {
    counting::countOne();
    return __libc_calloc(count, size);
}

void* realloc(void* block, size_t size) {
    counting::countOne();
    return __libc_realloc(block, size);
}
}
#endif
