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

// By number.
constexpr Name kTags[] = {
    {254, "NewSubfileType"},
    {255, "SubfileType"},
    {256, "ImageWidth"},
    {257, "ImageLength"},
    {258, "BitsPerSample"},
    {259, "Compression"},
    {262, "PhotometricInterpretation"},
    {263, "Threshholding"},
    {264, "CellWidth"},
    {265, "CellLength"},
    {266, "FillOrder"},
    {269, "DocumentName"},
    {270, "ImageDescription"},
    {271, "Make"},
    {272, "Model"},
    {273, "StripOffsets"},
    {274, "Orientation"},
    {277, "SamplesPerPixel"},
    {278, "RowsPerStrip"},
    {279, "StripByteCounts"},
    {280, "MinSampleValue"},
    {281, "MaxSampleValue"},
    {282, "XResolution"},
    {283, "YResolution"},
    {284, "PlanarConfiguration"},
    {285, "PageName"},
    {286, "XPosition"},
    {287, "YPosition"},
    {288, "FreeOffsets"},
    {289, "FreeByteCounts"},
    {290, "GrayResponseUnit"},
    {291, "GrayResponseCurve"},
    {292, "T4Options"},
    {293, "T6Options"},
    {296, "ResolutionUnit"},
    {297, "PageNumber"},
    {301, "TransferFunction"},
    {305, "Software"},
    {306, "DateTime"},
    {315, "Artist"},
    {316, "HostComputer"},
    {317, "Predictor"},
    {318, "WhitePoint"},
    {319, "PrimaryChromaticities"},
    {320, "ColorMap"},
    {321, "HalftoneHints"},
    {322, "TileWidth"},
    {323, "TileLength"},
    {324, "TileOffsets"},
    {325, "TileByteCounts"},
    {326, "BadFaxLines"},
    {327, "CleanFaxData"},
    {328, "ConsecutiveBadFaxLines"},
    {330, "SubIFDs"},
    {332, "InkSet"},
    {333, "InkNames"},
    {334, "NumberOfInks"},
    {336, "DotRange"},
    {337, "TargetPrinter"},
    {338, "ExtraSamples"},
    {339, "SampleFormat"},
    {340, "SMinSampleValue"},
    {341, "SMaxSampleValue"},
    {342, "TransferRange"},
    {347, "JPEGTables"},
    {512, "JPEGProc"},
    {513, "JPEGInterchangeFormat"},
    {514, "JPEGInterchangeFormatLength"},
    {515, "JPEGRestartInterval"},
    {517, "JPEGLosslessPredictors"},
    {518, "JPEGPointTransforms"},
    {519, "JPEGQTables"},
    {520, "JPEGDCTables"},
    {521, "JPEGACTables"},
    {529, "YCbCrCoefficients"},
    {530, "YCbCrSubSampling"},
    {531, "YCbCrPositioning"},
    {532, "ReferenceBlackWhite"},
    {700, "XMP"},
    {33432, "Copyright"},
    {33550, "ModelPixelScale"},
    {33723, "IPTC"},
    {33922, "ModelTiepoint"},
    {34264, "ModelTransformation"},
    {34377, "Photoshop"},
    {34665, "ExifIFD"},
    {34675, "ICCProfile"},
    {34735, "GeoKeyDirectory"},
    {34736, "GeoDoubleParams"},
    {34737, "GeoAsciiParams"},
    {34853, "GPSInfoIFD"},
};
static_assert(std::ranges::is_sorted(kTags, {}, &Name::number));

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
    return findName(kTags, tag);
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
