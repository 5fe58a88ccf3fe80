// Movable global memory: GlobalBlock owns a block, GlobalView looks into one. Nothing else in the library calls
// GlobalAlloc, GlobalLock or GlobalFree.
#pragma once

#include "support/checked_size.h"

#include <cstddef>
#include <utility>

namespace vellum {

// Owns a movable, zero-initialised block; empty when the allocation failed.
class GlobalBlock {
public:
    GlobalBlock() = default;
    explicit GlobalBlock(HGLOBAL handle) : handle_(handle) {}
    GlobalBlock(GlobalBlock &&other) noexcept : handle_(std::exchange(other.handle_, nullptr)) {}
    GlobalBlock &operator=(GlobalBlock &&other) noexcept {
        std::swap(handle_, other.handle_);
        return *this;
    }
    ~GlobalBlock() { reset(); }

    [[nodiscard]] static GlobalBlock allocate(Size bytes) {
        const auto fitting = bytes.fit();
        return GlobalBlock(fitting ? GlobalAlloc(GMEM_MOVEABLE | GMEM_ZEROINIT, *fitting) : nullptr);
    }

    // Gives the block another size, growth zero-filled. On failure the block stays as it was. A locked block is never
    // moved, for whoever locked it holds its address.
    [[nodiscard]] bool grow(Size bytes) {
        const auto fitting = bytes.fit();
        HGLOBAL grown = fitting ? GlobalReAlloc(handle_, *fitting, GMEM_ZEROINIT) : nullptr;
        if (grown == nullptr) {
            return false;
        }
        handle_ = grown;
        return true;
    }

    void reset() {
        if (handle_ != nullptr) {
            GlobalFree(std::exchange(handle_, nullptr));
        }
    }

    [[nodiscard]] HGLOBAL get() const { return handle_; }
    [[nodiscard]] HGLOBAL release() { return std::exchange(handle_, nullptr); }
    explicit operator bool() const { return handle_ != nullptr; }

private:
    HGLOBAL handle_ = nullptr;
};

// For records with a fixed layout that hold blocks as plain handles: the record's owner frees them by these.
inline void *lockBlock(HGLOBAL block) {
    return GlobalLock(block);
}
inline void freeBlock(HGLOBAL &block) {
    GlobalBlock(std::exchange(block, nullptr)).reset();
}
inline void freeLockedBlock(HGLOBAL &block) {
    if (block != nullptr) {
        GlobalUnlock(block);
        freeBlock(block);
    }
}

// Locks a block for the lifetime of the view. The view is empty when the handle cannot be locked or the block is
// smaller than what it is asked to show.
template <class T>
class GlobalView {
public:
    explicit GlobalView(HGLOBAL handle, std::size_t leastBytes = sizeof(T)) : handle_(handle) {
        if (handle == nullptr) {
            return;
        }
        bytes_ = GlobalSize(handle);
        if (bytes_ < leastBytes) {
            bytes_ = 0;
            return;
        }
        data_ = static_cast<T *>(GlobalLock(handle));
    }
    GlobalView(const GlobalView &) = delete;
    GlobalView &operator=(const GlobalView &) = delete;
    ~GlobalView() {
        if (data_ != nullptr) {
            GlobalUnlock(handle_);
        }
    }

    explicit operator bool() const { return data_ != nullptr; }
    T *operator->() const { return data_; }
    T &operator*() const { return *data_; }
    [[nodiscard]] T *get() const { return data_; }
    // Size of the whole block.
    [[nodiscard]] std::size_t bytes() const { return bytes_; }

private:
    HGLOBAL handle_;
    T *data_ = nullptr;
    std::size_t bytes_ = 0;
};

} // namespace vellum
