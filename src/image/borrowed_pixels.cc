#include "image/borrowed_pixels.h"

#include <atomic>
#include <mutex>
#include <new>
#include <unordered_map>

namespace {

struct BorrowedList {
    std::mutex lock;
    std::unordered_map<const _Image*, const unsigned char*> pixels;  // record -> borrowed data
    std::atomic<size_t> count{0};  // lets the common case (no bound image) skip the lock
};

BorrowedList& borrowed() {
    static BorrowedList* list = new BorrowedList;  // never destroyed: frees may run at exit
    return *list;
}

}  // namespace

namespace ifc {

bool markPixelsBorrowed(const _Image* image) {
    if (image == nullptr || image->data == nullptr) return true;  // nothing that could be freed
    BorrowedList& list = borrowed();
    std::lock_guard<std::mutex> guard(list.lock);
    try {
        list.pixels[image] = image->data;
    } catch (const std::bad_alloc&) {
        return false;
    }
    list.count.store(list.pixels.size());
    return true;
}

bool pixelsBorrowed(const _Image* image) {
    BorrowedList& list = borrowed();
    if (image == nullptr || image->data == nullptr || list.count.load() == 0) return false;
    std::lock_guard<std::mutex> guard(list.lock);
    auto found = list.pixels.find(image);
    return found != list.pixels.end() && found->second == image->data;
}

void forgetBorrowedPixels(const _Image* image) {
    BorrowedList& list = borrowed();
    if (image == nullptr || list.count.load() == 0) return;
    std::lock_guard<std::mutex> guard(list.lock);
    list.pixels.erase(image);
    list.count.store(list.pixels.size());
}

}  // namespace ifc
