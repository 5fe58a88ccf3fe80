// Calls of the copying functions for tests, and small files to copy from.
#pragma once

#include "support/decode_lines.h"
#include "write/pages_to_copy.h"

namespace vellum::test {

inline constexpr Outcome kCopied = {1, VELLUM_OK};

// The error number is spoilt beforehand.
inline Outcome copyImage(TiffHandle source, DWORD index, TiffHandle destination) {
    SetTiffError(VELLUM_INDEX_OUT_OF_RANGE);
    const DWORD result = CopyTiffImage(source, index, destination);
    return {result, TiffError()};
}

inline Outcome copyInFile(const std::string &source, DWORD index, const std::string &destination, DWORD mode) {
    SetTiffError(VELLUM_EOFB_MISSING);
    const DWORD result = CopyTiffImageInFile(source.c_str(), index, destination.c_str(), mode);
    return {result, TiffError()};
}

inline Bytes onePage(std::uint16_t byteOrder, const std::vector<tiff::Entry> &entries,
                     const std::vector<tiff::Bytes> &strips) {
    tiff::Builder file(byteOrder);
    file.page(entries, strips);
    return file.bytes();
}

// A page whose strip tags are given as they are.
inline Bytes pageWith(const std::vector<tiff::Entry> &stripTags, std::size_t dataBytes = 100) {
    tiff::Builder file;
    file.append(tiff::Bytes(dataBytes, 7));
    std::vector<tiff::Entry> entries = plainEntries(1, 3);
    entries.insert(entries.end(), stripTags.begin(), stripTags.end());
    file.directory(entries);
    return file.bytes();
}

} // namespace vellum::test
