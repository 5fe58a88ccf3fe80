// Text on pictures: a form that a text file is printed on, and lines of text on a copy of a bitmap or a DIB.
#include "annot/fax_page.h"
#include "annot/text_drawing.h"
#include "annot/text_lines.h"
#include "core/image_dimensions.h"
#include "display/dib_bitmap.h"
#include "display/loading.h"
#include "support/numeric.h"
#include "support/wait_cursor.h"

#include <algorithm>

namespace vellum {
namespace {

// Image 0 of a TIFF; empty when there is none, with the error set.
OwnedBitmap loadForm(const char *path) {
    const LoadedImage image(path, 0);
    return OwnedBitmap(image ? loadBitmap(image.tiff(), image.index()) : nullptr);
}

// Draws the text's first page on the form. Result: the page as it is handed over, or null.
HANDLE fillForm(HBITMAP form, const FaxPageParams *params, DWORD kind) {
    HANDLE page = nullptr;
    DWORD status = 0;
    return drawFaxPages(params, 1, &page, kind, form, status) == 0 ? nullptr : page;
}

struct OverlayText {
    LONG x; // pixels of the screen
    LONG y;
    const char *text;
    const char *face;
    DWORD points;
    DWORD xResolution; // dots per inch of the picture; 0 for the screen's
    DWORD yResolution;

    [[nodiscard]] bool isThere() const { return text != nullptr && face != nullptr; }
};

// Rounds half pixels away from 0.
std::int64_t scaled(LONG position, DWORD resolution, DWORD screenResolution) {
    const std::int64_t divisor = std::max<DWORD>(screenResolution, 1);
    const std::int64_t product = std::int64_t{position} * resolution;
    return (product < 0 ? product - divisor / 2 : product + divisor / 2) / divisor;
}

// Whole dots per inch; 0 for a picture that does not tell.
DWORD wholeDotsPerInch(LONG pixelsPerMeter) {
    return static_cast<DWORD>(std::max<LONG>(truncateToLong(pixelsPerMeter * kMetersPerInch), 0));
}

OwnedFont createFont(const OverlayText &overlay, DWORD resolution, const BITMAP &picture) {
    LOGFONTA font{};
    setHeight(font, overlay.points, resolution, picture);
    setFace(font, overlay.face);
    return OwnedFont(CreateFontIndirectA(&font));
}

// By design: what bounds the text are its coordinates as they were given, in pixels of the picture; where it begins
// depends on the resolutions. Of a picture coarser than the screen the text's beginning is cut off.
void drawLines(HDC dc, const OverlayText &overlay, RECT clip, std::int64_t x, std::int64_t y) {
    const LONG lineHeight = lineHeightOf(dc);
    TextLines lines(overlay.text);
    for (TextLine line; clip.top < clip.bottom && lines.next(line);) {
        if (line.lineFeedsBefore > 0) {
            y += static_cast<std::int64_t>(line.lineFeedsBefore) * lineHeight;
            clip.top = static_cast<LONG>(std::clamp<std::int64_t>(y, 0, clip.bottom));
        }
        drawTextLine(dc, x, y, line.text, &clip);
    }
}

// False when the bitmap cannot be drawn on.
bool drawOverlay(HBITMAP bitmap, const OverlayText &overlay) {
    const BITMAP size = describeBitmap(bitmap);
    const RECT clip = {std::max<LONG>(overlay.x, 0), std::max<LONG>(overlay.y, 0), size.bmWidth, size.bmHeight};
    const DWORD screenX = screenDotsPerInch(LOGPIXELSX);
    const DWORD screenY = screenDotsPerInch(LOGPIXELSY);
    const DWORD resolutionX = overlay.xResolution != 0 ? overlay.xResolution : screenX;
    const DWORD resolutionY = overlay.yResolution != 0 ? overlay.yResolution : screenY;
    const MemoryDc dc(nullptr);
    const SelectedObject selected(dc.get(), bitmap);
    if (!dc || !selected.selected()) {
        return false;
    }
    const OwnedFont font = createFont(overlay, resolutionY, size);
    const SelectedObject selectedFont(dc.get(), font.get());
    SetBkMode(dc.get(), TRANSPARENT);
    if (clip.left < clip.right) {
        drawLines(dc.get(), overlay, clip, scaled(overlay.x, resolutionX, screenX),
                  scaled(overlay.y, resolutionY, screenY));
    }
    return true;
}

HBITMAP overlayBitmap(HBITMAP bitmap, const OverlayText &overlay) {
    if (bitmap == nullptr || !overlay.isThere()) {
        return nullptr;
    }
    OwnedBitmap copy = copyBitmap(bitmap);
    return copy && drawOverlay(copy.get(), overlay) ? copy.release() : nullptr;
}

HGLOBAL overlayDib(HGLOBAL dib, OverlayText overlay) {
    const DibView view(dib);
    if (!view || !overlay.isThere()) {
        return nullptr;
    }
    overlay.xResolution = wholeDotsPerInch(view.header().biXPelsPerMeter);
    overlay.yResolution = wholeDotsPerInch(view.header().biYPelsPerMeter);
    DrawableDib copy(view);
    if (!copy || !drawOverlay(copy.bitmap(), overlay)) {
        return nullptr;
    }
    GlobalBlock result = std::move(copy).pack();
    setResolution(result.get(), overlay.xResolution, overlay.yResolution);
    return result.release();
}

} // namespace
} // namespace vellum

extern "C" {

HBITMAP VELLUMAPI BitmapFormOverlay(const char *tiffPath, const FaxPageParams *params) {
    const vellum::WaitCursor wait;
    vellum::OwnedBitmap form = vellum::loadForm(tiffPath);
    if (form) {
        // By design: the form is worth having whatever became of the text.
        vellum::fillForm(form.get(), params, VELLUM_FAX_BITMAPS);
    }
    return form.release();
}

HGLOBAL VELLUMAPI DIBFormOverlay(const char *tiffPath, const FaxPageParams *params) {
    const vellum::WaitCursor wait;
    const vellum::OwnedBitmap form = vellum::loadForm(tiffPath);
    return form ? vellum::fillForm(form.get(), params, VELLUM_FAX_DIBS) : nullptr;
}

HBITMAP VELLUMAPI BitmapTextOverlay(HBITMAP bitmap, LONG x, LONG y, const char *text, const char *face, DWORD points,
                                    DWORD xResolution, DWORD yResolution) {
    const vellum::WaitCursor wait;
    return vellum::overlayBitmap(bitmap, {x, y, text, face, points, xResolution, yResolution});
}

HGLOBAL VELLUMAPI DIBTextOverlay(HGLOBAL dib, LONG x, LONG y, const char *text, const char *face, DWORD points) {
    const vellum::WaitCursor wait;
    return vellum::overlayDib(dib, {x, y, text, face, points, 0, 0});
}

} // extern "C"
