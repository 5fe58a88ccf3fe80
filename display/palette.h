// Logical palettes for packed DIBs.
#pragma once

#include "support/gdi_objects.h"

#include <cstddef>

namespace vellum {

// Makes the palette of a packed DIB: its colour table, or for 24 bits per pixel a fixed colour cube. Empty when the
// header is not one or the DIB needs no palette. `bytes` is what there is of header and colour table.
OwnedPalette makePalette(const BITMAPINFOHEADER *header, std::size_t bytes);

// The same, of a block.
OwnedPalette makePalette(HGLOBAL dib);

} // namespace vellum
