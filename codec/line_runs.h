// A bilevel line that is to be coded, as the positions of its changing elements: where black begins, where white begins
// again, and so on in turn. A line that begins black has a first position of 0.
#pragma once

#include <windows.h>

#include <limits>
#include <memory>

namespace vellum {

class LineRuns {
public:
    // Positions equal to the width that stand behind the last one, so that every search stops.
    static constexpr LONG kSentinels = 4;
    // The position that stands before the first one: left of every line.
    static constexpr LONG kFrontSentinel = std::numeric_limits<LONG>::min();

    // Makes room for lines of so many pixels; the line is white. False when there is no memory.
    [[nodiscard]] bool allocate(LONG width);

    void setWhite() { close(first()); }

    // Takes the changing elements from a line: bit 1 is black, most significant bit first. Bits behind the width do not
    // count. The line is a line buffer's: up to 3 bytes behind it are read.
    void measure(const BYTE *line);

    [[nodiscard]] LONG width() const { return width_; }
    [[nodiscard]] const LONG *positions() const { return positions_.get() + 1; }

private:
    [[nodiscard]] LONG *first() { return positions_.get() + 1; }
    void close(LONG *end) {
        for (LONG i = 0; i < kSentinels; ++i) {
            end[i] = width_;
        }
    }

    std::unique_ptr<LONG[]> positions_;
    LONG width_ = 0;
};

} // namespace vellum
