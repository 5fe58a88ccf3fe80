// Global blocks as callers make them, for tests.
#pragma once

#include "support/paths.h"

#include <cstring>

namespace vellum::test {

// A movable block with these bytes.
inline HGLOBAL makeBlock(const Bytes &content) {
    HGLOBAL block = GlobalAlloc(GMEM_MOVEABLE, content.size());
    if (void *bytes = GlobalLock(block); bytes != nullptr) {
        if (!content.empty()) {
            std::memcpy(bytes, content.data(), content.size());
        }
        GlobalUnlock(block);
    }
    return block;
}

// A copy of a block's bytes; empty for a handle that cannot be locked.
inline Bytes blockBytes(HGLOBAL block) {
    Bytes content;
    if (const void *bytes = GlobalLock(block); bytes != nullptr) {
        content.resize(GlobalSize(block));
        if (!content.empty()) {
            std::memcpy(content.data(), bytes, content.size());
        }
        GlobalUnlock(block);
    }
    return content;
}

inline UINT lockCount(HGLOBAL block) {
    return GlobalFlags(block) & GMEM_LOCKCOUNT;
}

} // namespace vellum::test
