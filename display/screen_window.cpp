// Scroll bars, client area and background of the window that is painted on.
#include "display/screen_window.h"

#include "support/gdi_objects.h"

#include <algorithm>

namespace vellum {
namespace {

ScrollState scrollState(HWND window, int bar) {
    ScrollState state;
    int least = 0;
    int most = 0;
    if (window != nullptr && GetScrollRange(window, bar, &least, &most)) {
        state = {GetScrollPos(window, bar), least, most};
    }
    return state;
}

Extent extentOf(const RECT &area) {
    return {area.right - area.left, area.bottom - area.top};
}

Extent clientArea(HWND window, HDC dc) {
    RECT area{};
    if (window != nullptr) {
        GetClientRect(window, &area);
        return extentOf(area);
    }
    const PixelUnits pixels(dc);
    if (GetClipBox(dc, &area) == ERROR) {
        return {GetDeviceCaps(dc, HORZRES), GetDeviceCaps(dc, VERTRES)};
    }
    return {area.right, area.bottom};
}

// What of a window's frame lies beside its client area.
struct Margins {
    LONG side; // the wider one
    LONG bottom;
};

Margins marginsOf(HWND window) {
    RECT whole{};
    RECT client{};
    GetWindowRect(window, &whole);
    GetClientRect(window, &client);
    MapWindowPoints(window, nullptr, reinterpret_cast<POINT *>(&client), 2);
    return {std::max(client.left - whole.left, whole.right - client.right), whole.bottom - client.bottom};
}

// The client area as it would be without scroll bars. A window that is too small for a bar has it without showing it.
Extent roomWithoutBars(HWND window, const Extent &barThickness) {
    Extent room = clientArea(window, nullptr);
    const auto style = GetWindowLongA(window, GWL_STYLE);
    const Margins margins = marginsOf(window);
    if ((style & WS_VSCROLL) != 0 && margins.side >= barThickness.width) {
        room.width += barThickness.width;
    }
    if ((style & WS_HSCROLL) != 0 && margins.bottom >= barThickness.height) {
        room.height += barThickness.height;
    }
    return room;
}

void showScrollBar(HWND window, int bar, bool shown) {
    ShowScrollBar(window, bar, shown ? TRUE : FALSE);
    if (!shown) {
        SetScrollPos(window, bar, 0, TRUE);
    }
}

Extent showScrollBars(HWND window, HDC dc, const ScrollBars &bars) {
    if (window != nullptr) {
        showScrollBar(window, SB_HORZ, bars.horizontal);
        showScrollBar(window, SB_VERT, bars.vertical);
    }
    return clientArea(window, dc);
}

// The brush of a window class: system colours are given by their number and 1.
HBRUSH classBrush(HWND window) {
    const ULONG_PTR brush = GetClassLongPtrA(window, GCLP_HBRBACKGROUND);
    constexpr ULONG_PTR kMostSystemColors = COLOR_MENUBAR + 1;
    return brush != 0 && brush <= kMostSystemColors ? GetSysColorBrush(static_cast<int>(brush) - 1)
                                                    : reinterpret_cast<HBRUSH>(brush);
}

} // namespace

ScrollStates scrollStates(HWND window) {
    return {scrollState(window, SB_HORZ), scrollState(window, SB_VERT)};
}

Extent arrangeScrollBars(HWND window, HDC dc, const Extent &target) {
    if (window == nullptr) {
        return clientArea(window, dc);
    }
    const Extent barThickness{GetSystemMetrics(SM_CXVSCROLL), GetSystemMetrics(SM_CYHSCROLL)};
    return showScrollBars(window, dc, scrollBarsFor(target, roomWithoutBars(window, barThickness), barThickness));
}

Extent hideScrollBars(HWND window, HDC dc) {
    return showScrollBars(window, dc, {});
}

void fillBackground(HWND window, HDC dc, const Extent &client, const RECT &picture) {
    const PixelUnits pixels(dc);
    if (HBRUSH brush = classBrush(window); brush != nullptr && pixels) {
        if (picture.left < picture.right && picture.top < picture.bottom) {
            ExcludeClipRect(dc, picture.left, picture.top, picture.right, picture.bottom);
        }
        const SelectedObject selected(dc, brush);
        PatBlt(dc, 0, 0, client.width, client.height, PATCOPY);
    }
}

void finishWindow(HWND window, HDC dc, const Extent &client, const Extent &picture) {
    if (window == nullptr) {
        return;
    }
    fillBackground(window, dc, client, {0, 0, picture.width, picture.height});
    ValidateRect(window, nullptr);
}

} // namespace vellum
