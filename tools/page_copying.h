// Pages that go from file to file as they are coded: what stands in the way of that, and what would be left behind.
#pragma once

#include "tools/tiff_document.h"

#include <string>

namespace tool {

// Why a page cannot be copied, in words; empty when it can.
std::string copyObstacle(const TiffDocument &document, DWORD index);

// The first of a page's tags that lead to other data in its file; the library copies neither. Empty when there is none.
std::string tagLeadingElsewhere(const TiffDocument &document, DWORD index);

// Why the strips or tiles of a page cannot be had as they lie in the file; empty when they can.
std::string dataObstacle(const TiffDocument &document, const RegisteredPage &page);

// Why a file cannot be built anew of its pages: "page 2: ..."; empty when it can, and nothing of it would be lost.
std::string rebuildObstacle(const TiffDocument &document);

} // namespace tool
