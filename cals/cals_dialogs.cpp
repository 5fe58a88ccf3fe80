// What the two dialogs for CALS headers share.
#include "cals/cals_dialogs.h"

#include "vellum32.h"

#include <cstdio>

namespace vellum {

LONG askCalsInfo(const char *path) {
    return ShowCALSInfo(nullptr, path);
}

LONG askCalsTexts(const char *path, char *header) {
    return EditCALSHead(nullptr, path, header);
}

void showCalsFileName(HWND dialog, int control, const char *path) {
    char text[sizeof "File name: " + MAX_PATH];
    std::snprintf(text, sizeof text, "File name: %s", path);
    SetDlgItemTextA(dialog, control, text);
}

bool endCalsDialog(HWND dialog, int command) {
    if (command != kCalsDialogOk && command != kCalsDialogCancelled) {
        return false;
    }
    EndDialog(dialog, command);
    return true;
}

} // namespace vellum
