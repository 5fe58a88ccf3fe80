// Writing a registered image's directory to the end of a stream.
#pragma once

#include "core/tiff_file.h"

namespace vellum {

// Opens a stream of its own on the TIFF: its path by OpenFile flags, or a memory stream over its block.
StreamHandle openForWriting(const TiffFileBlock &file, DWORD flags);

// Whether the file has as many images as the library can count. The place that the next one would be linked from is not
// known then, and linking it from any other would drop images.
bool chainIsFull(const TiffFileBlock &file, DWORD index);

// Writes the values that lie outside, the directory, and last of all the link to it, so that a failure leaves the chain
// as it was. Afterwards the record appends instead of creating. Errors: 1,
// 3 when the chain is full, 6.
Error writeDirectory(TiffHandle tiff, DWORD index, StreamHandle stream);

} // namespace vellum
