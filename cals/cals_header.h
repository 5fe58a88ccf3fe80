// CALS headers as a whole: read from a file and checked, taken apart into numbers and texts, made anew. A header is
// handed around in a movable block with its 16 records in front. What fails sets the library's error.
#pragma once

#include "support/global_block.h"
#include "vellum32.h"

namespace vellum {

// Empty when there is none; a path that is null or empty sets no error.
GlobalBlock readCalsHead(const char *path);

// False for a header that describes no picture. The numbers that are there are filled in all the same.
bool readCalsInfo(const char *path, CalsInfo &info);

// The block that the texts point into, or an empty one.
GlobalBlock readCalsNotes(const char *path, CalsNotes &notes);

GlobalBlock defineCalsHead(const CalsInfo &info, const CalsNotes &notes);

} // namespace vellum
