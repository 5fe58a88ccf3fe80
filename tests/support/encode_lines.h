// Encoding through the public functions for tests: a line function that supplies a picture's lines and notes how it was
// asked, and the owner of a TIFF that is being written.
#pragma once

#include "support/global_memory.h"
#include "support/paths.h"
#include "vellum32.h"

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <initializer_list>
#include <string>
#include <vector>

namespace vellum::test {

// What a line function supplies.
struct LineSource {
    std::size_t lineBytes = 0;
    Bytes data;         // line behind line; lines behind its end are zeros
    DWORD answer = 0;   // what the line function returns for line answerAt
    DWORD answerAt = 0; // the line itself is still supplied

    DWORD calls = 0;
    bool inOrder = true;

    static DWORD VELLUMAPI supply(BYTE *line, DWORD lineIndex, DWORD userValue) {
        auto &source = *reinterpret_cast<LineSource *>(static_cast<std::uintptr_t>(userValue));
        source.inOrder = source.inOrder && lineIndex == source.calls;
        ++source.calls;
        const std::size_t start = lineIndex * source.lineBytes;
        if (start + source.lineBytes <= source.data.size()) {
            std::memcpy(line, source.data.data() + start, source.lineBytes);
        } else {
            std::memset(line, 0, source.lineBytes);
        }
        return source.answer != 0 && lineIndex == source.answerAt ? source.answer : 0;
    }
    DWORD userValue() { return static_cast<DWORD>(reinterpret_cast<std::uintptr_t>(this)); }
};

// A tag with numbers of the type's own size.
struct TagValue {
    DWORD tag;
    DWORD type;
    std::vector<DWORD> numbers;
};

inline bool define(TiffHandle tiff, LONG index, const TagValue &tag) {
    Bytes bytes;
    for (const DWORD value : tag.numbers) {
        const std::size_t size = tag.type == 3 ? 2 : tag.type == 4 || tag.type == 5 || tag.type == 9 ? 4 : 1;
        for (std::size_t i = 0; i < size; ++i) {
            bytes.push_back(static_cast<BYTE>(value >> (8 * i)));
        }
    }
    const auto count = static_cast<DWORD>(tag.type == 5 ? tag.numbers.size() / 2 : tag.numbers.size());
    return DefineTiffImageInfoBuffer(tiff, static_cast<DWORD>(index), tag.tag, bytes.data(), tag.type, count) == 1;
}

// A TIFF that images are written to. One in memory starts as the 8 bytes of a header.
class WrittenTiff {
public:
    explicit WrittenTiff(const char *path, DWORD mode = T_CREAT) : handle_(OpenTiffFile(path, mode)) {}
    WrittenTiff() : block_(makeBlock({'I', 'I', 42, 0, 0, 0, 0, 0})), handle_(OpenTiffInMemory(block_, 8, T_CREAT)) {}
    WrittenTiff(const WrittenTiff &) = delete;
    WrittenTiff &operator=(const WrittenTiff &) = delete;
    ~WrittenTiff() {
        CloseTiffFile(handle_);
        GlobalFree(block_);
    }

    [[nodiscard]] TiffHandle get() const { return handle_; }

    // Defines an image with these tags. Result: its index, or -1.
    LONG define(const std::vector<TagValue> &tags) const {
        const LONG index = DefineTiffImage(handle_);
        for (const TagValue &tag : tags) {
            if (index < 0 || !test::define(handle_, index, tag)) {
                return -1;
            }
        }
        return index;
    }

    // Defines, encodes and drops an image. Result: that of EncodeTiffImage.
    DWORD add(const std::vector<TagValue> &tags, LineSource &source) const {
        const LONG index = define(tags);
        if (index < 0) {
            return 0;
        }
        const DWORD result =
            EncodeTiffImage(handle_, static_cast<DWORD>(index), source.userValue(), LineSource::supply);
        DropTiffImage(handle_, static_cast<DWORD>(index));
        return result;
    }

    // The bytes of one in memory, as they are now.
    [[nodiscard]] Bytes memory() const { return blockBytes(GetMemoryTiffHandle(handle_)); }

private:
    HGLOBAL block_ = nullptr;
    TiffHandle handle_;
};

// The tags of a picture, apart from its compression.
inline std::vector<TagValue> pictureTags(DWORD width, DWORD height, DWORD bits, DWORD rowsPerStrip,
                                         std::initializer_list<TagValue> more = {}) {
    std::vector<TagValue> tags = {{256, 4, {width}}, {257, 4, {height}}, {278, 4, {rowsPerStrip}}};
    if (bits == 24) {
        tags.push_back({258, 3, {8, 8, 8}});
        tags.push_back({277, 3, {3}});
        tags.push_back({262, 3, {2}});
    } else {
        tags.push_back({258, 3, {bits}});
        tags.push_back({262, 3, {1}});
    }
    tags.insert(tags.end(), more);
    return tags;
}

} // namespace vellum::test
