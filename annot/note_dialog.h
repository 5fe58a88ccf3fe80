// The dialog in which a note is written, and what ends it. Windows only.
#pragma once

#include "vellum32.h"

namespace vellum {

// The dialog's results; everything else is that of a dialog that could not be shown.
constexpr LONG kNoteCancelled = 0;
constexpr LONG kNoteDeleted = 1;
constexpr LONG kNoteStored = 2;

// Shows the dialog. After kNoteStored the note has a new text, and its choices; else it is as it was.
LONG askForNote(HWND owner, NoteRecord &note);

} // namespace vellum
