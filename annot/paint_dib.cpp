// A packed DIB on a window, and a note over it, in answer to WM_PAINT. The part that is seen is scaled by
// scaleRectangle; what that does not take is left to StretchDIBits.
#include "annot/note_drawing.h"
#include "annot/rectangle_scaler.h"
#include "display/palette.h"
#include "display/screen_window.h"
#include "support/numeric.h"
#include "support/screen_dc.h"
#include "support/window_painting.h"

#include <algorithm>

namespace vellum {
namespace {

constexpr double kMetersPerInch = 0.0254;

// More pixels than this are not made for a window that shows a part of them only: a single pixel of the image that
// fills a screen many times over.
constexpr std::int64_t kMostScaledPixels = std::int64_t{1} << 25;

struct Request {
    HWND window;
    const RECT *area;
    const LONG *zoom;
    DWORD mode;
    const NoteRecord *note;

    [[nodiscard]] bool fitted() const { return (mode & VELLUM_SHOW_FIT) != 0; }
};

// Where the picture is on the window. All of it is empty for a picture that cannot be shown.
struct Placement {
    NoteScale resolution; // pixels of the screen for one of the picture at its true size
    NoteScale scale;      // as it is shown
    Extent client;
    PixelRectangle part; // what is seen of the picture
    Extent shown;        // the size of that on the screen
};

double zoomed(double scale, const LONG *ratio) {
    return ratio[0] != 0 && ratio[1] != 0 ? scale * ratio[0] / ratio[1] : scale;
}

// The smaller of the two factors for both directions, so that the picture keeps its proportions.
NoteScale fittingScale(const DibView &dib, const NoteScale &resolution, const Extent &client) {
    const double factor =
        std::min(client.width / (dib.width() * resolution.x), client.height / (dib.height() * resolution.y));
    return {resolution.x * factor, resolution.y * factor};
}

NoteScale resolutionOf(const BITMAPINFOHEADER &header, HDC dc) {
    return {scaleFactor(GetDeviceCaps(dc, LOGPIXELSX), header.biXPelsPerMeter * kMetersPerInch, 0, 0),
            scaleFactor(GetDeviceCaps(dc, LOGPIXELSY), header.biYPelsPerMeter * kMetersPerInch, 0, 0)};
}

Extent targetOf(const BITMAPINFOHEADER &header, const NoteScale &scale) {
    return {targetLength(header.biWidth, scale.x), targetLength(header.biHeight, scale.y)};
}

// A length on the screen that no client area cuts.
LONG lengthOnScreen(LONG canvas, LONG target, const Span &shown) {
    return Projection{canvas, target, shown, kLargestTarget}.length();
}

void show(Placement &placement, const BITMAPINFOHEADER &header, const Span &columns, const Span &rows) {
    const Extent target = targetOf(header, placement.scale);
    placement.part = {columns.first, rows.first, columns.length(), rows.length()};
    placement.shown = {lengthOnScreen(header.biWidth, target.width, columns),
                       lengthOnScreen(header.biHeight, target.height, rows)};
}

void placeFitted(Placement &placement, const DibView &dib, const Request &request) {
    placement.client = hideScrollBars(request.window, nullptr);
    placement.scale = fittingScale(dib, placement.resolution, placement.client);
    show(placement, dib.header(), {0, dib.header().biWidth}, {0, dib.header().biHeight});
}

void placeScrolled(Placement &placement, const BITMAPINFOHEADER &header, const Request &request) {
    placement.scale = placement.resolution;
    if (request.zoom != nullptr) {
        placement.scale = {zoomed(placement.scale.x, request.zoom), zoomed(placement.scale.y, request.zoom + 2)};
    }
    const Extent target = targetOf(header, placement.scale);
    const ScrollStates scroll = scrollStates(request.window);
    placement.client = arrangeScrollBars(request.window, nullptr, target);
    show(placement, header, shownSpan(header.biWidth, target.width, placement.client.width, scroll.horizontal),
         shownSpan(header.biHeight, target.height, placement.client.height, scroll.vertical));
}

Placement place(const DibView &dib, const Request &request) {
    Placement placement;
    const ScreenDc dc(request.window);
    if (!dib || !dc) {
        placement.client = hideScrollBars(request.window, nullptr);
        return placement;
    }
    placement.resolution = resolutionOf(dib.header(), dc.get());
    if (request.fitted()) {
        placeFitted(placement, dib, request);
    } else {
        placeScrolled(placement, dib.header(), request);
    }
    return placement;
}

// Draws a part of a DIB, in its own pixels from the top row on, to the upper left corner.
void draw(HDC dc, const DibView &dib, const PixelRectangle &part, const Extent &size, DWORD rasterOperation) {
    const BYTE *info = reinterpret_cast<const BYTE *>(dib.colours()) - dib.header().biSize;
    StretchDIBits(dc, 0, 0, size.width, size.height, part.x, dib.header().biHeight - part.y - part.height, part.width,
                  part.height, dib.bits(), reinterpret_cast<const BITMAPINFO *>(info), DIB_RGB_COLORS, rasterOperation);
}

void drawPicture(HDC dc, const DibView &dib, const Placement &placement, DWORD rasterOperation) {
    if (placement.shown.empty()) {
        return;
    }
    const auto [width, height] = placement.shown;
    const GlobalBlock scaled = std::int64_t{width} * height <= kMostScaledPixels
                                   ? scaleRectangle(dib, placement.part, width, height)
                                   : GlobalBlock();
    if (const DibView pixels(scaled.get()); pixels) {
        draw(dc, pixels, {0, 0, width, height}, placement.shown, rasterOperation);
        return;
    }
    SetStretchBltMode(dc, COLORONCOLOR);
    draw(dc, dib, placement.part, placement.shown, rasterOperation);
}

void drawNoteOver(HDC dc, const Placement &placement, const Request &request) {
    if (request.note != nullptr && !request.fitted()) {
        drawNote(dc, *request.note, {{placement.part.x, placement.part.y}, placement.scale, {}}, placement.resolution);
    }
}

// What the picture covers.
RECT paintedArea(const Placement &placement, const Request &request) {
    const RECT client = {0, 0, placement.client.width, placement.client.height};
    RECT area = request.area != nullptr ? *request.area : client;
    area.left = std::max(area.left, LONG{0});
    area.top = std::max(area.top, LONG{0});
    area.right = std::min({area.right, client.right, placement.shown.width});
    area.bottom = std::min({area.bottom, client.bottom, placement.shown.height});
    return area;
}

void paint(HDC dc, const DibView &dib, const Placement &placement, const Request &request) {
    const RECT area = paintedArea(placement, request);
    if (const PixelUnits pixels(dc); pixels && dib && area.left < area.right && area.top < area.bottom) {
        IntersectClipRect(dc, area.left, area.top, area.right, area.bottom);
        const bool inverted = (request.mode & VELLUM_SHOW_INVERTED) != 0;
        drawPicture(dc, dib, placement, inverted ? NOTSRCCOPY : SRCCOPY);
        drawNoteOver(dc, placement, request);
    }
    fillBackground(request.window, dc, placement.client, area);
}

Extent clientOf(HWND window) {
    RECT client{};
    GetClientRect(window, &client);
    return {client.right, client.bottom};
}

bool paintDib(HGLOBAL dib, const Request &request) {
    if (dib == nullptr) {
        return static_cast<bool>(WindowPainting(request.window));
    }
    const DibView view(dib, ColourMasks::Taken);
    const Extent before = clientOf(request.window);
    const Placement placement = place(view, request);
    if (before.width != placement.client.width || before.height != placement.client.height) {
        // With a bar more or less everything is somewhere else.
        InvalidateRect(request.window, nullptr, FALSE);
    }
    const WindowPainting painting(request.window);
    if (!painting) {
        return false;
    }
    const bool indexed = view && view.header().biCompression == BI_RGB;
    const OwnedPalette palette = indexed ? makePalette(dib) : OwnedPalette();
    const RealizedPalette realized(painting.get(), palette.get());
    paint(painting.get(), view, placement, request);
    return true;
}

} // namespace
} // namespace vellum

extern "C" LONG VELLUMAPI PaintDIBWithNote(HWND window, HGLOBAL dib, const RECT *area, const LONG *zoom, DWORD mode,
                                           const NoteRecord *note) {
    return window != nullptr && vellum::paintDib(dib, {window, area, zoom, mode, note}) ? 1 : 0;
}
