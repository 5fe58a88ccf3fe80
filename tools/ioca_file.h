// A bilevel picture in a file of its own as an IOCA image segment, or as one behind MO:DCA structured fields. The
// library writes and reads the segment; what stands before it in a MO:DCA file is written here:
//
//   0   5A           carriage control          9   8 bytes   document name, "DOCUMENT" in EBCDIC
//   1   00 1A        length of the field       17  00 00     reserved
//   3   D3 A8 A8     Begin Document            19  08 65     comment triplet: "vellum" in EBCDIC
//   6   00 00 00     flag, sequence            27  5A        carriage control of the image's field
//                                              28  00 00     its length, filled in by WriteMODCATail
//   30  D3 EE FB     the image's field and the segment, by the library
#pragma once

#include "tools/picture.h"
#include "vellum32.h"

#include <optional>
#include <string>

namespace tool {

enum class IocaKind { Segment, Modca };

// Whether a picture can be wrapped: why not, in words; empty when it can.
std::string wrapObstacle(const Picture &picture);

// Result: why the file, which must be there, could not be written; empty on success.
std::string wrapPicture(const FileName &file, const Picture &picture, IocaKind kind, const std::string &progressLabel);

// What the headers of a wrapped file tell.
struct IocaInfo {
    IocaKind kind = IocaKind::Segment;
    IocaHeader header{};
};

// Nothing, and why, for a file that holds no image segment.
std::optional<IocaInfo> readIoca(const FileName &file, std::string &failure);

// The wrapped picture: all its lines, WhiteIsZero, with the resolution when there is one.
PageReading unwrapPicture(const FileName &file, const IocaInfo &info);

} // namespace tool
