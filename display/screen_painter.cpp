// Painting of a picture: its place on the screen, the device contexts, and all that is given back afterwards.
#include "display/screen_painter.h"

#include "core/library_state.h"
#include "display/loading.h"
#include "display/palette.h"
#include "display/screen_window.h"
#include "support/dib_view.h"

#include <cstring>

namespace vellum {
namespace {

constexpr DWORD kRotationFlags = 0x3;

Rotation rotationOf(const ScreenRequest &request) {
    return static_cast<Rotation>(request.flags & kRotationFlags);
}

bool isFitted(const ScreenRequest &request) {
    return (request.flags & VELLUM_SHOW_FIT) != 0;
}

// ---- the place on the screen

struct Placement {
    Extent canvas; // the picture as it is turned
    Extent target; // its size on the screen
    Extent client;
    Span columns; // what is shown of the canvas
    Span rows;
};

// The whole picture. By design: for a turned one the client area's width and height are exchanged; programs that turn
// the window with the picture rely on it.
Placement fitted(const Extent &canvas, const ScreenRequest &request) {
    Placement placement;
    placement.canvas = canvas;
    placement.client = hideScrollBars(request.window, request.dc);
    placement.target = swapsSides(rotationOf(request)) ? placement.client.turned() : placement.client;
    placement.columns = {0, canvas.width};
    placement.rows = {0, canvas.height};
    return placement;
}

// The size by resolution. A direction of the picture keeps its resolution when the picture is turned.
Extent targetByResolution(const ScreenPicture &picture, const Extent &canvas, const ScreenRequest &request) {
    const bool turned = swapsSides(rotationOf(request));
    static constexpr DWORD kNoRatios[4] = {};
    const DWORD *ratios = request.ratios != nullptr ? request.ratios : kNoRatios;
    const double x = scaleFactor(GetDeviceCaps(request.dc, LOGPIXELSX),
                                 turned ? picture.dotsPerInchY : picture.dotsPerInchX, ratios[0], ratios[1]);
    const double y = scaleFactor(GetDeviceCaps(request.dc, LOGPIXELSY),
                                 turned ? picture.dotsPerInchX : picture.dotsPerInchY, ratios[2], ratios[3]);
    return {targetLength(canvas.width, x), targetLength(canvas.height, y)};
}

Placement scrolled(const Extent &canvas, const Extent &target, const ScreenRequest &request) {
    const ScrollStates scroll = scrollStates(request.window);
    Placement placement;
    placement.canvas = canvas;
    placement.target = target;
    placement.client = arrangeScrollBars(request.window, request.dc, target);
    placement.columns = shownSpan(canvas.width, target.width, placement.client.width, scroll.horizontal);
    placement.rows = shownSpan(canvas.height, target.height, placement.client.height, scroll.vertical);
    return placement;
}

Placement place(const ScreenPicture &picture, const Extent &canvas, const ScreenRequest &request) {
    if (isFitted(request)) {
        return fitted(canvas, request);
    }
    const bool byResolution = (request.flags & VELLUM_SHOW_BY_RESOLUTION) != 0;
    return scrolled(canvas, byResolution ? targetByResolution(picture, canvas, request) : canvas, request);
}

void setExtents(HDC dc, int mapMode, const Placement &placement) {
    SetMapMode(dc, mapMode);
    SetWindowOrgEx(dc, 0, 0, nullptr);
    SetViewportOrgEx(dc, 0, 0, nullptr);
    SetWindowExtEx(dc, placement.canvas.width, placement.canvas.height, nullptr);
    SetViewportExtEx(dc, placement.target.width, placement.target.height, nullptr);
}

// Maps the canvas to the target. An isotropic mapping would shrink one direction of pictures whose resolutions differ,
// and of all pictures on a device whose pixels are not quite square: they get the anisotropic one. A fitted picture is
// to be shrunk. Result: the size that the picture has then.
Extent mapCanvas(const Placement &placement, const ScreenRequest &request) {
    if (placement.canvas.empty() || placement.target.empty()) {
        return {};
    }
    setExtents(request.dc, MM_ISOTROPIC, placement);
    SIZE extent{};
    GetViewportExtEx(request.dc, &extent);
    const bool shrunk = extent.cx != placement.target.width || extent.cy != placement.target.height;
    if (shrunk && !isFitted(request)) {
        setExtents(request.dc, MM_ANISOTROPIC, placement);
    }
    return isFitted(request) ? Extent{extent.cx, extent.cy} : placement.target;
}

// There is room for a fitted picture.
ScreenProjection project(const Placement &placement, const Extent &target, const ScreenRequest &request) {
    const Extent room = isFitted(request) ? target : placement.client;
    return {rotationOf(request),
            {placement.canvas.width, target.width, placement.columns, room.width},
            {placement.canvas.height, target.height, placement.rows, room.height}};
}

// ---- painting

// Lets the line functions know the picture for a while.
class ShownPicture {
public:
    explicit ShownPicture(ScreenBand &band) : before_(library.screen) {
        library.screen = band.empty() ? nullptr : &band;
    }
    ShownPicture(const ShownPicture &) = delete;
    ShownPicture &operator=(const ShownPicture &) = delete;
    ~ShownPicture() { library.screen = before_; }

private:
    ScreenBand *before_;
};

// Palette indexes take the place of the colours: those of the logical palette, which was made of them in this order.
void replaceColorsByIndexes(BITMAPINFO &info) {
    const DWORD entries = colourTableEntries(info.bmiHeader);
    for (DWORD i = 0; i < entries; ++i) {
        const auto index = static_cast<WORD>(i);
        std::memcpy(reinterpret_cast<BYTE *>(info.bmiColors) + i * sizeof index, &index, sizeof index);
    }
}

ScreenLineContext lineContext(const ScreenPicture &picture, BITMAPINFO &info, const ScreenBand &band,
                              const ScreenRequest &request, bool hasPalette) {
    const bool invert = (request.flags & VELLUM_SHOW_INVERTED) != 0;
    ScreenLineContext context{};
    context.dc = request.dc;
    context.bitmap = band.bitmap();
    context.hInfo = picture.info.get();
    context.pixelCount = static_cast<DWORD>(info.bmiHeader.biWidth);
    context.bitmapBytes = band.bitmapRowBytes();
    context.colorUsage =
        hasPalette && screenDepth(info.bmiHeader.biBitCount) == ScreenDepth::Indexed ? DIB_PAL_COLORS : DIB_RGB_COLORS;
    context.header = &info;
    context.rasterOperation = picture.inverted != invert ? NOTSRCCOPY : SRCCOPY;
    context.workBuffer = band.workBuffer();
    return context;
}

// Decodes the picture onto the device context, which counts in pixels.
void paintLines(const ScreenSource &source, ScreenBand &band, HDC memory, ScreenLineContext &context,
                Rotation rotation) {
    const SelectedObject selectedBitmap(memory, band.bitmap());
    band.begin(memory);
    const ShownPicture shown(band);
    source.decode(source.lineFunction(rotation), userValueOf(context));
    band.flush(context);
}

} // namespace

bool paintOnScreen(const ScreenPicture &picture, const ScreenSource &source, const ScreenRequest &request) {
    const GlobalView<BITMAPINFO> info(picture.info.get(), sizeof(BITMAPINFOHEADER));
    if (!info || info->bmiHeader.biWidth < 0 || info->bmiHeader.biHeight < 0) {
        return recorded(Error::NoMemory) != 0;
    }
    BITMAPINFOHEADER &header = info->bmiHeader;
    const Rotation rotation = rotationOf(request);
    const OwnedPalette palette = makePalette(&header, info.bytes());
    const RealizedPalette realized(request.dc, palette.get());
    const MemoryDc memory(request.dc);
    if (!memory) {
        return recorded(Error::NoMemory) != 0;
    }
    const SelectedPalette selectedPalette(memory.get(), palette.get());
    SetStretchBltMode(request.dc, header.biBitCount == 1 ? WHITEONBLACK : COLORONCOLOR);
    const Extent size{header.biWidth, header.biHeight};
    const Placement placement = place(picture, swapsSides(rotation) ? size.turned() : size, request);
    const ScreenProjection projection = project(placement, mapCanvas(placement, request), request);
    ScreenBand band;
    if (!band.prepare(request.dc, projection, header)) {
        return recorded(Error::NoMemory) != 0;
    }
    ScreenLineContext context = lineContext(picture, *info, band, request, static_cast<bool>(palette));
    if (context.colorUsage == DIB_PAL_COLORS) {
        replaceColorsByIndexes(*info);
    }
    band.describe(header);
    const PixelUnits pixels(request.dc);
    if (!pixels) {
        return recorded(Error::NoMemory) != 0;
    }
    paintLines(source, band, memory.get(), context, rotation);
    finishWindow(request.window, request.dc, placement.client, {projection.columns.length(), projection.rows.length()});
    return lastError() == Error::None;
}

} // namespace vellum
