// Collecting what there is to tell of a page, and its wording.
#include "tools/page_info.h"

#include "tools/tag_numbers.h"
#include "tools/tag_values.h"
#include "tools/tiff_names.h"

#include <array>
#include <cstdio>

namespace tool {

namespace {

DWORD compressionOption(const RegisteredPage &page, DWORD compression) {
    constexpr DWORD kGroup3 = 3;
    constexpr DWORD kGroup4 = 4;
    if (compression == kGroup3) {
        return page.number(tag::kT4Options).value_or(0);
    }
    if (compression == kGroup4) {
        return page.number(tag::kT6Options).value_or(0);
    }
    return page.number(tag::kPredictor).value_or(1);
}

std::optional<double> rationalTag(const RegisteredPage &page, DWORD tag) {
    const auto values = readTag(page, tag);
    if (!values || !values->isRational() || values->count() == 0) {
        return std::nullopt;
    }
    const auto [numerator, denominator] = values->rational(0);
    return static_cast<double>(numerator) / (denominator == 0 ? 1 : denominator);
}

// "204", "118.11"
std::string shortNumber(double number) {
    std::array<char, 64> text{};
    std::snprintf(text.data(), text.size(), "%.2f", number);
    std::string result = text.data();
    result.erase(result.find_last_not_of('0') + 1);
    if (result.ends_with('.')) {
        result.pop_back();
    }
    return result;
}

} // namespace

PageInfo::PageInfo(const RegisteredPage &page) {
    BITMAPINFOHEADER header{};
    const DWORD unusable = GetTiffDimensions(page.handle(), page.index(), &header);
    SetTiffError(VELLUM_OK); // a picture of a kind that the library does not load can still be described
    if (unusable == VELLUM_TAG_MISSING) {
        width = page.number(tag::kImageWidth);
        height = page.number(tag::kImageLength);
    } else {
        width = static_cast<DWORD>(header.biWidth);
        height = static_cast<DWORD>(header.biHeight);
    }
    bitsPerSample = page.number(tag::kBitsPerSample).value_or(bitsPerSample);
    samplesPerPixel = page.number(tag::kSamplesPerPixel).value_or(samplesPerPixel);
    photometric = page.number(tag::kPhotometric);
    compression = page.number(tag::kCompression).value_or(compression);
    compressionOption = tool::compressionOption(page, compression);
    fillOrder = page.number(tag::kFillOrder).value_or(fillOrder);
    subfileType = page.number(tag::kNewSubfileType).value_or(0);
    stripCount = static_cast<DWORD>(GetTiffStripCount(page.handle(), page.index()));
    rowsPerStrip = GetTiffRowsPerStrip(page.handle(), page.index());
    tileWidth = page.number(tag::kTileWidth);
    tileLength = page.number(tag::kTileLength);

    const auto x = rationalTag(page, tag::kXResolution);
    const auto y = rationalTag(page, tag::kYResolution);
    if (x && y) {
        resolution = {*x, *y, page.number(tag::kResolutionUnit).value_or(kInch)};
        DWORD packed = 0;
        GetTiffImageDPI(page.handle(), page.index(), &packed);
        if (resolution->unit == kInch) {
            dpi = {LOWORD(packed), HIWORD(packed)};
        }
    }
    SetTiffError(VELLUM_OK);
}

std::string PageInfo::pixelsText() const {
    const auto text = [](std::optional<DWORD> number) { return number ? std::to_string(*number) : "?"; };
    return text(width) + " x " + text(height);
}

std::string PageInfo::bitsText() const {
    const std::string bits = std::to_string(bitsPerSample);
    return samplesPerPixel == 1 ? bits : std::to_string(samplesPerPixel) + " x " + bits;
}

std::string PageInfo::photometricText() const {
    return photometric ? photometricName(*photometric) : "-";
}

std::string PageInfo::compressionText() const {
    return compressionName(compression, compressionOption) + (fillOrder == 2 ? ", fill order 2" : "");
}

std::string PageInfo::stripsText() const {
    if (tileWidth && tileLength) {
        return "tiles " + std::to_string(*tileWidth) + " x " + std::to_string(*tileLength);
    }
    if (stripCount <= 1) {
        return std::to_string(stripCount);
    }
    return std::to_string(stripCount) + " of " + std::to_string(rowsPerStrip) + " lines";
}

std::string PageInfo::resolutionText() const {
    if (!resolution) {
        return "-";
    }
    if (dpi) {
        return std::to_string(dpi->x) + " x " + std::to_string(dpi->y) + " dpi";
    }
    const std::string numbers = shortNumber(resolution->x) + " x " + shortNumber(resolution->y);
    return numbers + (resolution->unit == kCentimetre ? " /cm" : ", no unit");
}

} // namespace tool
