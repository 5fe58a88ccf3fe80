// A directory in memory, in the form that it has in a file: the entries in ascending order of tags, and the values that
// do not fit into their fields, in the same order. Nothing is padded, so a directory may begin at an odd offset.
#pragma once

#include "core/image_directory.h"

namespace vellum {

// Nothing can be found again behind this.
constexpr DWORD kLastOffset = 0x7FFFFFFF;

enum class Arrangement {
    ValuesFirst,    // the directory behind its values
    DirectoryFirst, // the directory, and its values behind the link
};

class DirectoryLayout {
public:
    DirectoryLayout(const ImageDirectory &directory, WORD byteOrder, Arrangement arrangement)
        : directory_(directory), byteOrder_(byteOrder), arrangement_(arrangement) {}

    // Counts what the directory takes with its values. Errors: 1, 6 when that is more than a file can hold.
    Error measure();

    // Lays the directory out for a place in the stream. Errors: 1, 6.
    Error layOut(DWORD start);

    // At the stream's position.
    [[nodiscard]] Error write(StreamHandle stream) const;

    // Directory and values, and how far behind their start the directory and its link field are; once it is measured.
    [[nodiscard]] DWORD bytes() const { return bytes_; }
    [[nodiscard]] DWORD directoryAt() const { return directoryAt_; }
    [[nodiscard]] DWORD linkAt() const { return directoryAt_ + entryBytes() - sizeof(DWORD); }

private:
    [[nodiscard]] DWORD entryBytes() const;
    Error sortRecords();
    template <class Number>
    void put(BYTE *to, Number number) const;
    void putValues(BYTE *to, const TagRecord &record, DWORD bytes) const;
    BYTE *addEntry(BYTE *entry, const TagRecord &record, BYTE *outside, DWORD outsideOffset) const;

    const ImageDirectory &directory_;
    WORD byteOrder_;
    Arrangement arrangement_;
    DWORD count_ = 0;
    DWORD bytes_ = 0;
    DWORD directoryAt_ = 0;
    DWORD valuesAt_ = 0;
    GlobalBlock keys_;
    GlobalBlock block_;
};

} // namespace vellum
