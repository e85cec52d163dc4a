// Notices when any file of a bundle directory is added, removed or changed.
#ifndef FILTERPACK_SERVE_BUNDLE_WATCH_H
#define FILTERPACK_SERVE_BUNDLE_WATCH_H

#include <cstdint>
#include <string>

namespace filterpack {

// Paths, sizes and modification times of every file under `root`, hashed.
uint64_t bundleSignature(const std::string& root);

}  // namespace filterpack

#endif  // FILTERPACK_SERVE_BUNDLE_WATCH_H
