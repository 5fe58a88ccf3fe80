// The text is drawn on a bilevel bitmap, as much of it as lies on the image, and that is put on a copy of the image.
// The copy keeps depth, colours and resolution: a page of a fax stays one.
#include "annot/note_burning.h"

#include "annot/note_drawing.h"
#include "annot/note_text.h"
#include "annot/stamp.h"
#include "display/dib_bitmap.h"
#include "support/screen_dc.h"

#include <algorithm>

namespace vellum {
namespace {

// The part of the note that lies on the image, counted from the image's corner; empty when there is none.
RECT partOnImage(const NoteRecord &note, const DibView &image) {
    const RECT part = {std::max(note.left, LONG{0}), std::max(note.top, LONG{0}),
                       std::min(note.right, image.header().biWidth), std::min(note.bottom, image.header().biHeight)};
    return part.left < part.right && part.top < part.bottom ? part : RECT{};
}

// That part of the note's paper, black on white, as a packed DIB of 1 bit per pixel. It is no larger than the image,
// however far outside the note begins.
GlobalBlock drawnText(std::string_view text, const NoteRecord &note, const RECT &part) {
    const LONG width = part.right - part.left;
    const LONG height = part.bottom - part.top;
    const OwnedBitmap bitmap(CreateBitmap(width, height, 1, 1, nullptr));
    const MemoryDc memory(nullptr);
    if (!bitmap || !memory) {
        return {};
    }
    {
        const SelectedObject selected(memory.get(), bitmap.get());
        PatBlt(memory.get(), 0, 0, width, height, WHITENESS);
        drawNoteLines(memory.get(), text, std::string_view::npos,
                      {std::min(note.left, LONG{0}), std::min(note.top, LONG{0}), width, height});
    }
    return packBitmap(bitmap.get());
}

GlobalBlock copyOf(HGLOBAL block) {
    const GlobalView<const BYTE> from(block);
    GlobalBlock copy = GlobalBlock::allocate(Size(from.bytes()));
    const GlobalView<BYTE> to(copy.get());
    if (!from || !to) {
        return {};
    }
    std::memcpy(to.get(), from.get(), from.bytes());
    return copy;
}

} // namespace

GlobalBlock burnNote(const NoteRecord &note) {
    const NoteText text(note.text);
    const DibView image(note.image);
    if (!text || !image) {
        return {};
    }
    GlobalBlock burned = copyOf(note.image);
    const RECT part = partOnImage(note, image);
    if (!burned || part.right == 0) {
        return burned;
    }
    const GlobalBlock drawn = drawnText(text.get(), note, part);
    if (!drawn) {
        return {};
    }
    stamp(DibView(burned.get()), part.left, part.top, DibView(drawn.get()),
          note.opaque != 0 ? Ink::BlackAndWhite : Ink::BlackOnly);
    return burned;
}

} // namespace vellum
