// The byte-oriented codecs: each runs a whole image over a CodecState and returns an error number. A line is
// bytesPerLine bytes, whatever the pixel format.
#pragma once

#include "core/error.h"
#include "vellum32.h"

namespace vellum {

// The encoders leave the last code bytes in the code buffer for the caller's closing flush (PackBits flushes itself).

// Compression 1.
Error readUncompressed(CodecState &state);
Error writeUncompressed(CodecState &state);

// Compression 32773.
Error decodePackBits(CodecState &state);
Error encodePackBits(CodecState &state);

// Compression 5: 9 to 12 bits a code, most significant bit first, width changing one code early, as TIFF 6.0 has it.
// The key 0x20005 undoes (or, encoding, applies) horizontal differencing in every line.
Error decodeLzw(CodecState &state);
Error encodeLzw(CodecState &state);

} // namespace vellum
