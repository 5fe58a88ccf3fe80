// Decoding a page into memory, line by line, and collecting its tags.
#include "tools/tiff_source.h"

#include "tools/line_store.h"

#include <algorithm>
#include <memory>
#include <new>

namespace tool {

namespace {

constexpr DWORD kFirstOfYCbCr = 529; // YCbCrCoefficients, YCbCrSubSampling, YCbCrPositioning, ReferenceBlackWhite
constexpr DWORD kLastOfYCbCr = 532;

constexpr DWORD kPageNumber = 297;
constexpr DWORD kHalftoneHints = 321;

// The tags that describe a page, however it is coded. Offsets into the file, and what is told of the old coding, are
// not among them. ColorMap is dealt with by itself.
constexpr DWORD kDescriptiveTags[] = {
    254,   255,        // NewSubfileType, SubfileType
    263,   264,   265, // Threshholding, CellWidth, CellLength
    269,   270,        // DocumentName, ImageDescription
    271,   272,        // Make, Model
    274,               // Orientation
    280,   281,        // MinSampleValue, MaxSampleValue
    282,   283,   296, // XResolution, YResolution, ResolutionUnit
    285,   286,   287, // PageName, XPosition, YPosition
    290,   291,        // GrayResponseUnit, GrayResponseCurve
    297,               // PageNumber
    301,               // TransferFunction
    305,   306,        // Software, DateTime
    315,   316,        // Artist, HostComputer
    318,   319,        // WhitePoint, PrimaryChromaticities
    321,               // HalftoneHints
    332,   333,   334, // InkSet, InkNames, NumberOfInks
    336,   337,        // DotRange, TargetPrinter
    338,   339,        // ExtraSamples, SampleFormat
    700,               // XMP
    33432,             // Copyright
    33723, 34377,      // IPTC, Photoshop
    34675,             // ICC profile
};

// What a reader of a page without PhotometricInterpretation takes it for.
DWORD photometricOf(const RegisteredPage &page, const Picture &picture) {
    const DWORD depth = picture.bitsPerPixel();
    if (page.isDelegatedJpeg() && depth == 24) {
        return kRgb; // the companion module delivers it so
    }
    const DWORD likely = depth == 1 ? kWhiteIsZero : kBlackIsZero;
    return page.number(tag::kPhotometric).value_or(depth == 24 ? DWORD{kRgb} : likely);
}

// Three planes of as many values as there are colours. A short map fills what it can.
std::optional<TagValues> colorMapOf(const RegisteredPage &page, DWORD bitsPerPixel) {
    const auto stored = readTag(page, tag::kColorMap);
    if (!stored || stored->isRational()) {
        return std::nullopt;
    }
    const DWORD colors = DWORD{1} << bitsPerPixel;
    const DWORD held = std::min(colors, stored->count() / 3);
    std::vector<WORD> values(std::size_t{colors} * 3);
    for (DWORD plane = 0; plane < 3; ++plane) {
        for (DWORD i = 0; i < held; ++i) {
            values[std::size_t{plane} * colors + i] = static_cast<WORD>(stored->number(plane * held + i));
        }
    }
    return shortsTag(tag::kColorMap, values);
}

// Types whose values the library keeps as a byte each have lost the rest of them, and half a pair means nothing.
bool isWhole(const TagValues &values) {
    const bool isPair = values.tag() == kPageNumber || values.tag() == kHalftoneHints;
    return values.count() > (isPair ? 1U : 0U) && keepsWholeValues(values.type());
}

void copyTag(const RegisteredPage &page, DWORD tag, Picture &picture) {
    const auto values = readTag(page, tag);
    if (!values || !isWhole(*values)) {
        return;
    }
    picture.set(values->isText() ? textTag(tag, std::string(values->text())) : *values);
}

void copyTags(const RegisteredPage &page, Picture &picture) {
    for (const DWORD tag : kDescriptiveTags) {
        copyTag(page, tag, picture);
    }
    if (picture.photometric == kYCbCr) {
        for (DWORD tag = kFirstOfYCbCr; tag <= kLastOfYCbCr; ++tag) {
            copyTag(page, tag, picture);
        }
    }
}

// Fills in all but the lines. Result: an error number of the library.
DWORD describe(const RegisteredPage &page, Picture &picture) {
    BITMAPINFOHEADER header{};
    if (const DWORD error = GetTiffDimensions(page.handle(), page.index(), &header); error != VELLUM_OK) {
        return error;
    }
    picture.width = static_cast<DWORD>(header.biWidth);
    picture.height = static_cast<DWORD>(header.biHeight);
    picture.samplesPerPixel = LOWORD(page.number(tag::kSamplesPerPixel).value_or(1));
    picture.bitsPerSample = LOWORD(page.number(tag::kBitsPerSample).value_or(1));
    if (picture.bitsPerPixel() != header.biBitCount) {
        return VELLUM_BAD_COLOR_FORMAT;
    }
    picture.photometric = photometricOf(page, picture);
    if (picture.width == 0) {
        return VELLUM_TAG_MISSING;
    }
    if (picture.lineBytes() > MAXLONG) {
        return VELLUM_NO_MEMORY;
    }
    if (picture.photometric == kPalette && picture.bitsPerPixel() <= 8) {
        auto colorMap = colorMapOf(page, picture.bitsPerPixel());
        if (!colorMap) {
            return VELLUM_TAG_MISSING;
        }
        picture.set(std::move(*colorMap));
    }
    copyTags(page, picture);
    return VELLUM_OK;
}

} // namespace

PageReading TiffSource::read(DWORD index) const {
    PageReading reading;
    const RegisteredPage page(document_, index);
    if (!page) {
        reading.failure = libraryMessage(TiffError());
        return reading;
    }
    if (page.isDelegatedJpeg() && !jpegModuleAvailable()) {
        reading.failure = kNoJpegModule;
        return reading;
    }
    Picture picture;
    if (const DWORD error = describe(page, picture); error != VELLUM_OK) {
        reading.failure = libraryMessage(error);
        return reading;
    }
    const auto lines = std::make_shared<LineStore>(static_cast<std::size_t>(picture.lineBytes()));
    StoringRun run{*lines, progressLabel(index), picture.height};
    const bool decoded = DecodeTiffImage(page.handle(), page.index(), 0, 0, run.userValue(), storeLine) != 0;
    const DWORD error = TiffError();
    if (!decoded && !leavesAPart(picture, lines->count(), error)) {
        reading.failure = libraryMessage(error);
        return reading;
    }
    if (!decoded || lines->count() < picture.height) {
        reading.warning =
            "only a part was there: " + (decoded ? "the other lines are missing." : libraryMessage(error));
    }
    picture.fillLine = [lines](BYTE *line, DWORD lineIndex) {
        lines->copy(lineIndex, line);
        return DWORD{VELLUM_OK};
    };
    reading.picture = std::move(picture);
    return reading;
}

} // namespace tool
