#include "bundle_watch.h"

#include <filesystem>
#include <system_error>

namespace filterpack {
namespace {

uint64_t mix(uint64_t hash, const void* data, size_t size) {
    const auto* bytes = static_cast<const unsigned char*>(data);
    for (size_t i = 0; i < size; ++i) hash = (hash ^ bytes[i]) * 1099511628211ull;
    return hash;
}

}  // namespace

uint64_t bundleSignature(const std::string& root) {
    namespace fs = std::filesystem;
    uint64_t hash = 14695981039346656037ull;
    std::error_code error;
    for (fs::recursive_directory_iterator it(root, error), end; !error && it != end; it.increment(error)) {
        if (!it->is_regular_file(error)) continue;
        const std::string path = it->path().string();
        const auto size = static_cast<uint64_t>(it->file_size(error));
        const auto stamp = it->last_write_time(error).time_since_epoch().count();
        hash = mix(hash, path.data(), path.size());
        hash = mix(hash, &size, sizeof size);
        hash = mix(hash, &stamp, sizeof stamp);
    }
    return hash;
}

}  // namespace filterpack
