// A bilevel line as the positions where its runs end: white, black, white, ... beginning with white, the last position
// at the line's width. Empty runs keep their places (a line that begins black has a first position of 0).
//
// The list grows as far as a line asks for: a line may hold any number of empty runs.
#pragma once

#include <windows.h>

#include <memory>

namespace vellum {

class ChangingElements {
public:
    // Positions equal to the width that stand behind the last one, so that a search on a reference line always stops.
    static constexpr DWORD kSentinels = 4;

    void clear() { count_ = 0; }

    // Appends a position. False when there is no memory for it.
    [[nodiscard]] bool add(LONG position) {
        if (count_ + kSentinels >= capacity_ && !grow()) [[unlikely]] {
            return false;
        }
        positions_[count_++] = position;
        return true;
    }

    // Makes the line a finished one: adds the sentinels. The line must have a position at the width (see add).
    void close(LONG width) {
        for (DWORD i = 0; i < kSentinels; ++i) {
            positions_[count_ + i] = width;
        }
    }

    // A line of one white run.
    [[nodiscard]] bool setWhite(LONG width) {
        clear();
        if (!add(width)) {
            return false;
        }
        close(width);
        return true;
    }

    [[nodiscard]] DWORD count() const { return count_; }
    // True while the run being decoded is black.
    [[nodiscard]] unsigned colour() const { return count_ & 1; }
    [[nodiscard]] const LONG *positions() const { return positions_.get(); }

private:
    [[nodiscard]] bool grow();

    std::unique_ptr<LONG[]> positions_;
    DWORD count_ = 0;
    DWORD capacity_ = 0;
};

// Draws a finished line: bit 1 for black, most significant bit first; bits behind the width in the last byte are 0.
// A black run whose end lies before its start is drawn one pixel long. The line is a line buffer's: kLineSlack bytes
// behind it may be written.
void drawLine(const ChangingElements &elements, BYTE *line, LONG bytesPerLine, LONG width);

} // namespace vellum
