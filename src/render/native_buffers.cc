#include "render/native_buffers.h"

#include <cstdlib>
#include <mutex>
#include <unordered_map>

namespace {

struct Buffers {
    std::mutex lock;
    std::unordered_map<const void*, size_t> sizes;
};

Buffers& buffers() {
    static Buffers* all = new Buffers;  // never destroyed: Java may free at exit
    return *all;
}

}  // namespace

void* allocateNativeBuffer(int size) {
    if (size < 0) return nullptr;
    void* buffer = malloc(static_cast<size_t>(size));
    if (buffer == nullptr) return nullptr;
    Buffers& all = buffers();
    std::lock_guard<std::mutex> guard(all.lock);
    try {
        all.sizes[buffer] = static_cast<size_t>(size);
    } catch (...) {
        free(buffer);
        throw;
    }
    return buffer;
}

bool releaseNativeBuffer(void* buffer) {
    if (buffer == nullptr) return true;
    Buffers& all = buffers();
    std::lock_guard<std::mutex> guard(all.lock);
    if (all.sizes.erase(buffer) == 0) return false;
    free(buffer);
    return true;
}

bool nativeBufferHolds(const void* buffer, size_t bytes) {
    Buffers& all = buffers();
    std::lock_guard<std::mutex> guard(all.lock);
    auto found = all.sizes.find(buffer);
    return found != all.sizes.end() && found->second >= bytes;
}
