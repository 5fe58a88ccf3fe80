// One box at a time.
#include "core/message_box.h"

#include "core/library_state.h"

namespace vellum {

void tellUser(const char *text, const char *caption, UINT style) {
    if (library.tellingUser) {
        return;
    }
    library.tellingUser = true;
    MessageBoxA(nullptr, text, caption, style);
    library.tellingUser = false;
}

} // namespace vellum
