// Small TIFF files around code that a test made: one image, its strips and the tags that its decoding needs.
#pragma once

#include "support/byte_coders.h"
#include "support/ccitt_writer.h"
#include "support/tiff_builder.h"
#include "vellum32.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace vellum::test {

// Every key that the library decodes itself.
inline constexpr DWORD kAllKeys[] = {VELLUM_KEY_NONE,
                                     VELLUM_KEY_MODIFIED_HUFFMAN,
                                     VELLUM_KEY_GROUP3_1D,
                                     VELLUM_KEY_GROUP3_1D_FILL,
                                     VELLUM_KEY_GROUP3_2D,
                                     VELLUM_KEY_GROUP3_2D_FILL,
                                     VELLUM_KEY_GROUP4,
                                     VELLUM_KEY_LZW,
                                     VELLUM_KEY_LZW_DIFFERENCING,
                                     VELLUM_KEY_PACKBITS};

struct CodedPage {
    DWORD width = 0;
    DWORD height = 0;
    DWORD bits = 1; // per sample
    DWORD samples = 1;
    DWORD key = VELLUM_KEY_GROUP4;
    DWORD rowsPerStrip = 0; // 0: no such tag
    DWORD fillOrder = 1;
};

// The tags of a page, ascending; StripOffsets and StripByteCounts are left to the builder.
inline std::vector<tiff::Entry> entriesOf(const CodedPage &page) {
    const DWORD compression = page.key & 0xFFFF;
    const DWORD option = page.key >> 16;
    std::vector<tiff::Entry> entries = {
        tiff::longs(256, {page.width}),
        tiff::longs(257, {page.height}),
        tiff::shorts(258, std::vector<std::uint32_t>(page.samples, page.bits)),
        tiff::shorts(259, {compression}),
        tiff::shorts(262, {page.samples == 3 ? 2U : 1U}),
    };
    if (page.fillOrder != 1) {
        entries.push_back(tiff::shorts(266, {page.fillOrder}));
    }
    entries.push_back(tiff::shorts(277, {page.samples}));
    if (page.rowsPerStrip != 0) {
        entries.push_back(tiff::longs(278, {page.rowsPerStrip}));
    }
    if (compression == 3) {
        entries.push_back(tiff::longs(292, {option}));
    } else if (compression == 5) {
        entries.push_back(tiff::shorts(317, {option}));
    }
    return entries;
}

// The strips' code first, the directory behind it.
inline std::vector<BYTE> codedTiff(const CodedPage &page, const std::vector<std::vector<BYTE>> &strips,
                                   std::uint16_t byteOrder = tiff::kII) {
    tiff::Builder file(byteOrder);
    file.page(entriesOf(page), strips);
    return file.bytes();
}

// The directory first and the one strip's code at the very end, so that cutting the file cuts the code.
inline std::vector<BYTE> codedTiffCodeLast(const CodedPage &page, const std::vector<BYTE> &code) {
    const auto directoryFor = [&page](std::size_t codeOffset) {
        std::vector<tiff::Entry> entries = entriesOf(page);
        auto at = entries.begin();
        while (at != entries.end() && at->tag < 273) {
            ++at;
        }
        entries.insert(at, tiff::longs(273, {static_cast<std::uint32_t>(codeOffset)}));
        tiff::Builder file;
        file.directory(entries);
        return file.bytes();
    };
    std::vector<BYTE> bytes = directoryFor(directoryFor(0).size());
    bytes.insert(bytes.end(), code.begin(), code.end());
    return bytes;
}

// Packed rows as rows of pixels.
inline Rows unpackRows(const std::vector<BYTE> &packed, DWORD width) {
    const std::size_t lineBytes = (width + 7) / 8;
    Rows rows;
    for (std::size_t at = 0; at + lineBytes <= packed.size(); at += lineBytes) {
        Row row;
        for (std::size_t x = 0; x < width; ++x) {
            row.push_back((packed[at + x / 8] >> (7 - x % 8) & 1) != 0);
        }
        rows.push_back(row);
    }
    return rows;
}

inline std::vector<BYTE> encodeBytes(const CodedPage &page, const std::vector<BYTE> &packed) {
    const std::size_t lineBytes = (page.width * page.bits * page.samples + 7) / 8;
    std::vector<BYTE> out;
    for (std::size_t at = 0; at + lineBytes <= packed.size(); at += lineBytes) {
        const auto begin = packed.begin() + static_cast<std::ptrdiff_t>(at);
        std::vector<BYTE> row(begin, begin + static_cast<std::ptrdiff_t>(lineBytes));
        if (page.key == VELLUM_KEY_LZW_DIFFERENCING && page.bits == 8) {
            row = differences(row, page.samples);
        } else if (page.key == VELLUM_KEY_LZW_DIFFERENCING && page.bits == 4) {
            row = nibbleDifferences(row);
        } else if (page.key == VELLUM_KEY_PACKBITS) {
            row = packBits(row);
        }
        out.insert(out.end(), row.begin(), row.end());
    }
    return (page.key & 0xFFFF) == 5 ? encodeLzw(out) : out;
}

// The code of one strip of packed rows, whatever the page's key.
inline std::vector<BYTE> encodeStrip(const CodedPage &page, const std::vector<BYTE> &packed) {
    std::vector<BYTE> code;
    switch (page.key) {
    case VELLUM_KEY_MODIFIED_HUFFMAN:
        code = encodeModifiedHuffman(unpackRows(packed, page.width));
        break;
    case VELLUM_KEY_GROUP3_1D:
    case VELLUM_KEY_GROUP3_1D_FILL:
        code = encodeGroup3(unpackRows(packed, page.width), {.fill = page.key != VELLUM_KEY_GROUP3_1D});
        break;
    case VELLUM_KEY_GROUP3_2D:
    case VELLUM_KEY_GROUP3_2D_FILL:
        code =
            encodeGroup3TwoDimensional(unpackRows(packed, page.width), 4, {.fill = page.key != VELLUM_KEY_GROUP3_2D});
        break;
    case VELLUM_KEY_GROUP4:
        code = encodeGroup4(unpackRows(packed, page.width));
        break;
    default:
        code = encodeBytes(page, packed);
        break;
    }
    return page.fillOrder == 2 ? reverseBits(code) : code;
}

// Cuts packed rows into strips and encodes each.
inline std::vector<std::vector<BYTE>> encodeStrips(const CodedPage &page, const std::vector<BYTE> &packed) {
    const std::size_t lineBytes = (page.width * page.bits * page.samples + 7) / 8;
    const std::size_t stripBytes = lineBytes * (page.rowsPerStrip == 0 ? page.height : page.rowsPerStrip);
    std::vector<std::vector<BYTE>> strips;
    for (std::size_t at = 0; at < packed.size(); at += stripBytes) {
        const std::size_t end = at + stripBytes < packed.size() ? at + stripBytes : packed.size();
        const auto begin = packed.begin();
        strips.push_back(
            encodeStrip(page, {begin + static_cast<std::ptrdiff_t>(at), begin + static_cast<std::ptrdiff_t>(end)}));
    }
    return strips;
}

inline const char *keyName(DWORD key) {
    switch (key) {
    case VELLUM_KEY_NONE:
        return "uncompressed";
    case VELLUM_KEY_MODIFIED_HUFFMAN:
        return "modified Huffman";
    case VELLUM_KEY_GROUP3_1D:
        return "Group 3 1D";
    case VELLUM_KEY_GROUP3_1D_FILL:
        return "Group 3 1D with fill";
    case VELLUM_KEY_GROUP3_2D:
        return "Group 3 2D";
    case VELLUM_KEY_GROUP3_2D_FILL:
        return "Group 3 2D with fill";
    case VELLUM_KEY_GROUP4:
        return "Group 4";
    case VELLUM_KEY_LZW:
        return "LZW";
    case VELLUM_KEY_LZW_DIFFERENCING:
        return "LZW with differencing";
    case VELLUM_KEY_PACKBITS:
        return "PackBits";
    default:
        return "unknown";
    }
}

} // namespace vellum::test
