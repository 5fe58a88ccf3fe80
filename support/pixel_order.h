// TIFF stores pixels as red, green, blue; a DIB as blue, green, red.
#pragma once

#include <windows.h>

#include <utility>

namespace vellum {

constexpr DWORD kBytesPerPixel = 3;

// Exchanges the first and the third byte of every whole pixel of a line, in place.
inline void exchangeRedAndBlue(BYTE *line, DWORD bytes) {
    for (; bytes >= kBytesPerPixel; bytes -= kBytesPerPixel, line += kBytesPerPixel) {
        std::swap(line[0], line[2]);
    }
}

} // namespace vellum
