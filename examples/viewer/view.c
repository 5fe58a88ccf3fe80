/*
 * Painting and scrolling. There is no bitmap of the page: every WM_PAINT decodes it anew, straight into the window.
 *
 * The painter reads the scroll bars and shows or hides them itself. Their position is a fraction of their range, so
 * with a fixed range the window goes on showing the same part of the page when its size, or the page's, changes.
 */
#include "viewer.h"

/*
 * Within the 16 bits that some messages have for a position. A page that hides more pixels than this is scrolled by
 * several of them at least.
 */
#define SCROLL_RANGE 30000

static SIZE clientSize(HWND window) {
    RECT client;
    SIZE size;
    GetClientRect(window, &client);
    size.cx = client.right;
    size.cy = client.bottom;
    return size;
}

static Placement currentPlacement(const Viewer *viewer) {
    const SIZE client = clientSize(viewer->window);
    HDC dc = GetDC(viewer->window);
    SIZE dotsPerInch;
    dotsPerInch.cx = GetDeviceCaps(dc, LOGPIXELSX);
    dotsPerInch.cy = GetDeviceCaps(dc, LOGPIXELSY);
    ReleaseDC(viewer->window, dc);
    return placePage(&viewer->document.pageSize, &viewer->view, &client, &dotsPerInch);
}

/* What lies left of the window, or above it, rounded as the painter does it. */
static LONG scrolledAway(HWND window, int bar, LONG length, LONG room) {
    return length > room ? MulDiv(GetScrollPos(window, bar), length - room, SCROLL_RANGE) : 0;
}

RECT pageOnScreen(const Viewer *viewer) {
    const SIZE client = clientSize(viewer->window);
    const SIZE size = currentPlacement(viewer).size;
    RECT page = {0, 0, size.cx, size.cy};
    OffsetRect(&page, -scrolledAway(viewer->window, SB_HORZ, size.cx, client.cx),
               -scrolledAway(viewer->window, SB_VERT, size.cy, client.cy));
    return page;
}

/* ---------------------------------------------------------------- painting ---------------------------------------- */

/* Writes a text into the middle of the window, on a background of its own. */
static void paintText(HWND window, const char *text) {
    HDC dc = GetDC(window);
    const HGDIOBJ fontBefore = SelectObject(dc, GetStockObject(DEFAULT_GUI_FONT));
    RECT area, around;
    GetClientRect(window, &area);
    around = area;
    DrawTextA(dc, text, -1, &around, DT_CALCRECT | DT_NOPREFIX);
    OffsetRect(&around, (area.right - around.right) / 2, (area.bottom - around.bottom) / 2);
    InflateRect(&around, 8, 8);
    FillRect(dc, &around, GetSysColorBrush(COLOR_INFOBK));
    InflateRect(&around, -8, -8);
    SetTextColor(dc, GetSysColor(COLOR_INFOTEXT));
    SetBkMode(dc, TRANSPARENT);
    DrawTextA(dc, text, -1, &around, DT_NOPREFIX);
    SelectObject(dc, fontBefore);
    ReleaseDC(window, dc);
}

/* A window without a page: nothing to scroll. */
static void paintNothing(Viewer *viewer, HDC dc) {
    RECT area;
    ShowScrollBar(viewer->window, SB_BOTH, FALSE);
    GetClientRect(viewer->window, &area);
    FillRect(dc, &area, (HBRUSH)GetClassLongPtrA(viewer->window, GCLP_HBRBACKGROUND));
}

/* Result: the error number. */
static DWORD paintPage(Viewer *viewer, HDC dc) {
    const Document *document = &viewer->document;
    const Placement placement = currentPlacement(viewer);
    DWORD painted, error;
    SaveDC(dc); /* the painter may leave a mapping mode of its own behind */
    viewer->view.painting = TRUE;
    painted = DecompressToScreen(document->kind, viewer->window, dc, document->path, document->page, placement.ratios,
                                 placement.flags);
    viewer->view.painting = FALSE;
    error = painted ? VELLUM_OK : TiffError();
    RestoreDC(dc, -1);
    paintNote(viewer, dc);
    return error;
}

void paintView(Viewer *viewer) {
    const Document *document = &viewer->document;
    const SIZE before = clientSize(viewer->window);
    SIZE after;
    char message[64];
    DWORD error = document->pageError;
    PAINTSTRUCT paint;
    HDC dc = BeginPaint(viewer->window, &paint);
    if (viewer->view.painting) {
        /* The painter has a message box open, and is not to be called again before it returns. */
        EndPaint(viewer->window, &paint);
        return;
    }
    if (document->pageCount > 0 && error == VELLUM_OK) {
        error = paintPage(viewer, dc);
    } else {
        paintNothing(viewer, dc);
    }
    EndPaint(viewer->window, &paint);

    after = clientSize(viewer->window);
    if (after.cx != before.cx || after.cy != before.cy) {
        /* Scroll bars came or went: there is more room, or less, than what was painted for. */
        InvalidateRect(viewer->window, NULL, TRUE);
    } else if (document->pageCount == 0) {
        paintText(viewer->window, "Open a file (Ctrl+O), or drop one here.");
    } else if (error != VELLUM_OK) {
        /* Over what could be painted of a damaged page. */
        paintText(viewer->window, TiffErrorString(message, error));
    }
}

/* ---------------------------------------------------------------- scrolling --------------------------------------- */

void prepareScrolling(HWND window) {
    /* No nPage: with one the position would end before the range does. */
    SetScrollRange(window, SB_HORZ, 0, SCROLL_RANGE, FALSE);
    SetScrollRange(window, SB_VERT, 0, SCROLL_RANGE, FALSE);
    ShowScrollBar(window, SB_BOTH, FALSE);
}

static void scrollTo(const Viewer *viewer, int bar, LONG position) {
    const LONG before = GetScrollPos(viewer->window, bar);
    position = position < 0 ? 0 : position > SCROLL_RANGE ? SCROLL_RANGE : position;
    if (position != before) {
        SetScrollPos(viewer->window, bar, position, TRUE);
        InvalidateRect(viewer->window, NULL, TRUE);
    }
}

void scrollToStart(Viewer *viewer) {
    scrollTo(viewer, SB_HORZ, 0);
    scrollTo(viewer, SB_VERT, 0);
}

void scrollPixels(Viewer *viewer, int bar, LONG pixels) {
    const SIZE client = clientSize(viewer->window);
    const SIZE page = currentPlacement(viewer).size;
    const LONG hidden = bar == SB_HORZ ? page.cx - client.cx : page.cy - client.cy;
    LONG positions;
    if (hidden <= 0 || pixels == 0) {
        return;
    }
    pixels = pixels < -hidden ? -hidden : pixels > hidden ? hidden : pixels;
    positions = MulDiv(pixels, SCROLL_RANGE, hidden);
    if (positions == 0) {
        positions = pixels < 0 ? -1 : 1; /* of a page so large that a position is farther */
    }
    scrollTo(viewer, bar, GetScrollPos(viewer->window, bar) + positions);
}

/* A little less than what the window shows, so that a line of it stays. */
static LONG screenful(HWND window, int bar) {
    const SIZE client = clientSize(window);
    const LONG length = (bar == SB_HORZ ? client.cx : client.cy) - SCROLL_LINE;
    return length < SCROLL_LINE ? SCROLL_LINE : length;
}

void scrollByWheel(Viewer *viewer, int bar, LONG turn) {
    const LONG most = screenful(viewer->window, bar);
    LONG *rest = &viewer->wheelRest[bar];
    UINT lines = 3;
    SystemParametersInfoA(SPI_GETWHEELSCROLLLINES, 0, &lines, 0);
    /* WHEEL_PAGESCROLL is a very large number of lines. */
    *rest -= turn * (lines < (UINT)(most / SCROLL_LINE) ? (LONG)lines * SCROLL_LINE : most);
    scrollPixels(viewer, bar, *rest / WHEEL_DELTA);
    *rest %= WHEEL_DELTA;
}

/* Where the user drags the thumb to. */
static LONG thumbPosition(HWND window, int bar) {
    SCROLLINFO info = {sizeof info, SIF_TRACKPOS, 0, 0, 0, 0, 0};
    GetScrollInfo(window, bar, &info);
    return info.nTrackPos;
}

void handleScrollBar(Viewer *viewer, int bar, WORD request) {
    switch (request) {
    case SB_LINEUP:
        scrollPixels(viewer, bar, -SCROLL_LINE);
        break;
    case SB_LINEDOWN:
        scrollPixels(viewer, bar, SCROLL_LINE);
        break;
    case SB_PAGEUP:
        scrollPixels(viewer, bar, -screenful(viewer->window, bar));
        break;
    case SB_PAGEDOWN:
        scrollPixels(viewer, bar, screenful(viewer->window, bar));
        break;
    case SB_THUMBTRACK:
    case SB_THUMBPOSITION:
        scrollTo(viewer, bar, thumbPosition(viewer->window, bar));
        break;
    case SB_TOP:
        scrollTo(viewer, bar, 0);
        break;
    case SB_BOTTOM:
        scrollTo(viewer, bar, SCROLL_RANGE);
        break;
    default:
        break;
    }
}

void rotateView(Viewer *viewer) {
    const LONG x = GetScrollPos(viewer->window, SB_HORZ);
    const LONG y = GetScrollPos(viewer->window, SB_VERT);
    viewer->view.rotation = (viewer->view.rotation + 1) % 4; /* VELLUM_ROTATE_0 to _270 are quarter turns */
    /* What was at the top is on the right now. */
    scrollTo(viewer, SB_HORZ, SCROLL_RANGE - y);
    scrollTo(viewer, SB_VERT, x);
    InvalidateRect(viewer->window, NULL, TRUE);
}
