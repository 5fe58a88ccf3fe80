// TIFFs of compression 6, which the companion module decodes, and line-by-line modules for tests to stand in for it.
#pragma once

#include "support/tiff_builder.h"
#include "vellum32.h"

#include <vector>

namespace vellum::test {

inline constexpr char kCompanionName[] = "DCTLIB32.DLL";
inline constexpr char kCompanionEntry[] = "JPEGDecoder";

using CompanionDecoder = DWORD(VELLUMAPI *)(CodecState *);

inline FARPROC asEntry(CompanionDecoder decoder) {
    return reinterpret_cast<FARPROC>(reinterpret_cast<void *>(decoder));
}

// An image of 8-bit grey (samples 1) or 24-bit colour (3) in tiles.
struct JpegPage {
    DWORD width = 20;
    DWORD height = 10;
    DWORD samples = 1;
    DWORD process = 1;
    std::uint32_t tileWidth = 16;
    std::uint32_t tileLength = 4;
    std::vector<std::uint32_t> tileOffsets = {8, 12, 16, 20, 24, 28};
    std::vector<std::uint32_t> left = {}; // numbers of tags to leave out
    std::vector<tiff::Entry> more = {};   // tags above 530
};

// The code of the tiles is the 64 bytes 0, 1, 2 ... behind the header, from offset 8 on.
inline tiff::Bytes jpegTiff(const JpegPage &page) {
    std::vector<tiff::Entry> entries = {
        tiff::longs(256, {page.width}),
        tiff::longs(257, {page.height}),
        tiff::shorts(258, std::vector<std::uint32_t>(page.samples, 8)),
        tiff::shorts(259, {6}),
        tiff::shorts(262, {page.samples == 3 ? 6U : 1U}),
        tiff::shorts(277, {page.samples}),
        tiff::shorts(284, {1}),
        tiff::longs(322, {page.tileWidth}),
        tiff::longs(323, {page.tileLength}),
        tiff::longs(324, page.tileOffsets),
        tiff::longs(325, std::vector<std::uint32_t>(page.tileOffsets.size(), 4)),
        tiff::shorts(512, {page.process}),
        tiff::shorts(515, {7}),
        tiff::longs(519, {1900, 1901, 1902}),
        tiff::longs(520, {2000, 2001}),
        tiff::longs(521, {2100}),
    };
    if (page.samples == 3) {
        entries.push_back(tiff::shorts(530, {2, 1}));
    }
    entries.insert(entries.end(), page.more.begin(), page.more.end());
    for (const std::uint32_t tag : page.left) {
        std::erase_if(entries, [tag](const tiff::Entry &entry) { return entry.tag == tag; });
    }
    tiff::Builder file;
    tiff::Bytes code(64);
    for (std::size_t i = 0; i < code.size(); ++i) {
        code[i] = static_cast<std::uint8_t>(i);
    }
    file.append(code);
    file.directory(entries);
    return file.bytes();
}

} // namespace vellum::test
