// Tag values of a registered image through the public queries, for tests.
#pragma once

#include "support/global_memory.h"
#include "vellum32.h"

#include <cstring>
#include <vector>

namespace vellum::test {

struct StoredTag {
    Bytes bytes;
    DWORD type = 0;
    DWORD count = 0;
    bool operator==(const StoredTag &) const = default;
};

// Empty when the tag is not there.
inline StoredTag storedTag(TiffHandle tiff, DWORD index, LONG tag) {
    StoredTag stored;
    HGLOBAL block = nullptr;
    if (GetTiffImageInfoBuffer(tiff, index, tag, &block, &stored.type, &stored.count) != 0) {
        stored.bytes = blockBytes(block);
        GlobalFree(block);
    }
    return stored;
}

// The values of a LONG tag; with tag 0 the numbers of the image's tags.
inline std::vector<DWORD> longValues(TiffHandle tiff, DWORD index, LONG tag) {
    const StoredTag stored = storedTag(tiff, index, tag);
    std::vector<DWORD> values;
    for (std::size_t at = 0; stored.type == 4 && values.size() < stored.count; at += sizeof(DWORD)) {
        DWORD value = 0;
        std::memcpy(&value, stored.bytes.data() + at, sizeof value);
        values.push_back(value);
    }
    return values;
}

// The first value of a BYTE, SHORT or LONG tag; 0xDEAD when the tag is not there.
inline DWORD firstNumber(TiffHandle tiff, DWORD index, LONG tag) {
    DWORD value = 0xDEAD;
    GetTiffImageInfo(tiff, index, tag, &value);
    return value;
}

} // namespace vellum::test
