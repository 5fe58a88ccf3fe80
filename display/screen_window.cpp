// Scroll bars, client area and background of the window that is painted on.
#include "display/screen_window.h"

#include "support/gdi_objects.h"

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
    GetClipBox(dc, &area);
    return {area.right, area.bottom};
}

// The client area as it would be without scroll bars.
Extent roomWithoutBars(HWND window, const Extent &barThickness) {
    Extent room = clientArea(window, nullptr);
    const auto style = GetWindowLongA(window, GWL_STYLE);
    room.width += (style & WS_VSCROLL) != 0 ? barThickness.width : 0;
    room.height += (style & WS_HSCROLL) != 0 ? barThickness.height : 0;
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
    if (HBRUSH brush = classBrush(window); brush != nullptr) {
        const PixelUnits pixels(dc);
        if (picture.left < picture.right && picture.top < picture.bottom) {
            ExcludeClipRect(dc, picture.left, picture.top, picture.right, picture.bottom);
        }
        SelectObject(dc, brush);
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
