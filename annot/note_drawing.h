// The text of a note on a device context: measured, and drawn line by line. Windows only.
#pragma once

#include "annot/note_placement.h"

#include <string_view>

namespace vellum {

// The width of the widest line and the heights of all. A carriage return ends a line, other bytes below 32 are left
// out, and an empty line is as large as "WW". An empty text is one empty line.
SIZE measureNoteText(HDC dc, std::string_view text);

// Draws the lines from the upper left corner of a rectangle on, what lies outside is cut off. Carriage returns and line
// feeds end a line; empty lines are left out.
void drawNoteLines(HDC dc, std::string_view text, std::size_t mostCharacters, const RECT &area);

// Draws a note over an image, within its rectangle; an opaque one on a background. False when there is nothing to draw.
bool drawNote(HDC dc, const NoteRecord &note, const NoteCanvas &canvas, const NoteScale &sizeScale);

} // namespace vellum
