// Makes a note part of an image's pixels. Windows only.
#pragma once

#include "support/global_block.h"
#include "vellum32.h"

namespace vellum {

// A copy of the note's image with its text on it; empty without text, image or memory. The note stays as it is.
GlobalBlock burnNote(const NoteRecord &note);

} // namespace vellum
