// Fill functions: line functions of the encode driver. The exported ones are in vellum32.h.
#pragma once

#include "codec/context_lines.h"

namespace vellum {

// As DllFillTiffLineDIB, every byte complemented.
DWORD VELLUMAPI fillComplementedDibLine(BYTE *line, DWORD index, SaveLineContext *context);

} // namespace vellum
