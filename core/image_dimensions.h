// A registered image in the terms of Windows: bitmap header, colour table and resolution.
#pragma once

#include "core/error.h"
#include "core/tiff_file.h"

namespace vellum {

constexpr double kMetersPerInch = 0.025400050800101603;

// The screen's dots per inch in one direction (LOGPIXELSX, LOGPIXELSY); 0 without a screen. A process keeps the
// resolution it started with, so the screen is asked once: every decode of an image without resolution tags would have
// to ask anew.
DWORD screenDotsPerInch(int capability);

// Describes the image as a bottom-up bitmap of 1, 4, 8 or 24 bits per pixel: Error::TagMissing without ImageWidth or
// ImageLength (an image that is not registered has neither), Error::BadColorFormat for other depths and for separate
// planes. A width of 0 passes.
Error describeImage(TiffHandle tiff, DWORD index, BITMAPINFOHEADER &header);

// Makes a block with the header and the colour table. Empty on failure, with the error set.
GlobalBlock makeColorTable(TiffHandle tiff, DWORD index);

// Dots per inch, vertical in the high and horizontal in the low word; 0 for an unknown unit.
DWORD dotsPerInch(TiffHandle tiff, DWORD index);

// Lines in a strip; 0 when the image has no length.
DWORD rowsPerStrip(TiffHandle tiff, DWORD index);

DWORD stripCount(TiffHandle tiff, DWORD index);

} // namespace vellum
