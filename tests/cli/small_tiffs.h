// The small files that the tests of vellum.exe work on.
#pragma once

#include "support/tiff_builder.h"

namespace vellum::test {

// 8 x 2 pixels, uncompressed, 300 dpi; the lines are 0xA5 and 0x0F, 1 means white.
inline tiff::Bytes smallPage(unsigned byteOrder = tiff::kII) {
    tiff::Builder file(static_cast<std::uint16_t>(byteOrder));
    file.page({tiff::shorts(256, {8}), tiff::shorts(257, {2}), tiff::shorts(258, {1}), tiff::shorts(259, {1}),
               tiff::shorts(262, {1}), tiff::shorts(277, {1}), tiff::shorts(278, {2}), tiff::rationals(282, {300, 1}),
               tiff::rationals(283, {300, 1}), tiff::shorts(296, {2})},
              {{0xA5, 0x0F}});
    return file.bytes();
}

// Adds a page as above with the given tags changed or added.
inline void addPage(tiff::Builder &file, const tiff::Bytes &data, unsigned height, unsigned compression) {
    file.page({tiff::shorts(256, {8}), tiff::longs(257, {height}), tiff::shorts(258, {1}),
               tiff::shorts(259, {compression}), tiff::shorts(262, {1}), tiff::shorts(277, {1})},
              {data});
}

// Three pages of one line, 0x11, 0x22 and 0x33; the second one has a compression that nobody knows.
inline tiff::Bytes threePagesWithABadOne() {
    tiff::Builder file;
    addPage(file, {0x11}, 1, 1);
    addPage(file, {0x22}, 1, 50000);
    addPage(file, {0x33}, 1, 1);
    return file.bytes();
}

} // namespace vellum::test
