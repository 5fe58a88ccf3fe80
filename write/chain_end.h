// Following the links of a chain of directories to its end, in the file itself.
#pragma once

#include "core/error.h"
#include "core/stream.h"

namespace vellum {

// Of the header's link.
constexpr DWORD kFirstLinkPosition = 4;

// Moves a link field's position on, past at most so many directories, to the field that holds 0. Errors: 3 when the
// chain has more, or loops; 6 when it breaks.
Error findLastLink(StreamHandle stream, WORD byteOrder, DWORD most, DWORD &linkPosition);

// Whether a position is that of a link field which the chain passes in its first so many directories.
bool isLinkOfChain(StreamHandle stream, WORD byteOrder, DWORD most, DWORD linkPosition);

} // namespace vellum
