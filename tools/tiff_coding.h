// How pages are to be coded in a TIFF: the compressions by the names that the command line gives them, which one fits a
// picture, and which ones do not.
#pragma once

#include "tools/picture.h"

#include <optional>
#include <string>
#include <string_view>

namespace tool {

struct Compression {
    std::string_view name; // as on the command line
    WORD number;           // the Compression tag
    DWORD optionTag = 0;   // T4Options or Predictor, or none
    DWORD option = 0;

    [[nodiscard]] bool isCcitt() const { return number >= 2 && number <= 4; }
    [[nodiscard]] bool isJpeg() const { return number == 6; }
    [[nodiscard]] bool isTwoDimensionalGroup3() const { return number == 3 && option == 1; }
};

// Nothing when there is none of that name.
const Compression *findCompression(std::string_view name);
// "none, packbits, lzw, ..."
std::string compressionNames();

struct TiffCoding {
    const Compression *compression = nullptr; // none: by the picture
    std::optional<DWORD> fillOrder;

    [[nodiscard]] const Compression &of(const Picture &picture) const;
};

// Why a picture cannot be coded so; empty when it can.
std::string codingObstacle(const Picture &picture, const Compression &compression);

} // namespace tool
