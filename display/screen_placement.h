// Where a picture goes on the screen: how large it becomes, and which part of it the window shows. Numbers only.
//
// The canvas is the picture as it is turned, in its own pixels; the target is the canvas on the screen, in the screen's
// pixels.
#pragma once

#include <windows.h>

namespace vellum {

// The largest target: what GDI computes with in 32 bits without overflow.
constexpr LONG kLargestTarget = 0x7FFFFFF;

struct Extent {
    LONG width = 0;
    LONG height = 0;

    [[nodiscard]] constexpr bool empty() const { return width <= 0 || height <= 0; }
    [[nodiscard]] constexpr Extent turned() const { return {height, width}; }
};

// A scroll bar's position, and its range.
struct ScrollState {
    LONG position = 0;
    LONG least = 0;
    LONG most = 0;
};

// The factor of one direction: the device's dots per inch over the picture's (0: unknown, the device's), times a ratio
// unless one of its numbers is zero.
double scaleFactor(double deviceDotsPerInch, double pictureDotsPerInch, DWORD numerator, DWORD denominator);

// A length of the canvas on the screen, rounded; 0 for no canvas.
LONG targetLength(LONG canvas, double scale);

// Some of the canvas's pixels, the end not among them.
struct Span {
    LONG first = 0;
    LONG end = 0;

    [[nodiscard]] constexpr LONG length() const { return end - first; }
    [[nodiscard]] constexpr bool holds(LONG pixel) const { return pixel >= first && pixel < end; }
};

// What of the canvas a client area shows that is as long as `client`. The first pixel is the nearest to the scroll
// position; all of the client area that the canvas reaches is covered.
Span shownSpan(LONG canvas, LONG target, LONG client, const ScrollState &scroll);

// One direction of the canvas on the screen: canvas pixel `shown.first` is at 0.
struct Projection {
    LONG canvas = 0; // the whole length
    LONG target = 0; // that of the whole canvas on the screen
    Span shown;
    LONG most = 0; // pixels of the screen that there is room for

    // Where a canvas pixel begins: rounded, and no farther than there is room.
    [[nodiscard]] LONG at(LONG pixel) const;
    [[nodiscard]] LONG length() const { return at(shown.end); }
    // Whether there is no room for all that is shown.
    [[nodiscard]] bool isCut() const;
    // The canvas pixel that covers a pixel of the screen: the last one that does not begin behind it.
    [[nodiscard]] LONG pixelAt(LONG screenPixel) const;
};

// Which scroll bars a target needs in a window that has this much room without any, when a bar takes so much away.
struct ScrollBars {
    bool horizontal = false;
    bool vertical = false;
};
ScrollBars scrollBarsFor(const Extent &target, const Extent &roomWithoutBars, const Extent &barThickness);

} // namespace vellum
