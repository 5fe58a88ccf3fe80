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
    // Positions left of every line that stand before the first one, for searches backwards.
    static constexpr DWORD kFrontSentinels = 2;

    void clear() { count_ = 0; }

    // Appends a position. False when there is no memory for it.
    [[nodiscard]] bool add(LONG position) {
        if (count_ + kSentinels >= capacity_ && !grow()) [[unlikely]] {
            return false;
        }
        first()[count_++] = position;
        return true;
    }

    // Makes the line a finished one: adds the sentinels. The line must have a position at the width (see add).
    void close(LONG width) {
        addSentinels(width);
        ordered_ = isOrdered();
    }

    // Another way to make a line, for decoders that keep their place in the list themselves: up to room() positions are
    // written from first() on, in order, none below 0, the last one the width; then the line is closed.
    [[nodiscard]] LONG *first() { return positions_.get() + kFrontSentinels; }
    [[nodiscard]] DWORD room() const { return capacity_ == 0 ? 0 : capacity_ - kSentinels; }
    void closeOrdered(DWORD count, LONG width) {
        count_ = count;
        addSentinels(width);
        ordered_ = true;
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
    [[nodiscard]] const LONG *positions() const { return positions_.get() + kFrontSentinels; }
    // Of a closed line: true when no position is below 0 or below the one before it.
    [[nodiscard]] bool ordered() const { return ordered_; }

private:
    [[nodiscard]] bool grow();
    [[nodiscard]] bool isOrdered() const;
    void addSentinels(LONG width) {
        LONG *behind = first() + count_;
        for (DWORD i = 0; i < kSentinels; ++i) {
            behind[i] = width;
        }
    }

    std::unique_ptr<LONG[]> positions_;
    DWORD count_ = 0;
    DWORD capacity_ = 0; // without the sentinels in front
    bool ordered_ = false;
};

// Draws a finished line: bit 1 for black, most significant bit first; bits behind the width in the last byte are 0.
// A black run whose end lies before its start is drawn one pixel long. The line is a line buffer's: kLineSlack bytes
// behind it may be written.
void drawLine(const ChangingElements &elements, BYTE *line, LONG bytesPerLine, LONG width);

} // namespace vellum
