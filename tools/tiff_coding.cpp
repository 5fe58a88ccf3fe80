// The compressions and what they ask of a picture.
#include "tools/tiff_coding.h"

#include <algorithm>
#include <array>

namespace tool {

namespace {

constexpr WORD kLzw = 5;
constexpr DWORD kDifferencing = 2;                     // Predictor
constexpr DWORD kWidestCcitt = 4160 * 8;               // pixels; the library's encoders take no more
constexpr DWORD kWidestTile = 0xFFFF;                  // of the one tile that a JPEG picture is
constexpr std::string_view kDefaultBilevel = "g4";     // up to kWidestCcitt
constexpr std::string_view kDefaultBytes = "lzw-diff"; // samples of 8 bits
constexpr std::string_view kDefault = "lzw";

constexpr std::array kCompressions = {
    Compression{"none", 1},
    Compression{"packbits", 32773},
    Compression{"lzw", kLzw},
    Compression{"lzw-diff", kLzw, tag::kPredictor, kDifferencing},
    Compression{"mh", 2},
    Compression{"g3", 3, tag::kT4Options, 0},
    Compression{"g3-2d", 3, tag::kT4Options, 1},
    Compression{"g4", 4},
    Compression{"jpeg", 6},
};

std::string_view fittingName(const Picture &picture) {
    if (picture.bitsPerPixel() == 1) {
        return picture.width <= kWidestCcitt ? kDefaultBilevel : kDefault;
    }
    // Many readers know differences between whole bytes only.
    return picture.bitsPerSample == 8 ? kDefaultBytes : kDefault;
}

std::string depthText(const Picture &picture) {
    const DWORD bits = picture.bitsPerPixel();
    return "the page has " + std::to_string(bits) + (bits == 1 ? " bit" : " bits") + " per pixel.";
}

std::string jpegObstacle(const Picture &picture) {
    const DWORD bits = picture.bitsPerPixel();
    if (picture.bitsPerSample != 8 || (bits != 8 && bits != 24)) {
        return "jpeg codes 8 bits of grey and 24 bits of colour; " + depthText(picture);
    }
    const bool grey = picture.photometric == kWhiteIsZero || picture.photometric == kBlackIsZero;
    if (bits == 8 ? !grey : picture.photometric != kRgb) {
        return "jpeg codes grey and RGB pages only.";
    }
    return picture.width > kWidestTile || picture.height > kWidestTile ? "the page is too large for jpeg." : "";
}

} // namespace

const Compression *findCompression(std::string_view name) {
    const auto found = std::ranges::find(kCompressions, name, &Compression::name);
    return found == kCompressions.end() ? nullptr : &*found;
}

std::string compressionNames() {
    std::string names;
    for (const Compression &compression : kCompressions) {
        names += (names.empty() ? "" : ", ") + std::string(compression.name);
    }
    return names;
}

const Compression &TiffCoding::of(const Picture &picture) const {
    return compression != nullptr ? *compression : *findCompression(fittingName(picture));
}

std::string codingObstacle(const Picture &picture, const Compression &compression) {
    const std::string name(compression.name);
    const DWORD bits = picture.bitsPerPixel();
    if (compression.isCcitt() && bits != 1) {
        return name + " codes 1 bit per pixel; " + depthText(picture);
    }
    if (compression.isCcitt() && picture.width > kWidestCcitt) {
        return name + " codes lines of up to " + std::to_string(kWidestCcitt) + " pixels; the page has " +
               std::to_string(picture.width) + ".";
    }
    if (compression.optionTag == tag::kPredictor && bits == 1) {
        return name + " codes 4, 8 and 24 bits per pixel; " + depthText(picture);
    }
    return compression.isJpeg() ? jpegObstacle(picture) : "";
}

} // namespace tool
