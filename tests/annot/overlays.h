// Windows: text that a test draws itself on pictures, for what the overlays must look like.
#pragma once

#include "annot/fax_pages.h"
#include "write/bitmaps.h"
#include "write/packed_dibs.h"

namespace vellum::test {

inline LOGFONTA overlayFont(const char *face, DWORD points, DWORD resolution) {
    LOGFONTA font{};
    font.lfHeight = -MulDiv(static_cast<int>(points), static_cast<int>(resolution), 72);
    lstrcpynA(font.lfFaceName, face, LF_FACESIZE);
    return font;
}

struct PlacedLine {
    int x;
    int y;
    std::string text;
};

// Draws lines with a transparent background, not beyond the clip rectangle. Result: the picture then.
inline Pixels drawnOn(HBITMAP picture, const LOGFONTA &font, const RECT &clip, const std::vector<PlacedLine> &lines) {
    const ExpectedPage page(0, 0, font, picture);
    SetBkMode(page.dc(), TRANSPARENT);
    for (const PlacedLine &line : lines) {
        ExtTextOutA(page.dc(), line.x, line.y, ETO_CLIPPED, &clip, line.text.c_str(),
                    static_cast<UINT>(line.text.size()), nullptr);
    }
    return page.pixels();
}

// Of a font: its height and the space between two lines.
inline int lineHeightOf(const LOGFONTA &font) {
    const ExpectedPage page(1, 1, font);
    TEXTMETRICA metrics{};
    GetTextMetricsA(page.dc(), &metrics);
    return metrics.tmHeight + metrics.tmExternalLeading;
}

// The screen's dots per inch; the tests' screen has the same in both directions.
inline DWORD screenResolution() {
    const HDC screen = GetDC(nullptr);
    const int dots = GetDeviceCaps(screen, LOGPIXELSX);
    ReleaseDC(nullptr, screen);
    return static_cast<DWORD>(dots);
}

} // namespace vellum::test
