// The text of a fax: a file in the ANSI code page or in Unicode, as the library draws it.
#pragma once

#include "tools/file_name.h"

#include <string>

namespace tool {

struct FaxText {
    std::string text;    // in the ANSI code page, with CR LF between the lines and none behind the last one
    std::string failure; // why there is no text; empty when there is
};

// A file is Unicode when it begins with a mark of UTF-8 or UTF-16, or when it has bytes above 127 and all of it is
// UTF-8. It is no text when it has characters that the code page lacks.
FaxText readFaxText(const FileName &name);

} // namespace tool
