// Pixels of packed lines of 1, 4, 8 or 24 bits per pixel, read one by one.
#pragma once

#include <windows.h>

#include <cstddef>

namespace vellum::test {

inline constexpr WORD kBitsPerPixel[] = {1, 4, 8, 24};

// Of three bytes, the first is the lowest.
inline unsigned pixelOf(const BYTE *line, LONG index, WORD bits) {
    const std::size_t bit = static_cast<std::size_t>(index) * bits;
    if (bits < 8) {
        return unsigned{line[bit / 8]} >> (8 - bits - bit % 8) & ((1U << bits) - 1);
    }
    unsigned value = 0;
    for (std::size_t byte = bits / 8U; byte > 0; --byte) {
        value = value << 8 | line[bit / 8 + byte - 1];
    }
    return value;
}

} // namespace vellum::test
