// The picture of a CALS file: its size as the header has it, its description as a bitmap, and the way from its code to
// lines.
#pragma once

#include "core/error.h"
#include "support/checked_size.h"
#include "vellum32.h"

#include <optional>

namespace vellum {

// A header of 1 bit per pixel and its colours: white and black.
struct BilevelInfo {
    BITMAPINFOHEADER header;
    RGBQUAD colours[2];
};
static_assert(sizeof(BilevelInfo) == 48);

struct CalsPicture {
    DWORD width = 0;
    DWORD height = 0;
    LONG dotsPerInch = 0; // 0: not known

    [[nodiscard]] Size stride() const;     // of a row of a DIB
    [[nodiscard]] Size imageBytes() const; // of all rows
    [[nodiscard]] DWORD bytesPerLine() const;
    [[nodiscard]] bool isWiderThanDrawings() const;
    // Whether it is larger than drawings are, so that the file must be able to fill it.
    [[nodiscard]] bool needsProof() const;
    [[nodiscard]] BilevelInfo describe() const;
};

// A header may claim any number of pixels. Error 1 for numbers that no picture has.
Error measureCals(const CalsInfo &info, CalsPicture &picture);

// The bytes behind a file's header; nothing when it cannot be opened.
std::optional<DWORD> calsCodeBytes(const char *path);

// A small file may claim a huge picture: error 1 when the file cannot fill it, so that it gets neither memory nor time.
Error checkCalsWorth(const char *path, const CalsPicture &picture);

// Decodes the picture of a CALS file. Error 6 when the file cannot be opened, 5 when it ends with its header.
Error decodeCals(const char *path, const CalsPicture &picture, LineFunc lineFunction, DWORD userValue);

} // namespace vellum
