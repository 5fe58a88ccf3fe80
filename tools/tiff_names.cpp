// Tables of TIFF names.
#include "tools/tiff_names.h"

#include <algorithm>
#include <iterator>
#include <span>

namespace tool {

namespace {

struct Name {
    DWORD number;
    std::string_view text;
};

struct TagName {
    DWORD number;
    std::string_view text;
    std::optional<Type> customaryType;
};

// By number. A tag without a type has values that the library does not keep whole, or of many types.
constexpr TagName kTags[] = {
    {254, "NewSubfileType", Type::Long},
    {255, "SubfileType", Type::Short},
    {256, "ImageWidth", Type::Long},
    {257, "ImageLength", Type::Long},
    {258, "BitsPerSample", Type::Short},
    {259, "Compression", Type::Short},
    {262, "PhotometricInterpretation", Type::Short},
    {263, "Threshholding", Type::Short},
    {264, "CellWidth", Type::Short},
    {265, "CellLength", Type::Short},
    {266, "FillOrder", Type::Short},
    {269, "DocumentName", Type::Ascii},
    {270, "ImageDescription", Type::Ascii},
    {271, "Make", Type::Ascii},
    {272, "Model", Type::Ascii},
    {273, "StripOffsets", Type::Long},
    {274, "Orientation", Type::Short},
    {277, "SamplesPerPixel", Type::Short},
    {278, "RowsPerStrip", Type::Long},
    {279, "StripByteCounts", Type::Long},
    {280, "MinSampleValue", Type::Short},
    {281, "MaxSampleValue", Type::Short},
    {282, "XResolution", Type::Rational},
    {283, "YResolution", Type::Rational},
    {284, "PlanarConfiguration", Type::Short},
    {285, "PageName", Type::Ascii},
    {286, "XPosition", Type::Rational},
    {287, "YPosition", Type::Rational},
    {288, "FreeOffsets", Type::Long},
    {289, "FreeByteCounts", Type::Long},
    {290, "GrayResponseUnit", Type::Short},
    {291, "GrayResponseCurve", Type::Short},
    {292, "T4Options", Type::Long},
    {293, "T6Options", Type::Long},
    {296, "ResolutionUnit", Type::Short},
    {297, "PageNumber", Type::Short},
    {301, "TransferFunction", Type::Short},
    {305, "Software", Type::Ascii},
    {306, "DateTime", Type::Ascii},
    {315, "Artist", Type::Ascii},
    {316, "HostComputer", Type::Ascii},
    {317, "Predictor", Type::Short},
    {318, "WhitePoint", Type::Rational},
    {319, "PrimaryChromaticities", Type::Rational},
    {320, "ColorMap", Type::Short},
    {321, "HalftoneHints", Type::Short},
    {322, "TileWidth", Type::Long},
    {323, "TileLength", Type::Long},
    {324, "TileOffsets", Type::Long},
    {325, "TileByteCounts", Type::Long},
    {326, "BadFaxLines", Type::Long},
    {327, "CleanFaxData", Type::Short},
    {328, "ConsecutiveBadFaxLines", Type::Long},
    {330, "SubIFDs", Type::Long},
    {332, "InkSet", Type::Short},
    {333, "InkNames", Type::Ascii},
    {334, "NumberOfInks", Type::Short},
    {336, "DotRange", Type::Short},
    {337, "TargetPrinter", Type::Ascii},
    {338, "ExtraSamples", Type::Short},
    {339, "SampleFormat", Type::Short},
    {340, "SMinSampleValue", std::nullopt},
    {341, "SMaxSampleValue", std::nullopt},
    {342, "TransferRange", Type::Short},
    {347, "JPEGTables", Type::Undefined},
    {512, "JPEGProc", Type::Short},
    {513, "JPEGInterchangeFormat", Type::Long},
    {514, "JPEGInterchangeFormatLength", Type::Long},
    {515, "JPEGRestartInterval", Type::Short},
    {517, "JPEGLosslessPredictors", Type::Short},
    {518, "JPEGPointTransforms", Type::Short},
    {519, "JPEGQTables", Type::Long},
    {520, "JPEGDCTables", Type::Long},
    {521, "JPEGACTables", Type::Long},
    {529, "YCbCrCoefficients", Type::Rational},
    {530, "YCbCrSubSampling", Type::Short},
    {531, "YCbCrPositioning", Type::Short},
    {532, "ReferenceBlackWhite", Type::Rational},
    {700, "XMP", Type::Byte},
    {33432, "Copyright", Type::Ascii},
    {33550, "ModelPixelScale", std::nullopt},
    {33723, "IPTC", Type::Undefined},
    {33922, "ModelTiepoint", std::nullopt},
    {34264, "ModelTransformation", std::nullopt},
    {34377, "Photoshop", Type::Byte},
    {34665, "ExifIFD", Type::Long},
    {34675, "ICCProfile", Type::Undefined},
    {34735, "GeoKeyDirectory", Type::Short},
    {34736, "GeoDoubleParams", std::nullopt},
    {34737, "GeoAsciiParams", Type::Ascii},
    {34853, "GPSInfoIFD", Type::Long},
};
static_assert(std::ranges::is_sorted(kTags, {}, &TagName::number));

constexpr Name kTypes[] = {
    {1, "BYTE"},      {2, "ASCII"},  {3, "SHORT"}, {4, "LONG"},       {5, "RATIONAL"}, {6, "SBYTE"},
    {7, "UNDEFINED"}, {8, "SSHORT"}, {9, "SLONG"}, {10, "SRATIONAL"}, {11, "FLOAT"},   {12, "DOUBLE"},
};

constexpr Name kPhotometrics[] = {
    {0, "WhiteIsZero"}, {1, "BlackIsZero"}, {2, "RGB"},    {3, "palette"},    {4, "mask"},
    {5, "CMYK"},        {6, "YCbCr"},       {8, "CIELab"}, {32845, "LogLuv"},
};

constexpr Name kCompressions[] = {
    {1, "none"}, {2, "modified Huffman"}, {3, "Group 3"},      {4, "Group 4"},     {5, "LZW"}, {6, "JPEG (TIFF 6)"},
    {7, "JPEG"}, {8, "Deflate"},          {32773, "PackBits"}, {32946, "Deflate"},
};

const TagName *findTag(DWORD number) {
    const auto *const found = std::ranges::find(kTags, number, &TagName::number);
    return found == std::end(kTags) ? nullptr : found;
}

bool sameLetters(std::string_view one, std::string_view other) {
    const auto lower = [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; };
    return std::ranges::equal(one, other, {}, lower, lower);
}

std::string_view findName(std::span<const Name> names, DWORD number) {
    const auto found = std::ranges::find(names, number, &Name::number);
    return found == names.end() ? std::string_view() : found->text;
}

std::string_view predictorName(DWORD predictor) {
    switch (predictor) {
    case 1:
        return "";
    case 2:
        return ", differencing";
    case 3:
        return ", floating point differencing";
    default:
        return ", unknown predictor";
    }
}

} // namespace

std::string_view tagName(DWORD tag) {
    const TagName *const found = findTag(tag);
    return found == nullptr ? std::string_view() : found->text;
}

std::optional<DWORD> tagNumber(std::string_view name) {
    const auto *const found =
        std::ranges::find_if(kTags, [name](const TagName &tag) { return sameLetters(tag.text, name); });
    return found == std::end(kTags) ? std::nullopt : std::optional(found->number);
}

std::optional<Type> customaryType(DWORD tag) {
    const TagName *const found = findTag(tag);
    return found == nullptr ? std::nullopt : found->customaryType;
}

std::optional<Type> typeNumber(std::string_view name) {
    const auto *const found =
        std::ranges::find_if(kTypes, [name](const Name &type) { return sameLetters(type.text, name); });
    return found == std::end(kTypes) ? std::nullopt : std::optional(static_cast<Type>(found->number));
}

std::string typeName(DWORD type) {
    const std::string_view name = findName(kTypes, type);
    return name.empty() ? "type " + std::to_string(type) : std::string(name);
}

std::string photometricName(DWORD photometric) {
    const std::string_view name = findName(kPhotometrics, photometric);
    return name.empty() ? "photometric " + std::to_string(photometric) : std::string(name);
}

std::string compressionName(DWORD compression, DWORD option) {
    constexpr DWORD kGroup3 = 3;
    constexpr DWORD kGroup4 = 4;
    constexpr DWORD kTwoDimensional = 1;
    constexpr DWORD kUncompressedMode = 2;
    constexpr DWORD kFillBits = 4;
    const std::string_view known = findName(kCompressions, compression);
    std::string name = known.empty() ? "compression " + std::to_string(compression) : std::string(known);
    if (compression == kGroup3) {
        name += (option & kTwoDimensional) != 0 ? " 2D" : " 1D";
        name += (option & kFillBits) != 0 ? ", fill bits" : "";
    }
    if (compression == kGroup3 || compression == kGroup4) {
        return name + ((option & kUncompressedMode) != 0 ? ", uncompressed mode" : "");
    }
    return name.append(predictorName(option));
}

} // namespace tool
