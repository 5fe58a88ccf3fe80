// Size, depth and resolution of a registered image.
#include "core/image_dimensions.h"

#include "core/image_info.h"
#include "core/library_state.h"
#include "support/numeric.h"
#include "support/screen_dc.h"

#include <algorithm>

namespace vellum {
namespace {

constexpr DWORD kLengthIfZero = 1000;

constexpr DWORD kUnitNone = 1;
constexpr DWORD kUnitInch = 2;
constexpr DWORD kUnitCentimeter = 3;

constexpr double kInchesPerMeter = 39.37;

DWORD valueOr(TiffHandle tiff, DWORD index, Tag tag, DWORD otherwise) {
    return firstValue(tiff, index, tag).value_or(otherwise);
}

// A tag of 16 bits in the arithmetic that depends on it.
WORD shortOr(TiffHandle tiff, DWORD index, Tag tag, WORD otherwise) {
    return static_cast<WORD>(valueOr(tiff, index, tag, otherwise));
}

constexpr bool isSupportedDepth(WORD bitsPerPixel) {
    return bitsPerPixel == 1 || bitsPerPixel == 4 || bitsPerPixel == 8 || bitsPerPixel == 24;
}

// Pixels per unit: the screen's when the tag says nothing.
double resolution(TiffHandle tiff, DWORD index, Tag tag, int screenCapability) {
    struct {
        DWORD numerator;
        DWORD denominator;
    } parts = {0, 1};
    static_assert(sizeof parts == 8);
    // The denominator stays 1 for a tag that is no RATIONAL.
    if (firstValue(tiff, index, tag)) {
        copyFirstValue(tiff, index, static_cast<LONG>(tag), &parts);
    } else {
        parts.numerator = screenDotsPerInch(screenCapability);
    }
    return static_cast<double>(parts.numerator) / static_cast<double>(std::max<DWORD>(parts.denominator, 1));
}

struct Resolution {
    DWORD unit;
    double x;
    double y;
};

Resolution resolutionOf(TiffHandle tiff, DWORD index) {
    return {valueOr(tiff, index, Tag::ResolutionUnit, kUnitInch), resolution(tiff, index, Tag::XResolution, LOGPIXELSX),
            resolution(tiff, index, Tag::YResolution, LOGPIXELSY)};
}

LONG scaled(double value, double factor) {
    return truncateToLong(value * factor + 0.5);
}

void setPixelsPerMeter(BITMAPINFOHEADER &header, const Resolution &resolution) {
    header.biXPelsPerMeter = 0;
    header.biYPelsPerMeter = 0;
    if (resolution.unit < kUnitNone || resolution.unit > kUnitCentimeter) {
        return;
    }
    // By design: a resolution in centimetres is not scaled to metres; callers know it as it is in the file.
    const double factor = resolution.unit == kUnitCentimeter ? 1.0 : kInchesPerMeter;
    header.biXPelsPerMeter = scaled(resolution.x, factor);
    header.biYPelsPerMeter = scaled(resolution.y, factor);
}

} // namespace

DWORD screenDotsPerInch(int capability) {
    DWORD &known = capability == LOGPIXELSX ? library.screenDpiX : library.screenDpiY;
    if (known == 0) {
        const ScreenDc screen;
        known = screen ? static_cast<DWORD>(GetDeviceCaps(screen.get(), capability)) : 0;
    }
    return known;
}

Error describeImage(TiffHandle tiff, DWORD index, BITMAPINFOHEADER &header) {
    header.biSize = sizeof header;
    header.biPlanes = 1;
    header.biCompression = BI_RGB;
    header.biSizeImage = 0;
    if (!hasTag(tiff, index, Tag::ImageWidth)) {
        return Error::TagMissing;
    }
    header.biWidth = static_cast<LONG>(valueOr(tiff, index, Tag::ImageWidth, 0));
    if (!hasTag(tiff, index, Tag::ImageLength)) {
        return Error::TagMissing;
    }
    // By design: a length of 0 is what writers leave that do not know it yet when they begin, as fax receivers do.
    const DWORD length = valueOr(tiff, index, Tag::ImageLength, 0);
    header.biHeight = static_cast<LONG>(length == 0 ? kLengthIfZero : length);
    if (valueOr(tiff, index, Tag::PlanarConfiguration, 1) != 1) {
        return Error::BadColorFormat;
    }
    header.biBitCount = static_cast<WORD>(DWORD{shortOr(tiff, index, Tag::BitsPerSample, 1)} *
                                          shortOr(tiff, index, Tag::SamplesPerPixel, 1));
    if (!isSupportedDepth(header.biBitCount)) {
        return Error::BadColorFormat;
    }
    header.biClrUsed = header.biBitCount <= 8 ? 1u << header.biBitCount : 0;
    header.biClrImportant = header.biClrUsed;
    setPixelsPerMeter(header, resolutionOf(tiff, index));
    return Error::None;
}

DWORD dotsPerInch(TiffHandle tiff, DWORD index) {
    const Resolution resolution = resolutionOf(tiff, index);
    if (resolution.unit < kUnitNone || resolution.unit > kUnitCentimeter) {
        return 0;
    }
    // By design: centimetres are divided by 39.37, as if the unit were the metre; programs that show this number have
    // always shown it so.
    const double factor = resolution.unit == kUnitCentimeter ? kMetersPerInch : 1.0;
    const auto word = [factor](double value) { return static_cast<DWORD>(scaled(value, factor)) & 0xFFFFu; };
    return (word(resolution.y) << 16) | word(resolution.x);
}

DWORD rowsPerStrip(TiffHandle tiff, DWORD index) {
    const auto length = firstValue(tiff, index, Tag::ImageLength);
    if (!length) {
        return 0;
    }
    const DWORD rows = valueOr(tiff, index, Tag::RowsPerStrip, 0);
    return rows == 0 || rows > *length ? *length : rows;
}

DWORD stripCount(TiffHandle tiff, DWORD index) {
    const auto offsets = tagShape(tiff, index, static_cast<LONG>(Tag::StripOffsets));
    return offsets ? offsets->count : 0;
}

} // namespace vellum
