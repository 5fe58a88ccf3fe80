// Global memory as the real one behaves, every block in an allocation of exactly its size. A movable block is a handle
// that points to its bytes; its bytes move at every re-allocation.
#include "native/shim.h"

#include <cstdlib>
#include <cstring>
#include <new>
#include <unordered_set>

namespace vellum::shim {
namespace {

struct Block {
    BYTE *bytes = nullptr;
    SIZE_T size = 0;
    unsigned locks = 0;
};

// Handles in use, so that a wrong or freed handle is an error and no wild access, as in the real system.
std::unordered_set<Block *> &liveBlocks() {
    static std::unordered_set<Block *> blocks;
    return blocks;
}

Block *find(HGLOBAL handle) {
    auto *block = static_cast<Block *>(handle);
    if (liveBlocks().count(block) == 0) {
        state.lastError = ERROR_INVALID_HANDLE;
        return nullptr;
    }
    return block;
}

// Large zeroed blocks cost nothing until they are touched.
BYTE *allocateBytes(SIZE_T size, bool zero) {
    auto *bytes = static_cast<BYTE *>(zero ? std::calloc(size, 1) : std::malloc(size));
    if (bytes != nullptr && !zero) {
        std::memset(bytes, state.freshByte, size);
    }
    return bytes;
}

void countBytes(SIZE_T before, SIZE_T after) {
    state.bytes = state.bytes - before + after;
    state.peakBytes = state.bytes > state.peakBytes ? state.bytes : state.peakBytes;
}

constexpr SIZE_T kLargestBlock = 0x7FFFFFFF;

} // namespace
} // namespace vellum::shim

using namespace vellum::shim;

extern "C" {

HGLOBAL WINAPI GlobalAlloc(UINT flags, SIZE_T size) {
    const bool fails = state.globalAlloc.hit() || size > kLargestBlock;
    BYTE *bytes = fails ? nullptr : allocateBytes(size, (flags & GMEM_ZEROINIT) != 0);
    if (bytes == nullptr) {
        state.lastError = ERROR_NOT_ENOUGH_MEMORY;
        return nullptr;
    }
    auto *block = new Block{bytes, size, 0};
    liveBlocks().insert(block);
    ++state.blocks;
    countBytes(0, size);
    return block;
}

HGLOBAL WINAPI GlobalReAlloc(HGLOBAL handle, SIZE_T size, UINT flags) {
    Block *block = find(handle);
    if (block == nullptr) {
        return nullptr;
    }
    // A locked block moves only when the call says that it may; the shim never grows one in place.
    const bool stuck = block->locks != 0 && (flags & GMEM_MOVEABLE) == 0 && size > block->size;
    if (state.globalReAlloc.hit() || stuck || size > kLargestBlock) {
        state.lastError = ERROR_NOT_ENOUGH_MEMORY;
        return nullptr;
    }
    if ((flags & GMEM_MODIFY) != 0) {
        return handle;
    }
    BYTE *bytes = allocateBytes(size, (flags & GMEM_ZEROINIT) != 0);
    if (bytes == nullptr) {
        state.lastError = ERROR_NOT_ENOUGH_MEMORY;
        return nullptr;
    }
    std::memcpy(bytes, block->bytes, size < block->size ? size : block->size);
    std::free(block->bytes);
    countBytes(block->size, size);
    block->bytes = bytes;
    block->size = size;
    return handle;
}

HGLOBAL WINAPI GlobalFree(HGLOBAL handle) {
    if (handle == nullptr) {
        return nullptr;
    }
    Block *block = find(handle);
    if (block == nullptr) {
        return handle;
    }
    state.locks -= static_cast<long>(block->locks);
    --state.blocks;
    countBytes(block->size, 0);
    liveBlocks().erase(block);
    std::free(block->bytes);
    delete block;
    return nullptr;
}

LPVOID WINAPI GlobalLock(HGLOBAL handle) {
    Block *block = find(handle);
    if (block == nullptr || state.globalLock.hit()) {
        return nullptr;
    }
    ++block->locks;
    ++state.locks;
    return block->bytes;
}

BOOL WINAPI GlobalUnlock(HGLOBAL handle) {
    Block *block = find(handle);
    if (block == nullptr) {
        return FALSE;
    }
    if (block->locks == 0) {
        state.lastError = ERROR_NOT_LOCKED;
        return FALSE;
    }
    --block->locks;
    --state.locks;
    state.lastError = NO_ERROR;
    return block->locks != 0;
}

SIZE_T WINAPI GlobalSize(HGLOBAL handle) {
    const Block *block = find(handle);
    return block == nullptr ? 0 : block->size;
}

UINT WINAPI GlobalFlags(HGLOBAL handle) {
    const Block *block = find(handle);
    return block == nullptr ? GMEM_INVALID_HANDLE : block->locks & GMEM_LOCKCOUNT;
}

} // extern "C"
