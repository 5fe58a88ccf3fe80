// Lines stood up as columns, for pictures that are turned by 90 or 270 degrees.
#pragma once

#include <windows.h>

#include <cstddef>

namespace vellum {

// Some lines, packed, one below the other. Bilevel ones: a multiple of eight.
struct StackedLines {
    const BYTE *bytes;
    std::size_t stride;
    LONG lines;
    LONG pixels; // of a line
    WORD bitsPerPixel;
};

// Where rows go: the first one, and the bytes from row to row.
struct RowPlaces {
    BYTE *first;
    std::ptrdiff_t step;
};

// Writes the lines as columns from left to right, the pixels of each from top to bottom: as many rows as a line has
// pixels.
void turnLines(const StackedLines &stacked, const RowPlaces &rows);

} // namespace vellum
