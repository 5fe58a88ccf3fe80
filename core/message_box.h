// Message boxes that the library shows of its own accord.
#pragma once

#include <windows.h>

namespace vellum {

// Shows a text, unless a box is open already: the box's message loop lets the program paint its windows, which may have
// the same to tell each time.
void tellUser(const char *text, const char *caption, UINT style);

} // namespace vellum
