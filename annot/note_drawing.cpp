// Notes drawn over images that are on the screen already.
#include "annot/note_drawing.h"

#include "annot/note_text.h"
#include "annot/text_drawing.h"
#include "annot/text_lines.h"
#include "support/gdi_objects.h"

#include <algorithm>
#include <cstdint>

namespace vellum {
namespace {

constexpr char kEmptyLine[] = "WW";
constexpr char kLeastCharacter = 32;

// By design: what does not fit beside a picture is cut here, however wide the rectangle is. The pixels of a burned note
// show all of a line.
constexpr std::size_t kCharactersOnScreen = 40;

LONG sum(LONG a, LONG b) {
    return static_cast<LONG>(std::min<std::int64_t>(std::int64_t{a} + b, 0x7FFFFFFF));
}

SIZE extentOf(HDC dc, std::string_view text) {
    SIZE extent{};
    GetTextExtentPoint32A(dc, text.data(), static_cast<int>(text.size()), &extent);
    return extent;
}

// The size of a line without its control characters, measured in pieces.
class MeasuredLine {
public:
    explicit MeasuredLine(HDC dc) : dc_(dc) {}

    void add(char character) {
        if (static_cast<unsigned char>(character) < static_cast<unsigned char>(kLeastCharacter)) {
            return;
        }
        if (length_ == sizeof piece_) {
            measurePiece();
        }
        piece_[length_++] = character;
    }
    // Of no text when it has none.
    SIZE size() {
        measurePiece();
        return size_;
    }

private:
    void measurePiece() {
        if (length_ > 0) {
            const SIZE piece = extentOf(dc_, {piece_, length_});
            size_ = {sum(size_.cx, piece.cx), std::max(size_.cy, piece.cy)};
            length_ = 0;
        }
    }

    HDC dc_;
    char piece_[256];
    std::size_t length_ = 0;
    SIZE size_ = {};
};

SIZE measureLine(HDC dc, std::string_view line) {
    MeasuredLine measured(dc);
    for (const char character : line) {
        measured.add(character);
    }
    return measured.size();
}

} // namespace

SIZE measureNoteText(HDC dc, std::string_view text) {
    const SIZE emptyLine = extentOf(dc, kEmptyLine);
    SIZE size{};
    for (bool more = true; more;) {
        const std::size_t end = text.find('\r');
        const SIZE measured = measureLine(dc, text.substr(0, end));
        const SIZE line = measured.cy == 0 ? emptyLine : measured;
        size = {std::max(size.cx, line.cx), sum(size.cy, line.cy)};
        more = end != std::string_view::npos;
        text.remove_prefix(more ? end + 1 : text.size());
    }
    return size;
}

// A note out of a file may claim to be as high as it likes, and have a line for every pixel of that: lines that the
// device context does not show cost no call.
void drawNoteLines(HDC dc, std::string_view text, std::size_t mostCharacters, const RECT &area) {
    const LONG height = std::max(lineHeightOf(dc), LONG{1});
    RECT shown = area;
    if (RECT clip{}; GetClipBox(dc, &clip) != ERROR) {
        shown.top = std::max(area.top, clip.top);
        shown.bottom = std::min(area.bottom, clip.bottom);
    }
    TextLines lines(text);
    TextLine line;
    for (LONG y = area.top; y < shown.bottom && lines.next(line); y += height) {
        if (y + height > shown.top) {
            drawTextLine(dc, area.left, y, line.text.substr(0, mostCharacters), &area);
        }
    }
}

bool drawNote(HDC dc, const NoteRecord &note, const NoteCanvas &canvas, const NoteScale &sizeScale) {
    const NoteText text(note.text);
    const auto area = note.inHeader != 0 && text ? noteOnDevice(note, canvas, sizeScale) : std::nullopt;
    if (!area) {
        return false;
    }
    const SavedDc saved(dc);
    if (!saved) {
        return false;
    }
    SetTextAlign(dc, TA_LEFT | TA_TOP | TA_NOUPDATECP);
    SetBkMode(dc, note.opaque != 0 ? OPAQUE : TRANSPARENT);
    if (note.opaque != 0) {
        // Once for all lines: a line's own background must not cover the one before.
        ExtTextOutA(dc, 0, 0, ETO_OPAQUE, &*area, "", 0, nullptr);
    }
    drawNoteLines(dc, text.get(), kCharactersOnScreen, *area);
    return true;
}

} // namespace vellum

extern "C" LONG VELLUMAPI PaintNotePlus(HWND, HDC dc, const POINT *imageOffset, double xScale, double yScale,
                                        const POINT *destinationOrigin, const NoteRecord *note) {
    if (note == nullptr) {
        return 0;
    }
    const vellum::NoteCanvas canvas = {imageOffset != nullptr ? *imageOffset : POINT{},
                                       {xScale, yScale},
                                       destinationOrigin != nullptr ? *destinationOrigin : POINT{}};
    return vellum::drawNote(dc, *note, canvas, {}) ? 1 : 0;
}
