// The save tags, and the rules by which a choice becomes Compression, PhotometricInterpretation and ColorMap.
#include "write/save_tags.h"

#include "core/image_dimensions.h"
#include "core/typed_transfer.h"
#include "support/numeric.h"
#include "write/image_definition.h"

#include <algorithm>
#include <cstring>
#include <iterator>

namespace vellum {
namespace {

constexpr DWORD kAscii = 2;
constexpr LONG kWidestShort = 0xFFFF;
constexpr DWORD kUnitInch = 2;

constexpr char kMaker[] = "VELLUM.DLL from Corvane Software, Inc.";
constexpr LONG kVersionLength = 15;
// By design: there is nothing to fill it with; readers of these files find the tag, and an empty text.
constexpr char kDateTime[] = "";

// What a code of the save interface stands for.
struct SaveCompression {
    LONG code;
    WORD compression;
    Tag option; // its extra tag; ImageWidth: none
    WORD optionValue;
};
constexpr Tag kNoOption = Tag::ImageWidth;
constexpr SaveCompression kCompressions[] = {
    {VELLUM_SAVE_UNCOMPRESSED, 1, kNoOption, 0},
    {VELLUM_SAVE_PACKBITS, 32773, kNoOption, 0},
    {VELLUM_SAVE_LZW, 5, kNoOption, 0},
    {VELLUM_SAVE_LZW_DIFFERENCING, 5, Tag::Predictor, 2},
    {VELLUM_SAVE_MODIFIED_HUFFMAN, 2, kNoOption, 0},
    {VELLUM_SAVE_GROUP3_1D, 3, kNoOption, 0},
    {VELLUM_SAVE_GROUP3_2D, 3, Tag::T4Options, 1},
    {VELLUM_SAVE_GROUP4, 4, kNoOption, 0},
    {VELLUM_SAVE_JPEG, 6, kNoOption, 0},
};

const SaveCompression *compressionOf(LONG code) {
    const auto *found = std::ranges::find(kCompressions, code, &SaveCompression::code);
    return found == std::end(kCompressions) ? nullptr : found;
}

// Defines one tag after the other; once one has failed, no more.
class Tags {
public:
    Tags(TiffHandle tiff, DWORD index) : tiff_(tiff), index_(index) {}

    Tags &number(Tag tag, DWORD type, DWORD value) {
        defined_ = defined_ && defineNumber(tiff_, index_, tag, type, value);
        return *this;
    }
    Tags &text(Tag tag, const char *value) {
        return values(tag, value, kAscii, static_cast<DWORD>(std::strlen(value)) + 1);
    }
    Tags &whole(Tag tag, DWORD value) {
        const DWORD parts[] = {value, 1};
        return values(tag, parts, kRational, 1);
    }
    Tags &values(Tag tag, const void *from, DWORD type, DWORD count) {
        defined_ = defined_ && defineTag(tiff_, index_, static_cast<WORD>(tag), from, type, count);
        return *this;
    }
    // Without memory a tag cannot be defined.
    [[nodiscard]] Error result() const { return defined_ ? Error::None : Error::NoMemory; }

private:
    TiffHandle tiff_;
    DWORD index_;
    bool defined_ = true;
};

// Dots per inch in one direction; 0 when neither the picture nor a screen tells.
DWORD dotsPerInch(LONG pelsPerMeter, int capability) {
    return pelsPerMeter > 0 ? static_cast<DWORD>(truncateToLong(pelsPerMeter * kMetersPerInch))
                            : screenDotsPerInch(capability);
}

Error defineResolution(Tags tags, const SavedPicture &picture) {
    const bool needsScreen = picture.xPelsPerMeter <= 0 || picture.yPelsPerMeter <= 0;
    if (needsScreen && screenDotsPerInch(LOGPIXELSX) == 0) {
        return Error::NoMemory;
    }
    return tags.number(Tag::ResolutionUnit, kShort, kUnitInch)
        .whole(Tag::XResolution, dotsPerInch(picture.xPelsPerMeter, LOGPIXELSX))
        .whole(Tag::YResolution, dotsPerInch(picture.yPelsPerMeter, LOGPIXELSY))
        .result();
}

Error defineTexts(Tags tags) {
    char software[sizeof kMaker + kVersionLength] = {};
    std::memcpy(software, kMaker, sizeof kMaker - 1);
    GetTiffVersion(software + sizeof kMaker - 1, kVersionLength);
    return tags.text(Tag::Software, software)
        .text(Tag::DateTime, kDateTime)
        .text(Tag::ImageDescription, library.save.title)
        .text(Tag::Artist, library.save.artist)
        .result();
}

// The general tags hold 16-bit numbers; larger sides are defined anew.
Error defineLargeSides(Tags tags, const SavedPicture &picture) {
    if (picture.width > kWidestShort) {
        tags.number(Tag::ImageWidth, kLong, static_cast<DWORD>(picture.width));
    }
    if (picture.height > kWidestShort) {
        tags.number(Tag::ImageLength, kLong, static_cast<DWORD>(picture.height));
        if (isCcittCode(library.save.code)) {
            tags.number(Tag::RowsPerStrip, kLong, static_cast<DWORD>(picture.height));
        }
    }
    return tags.result();
}

Error defineShape(TiffHandle tiff, DWORD index, const SavedPicture &picture) {
    const auto error = static_cast<Error>(DefineGeneralTags(tiff, index, picture.bitmap()));
    return error == Error::None ? defineLargeSides(Tags(tiff, index), picture) : error;
}

// All reds, all greens, all blues. Readers want an entry for every value that a pixel can have, so colours that the
// picture lacks are filled up with black.
Error defineColorMap(Tags tags, const SavedPicture &picture) {
    constexpr DWORD kMostColours = 256;
    WORD map[3 * kMostColours] = {};
    const DWORD entries = std::min(coloursOfDepth(picture.bitsPerPixel), kMostColours);
    for (DWORD i = 0; i < std::min({entries, library.save.colours, picture.colourCount}); ++i) {
        map[i] = static_cast<WORD>(picture.colours[i].rgbRed << 8);
        map[entries + i] = static_cast<WORD>(picture.colours[i].rgbGreen << 8);
        map[2 * entries + i] = static_cast<WORD>(picture.colours[i].rgbBlue << 8);
    }
    return tags.values(Tag::ColorMap, map, kShort, 3 * entries).result();
}

bool isGrey(const SavedPicture &picture) {
    const bool descending = picture.colourCount != 0 && !picture.firstColourIsBlack();
    for (DWORD i = 0; i < picture.colourCount; ++i) {
        const auto level = static_cast<BYTE>(descending ? 255 - i : i);
        const RGBQUAD &colour = picture.colours[i];
        if (colour.rgbRed != level || colour.rgbGreen != level || colour.rgbBlue != level) {
            return false;
        }
    }
    return true;
}

bool fitsJpeg(const SavedPicture &picture) {
    const bool colours = picture.bitsPerPixel == 24 || (picture.bitsPerPixel == 8 && isGrey(picture));
    return colours && picture.width <= kWidestShort && picture.height <= kWidestShort;
}

} // namespace

BITMAP SavedPicture::bitmap() const {
    BITMAP described{};
    described.bmWidth = width;
    described.bmHeight = height;
    described.bmPlanes = 1;
    described.bmBitsPixel = bitsPerPixel;
    return described;
}

bool isBlack(const RGBQUAD &colour) {
    return colour.rgbRed == 0 && colour.rgbGreen == 0 && colour.rgbBlue == 0;
}

bool SavedPicture::firstColourIsBlack() const {
    return colourCount != 0 && isBlack(colours[0]);
}

DWORD coloursOfDepth(DWORD bitsPerPixel) {
    return bitsPerPixel < 32 ? 1u << bitsPerPixel : 0xFFFFFFFF;
}

bool isSaveCode(LONG code) {
    return compressionOf(code) != nullptr;
}

bool isCcittCode(LONG code) {
    return code >= VELLUM_SAVE_MODIFIED_HUFFMAN && code <= VELLUM_SAVE_GROUP4;
}

Error checkSave(const SavedPicture &picture, LONG code) {
    if (!isSaveCode(code)) {
        return Error::UnknownCompression;
    }
    const WORD bits = picture.bitsPerPixel;
    const bool depthTaken = bits == 1 || bits == 4 || bits == 8 || bits == 24;
    const bool codeTaken = isCcittCode(code) ? bits == 1 : code != VELLUM_SAVE_JPEG || fitsJpeg(picture);
    return depthTaken && codeTaken ? Error::None : Error::BadColorFormat;
}

void chooseToSave(LONG code, DWORD fillOrder, DWORD photometric, DWORD colours) {
    library.save.code = code;
    library.save.fillOrder = fillOrder;
    library.save.photometric = photometric;
    library.save.colours = isCcittCode(code) ? 2 : colours;
}

DWORD photometricOf(const SavedPicture &picture) {
    if (picture.bitsPerPixel > 8) {
        return kRgb;
    }
    const bool grey = isCcittCode(library.save.code) || library.save.code == VELLUM_SAVE_JPEG;
    const DWORD asked = grey ? kWhiteIsZero : library.save.photometric;
    return asked == kWhiteIsZero && picture.firstColourIsBlack() ? kBlackIsZero : asked;
}

Error defineSaveTags(TiffHandle tiff, DWORD index, const SavedPicture &picture) {
    const SaveCompression *compression = compressionOf(library.save.code);
    if (compression == nullptr) {
        return Error::UnknownCompression;
    }
    Tags tags(tiff, index);
    tags.number(Tag::Compression, kShort, compression->compression);
    if (const Error error = defineTexts(tags); error != Error::None) {
        return error;
    }
    if (const Error error = defineResolution(tags, picture); error != Error::None) {
        return error;
    }
    tags.number(Tag::FillOrder, kShort, library.save.fillOrder);
    if (compression->option != kNoOption) {
        tags.number(compression->option, kShort, compression->optionValue);
    }
    if (const Error error = defineShape(tiff, index, picture); error != Error::None) {
        return error;
    }
    const DWORD photometric = photometricOf(picture);
    tags.number(Tag::Photometric, kShort, photometric);
    return photometric == kPalette ? defineColorMap(tags, picture) : tags.result();
}

} // namespace vellum

extern "C" DWORD VELLUMAPI SetTiffImageDPI(TiffHandle tiff, DWORD index, DWORD dpi) {
    const vellum::Error error = vellum::Tags(tiff, index)
                                    .whole(vellum::Tag::XResolution, HIWORD(dpi))
                                    .whole(vellum::Tag::YResolution, LOWORD(dpi))
                                    .result();
    if (error != vellum::Error::None) {
        vellum::setError(vellum::Error::TagMissing);
        return number(vellum::Error::TagMissing);
    }
    return 0;
}
