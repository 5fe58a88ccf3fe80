// The depth that a device-dependent bitmap has as a DIB.
#pragma once

#include <windows.h>

namespace vellum {

// GetDIBits delivers every bitmap as 24 bits; the depths that a TIFF has too stay as they are.
inline WORD depthAsDib(const BITMAP &bitmap) {
    constexpr WORD kTrueColor = 24;
    const DWORD bits = DWORD{bitmap.bmPlanes} * bitmap.bmBitsPixel;
    return bits == 1 || bits == 4 || bits == 8 ? static_cast<WORD>(bits) : kTrueColor;
}

} // namespace vellum
