// Stands in for the save dialog where there are no windows: the test is the user.
#include "write/save_dialog.h"

#include "core/library_state.h"
#include "native/shim.h"

namespace vellum {

bool askHowToSave(const char *fileName, const BITMAP &) {
    if (shim::state.inSaveDialog == nullptr) {
        setError(Error::None);
        return false;
    }
    lstrcpynA(library.save.title, fileName == nullptr ? "" : fileName, kSaveTextBytes);
    shim::state.inSaveDialog();
    return true;
}

} // namespace vellum
