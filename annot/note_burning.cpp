// The text is drawn on a bilevel bitmap of the note's size, and that is put on a copy of the image. The copy keeps
// depth, colours and resolution: a page of a fax stays one.
#include "annot/note_burning.h"

#include "annot/note_drawing.h"
#include "annot/note_text.h"
#include "annot/stamp.h"
#include "display/dib_bitmap.h"
#include "support/screen_dc.h"

#include <algorithm>

namespace vellum {
namespace {

// The length of the note as far as the image reaches; at least 0.
LONG burnedLength(LONG first, LONG end, DWORD imageLength) {
    const std::int64_t length = std::min(std::int64_t{end} - first, std::int64_t{imageLength} - first);
    return static_cast<LONG>(std::clamp<std::int64_t>(length, 0, 0x7FFFFFFF));
}

// The text, black on white, as a packed DIB of 1 bit per pixel.
GlobalBlock drawnText(std::string_view text, LONG width, LONG height) {
    const OwnedBitmap bitmap(CreateBitmap(width, height, 1, 1, nullptr));
    const MemoryDc memory(nullptr);
    if (!bitmap || !memory) {
        return {};
    }
    {
        const SelectedObject selected(memory.get(), bitmap.get());
        PatBlt(memory.get(), 0, 0, width, height, WHITENESS);
        drawNoteLines(memory.get(), text, std::string_view::npos, {0, 0, width, height});
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
    const LONG width = burnedLength(note.left, note.right, image.width());
    const LONG height = burnedLength(note.top, note.bottom, image.height());
    if (!burned || width == 0 || height == 0) {
        return burned;
    }
    const GlobalBlock drawn = drawnText(text.get(), width, height);
    if (!drawn) {
        return {};
    }
    stamp(DibView(burned.get()), note.left, note.top, DibView(drawn.get()),
          note.opaque != 0 ? Ink::BlackAndWhite : Ink::BlackOnly);
    return burned;
}

} // namespace vellum
