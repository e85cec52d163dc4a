// Test buffers that end exactly at an inaccessible page, so that a kernel
// reading or writing one byte past the end faults at once.
#ifndef IFC_TESTS_JNI_GUARDED_BUFFER_H
#define IFC_TESTS_JNI_GUARDED_BUFFER_H

#include <sys/mman.h>
#include <unistd.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <random>
#include <vector>

class GuardedBuffer {
public:
    explicit GuardedBuffer(size_t size, uint8_t fill = 0) : size_(size) {
        const size_t page = static_cast<size_t>(sysconf(_SC_PAGESIZE));
        mapped_ = (size + page - 1) / page * page + page;
        void* base = mmap(nullptr, mapped_, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
        if (base == MAP_FAILED) std::abort();
        base_ = static_cast<uint8_t*>(base);
        mprotect(base_ + mapped_ - page, page, PROT_NONE);
        data_ = base_ + mapped_ - page - size;
        std::memset(data_, fill, size);
    }
    ~GuardedBuffer() { munmap(base_, mapped_); }
    GuardedBuffer(const GuardedBuffer&) = delete;
    GuardedBuffer& operator=(const GuardedBuffer&) = delete;

    uint8_t* data() { return data_; }
    const uint8_t* data() const { return data_; }
    size_t size() const { return size_; }
    bool operator==(const GuardedBuffer& other) const {
        return size_ == other.size_ && std::memcmp(data_, other.data_, size_) == 0;
    }

    // Fixed-seed random bytes.
    GuardedBuffer& randomize(uint32_t seed) {
        std::mt19937 random(seed);
        for (size_t i = 0; i < size_; ++i) data_[i] = static_cast<uint8_t>(random());
        return *this;
    }

private:
    size_t size_;
    size_t mapped_;
    uint8_t* base_;
    uint8_t* data_;
};

#endif  // IFC_TESTS_JNI_GUARDED_BUFFER_H
