// One page into a TIFF file of the library's: defined tag by tag, encoded, linked to the end of the chain.
#pragma once

#include "tools/tiff_coding.h"

#include <string>

namespace tool {

struct PageTarget {
    std::string libraryPath;
    DWORD pagesThere;          // pages that the file has; 0 makes it anew
    std::string progressLabel; // of the page
};

// Result: why the page could not be written, in words; empty on success. A file that had pages still has them.
std::string writeTiffPage(const PageTarget &target, const Picture &picture, const TiffCoding &coding);

} // namespace tool
