// Files with pages of many kinds for the tests of copying and rebuilding.
#pragma once

#include "support/coded_tiff.h"
#include "support/paths.h"
#include "support/random_pictures.h"
#include "support/tiff_builder.h"

#include <vector>

namespace vellum::test {

inline std::vector<tiff::Bytes> someStrips(std::size_t count, std::size_t bytes) {
    std::vector<tiff::Bytes> strips;
    for (std::size_t i = 0; i < count; ++i) {
        tiff::Bytes strip(bytes + i);
        for (std::size_t b = 0; b < strip.size(); ++b) {
            strip[b] = static_cast<std::uint8_t>(17 * i + b * b + 1);
        }
        strips.push_back(std::move(strip));
    }
    return strips;
}

// The tags of a bilevel page with so many strips of one line.
inline std::vector<tiff::Entry> plainEntries(std::uint32_t strips, std::uint32_t lineBytes,
                                             std::vector<tiff::Entry> more = {}) {
    std::vector<tiff::Entry> entries = {tiff::longs(256, {lineBytes * 8}),
                                        tiff::longs(257, {strips}),
                                        tiff::shorts(258, {1}),
                                        tiff::shorts(259, {1}),
                                        tiff::shorts(262, {1}),
                                        tiff::longs(278, {1})};
    entries.insert(entries.end(), more.begin(), more.end());
    return entries;
}

// Several pages: one strip, many strips of several sizes, values of every type in and outside the entries, tags twice
// and out of order, and odd counts.
inline Bytes manyPages(std::uint16_t byteOrder) {
    tiff::Builder file(byteOrder);
    file.page(plainEntries(1, 3), {{1, 2, 3}});
    file.page(plainEntries(40, 100,
                           {tiff::rationals(282, {300, 1}), tiff::rationals(283, {0xFFFFFFFE, 7}),
                            tiff::ascii(305, "a text that does not fit"), tiff::shorts(320, {1, 2, 3, 4, 5})}),
              someStrips(40, 100));
    file.append({9}); // an odd place
    file.page(plainEntries(2, 7,
                           {tiff::typed(65000, 7, 5, 1, {1, 2, 3, 4, 5}), tiff::typed(65001, 99, 3, 1, {7, 8, 9}),
                            tiff::typed(65002, 6, 1, 1, {200}), tiff::typed(65003, 9, 2, 4, {0xFFFFFFFF, 5}),
                            tiff::shorts(65004, {}), tiff::typed(65005, 8, 3, 2, {0xFFFE, 2, 0x1234}),
                            tiff::typed(65006, 8, 2, 2, {0xFFFE, 0x102}), tiff::typed(65007, 10, 1, 4, {7, 0xFFFFFFFF}),
                            tiff::typed(65008, 11, 1, 4, {0x3F800000}),
                            tiff::typed(65009, 11, 3, 4, {0x3F800000, 0x40490FDB, 1}), tiff::ascii(65010, "two"),
                            tiff::ascii(65010, "of the same")}),
              someStrips(2, 7));
    file.page(plainEntries(3, 5, {tiff::ascii(310, "late"), tiff::shorts(254, {1}), tiff::ascii(306, "out of order")}),
              someStrips(3, 5));
    return file.bytes();
}

// Sets of a page coded by an encoder of the tests' own.
inline Bytes codedPage(DWORD key, std::uint16_t byteOrder, DWORD width = 75, DWORD height = 20) {
    CodedPage page;
    page.width = width;
    page.height = height;
    page.key = key;
    page.rowsPerStrip = 6;
    Random random(key + width);
    std::vector<BYTE> packed;
    for (DWORD y = 0; y < height; ++y) {
        const Row row = randomRow(random, width, 9);
        std::vector<BYTE> line((width + 7) / 8);
        for (std::size_t x = 0; x < row.size(); ++x) {
            if (row[x]) {
                line[x / 8] = static_cast<BYTE>(line[x / 8] | 0x80 >> (x % 8));
            }
        }
        packed.insert(packed.end(), line.begin(), line.end());
    }
    return codedTiff(page, encodeStrips(page, packed), byteOrder);
}

} // namespace vellum::test
