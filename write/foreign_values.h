// Values of the field types that the library takes for bytes though they are wider (SSHORT, SRATIONAL, FLOAT,
// DOUBLE). A loaded directory holds such a tag as one byte a value, or as the bare field where those would fit into it;
// the file holds more. Who writes the image into another file fetches what is missing first.
#pragma once

#include "core/image_directory.h"

namespace vellum {

// Whether it is one of these types.
bool isForeignType(DWORD type);

// Whether a record holds its values in full, in the byte order of the file that they are meant for.
bool hasForeignValues(const TagRecord &record);

// Brings the records of such types, of a registered image that was loaded from a directory at this place in a stream,
// to their full length, and their values into another byte order. Records that were defined since the image was loaded
// stay, as do those whose values do not lie in the stream. Errors: 1, 6.
struct ForeignSource {
    StreamHandle stream;
    DWORD directoryOffset;
    WORD byteOrder;
};
Error fetchForeignValues(TiffHandle tiff, DWORD index, const ForeignSource &source, WORD byteOrder);

} // namespace vellum
