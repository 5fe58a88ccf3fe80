// The quick way through ordinary lines: the same results as the plain line decoders, for lines whose code lies whole in
// the code buffer, whose positions never step back, and which end exactly at the width.
//
// For every other line (also one with an EOL or an error in it) the result is false, and the reader stands where it
// stood: the plain decoder then takes the line from its start.
#pragma once

#include "codec/bit_reader.h"
#include "codec/changing_elements.h"

namespace vellum {

[[nodiscard]] bool decodeFastOneDimensionalLine(BitReader &reader, ChangingElements &line, LONG width);

[[nodiscard]] bool decodeFastTwoDimensionalLine(BitReader &reader, const ChangingElements &reference,
                                                ChangingElements &line, LONG width);

} // namespace vellum
