// The CCITT decoders: each runs a whole image, from InitDecodeBuffers to the last line, and returns an error number.
// Every strip stands by itself: it starts on a fresh byte, with a white reference line.
#pragma once

#include "core/error.h"
#include "vellum32.h"

namespace vellum {

// TIFF Compression 2: runs only, every line starts on a byte.
Error decodeModifiedHuffman(CodecState &state);

// T.4 one-dimensional, with or without fill bits, with or without EOLs.
Error decodeGroup3OneDimensional(CodecState &state);

// T.4 two-dimensional: an EOL is followed by a tag bit. Lines without an EOL before them are one-dimensional.
Error decodeGroup3TwoDimensional(CodecState &state);

// T.6.
Error decodeGroup4(CodecState &state);

// T.6 in the block-framed code stream; EOLs with tag bits may stand between the lines.
Error decodeBlockFramedMmr(CodecState &state);

} // namespace vellum
