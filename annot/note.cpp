// Notes from the dialog to their place: in the record, or in the image's pixels.
#include "annot/note_burning.h"
#include "annot/note_dialog.h"
#include "annot/note_drawing.h"
#include "annot/note_text.h"
#include "support/screen_dc.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>

namespace vellum {
namespace {

// What Note() places by.
constexpr DWORD kPlainNote = 0x40;

// Negative heights are those of pictures whose first row is the uppermost.
LONG rowsOf(const BITMAPINFOHEADER &header) {
    return static_cast<LONG>(std::min(std::abs(std::int64_t{header.biHeight}), std::int64_t{0x7FFFFFFF}));
}

NotedImage notedImage(HWND window, HDC dc, HGLOBAL dib) {
    NotedImage noted;
    RECT client{};
    GetClientRect(window, &client);
    noted.client = {client.right, client.bottom};
    noted.deviceDotsPerInchX = GetDeviceCaps(dc, LOGPIXELSX);
    noted.deviceDotsPerInchY = GetDeviceCaps(dc, LOGPIXELSY);
    noted.scrollX = GetScrollPos(window, SB_HORZ);
    noted.scrollY = GetScrollPos(window, SB_VERT);
    // The header is enough: a note may be kept beside a picture of any kind.
    if (const GlobalView<const BITMAPINFOHEADER> image(dib); image && image->biSize >= sizeof *image) {
        noted.pixels = {image->biWidth, rowsOf(*image)};
        noted.xPelsPerMeter = image->biXPelsPerMeter;
        noted.yPelsPerMeter = image->biYPelsPerMeter;
    }
    return noted;
}

LONG endOf(LONG start, LONG length) {
    return static_cast<LONG>(std::min<std::int64_t>(std::int64_t{start} + length, 0x7FFFFFFF));
}

// Gives a stored note its rectangle.
void place(HWND window, NoteRecord &note, const NoteView &view) {
    const ScreenDc dc(window);
    const NoteText text(note.text);
    if (!dc || !text) {
        return;
    }
    const POINT corner = notePlace(notedImage(window, dc.get(), note.image), view, {note.left, note.top});
    const SIZE size = measureNoteText(dc.get(), text.get());
    note.left = corner.x;
    note.top = corner.y;
    note.right = endOf(corner.x, size.cx);
    note.bottom = endOf(corner.y, size.cy);
}

// The old image stays the caller's; the text is in the pixels now.
bool burn(NoteRecord &note) {
    GlobalBlock burned = burnNote(note);
    if (!burned) {
        return false;
    }
    note.image = burned.release();
    freeBlock(note.text);
    return true;
}

LONG writeNote(HWND window, NoteRecord &note) {
    switch (askForNote(window, note)) {
    case kNoteCancelled:
        return 0;
    case kNoteDeleted:
        note.inHeader = 0;
        freeBlock(note.text);
        return 0;
    case kNoteStored:
        place(window, note, {nullptr, nullptr, nullptr, kPlainNote});
        if (note.inHeader == 0 && note.image == nullptr) {
            return 0;
        }
        if (note.inHeader == 0) {
            // By design: without memory the text is still there, and the note counts as stored all the same.
            static_cast<void>(burn(note));
        }
        return 1;
    default:
        return 1;
    }
}

LONG writeNoteAt(HWND window, NoteRecord &note, const NoteView &view) {
    switch (askForNote(window, note)) {
    case kNoteCancelled:
        return 0;
    case kNoteDeleted:
        // By design: where the note was kept stays as it was, for the next one.
        freeBlock(note.text);
        return 0;
    case kNoteStored:
        place(window, note, view);
        return note.inHeader != 0 || burn(note) ? 1 : 0;
    default:
        return 1;
    }
}

} // namespace
} // namespace vellum

extern "C" {

LONG VELLUMAPI Note(HWND window, NoteRecord *note) {
    return note != nullptr ? vellum::writeNote(window, *note) : 0;
}

LONG VELLUMAPI NotePlus(HWND window, NoteRecord *note, const POINT *clickPoint, const POINT *imageOffset,
                        const LONG *zoom, DWORD flags) {
    return note != nullptr ? vellum::writeNoteAt(window, *note, {clickPoint, imageOffset, zoom, flags}) : 0;
}

} // extern "C"
