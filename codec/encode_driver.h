// From lines to code: picks the encoder by the compression key and runs it.
#pragma once

#include "codec/raw_run.h"

namespace vellum {

// Whether there is an encoder for the key and for lines of this size, asked before anything is written. Errors: 11, and
// 12 for CCITT lines that are too long.
Error checkEncodable(const CodecState &state);

// Runs the encoder that the state's compression key asks for, and writes what it leaves in the code buffer.
Error encodeImageData(CodecState &state);

// Allocates the tables that strip offsets and byte counts are recorded in.
Error allocateStripTables(CodecState &state);

// Writes a headerless code stream at the stream's current position.
Error encodeRawImage(const RawImage &request);
// The same as block-framed MMR code; the key is not used.
Error encodeMmrImage(const RawImage &request);

} // namespace vellum
