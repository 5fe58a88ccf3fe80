// Fonts and lines of text on a device context, for pages, overlays and notes.
#pragma once

#include "support/gdi_objects.h"

#include <cstdint>
#include <string_view>

namespace vellum {

using OwnedFont = GdiObject<HFONT>;

// Makes a font so many points high, to draw on a picture. A resolution out of a file may be any: letters, and a width
// that the font asks for, do not get much larger than the picture, for the system keeps all pixels of all that are
// drawn.
void setHeight(LOGFONTA &font, DWORD points, DWORD dotsPerInch, const BITMAP &picture);

// Copies a face name as far as a font's record holds it. It ends at a zero or with the characters that there are.
void setFace(LOGFONTA &font, std::string_view face);

// A line's height and the space between lines, in the device context's font.
LONG lineHeightOf(HDC dc);

// Draws a line of any length with its upper left corner there; parts out of a bitmap's reach are left out.
//   clip  where it may be drawn; null for everywhere
void drawTextLine(HDC dc, std::int64_t x, std::int64_t y, std::string_view text, const RECT *clip = nullptr);

} // namespace vellum
