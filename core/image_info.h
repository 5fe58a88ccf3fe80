// Typed access to the tags of a registered image, for the rest of the library.
#pragma once

#include "core/tiff_file.h"

#include <optional>

namespace vellum {

enum class Tag : WORD {
    NewSubfileType = 254,
    SubfileType = 255,
    ImageWidth = 256,
    ImageLength = 257,
    BitsPerSample = 258,
    Compression = 259,
    Photometric = 262,
    FillOrder = 266,
    ImageDescription = 270,
    StripOffsets = 273,
    SamplesPerPixel = 277,
    RowsPerStrip = 278,
    StripByteCounts = 279,
    XResolution = 282,
    YResolution = 283,
    PlanarConfiguration = 284,
    T4Options = 292,
    T6Options = 293,
    ResolutionUnit = 296,
    Software = 305,
    DateTime = 306,
    Artist = 315,
    HostComputer = 316,
    Predictor = 317,
    ColorMap = 320,
    TileWidth = 322,
    TileLength = 323,
    TileOffsets = 324,
    TileByteCounts = 325,
    JpegProc = 512,
    JpegRestartInterval = 515,
    JpegQTables = 519,
    JpegDcTables = 520,
    JpegAcTables = 521,
    YCbCrSubSampling = 530,
    ReferenceBlackWhite = 532,
};

// Values of PhotometricInterpretation.
enum Photometric : DWORD {
    kWhiteIsZero = 0,
    kBlackIsZero = 1,
    kRgb = 2,
    kPalette = 3,
    kTransparencyMask = 4,
};

// Whether the image is registered and has the tag. Sets error 13 when it has not, as every lookup does.
bool hasTag(TiffHandle tiff, DWORD index, Tag tag);

// The first value of a BYTE, SHORT or LONG tag (of a RATIONAL, its numerator); nothing when it is absent or of another
// type. Sets error 13 when absent, as every lookup does.
std::optional<DWORD> firstValue(TiffHandle tiff, DWORD index, Tag tag);

// The first value of a tag in a caller's variable of its type: 1 byte for a BYTE, a DWORD for a SHORT or a LONG, two
// for a RATIONAL; for other types the variable stays as it is. Result: whether the tag is there.
bool copyFirstValue(TiffHandle tiff, DWORD index, LONG tag, void *value);

// Type and count of a tag.
struct TagShape {
    DWORD type = 0;
    DWORD count = 0;
};
std::optional<TagShape> tagShape(TiffHandle tiff, DWORD index, LONG tag);

// All values of a tag as stored, in a block of the caller's. Tag number 0 stands for the list of the image's tags.
struct TagValues {
    GlobalBlock data;
    DWORD type = 0;
    DWORD count = 0;
};
std::optional<TagValues> allValues(TiffHandle tiff, DWORD index, Tag tag);
std::optional<TagValues> allValues(TiffHandle tiff, DWORD index, LONG tag);

} // namespace vellum
