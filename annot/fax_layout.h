// Where the characters of a text land on fax pages: units, tab stops, wrapping and page breaks. Free of GDI: a font is
// known by its measures, and pages are what they are drawn on. Every step takes the same time, so a text is laid out in
// time linear in its size; memory is taken for one line of it.
#pragma once

#include "core/stream.h"

#include <array>
#include <cstdint>
#include <string_view>

namespace vellum {

// Distances in pixels. No field of a record leads beyond 32 bits, so sums of a few of them cannot wrap.
using Pixels = std::int64_t;

constexpr std::size_t kTabStops = 16;

// What there is to know of a font, in the pixels of its device.
struct FontMeasures {
    Pixels lineHeight = 0;
    // From the start of a byte's character to that of the next one. By design every byte is a character: in code pages
    // of two bytes for one a line's width is that of its bytes, and it is wrapped there, if need be within a pair.
    std::array<Pixels, 256> advances{};
    // What a text is wider than its characters' advances together.
    Pixels overhang = 0;
};

// The pixels that lengths of a record stand for; too long a length sticks at 32 bits.
Pixels faxColumns(const FaxPageParams &params, DWORD length);
Pixels faxRows(const FaxPageParams &params, DWORD length);

// A page's frame, in pixels from its upper left corner.
struct FaxFrame {
    Pixels left = 0;
    Pixels top = 0;
    Pixels right = 0;  // where lines are wrapped
    Pixels bottom = 0; // where no line begins any more
    Pixels lineSpacing = 0;
    std::array<Pixels, kTabStops> tabStops{};
};
FaxFrame faxFrame(const FaxPageParams &params);

// What pages are drawn on.
class FaxCanvas {
public:
    // Draws characters with their upper left corner there.
    virtual void draw(Pixels x, Pixels y, std::string_view text) = 0;
    // The page is full: takes the next one. False to draw no more.
    virtual bool turnPage() = 0;

protected:
    ~FaxCanvas() = default;
};

enum class FaxTextEnd {
    Reached,      // everything is drawn
    CanvasIsFull, // the canvas took no more pages
    NoMemory,     // for a line
};

// Lays a text out, from the stream's position to its end.
[[nodiscard]] FaxTextEnd layOutFaxText(StreamHandle text, const FaxFrame &frame, const FontMeasures &font,
                                       FaxCanvas &canvas);

} // namespace vellum
