#include "engine/package_lock.h"

std::recursive_mutex& HFFilterPackage_lock() {
    static std::recursive_mutex lock;
    return lock;
}
