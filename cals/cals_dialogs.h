// What the two dialogs for CALS headers share, and what becomes of an answer that is not OK. Both end with the number
// of the button that was pressed.
#pragma once

#include "core/error.h"

namespace vellum {

constexpr LONG kCalsDialogOk = 1;
constexpr LONG kCalsDialogCancelled = 2;

// The error of a call that ends with its dialog: none when the user wanted it so, and want of memory when there was no
// dialog.
constexpr Error errorOfCalsDialog(LONG answer) {
    return answer == kCalsDialogCancelled ? Error::None : Error::NoMemory;
}

// The dialogs without a parent. The answer is the number of the button, or -1 when there was no dialog.
LONG askCalsInfo(const char *path);
LONG askCalsTexts(const char *path, char *header);

// Shows "File name: " and the path. Windows only, like the next one.
void showCalsFileName(HWND dialog, int control, const char *path);

// Ends the dialog if the command is a button that does so.
bool endCalsDialog(HWND dialog, int command);

} // namespace vellum
