// Saving DIBs by the library's own front end.
#include "tools/dib_output.h"

#include "tools/arguments.h"
#include "tools/convert.h"
#include "tools/tiff_document.h"
#include "vellum32.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace tool {

namespace {

constexpr double kInchesPerMeter = 39.37;

constexpr std::array kCodings = {
    DibCoding{"g4", VELLUM_SAVE_GROUP4, true},          DibCoding{"g3", VELLUM_SAVE_GROUP3_1D, true},
    DibCoding{"g3-2d", VELLUM_SAVE_GROUP3_2D, true},    DibCoding{"mh", VELLUM_SAVE_MODIFIED_HUFFMAN, true},
    DibCoding{"lzw", VELLUM_SAVE_LZW, false},           DibCoding{"packbits", VELLUM_SAVE_PACKBITS, false},
    DibCoding{"none", VELLUM_SAVE_UNCOMPRESSED, false},
};

// The library drops fractions on its way back to dots per inch, so these pixels per metre are rounded up.
LONG pixelsPerMeter(LONG dotsPerInch) {
    return static_cast<LONG>(std::ceil(dotsPerInch * kInchesPerMeter));
}

} // namespace

BITMAPINFOHEADER OwnedDib::header() const {
    BITMAPINFOHEADER header{};
    if (const auto *const locked = static_cast<const BITMAPINFOHEADER *>(GlobalLock(block_)); locked != nullptr) {
        header = *locked;
        GlobalUnlock(block_);
    }
    return header;
}

POINT OwnedDib::dotsPerInch() const {
    const BITMAPINFOHEADER seen = header();
    return {std::lround(seen.biXPelsPerMeter / kInchesPerMeter), std::lround(seen.biYPelsPerMeter / kInchesPerMeter)};
}

void OwnedDib::setDotsPerInch(POINT dots) const {
    if (auto *const header = static_cast<BITMAPINFOHEADER *>(GlobalLock(block_)); header != nullptr) {
        header->biXPelsPerMeter = pixelsPerMeter(dots.x);
        header->biYPelsPerMeter = pixelsPerMeter(dots.y);
        GlobalUnlock(block_);
    }
}

const DibCoding &dibCoding(const std::optional<std::string> &name, WORD bitsPerPixel) {
    const std::string_view wanted = name ? std::string_view(*name) : bitsPerPixel == 1 ? "g4" : "lzw";
    const auto found =
        std::ranges::find_if(kCodings, [wanted](const DibCoding &coding) { return isNamed(wanted, coding.name); });
    if (found == kCodings.end()) {
        throw UsageError("option '--compression' wants one of " + dibCodingNames() + ", not '" + *name + "'");
    }
    return *found;
}

std::string dibCodingNames() {
    std::string names;
    for (const DibCoding &coding : kCodings) {
        names += (names.empty() ? "" : ", ") + std::string(coding.name);
    }
    return names;
}

DibOutput::DibOutput(const FileName &name) : name_(name), file_(name), failure_(file_.failure()) {
    if (failure_.empty() && (work_.name().shown().empty() || !work_.name().isForLibrary())) {
        failure_ = "cannot be written: there is no folder for temporary files.";
    }
    // The first page makes it anew.
    DeleteFileW(work_.name().forSystem().c_str());
}

bool DibOutput::add(const OwnedDib &dib, const DibCoding &coding, POINT dotsPerInch) {
    if (!failure_.empty()) {
        return false;
    }
    constexpr LONG kNoDialog = 0;
    constexpr LONG kFillOrder = 1;
    dib.setDotsPerInch(dotsPerInch);
    const BITMAPINFOHEADER header = dib.header();
    if (coding.bilevelOnly && header.biBitCount != 1) {
        failure_ = std::string(coding.name) + " codes 1 bit per pixel; the page has " +
                   std::to_string(header.biBitCount) + " bits per pixel.";
    } else if (SaveDIBInGammaTiffFile(work_.name().forLibrary().c_str(), dib.get(), coding.code, kNoDialog,
                                      kFillOrder) == 0) {
        failure_ = "cannot be written: " + libraryMessage(TiffError());
    } else {
        report_ += name_.shown() + ": page " + std::to_string(++pages_) + ": " +
                   sizeText(static_cast<ULONGLONG>(header.biWidth), static_cast<ULONGLONG>(header.biHeight),
                            header.biBitCount) +
                   ", " + std::string(coding.name) + "\n";
    }
    return failure_.empty();
}

bool DibOutput::commit() {
    constexpr BOOL kFailsIfThere = FALSE;
    if (failure_.empty() &&
        CopyFileW(work_.name().forSystem().c_str(), file_.handOver().forSystem().c_str(), kFailsIfThere) == 0) {
        failure_ = writeFailure(GetLastError());
    }
    if (failure_.empty() && !file_.commit()) {
        failure_ = file_.failure();
    }
    return failure_.empty();
}

} // namespace tool
