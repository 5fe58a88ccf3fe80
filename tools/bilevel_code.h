// Bilevel pictures for the formats that know nothing else: their lines as the library's encoders take them, and their
// resolution as one number.
#pragma once

#include "tools/picture.h"
#include "vellum32.h"

namespace tool {

// 1 bit per pixel, black and white.
bool isBilevel(const Picture &picture);

// 0 for a resolution that is not told.
double dotsPerInch(const Picture &picture, DWORD tag);

// An encode of a bilevel picture: the user value of supplyBilevelLine is its address.
struct BilevelRun {
    const Picture &picture;
    const std::string &progressLabel;

    DWORD userValue() { return static_cast<DWORD>(reinterpret_cast<DWORD_PTR>(this)); }
};

// A LineFunc that supplies the line with 1 for black, whatever 0 means in the picture, and shows the progress.
DWORD VELLUMAPI supplyBilevelLine(BYTE *line, DWORD index, DWORD userValue);

} // namespace tool
