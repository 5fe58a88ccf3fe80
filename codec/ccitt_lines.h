// The plain line decoders: one line of T.4 one-dimensional or T.4/T.6 two-dimensional code becomes a list of changing
// elements, rule by rule. They take every line, however odd; speed is the drivers' business.
//
// Positions are kept at most at the width. Vertical modes may lead left of where the line stands, also left of 0, in
// damaged code; such positions stay as they are.
#pragma once

#include "codec/bit_reader.h"
#include "codec/changing_elements.h"

namespace vellum {

// How far a line went.
enum class LineEnd : BYTE {
    Width,    // its last position was decoded
    Zeros,    // eight zero bits stood in front of it; the line was completed up to the width
    RunZeros, // eight zero bits stood where a run of a horizontal mode should; completed likewise
    Failure,  // see the error
};

struct LineResult {
    LineEnd end;
    bool hasData; // at least one code word was decoded
    Error error;  // of a failure
};

// Runs alternately white and black, up to the width. At eight zero bits the line is completed in the colour being
// decoded; the zeros are left to the caller.
LineResult decodeOneDimensionalLine(BitReader &reader, ChangingElements &line, LONG width);

// Mode codes against the reference line (a closed one). At eight zero bits in front of a mode code or a run the line is
// completed up to the width; the zeros are left to the caller.
LineResult decodeTwoDimensionalLine(BitReader &reader, const ChangingElements &reference, ChangingElements &line,
                                    LONG width);

} // namespace vellum
