// Stands in for the information dialog where there are no windows: the test answers for the user.
#include "display/info_dialog.h"

#include "native/shim.h"

namespace vellum {

INT_PTR showInfoDialog(TiffHandle, DWORD) {
    ++shim::state.infoDialogs;
    return shim::state.infoDialogAnswer;
}

} // namespace vellum
