// The lock of the process-wide package cache, in a header of its own so the
// model node can take it without including the package loader.
#ifndef IFC_ENGINE_PACKAGE_LOCK_H
#define IFC_ENGINE_PACKAGE_LOCK_H

#include <mutex>

#include "image_filter/image.h"

// Guards filterNodeCache and what its nodes hold. Two GL threads (a preview
// and an export, each with its own context) may load packages at once, and a
// package that includes another parses the including element into the shared,
// cached node. The lock is held across the first load of a package, bundle
// reads included, so every package file is read and parsed once per process;
// it is held only briefly when a filter is built, never across GL calls. The
// bundle's read callback must therefore not wait for another thread that is
// loading a package.
IFC_API std::recursive_mutex& HFFilterPackage_lock();

#endif  // IFC_ENGINE_PACKAGE_LOCK_H
