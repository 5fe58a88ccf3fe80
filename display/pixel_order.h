// TIFF stores pixels as red, green, blue; a DIB as blue, green, red.
#pragma once

#include "vellum32.h"

#include <utility>

namespace vellum {

constexpr DWORD kBytesPerPixel = 3;

// Exchanges the first and the third byte of every whole pixel of a line, in place.
void exchangeRedAndBlue(BYTE *line, DWORD bytes);

} // namespace vellum
