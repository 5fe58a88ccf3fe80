// The screen line functions: what they share, and which one an image of a TIFF file needs.
#pragma once

#include "display/screen_band.h"

namespace vellum {

// Gives a line to the picture that is being painted, if there is one. Result: 0.
DWORD showLine(Rotation rotation, ScreenDepth depth, const BYTE *line, LONG row, const ScreenLineContext *context);

LineFunc screenLineFunction(Rotation rotation, WORD bitsPerPixel);

} // namespace vellum
