// The filter engine's own reference-counted handle. Deliberately not
// std::shared_ptr: the count is a plain heap int shared by every handle of one
// object, and a handle of a base type converts to a derived type without a
// check. The count is changed with atomic operations (no lock): cached package
// descriptions are handed out to every GL thread, e.g. a preview and an export
// rendering the same package at once, each on its own context.
#ifndef IFC_ENGINE_SHARED_PTR_H
#define IFC_ENGINE_SHARED_PTR_H

#include <cstdint>
#include <new>
#include <type_traits>
#include <utility>

template <typename T>
class shared_ptr {
public:
    T* ptr;
    int32_t* count;

    shared_ptr() : ptr(nullptr), count(nullptr) {}

    // Takes ownership of p; the first handle creates the count block.
    explicit shared_ptr(T* p) : ptr(p), count(nullptr) { acquire(); }

    shared_ptr(const shared_ptr& other) : ptr(other.ptr), count(other.count) { acquire(); }

    shared_ptr(shared_ptr&& other) noexcept : ptr(other.ptr), count(other.count) {
        other.ptr = nullptr;
        other.count = nullptr;
    }

    // Derived to base: implicit.
    template <typename U, typename std::enable_if<std::is_convertible<U*, T*>::value, int>::type = 0>
    shared_ptr(const shared_ptr<U>& other) : ptr(other.ptr), count(other.count) {
        acquire();
    }

    // Base to derived: explicit and unchecked; the caller knows the kind.
    template <typename U,
              typename std::enable_if<!std::is_convertible<U*, T*>::value && std::is_base_of<U, T>::value,
                                      int>::type = 0>
    explicit shared_ptr(const shared_ptr<U>& other)
        : ptr(static_cast<T*>(other.ptr)), count(other.count) {
        acquire();
    }

    ~shared_ptr() { release(); }

    shared_ptr& operator=(const shared_ptr& other) {
        shared_ptr copy(other);
        swap(copy);
        return *this;
    }

    shared_ptr& operator=(shared_ptr&& other) noexcept {
        shared_ptr taken(std::move(other));
        swap(taken);
        return *this;
    }

    void swap(shared_ptr& other) noexcept {
        std::swap(ptr, other.ptr);
        std::swap(count, other.count);
    }

    // Drops this handle's share; the last one destroys the object.
    void release() {
        if (count != nullptr) {
            if (__atomic_sub_fetch(count, 1, __ATOMIC_ACQ_REL) == 0) {
                delete ptr;
                delete count;
            }
        }
        count = nullptr;
        ptr = nullptr;
    }

    T* get() const { return ptr; }
    T* operator->() const { return ptr; }
    T& operator*() const { return *ptr; }
    explicit operator bool() const { return ptr != nullptr; }
    int32_t use_count() const { return count == nullptr ? 0 : __atomic_load_n(count, __ATOMIC_RELAXED); }

private:
    void acquire() {
        if (ptr == nullptr) return;
        if (count != nullptr) {
            // A new handle is copied from a live one, so nothing to order.
            __atomic_add_fetch(count, 1, __ATOMIC_RELAXED);
            return;
        }
        try {
            count = new int32_t(1);
        } catch (...) {
            delete ptr;
            ptr = nullptr;
            throw;
        }
    }
};

// Unchecked base-to-derived conversion, e.g. an output texture known to be GL.
template <typename T, typename U>
shared_ptr<T> static_handle_cast(const shared_ptr<U>& handle) {
    return shared_ptr<T>(handle);
}

#endif  // IFC_ENGINE_SHARED_PTR_H
