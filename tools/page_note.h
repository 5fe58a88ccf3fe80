// The note of a page, by the calls of the library: read, given its place and burned. Its dialog is answered here, as a
// user would who presses "Store" at once: what is said on the command line has been said.
#pragma once

#include "tools/tiff_document.h"

#include <optional>
#include <string>
#include <vector>

namespace tool {

class PageNote {
public:
    PageNote() = default;
    PageNote(const PageNote &) = delete;
    PageNote &operator=(const PageNote &) = delete;
    ~PageNote();

    // A note with these lines, in UTF-8, which may have line ends in them, and without a rectangle yet. False without
    // memory. Throws UsageError for characters that cannot be drawn.
    [[nodiscard]] bool write(const std::vector<std::string> &lines, LONG left, LONG top, bool opaque);
    // The note in the page's tag; false when there is none.
    [[nodiscard]] bool read(const RegisteredPage &page);

    // Gives the rectangle the text's size. False when the dialog could not be shown.
    [[nodiscard]] bool place();
    // Makes the note part of a picture, a packed DIB that goes over to this object, and gives the new one back; null
    // when that failed.
    [[nodiscard]] HGLOBAL burnInto(HGLOBAL dib);

    [[nodiscard]] const NoteRecord &record() const { return record_; }
    // Whether some of its rectangle lies on a page of that size.
    [[nodiscard]] bool isOnPage(LONG width, LONG height) const {
        return record_.left < width && record_.top < height && record_.right > 0 && record_.bottom > 0;
    }
    // In UTF-8.
    [[nodiscard]] std::vector<std::string> lines() const;
    // The value of the tag that holds it; nothing when it could not be defined for the page, in memory.
    [[nodiscard]] std::optional<std::string> tagValue(const RegisteredPage &page) const;

private:
    NoteRecord record_ = {};
};

} // namespace tool
