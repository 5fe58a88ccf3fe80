// Runs over a headerless code stream of one bilevel image: what both directions are asked for and start from.
#pragma once

#include "core/error.h"
#include "vellum32.h"

namespace vellum {

struct RawImage {
    StreamHandle stream;
    DWORD width;
    DWORD height;
    DWORD compressionKey;
    DWORD fillOrder; // 1 or 2; anything else counts as 1
    DWORD byteOrder; // anything but "MM" counts as "II"
    DWORD userValue;
    LineFunc lineFunction;
};

// Fills a zeroed state. Error 1 for lines that are too wide.
Error setUpRawRun(CodecState &state, const RawImage &image);

} // namespace vellum
