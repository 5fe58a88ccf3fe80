// The 8 bytes a TIFF begins with: written for new files, and looked at to tell a TIFF from something else.
#pragma once

#include "core/tiff_file.h"

namespace vellum {

// Prepares a stream for new images: a file that is being created gets its header, in any other the stream is moved to
// the end.
Error writeTiffHeader(TiffHandle tiff, StreamHandle stream, DWORD firstDirectoryOffset);

// The header of a new file, at the stream's position.
Error writeNewHeader(StreamHandle stream, WORD byteOrder, DWORD firstDirectoryOffset);

// Whether a file can be opened and begins with "II" or "MM".
bool looksLikeTiff(const char *path);

} // namespace vellum
