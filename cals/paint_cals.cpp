// Painting of a CALS file on a window: a source for the screen painter, and line functions of its own.
#include "cals/cals_header.h"
#include "cals/cals_picture.h"
#include "display/loading.h"
#include "display/screen_lines.h"
#include "display/screen_painter.h"
#include "support/wait_cursor.h"

#include <algorithm>
#include <cstring>

namespace vellum {
namespace {

class CalsOnScreen : public ScreenSource {
public:
    CalsOnScreen(const char *path, const CalsPicture &picture) : path_(path), picture_(picture) {}

    [[nodiscard]] LineFunc lineFunction(Rotation rotation) const override {
        switch (rotation) {
        case Rotation::None:
            return asLineFunc<FlushCALSLineToScreen>;
        case Rotation::By90:
            return asLineFunc<FlushCALS90LineToScreen>;
        case Rotation::By180:
            return asLineFunc<FlushCALS180LineToScreen>;
        case Rotation::By270:
            break;
        }
        return asLineFunc<FlushCALS270LineToScreen>;
    }
    void decode(LineFunc forEachLine, DWORD userValue) const override {
        setError(decodeCals(path_, picture_, forEachLine, userValue));
    }

private:
    const char *path_;
    const CalsPicture &picture_;
};

// Set bits are black: shown as they are they would be white.
ScreenPicture onScreen(const CalsPicture &picture, HDC dc) {
    ScreenPicture shown;
    shown.info = GlobalBlock::allocate(Size(sizeof(BilevelInfo)));
    if (const GlobalView<BilevelInfo> info(shown.info.get()); info) {
        *info = picture.describe();
    }
    const int density = picture.dotsPerInch > 0 ? picture.dotsPerInch : GetDeviceCaps(dc, LOGPIXELSX);
    shown.dotsPerInchX = density;
    shown.dotsPerInchY = density;
    shown.inverted = true;
    return shown;
}

bool paintCals(const char *path, const ScreenRequest &request) {
    if (path == nullptr || *path == '\0' || request.dc == nullptr) {
        return false;
    }
    CalsInfo info;
    if (!readCalsInfo(path, info)) {
        return false;
    }
    CalsPicture picture;
    if (const Error error = measureCals(info, picture); error != Error::None) {
        return recorded(error) != 0;
    }
    if (const Error error = checkCalsWorth(path, picture); error != Error::None) {
        return recorded(error) != 0;
    }
    const WaitCursor wait;
    return paintOnScreen(onScreen(picture, request.dc), CalsOnScreen(path, picture), request);
}

} // namespace
} // namespace vellum

using vellum::Rotation;
using vellum::ScreenDepth;
using vellum::showLine;

extern "C" {

DWORD VELLUMAPI DecompressCALSToScreen(HWND window, HDC dc, const char *path, const LONG *zoom, BYTE flags) {
    // A pair with a negative number counts for nothing, like one with a zero.
    DWORD ratios[4] = {};
    if (zoom != nullptr) {
        std::transform(zoom, zoom + 4, ratios,
                       [](LONG number) { return static_cast<DWORD>(std::max(number, LONG{0})); });
    }
    return vellum::paintCals(path, {window, dc, ratios, flags}) ? 1 : 0;
}

DWORD VELLUMAPI FlushCALSLineToScreen(BYTE *line, LONG row, ScreenLineContext *context) {
    return showLine(Rotation::None, ScreenDepth::Mono, line, row, context);
}

DWORD VELLUMAPI FlushCALS90LineToScreen(BYTE *line, LONG row, ScreenLineContext *context) {
    return showLine(Rotation::By90, ScreenDepth::Mono, line, row, context);
}

DWORD VELLUMAPI FlushCALS180LineToScreen(BYTE *line, LONG row, ScreenLineContext *context) {
    return showLine(Rotation::By180, ScreenDepth::Mono, line, row, context);
}

DWORD VELLUMAPI FlushCALS270LineToScreen(BYTE *line, LONG row, ScreenLineContext *context) {
    return showLine(Rotation::By270, ScreenDepth::Mono, line, row, context);
}

} // extern "C"
