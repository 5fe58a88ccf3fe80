// Pixels of every depth that packed DIBs have.
#include "annot/stamp.h"

#include <algorithm>

namespace vellum {
namespace {

constexpr DWORD distance(const RGBQUAD &colour, BYTE level) {
    const auto square = [level](BYTE part) { return (part - level) * (part - level); };
    return static_cast<DWORD>(square(colour.rgbRed) + square(colour.rgbGreen) + square(colour.rgbBlue));
}

// The pixel value for the grey of a level, of DIBs with a colour table: the first of the nearest colours.
DWORD nearestIndex(const DibView &dib, BYTE level) {
    const RGBQUAD *end = dib.colours() + dib.colourCount();
    const RGBQUAD *nearest = std::min_element(dib.colours(), end, [level](const RGBQUAD &a, const RGBQUAD &b) {
        return distance(a, level) < distance(b, level);
    });
    return static_cast<DWORD>(nearest - dib.colours());
}

DWORD blackOf(const DibView &dib) {
    return dib.bitsPerPixel() <= 8 ? nearestIndex(dib, 0) : 0;
}

DWORD whiteOf(const DibView &dib) {
    switch (dib.bitsPerPixel()) {
    case 16:
        return 0x7FFF;
    case 24:
    case 32:
        return 0xFFFFFF;
    default:
        return nearestIndex(dib, 255);
    }
}

void putPixel(BYTE *row, std::size_t pixel, WORD bits, DWORD value) {
    if (bits >= 8) {
        const std::size_t bytes = bits / 8;
        std::memcpy(row + pixel * bytes, &value, bytes);
        return;
    }
    const std::size_t bit = pixel * bits;
    const unsigned shift = 8 - bits - static_cast<unsigned>(bit % 8);
    const unsigned mask = ((1u << bits) - 1) << shift;
    row[bit / 8] = static_cast<BYTE>((row[bit / 8] & ~mask) | (value << shift & mask));
}

BYTE *rowOf(const DibView &dib, LONG fromTop) {
    return dib.bits() + (dib.height() - 1 - static_cast<std::size_t>(fromTop)) * dib.stride();
}

// Pixels of the stamp, the end not among them, that lie on a DIB that is so long.
struct Covered {
    LONG first;
    LONG end;
};
Covered covered(LONG at, LONG stampLength, LONG dibLength) {
    return {static_cast<LONG>(std::clamp<std::int64_t>(-std::int64_t{at}, 0, stampLength)),
            static_cast<LONG>(std::clamp<std::int64_t>(std::int64_t{dibLength} - at, 0, stampLength))};
}

} // namespace

void stamp(const DibView &dib, LONG left, LONG top, const DibView &bilevel, Ink ink) {
    if (!dib || !bilevel || bilevel.bitsPerPixel() != 1) {
        return;
    }
    const DWORD values[] = {blackOf(dib), whiteOf(dib)};
    const Covered columns = covered(left, bilevel.header().biWidth, dib.header().biWidth);
    const Covered rows = covered(top, bilevel.header().biHeight, dib.header().biHeight);
    for (LONG y = rows.first; y < rows.end; ++y) {
        const BYTE *from = rowOf(bilevel, y);
        BYTE *to = rowOf(dib, top + y);
        for (LONG x = columns.first; x < columns.end; ++x) {
            const bool white = (from[x / 8] >> (7 - x % 8) & 1) != 0;
            if (!white || ink == Ink::BlackAndWhite) {
                putPixel(to, static_cast<std::size_t>(left + x), dib.bitsPerPixel(), values[white ? 1 : 0]);
            }
        }
    }
}

} // namespace vellum
