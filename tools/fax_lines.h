// Line ends in place of the library's wraps. Of a line that the library wraps at the end of a page, it leaves out what
// would go on below; a line that ends there goes on on the next page.
#pragma once

#include "vellum32.h"

#include <string>

namespace tool {

// The text as it is to be drawn on these pages: wherever the library would move a part of a line down, the line ends.
// Lines are separated by CR LF.
std::string breakLines(const std::string &text, const FaxPageParams &page);

} // namespace tool
