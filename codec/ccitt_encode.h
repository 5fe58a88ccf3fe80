// CCITT encoding, from a CodecState to its code stream: modified Huffman and Group 3 (ITU-T T.4), Group 4 (T.6), and
// the MMR code that travels in blocks of its own. Bit 1 is black; code goes out most significant bit first.
//
// Lines come from the state's line function. Each encoder runs a whole image, leaves the last code bytes in the code
// buffer for the caller's closing flush (the framed one flushes its last block itself), and returns an error number.
// Lines of more than kWidestCcittLine bytes are refused.
#pragma once

#include "core/error.h"
#include "vellum32.h"

namespace vellum {

constexpr LONG kWidestCcittLine = 4160;

// Keys 2, 3, 0x40002, 0x40003: lines coded one-dimensionally. Modified Huffman has its lines on byte boundaries and no
// EOLs; Group 3 has an EOL before each line and five behind the last.
Error encodeOneDimensional(CodecState &state);

// Keys 0x10003 and 0x50003: Group 3 two-dimensional, every K-th line of a strip one-dimensional.
Error encodeGroup3TwoDimensional(CodecState &state);

// Key 4: each strip ends with its own EOFB.
Error encodeGroup4(CodecState &state);

// Block-framed MMR. The bytes of the last block are added to the strip's byte count.
Error encodeBlockFramedMmr(CodecState &state);

} // namespace vellum
