// The code of single lines: runs without regard to the line before, or modes that refer to it.
//
// Failed writing shows in the writer's error().
#pragma once

#include "codec/code_writer.h"
#include "codec/line_runs.h"

namespace vellum {

void encodeOneDimensionalLine(CodeWriter &writer, const LineRuns &line);
void encodeTwoDimensionalLine(CodeWriter &writer, const LineRuns &reference, const LineRuns &line);

} // namespace vellum
