// Reads the structure of a TIFF: the header and the chain of directories when it is opened, and one directory with all
// its values when an image is registered. It interprets only the two subfile type tags.
#pragma once

#include "core/tiff_file.h"

namespace vellum {

// Reads the header and walks the chain of directories. Fills byteOrder, imageCount, lastLinkPos and of every image's
// slot the directory's offset and size and the subfile type. A chain that breaks behind a readable image succeeds, and
// leaves Error::Io pending.
Error scanFile(TiffFileBlock &file);

// Loads an image's directory into a new block. Values that lie outside a file, and records that no longer fit the size
// found when it was opened, are Error::Io.
Error loadDirectory(const TiffFileBlock &file, DWORD index, GlobalBlock &directory);

} // namespace vellum
