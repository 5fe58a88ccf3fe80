// The several roundings of a row of pixels to bytes, each written once. Widths come from files and callers, so all of
// them are computed in 64 bits.
#pragma once

#include "support/checked_size.h"

namespace vellum {

// A row of packed samples as TIFF stores it and as the codecs deliver it: rounded up to whole bytes.
constexpr Size lineBytes(DWORD widthPixels, DWORD bitsPerPixel) {
    return (std::uint64_t{widthPixels} * bitsPerPixel + 7) / 8;
}

// A row of a DIB: rounded up to 32 bits.
constexpr Size dibRowBytes(DWORD widthPixels, DWORD bitsPerPixel) {
    return (std::uint64_t{widthPixels} * bitsPerPixel + 31) / 32 * 4;
}

// A row of a device-dependent bitmap: rounded up to 16 bits.
constexpr Size wordRowBytes(DWORD widthPixels, DWORD bitsPerPixel) {
    return ((std::uint64_t{widthPixels} * bitsPerPixel + 15) / 8) & ~std::uint64_t{1};
}

} // namespace vellum
