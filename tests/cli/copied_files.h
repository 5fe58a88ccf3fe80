// The files that the tests of the copying commands work on.
#pragma once

#include "cli/small_tiffs.h"
#include "support/paths.h"

namespace vellum::test {

// Pages of 8 x 1 pixels, of one byte each.
inline Bytes pagesOf(const Bytes &pixels, unsigned byteOrder = tiff::kII) {
    tiff::Builder file(static_cast<std::uint16_t>(byteOrder));
    for (const BYTE pixel : pixels) {
        addPage(file, {pixel}, 1, 1);
    }
    return file.bytes();
}

// A page with tags of many types, values inside and outside their entries, and three strips.
inline Bytes richPage(unsigned byteOrder) {
    tiff::Builder file(static_cast<std::uint16_t>(byteOrder));
    file.page({tiff::shorts(256, {8}), tiff::shorts(257, {5}), tiff::shorts(258, {1}), tiff::shorts(259, {1}),
               tiff::shorts(262, {1}), tiff::ascii(270, "a rich page"), tiff::shorts(277, {1}), tiff::shorts(278, {2}),
               tiff::rationals(282, {300, 1}), tiff::rationals(283, {1181, 10}), tiff::shorts(297, {1, 2}),
               tiff::ascii(315, "X"), tiff::typed(33550, 12, 2, 4, {1, 2, 3, 4}),
               tiff::typed(65000, 8, 3, 2, {1, 2, 3}), tiff::typed(65001, 10, 1, 4, {7, 8}),
               tiff::byteValues(65002, {1, 2, 3})},
              {{0x11, 0x22}, {0x33, 0x44}, {0x55}});
    return file.bytes();
}

// Two pages, and a link behind them that leads out of the file.
inline Bytes brokenFile() {
    tiff::Builder file;
    addPage(file, {0x11}, 1, 1);
    addPage(file, {0x22}, 1, 1);
    file.linkTo(0x00FFFFFF);
    return file.bytes();
}

// Two pages; the second one's strip is said to be longer than the file.
inline Bytes fileWithDamagedPage() {
    tiff::Builder file;
    addPage(file, {0x11}, 1, 1);
    file.directory({tiff::shorts(256, {8}), tiff::shorts(257, {1}), tiff::shorts(258, {1}), tiff::shorts(259, {1}),
                    tiff::shorts(262, {1}), tiff::longs(273, {8}), tiff::shorts(277, {1}), tiff::longs(279, {5000})});
    return file.bytes();
}

inline const char *const kBrokenChain =
    "the chain of pages breaks behind page 2: General I/O error in reading or writting.";

} // namespace vellum::test
