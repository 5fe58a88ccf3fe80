// Writing a registered image's directory to the end of a stream.
#pragma once

#include "core/image_directory.h"

namespace vellum {

// Opens a stream of its own on the TIFF: its path by OpenFile flags, or a memory stream over its block.
StreamHandle openForWriting(const TiffFileBlock &file, DWORD flags);

// Whether the file has as many images as the library can count. The place that the next one would be linked from is not
// known then, and linking it from any other would drop images.
bool chainIsFull(const TiffFileBlock &file, DWORD index);

// Whether a stream with a header is in this byte order, or says of none. Errors: 6, 14.
Error checkByteOrder(WORD byteOrder, StreamHandle stream);

// Whether the stream still ends its chain where the record has it, in the record's byte order: another program may have
// added an image since the TIFF was opened, or replaced it. A link that leads to no directory counts as an end. Errors:
// 6, 14.
Error checkChain(const TiffFileBlock &file, StreamHandle stream);

// To be asked checkChain before. Writes the values that lie outside, the directory, and last of all the link to it, so
// that a failure leaves the chain as it was. Afterwards the record appends instead of creating. Errors: 1, 3 when the
// chain is full, 6, 14.
Error writeDirectory(TiffHandle tiff, DWORD index, StreamHandle stream);

// What the records count as when the directory is scanned in a file.
DWORD scannedBytes(const ImageDirectory &directory);

// Writes a directory's offset into the link field at a position.
Error writeLink(StreamHandle stream, DWORD position, DWORD directoryOffset, WORD byteOrder);

} // namespace vellum
