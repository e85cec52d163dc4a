// Reads typed values off the front of a fuzz input (zeros once it runs
// out), so that the targets also build with compilers without libFuzzer's
// own reader.
#ifndef IFC_TESTS_FUZZ_FUZZ_INPUT_H
#define IFC_TESTS_FUZZ_FUZZ_INPUT_H

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <vector>

class FuzzInput {
public:
    FuzzInput(const uint8_t* data, size_t size) : data(data), size(size) {}

    template <typename T>
    T take() {
        T value{};
        const size_t n = size < sizeof value ? size : sizeof value;
        if (n > 0) std::memcpy(&value, data, n);
        data += n;
        size -= n;
        return value;
    }

    // A value in [low, high].
    int64_t range(int64_t low, int64_t high) {
        const uint64_t span = static_cast<uint64_t>(high - low) + 1;
        const uint64_t raw = span > 0xffff ? take<uint32_t>() : take<uint16_t>();
        return low + static_cast<int64_t>(span == 0 ? raw : raw % span);
    }
    bool flag() { return (take<uint8_t>() & 1) != 0; }
    float real(float low, float high) { return low + (high - low) * (take<uint16_t>() / 65535.0f); }

    // Up to n bytes, fewer when the input runs out.
    std::vector<uint8_t> bytes(size_t n) {
        const size_t k = n < size ? n : size;
        std::vector<uint8_t> out(data, data + k);
        data += k;
        size -= k;
        return out;
    }

private:
    const uint8_t* data;
    size_t size;
};

#endif  // IFC_TESTS_FUZZ_FUZZ_INPUT_H
