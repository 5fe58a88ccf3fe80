// The dialog that asks how a picture is to be saved.
#pragma once

#include "core/error.h"

namespace vellum {

// Shows the dialog for a picture that will be stored as described. The library's save state has the fill order to begin
// with, and afterwards the whole choice. False when the user cancelled, with error 0, and when the dialog could not be
// shown, with error 1.
bool askHowToSave(const char *fileName, const BITMAP &picture);

} // namespace vellum
