// What `vellum info` tells of a page.
#pragma once

#include "tools/tiff_document.h"

#include <optional>
#include <string>

namespace tool {

struct PageInfo {
    explicit PageInfo(const RegisteredPage &page);

    std::optional<DWORD> width;  // pixels
    std::optional<DWORD> height; // lines; an ImageLength of 0 is read as 1000
    DWORD bitsPerSample = 1;
    DWORD samplesPerPixel = 1;
    std::optional<DWORD> photometric;
    DWORD compression = 1;
    DWORD compressionOption = 0; // T4Options, T6Options or Predictor
    DWORD fillOrder = 1;
    DWORD subfileType = 0;
    DWORD stripCount = 0;
    DWORD rowsPerStrip = 0;
    std::optional<DWORD> tileWidth;
    std::optional<DWORD> tileLength;

    // The resolution as the tags give it; nothing when they are absent.
    struct Resolution {
        double x;
        double y;
        DWORD unit; // 1 none, 2 inch, 3 centimetre
    };
    std::optional<Resolution> resolution;
    // Dots per inch as the library works them out; nothing without resolution tags, or for another unit than the inch.
    struct Dpi {
        DWORD x;
        DWORD y;
    };
    std::optional<Dpi> dpi;

    [[nodiscard]] std::string pixelsText() const;
    [[nodiscard]] std::string bitsText() const;
    [[nodiscard]] std::string photometricText() const;
    [[nodiscard]] std::string compressionText() const;
    [[nodiscard]] std::string stripsText() const;
    [[nodiscard]] std::string resolutionText() const;
};

} // namespace tool
