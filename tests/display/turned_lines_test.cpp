// Lines become columns, pixel by pixel, at every depth.
#include "display/turned_lines.h"

#include "display/packed_pixels.h"
#include "support/random_pictures.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using namespace vellum;
using vellum::test::pixelOf;
using Bytes = std::vector<BYTE>;

void expectTurned(LONG lines, LONG pixels, WORD bits, bool bottomFirst) {
    SCOPED_TRACE(std::to_string(bits) + " bits, " + std::to_string(pixels) + " pixels" +
                 (bottomFirst ? ", bottom first" : ""));
    const std::size_t stride = (static_cast<std::size_t>(pixels) * bits + 7) / 8 + 3;
    const Bytes stacked = vellum::test::randomBytes(stride * static_cast<std::size_t>(lines), bits);
    const auto rowBytes = static_cast<std::ptrdiff_t>(lines * bits / 8 + 2);
    Bytes rows(static_cast<std::size_t>(rowBytes * pixels), BYTE{0xA5});
    BYTE *first = rows.data() + (bottomFirst ? rowBytes * (pixels - 1) : 0);
    const std::ptrdiff_t step = bottomFirst ? -rowBytes : rowBytes;
    turnLines({stacked.data(), stride, lines, pixels, bits}, {first, step});
    for (LONG pixel = 0; pixel < pixels; ++pixel) {
        const BYTE *row = first + pixel * step;
        for (LONG line = 0; line < lines; ++line) {
            ASSERT_EQ(pixelOf(row, line, bits),
                      pixelOf(stacked.data() + static_cast<std::size_t>(line) * stride, pixel, bits))
                << "line " << line << ", pixel " << pixel;
        }
        ASSERT_EQ(row[rowBytes - 1], 0xA5) << "written behind row " << pixel;
        ASSERT_EQ(row[rowBytes - 2], 0xA5) << "written behind row " << pixel;
    }
}

TEST(TurnLines, MakesColumnsOfLines) {
    for (const WORD bits : vellum::test::kBitsPerPixel) {
        for (const LONG pixels : {1, 2, 7, 8, 9, 16, 31, 100}) {
            expectTurned(64, pixels, bits, false);
            expectTurned(64, pixels, bits, true);
            expectTurned(8, pixels, bits, false);
        }
    }
}

} // namespace
