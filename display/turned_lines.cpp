// Turning of lines, depth by depth.
#include "display/turned_lines.h"

#include "support/pixel_order.h"

#include <cstdint>
#include <cstring>

namespace vellum {
namespace {

constexpr LONG kBitsAtOnce = 8;

// Eight rows of eight bits, the first row in the uppermost byte, become their columns.
constexpr std::uint64_t transposed(std::uint64_t block) {
    std::uint64_t change = (block ^ block >> 7) & 0x00AA00AA00AA00AA;
    block ^= change ^ change << 7;
    change = (block ^ block >> 14) & 0x0000CCCC0000CCCC;
    block ^= change ^ change << 14;
    change = (block ^ block >> 28) & 0x00000000F0F0F0F0;
    return block ^ change ^ change << 28;
}
static_assert(transposed(0x8000000000000000) == 0x8000000000000000);
static_assert(transposed(0xFF00000000000000) == 0x8080808080808080);
static_assert(transposed(0x0100000000000000) == 0x0000000000000080);

// Eight lines from `line` on give one byte of every row.
void turnEightLines(const BYTE *line, std::size_t stride, LONG pixels, BYTE *to, std::ptrdiff_t step) {
    for (LONG pixel = 0; pixel < pixels; pixel += kBitsAtOnce, ++line) {
        std::uint64_t block = 0;
        for (LONG i = 0; i < kBitsAtOnce; ++i) {
            block = block << 8 | line[static_cast<std::size_t>(i) * stride];
        }
        block = transposed(block);
        for (LONG i = 0; i < kBitsAtOnce && pixel + i < pixels; ++i, to += step) {
            *to = static_cast<BYTE>(block >> (56 - 8 * i));
        }
    }
}

void turnBits(const StackedLines &stacked, const RowPlaces &rows) {
    for (LONG line = 0; line < stacked.lines; line += kBitsAtOnce) {
        turnEightLines(stacked.bytes + static_cast<std::size_t>(line) * stacked.stride, stacked.stride, stacked.pixels,
                       rows.first + line / kBitsAtOnce, rows.step);
    }
}

void turnNibbles(const StackedLines &stacked, const RowPlaces &rows) {
    for (LONG i = 0; i < stacked.lines; ++i) {
        const BYTE *line = stacked.bytes + static_cast<std::size_t>(i) * stacked.stride;
        BYTE *to = rows.first + i / 2;
        for (LONG pixel = 0; pixel < stacked.pixels; ++pixel, to += rows.step) {
            const unsigned value = pixel % 2 == 0 ? line[pixel / 2] >> 4 : line[pixel / 2] & 0x0F;
            *to = static_cast<BYTE>(i % 2 == 0 ? value << 4 : (*to & 0xF0) | value);
        }
    }
}

template <std::size_t bytesPerPixel>
void turnBytes(const StackedLines &stacked, const RowPlaces &rows) {
    for (LONG i = 0; i < stacked.lines; ++i) {
        const BYTE *pixel = stacked.bytes + static_cast<std::size_t>(i) * stacked.stride;
        BYTE *to = rows.first + static_cast<std::size_t>(i) * bytesPerPixel;
        for (LONG left = stacked.pixels; left > 0; --left, pixel += bytesPerPixel, to += rows.step) {
            std::memcpy(to, pixel, bytesPerPixel);
        }
    }
}

} // namespace

void turnLines(const StackedLines &stacked, const RowPlaces &rows) {
    switch (stacked.bitsPerPixel) {
    case 1:
        return turnBits(stacked, rows);
    case 4:
        return turnNibbles(stacked, rows);
    case 8:
        return turnBytes<1>(stacked, rows);
    default:
        return turnBytes<kBytesPerPixel>(stacked, rows);
    }
}

} // namespace vellum
