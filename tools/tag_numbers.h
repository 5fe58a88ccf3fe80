// The tags that the subcommands know the meaning of, the field types of the library, and some of their values.
#pragma once

#include <windows.h>

namespace tool {

enum class Type : DWORD {
    Byte = 1,
    Ascii,
    Short,
    Long,
    Rational,
    SByte,
    Undefined,
    SShort,
    SLong,
};

namespace tag {

constexpr DWORD kNewSubfileType = 254;
constexpr DWORD kImageWidth = 256;
constexpr DWORD kImageLength = 257;
constexpr DWORD kBitsPerSample = 258;
constexpr DWORD kCompression = 259;
constexpr DWORD kPhotometric = 262;
constexpr DWORD kFillOrder = 266;
constexpr DWORD kImageDescription = 270;
constexpr DWORD kStripOffsets = 273;
constexpr DWORD kSamplesPerPixel = 277;
constexpr DWORD kRowsPerStrip = 278;
constexpr DWORD kStripByteCounts = 279;
constexpr DWORD kXResolution = 282;
constexpr DWORD kYResolution = 283;
constexpr DWORD kT4Options = 292;
constexpr DWORD kT6Options = 293;
constexpr DWORD kResolutionUnit = 296;
constexpr DWORD kArtist = 315;
constexpr DWORD kHostComputer = 316;
constexpr DWORD kPredictor = 317;
constexpr DWORD kColorMap = 320;
constexpr DWORD kTileWidth = 322;
constexpr DWORD kTileLength = 323;
constexpr DWORD kTileOffsets = 324;
constexpr DWORD kTileByteCounts = 325;
constexpr DWORD kJpegInterchange = 513;

} // namespace tag

enum Photometric : DWORD { kWhiteIsZero = 0, kBlackIsZero = 1, kRgb = 2, kPalette = 3, kYCbCr = 6 };

enum ResolutionUnit : DWORD { kNoUnit = 1, kInch = 2, kCentimetre = 3 };

} // namespace tool
