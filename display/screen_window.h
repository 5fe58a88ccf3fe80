// The window that a picture is painted on: its scroll bars, its client area, and what lies beside the picture.
#pragma once

#include "display/screen_placement.h"

namespace vellum {

// The scroll bars' positions and ranges before the picture is placed.
struct ScrollStates {
    ScrollState horizontal;
    ScrollState vertical;
};
ScrollStates scrollStates(HWND window);

// Shows the scroll bars that a target of this size needs and no other; a hidden one is set to 0. Result: the client
// area that is left. Without a window there are no bars, and the clip box of the device context is the client area.
Extent arrangeScrollBars(HWND window, HDC dc, const Extent &target);

// The same without any scroll bar.
Extent hideScrollBars(HWND window, HDC dc);

// Fills the client area with the brush of the window's class, but for the picture. The device context is left as it
// was.
void fillBackground(HWND window, HDC dc, const Extent &client, const RECT &picture);

// The same for a picture in the upper left corner. Then nothing of the window is left to be painted.
void finishWindow(HWND window, HDC dc, const Extent &client, const Extent &picture);

} // namespace vellum
