// Stands in for the dialogs for CALS headers where there are no windows: the test is the user.
#include "cals/cals_dialogs.h"

#include "native/shim.h"

namespace vellum {

LONG askCalsInfo(const char *path) {
    return shim::state.inCalsInfo == nullptr ? kCalsDialogCancelled : shim::state.inCalsInfo(path);
}

LONG askCalsTexts(const char *path, char *header) {
    return shim::state.inCalsEdit == nullptr ? kCalsDialogCancelled : shim::state.inCalsEdit(path, header);
}

} // namespace vellum
