// The reference that paintings are compared with.
#include <windows.h>

#ifndef VELLUM_NATIVE
#include "support/screen_model.h"
#include "vellum32.h"

#include <algorithm>
#include <cmath>
#include <iomanip>
#include <sstream>

namespace vellum::test {
namespace {

constexpr double kMetersPerInch = 0.0254;
constexpr double kInchesPerMeter = 39.37;

// A device context in which a canvas of this size is mapped to a viewport of that size, as the system does it.
class Mapping {
public:
    Mapping(int mode, SIZE canvas, SIZE viewport) : dc_(CreateCompatibleDC(nullptr)) {
        SetMapMode(dc_, mode);
        SetWindowExtEx(dc_, canvas.cx, canvas.cy, nullptr);
        SetViewportExtEx(dc_, viewport.cx, viewport.cy, nullptr);
    }
    Mapping(const Mapping &) = delete;
    Mapping &operator=(const Mapping &) = delete;
    ~Mapping() { DeleteDC(dc_); }

    [[nodiscard]] SIZE viewport() const {
        SIZE size{};
        GetViewportExtEx(dc_, &size);
        return size;
    }
    [[nodiscard]] POINT device(int x, int y) const {
        POINT point{x, y};
        LPtoDP(dc_, &point, 1);
        return point;
    }

private:
    HDC dc_;
};

int screenDpi(int capability) {
    const HDC screen = GetDC(nullptr);
    const int dpi = GetDeviceCaps(screen, capability);
    ReleaseDC(nullptr, screen);
    return dpi;
}

// Dots per inch as the header has them; the screen's without a resolution.
double pictureDpi(const std::optional<DWORD> &stored, DWORD unit, int capability) {
    const double dpi = stored ? *stored : screenDpi(capability);
    const double perMeter = unit == 3 ? dpi : dpi * kInchesPerMeter;
    const double header = unit >= 1 && unit <= 3 ? std::floor(perMeter + 0.5) : 0;
    return header == 0 ? screenDpi(capability) : header * kMetersPerInch;
}

double ratioOf(const Ratios &ratios, std::size_t first) {
    if (ratios.empty() || ratios[first] == 0 || ratios[first + 1] == 0) {
        return 1;
    }
    return static_cast<double>(ratios[first]) / static_cast<double>(ratios[first + 1]);
}

int rounded(double value) {
    return static_cast<int>(std::floor(value + 0.5));
}

// The start in pixels of the canvas, by the scale or by the sizes that came of it: tests are about positions where
// these round to the same.
int canvasPixel(const Axis &axis, double scale) {
    const int byScale = rounded(axis.start / scale);
    EXPECT_EQ(byScale, rounded(static_cast<double>(axis.start) * axis.canvas / axis.target))
        << "start " << axis.start << ": choose another position or size";
    return byScale;
}

} // namespace

ScreenModel::ScreenModel(const ScreenPicture &picture, const Look &look, const Room &room)
    : picture_(picture), look_(look) {
    x_.canvas = look.turned() ? picture.height : picture.width;
    y_.canvas = look.turned() ? picture.width : picture.height;
    x_.client = room.window.cx;
    y_.client = room.window.cy;
    if ((look.flags & VELLUM_SHOW_FIT) != 0) {
        fit();
    } else {
        if ((look.flags & VELLUM_SHOW_BY_RESOLUTION) != 0) {
            scale();
        }
        x_.target = rounded(x_.canvas * xScale_);
        y_.target = rounded(y_.canvas * yScale_);
        if (!room.fixed) {
            showBars(room);
            scrollTo(x_, room.horizontal);
            scrollTo(y_, room.vertical);
        }
        x_.start = canvasPixel(x_, xScale_);
        y_.start = canvasPixel(y_, yScale_);
    }
    findSources();
}

void ScreenModel::scale() {
    const double across = screenDpi(LOGPIXELSX) / pictureDpi(picture_.xDpi, picture_.unit, LOGPIXELSX);
    const double down = screenDpi(LOGPIXELSY) / pictureDpi(picture_.yDpi, picture_.unit, LOGPIXELSY);
    // The screen's directions against the picture's.
    const double turnedX = screenDpi(LOGPIXELSX) / pictureDpi(picture_.yDpi, picture_.unit, LOGPIXELSY);
    const double turnedY = screenDpi(LOGPIXELSY) / pictureDpi(picture_.xDpi, picture_.unit, LOGPIXELSX);
    xScale_ = (look_.turned() ? turnedX : across) * ratioOf(look_.ratios, 0);
    yScale_ = (look_.turned() ? turnedY : down) * ratioOf(look_.ratios, 2);
}

void ScreenModel::fit() {
    const SIZE room = look_.turned() ? SIZE{y_.client, x_.client} : SIZE{x_.client, y_.client};
    const SIZE target = Mapping(MM_ISOTROPIC, {x_.canvas, y_.canvas}, room).viewport();
    x_.target = target.cx;
    y_.target = target.cy;
}

// Each bar takes room from the other direction, which may need one in turn.
void ScreenModel::showBars(const Room &room) {
    for (int round = 0; round < 3; ++round) {
        x_.bar = x_.target > x_.client;
        y_.bar = y_.target > y_.client;
        x_.client = room.window.cx - (y_.bar ? GetSystemMetrics(SM_CXVSCROLL) : 0);
        y_.client = room.window.cy - (x_.bar ? GetSystemMetrics(SM_CYHSCROLL) : 0);
    }
}

// Leaves the start in screen pixels.
void ScreenModel::scrollTo(Axis &axis, const ScrollState &state) {
    axis.position = axis.bar ? state.position : std::clamp(0, state.least, state.most);
    const int range = state.most - state.least;
    const int hidden = std::max(axis.target - axis.client, 0);
    if (!axis.bar || range <= 0) {
        return;
    }
    const double wanted = static_cast<double>(state.position - state.least) * hidden / range;
    axis.start = std::clamp(rounded(wanted), 0, hidden);
}

void ScreenModel::findSources() {
    const Mapping mapping(MM_ANISOTROPIC, {x_.canvas, y_.canvas}, {x_.target, y_.target});
    for (int i = 0; i <= x_.canvas - x_.start; ++i) {
        x_.edges.push_back(mapping.device(i, 0).x);
    }
    for (int i = 0; i <= y_.canvas - y_.start; ++i) {
        y_.edges.push_back(mapping.device(0, i).y);
    }
    spread(x_, !look_.turned());
    spread(y_, look_.turned());
}

// By whole factors every pixel has its place. By others the lines have theirs, but which pixel of a line a pixel of the
// screen shows, GDI decides: one of its own, or of those that belong to its neighbours on the screen.
void ScreenModel::spread(Axis &axis, bool alongLines) {
    const int slack = alongLines && axis.target % axis.canvas != 0 ? 1 : 0;
    const auto sourceOf = [&axis](int device) {
        const auto behind = std::upper_bound(axis.edges.begin(), axis.edges.end(), device);
        return axis.start + static_cast<int>(behind - axis.edges.begin()) - 1;
    };
    for (int device = 0; device < axis.client; ++device) {
        if (sourceOf(device) >= axis.canvas) {
            axis.at.emplace_back(axis.canvas, axis.canvas);
            continue;
        }
        const int first = sourceOf(device - slack);
        const int last = sourceOf(device + slack);
        axis.at.emplace_back(std::max(first, axis.start), std::min(last, axis.canvas - 1));
    }
}

POINT ScreenModel::pictureOf(int canvasX, int canvasY) const {
    const int right = picture_.width - 1;
    const int bottom = picture_.height - 1;
    switch (look_.rotation()) {
    case 1: // row 0 is the rightmost column, its first pixel at the top
        return {canvasY, bottom - canvasX};
    case 2: // row 0 is the bottom row, its first pixel at the right
        return {right - canvasX, bottom - canvasY};
    case 3: // row 0 is the leftmost column, its first pixel at the bottom
        return {right - canvasY, canvasX};
    default:
        return {canvasX, canvasY};
    }
}

DWORD ScreenModel::canvasColor(int canvasX, int canvasY) const {
    const POINT from = pictureOf(canvasX, canvasY);
    if (from.y >= picture_.rowsStored.value_or(picture_.height)) {
        return kUntouched;
    }
    const DWORD color = picture_.color(from.x, from.y);
    return (look_.flags & VELLUM_SHOW_INVERTED) != 0 ? ~color & 0xFFFFFF : color;
}

std::optional<DWORD> ScreenModel::at(int deviceX, int deviceY, DWORD background) const {
    const auto [left, right] = x_.at[static_cast<std::size_t>(deviceX)];
    const auto [top, bottom] = y_.at[static_cast<std::size_t>(deviceY)];
    if (left >= x_.canvas || top >= y_.canvas) {
        return background;
    }
    const DWORD color = canvasColor(left, top);
    for (int canvasY = top; canvasY <= bottom; ++canvasY) {
        for (int canvasX = left; canvasX <= right; ++canvasX) {
            if (canvasColor(canvasX, canvasY) != color) {
                return std::nullopt;
            }
        }
    }
    return color;
}

std::string ScreenModel::source(int deviceX, int deviceY) const {
    const int canvasX = x_.at[static_cast<std::size_t>(deviceX)].first;
    const int canvasY = y_.at[static_cast<std::size_t>(deviceY)].first;
    if (canvasX >= x_.canvas || canvasY >= y_.canvas) {
        return "background";
    }
    const POINT from = pictureOf(canvasX, canvasY);
    return "pixel " + std::to_string(from.x) + " of row " + std::to_string(from.y);
}

testing::AssertionResult shows(const Pixels &pixels, const ScreenModel &model, DWORD background) {
    const int width = model.x().client;
    const int height = model.y().client;
    if (pixels.size() != static_cast<std::size_t>(width) * static_cast<std::size_t>(height)) {
        return testing::AssertionFailure() << pixels.size() << " pixels for " << width << " x " << height;
    }
    std::size_t wrong = 0;
    std::size_t open = 0;
    std::ostringstream first;
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            const DWORD shown =
                pixels[static_cast<std::size_t>(y) * static_cast<std::size_t>(width) + static_cast<std::size_t>(x)];
            const std::optional<DWORD> expected = model.at(x, y, background);
            open += expected ? 0 : 1;
            if (expected && shown != *expected && wrong++ == 0) {
                first << "x " << x << ", y " << y << " shows " << std::hex << std::setfill('0') << std::setw(6) << shown
                      << ", not " << std::setw(6) << *expected << " (" << model.source(x, y) << ")";
            }
        }
    }
    if (wrong > 0) {
        return testing::AssertionFailure()
               << first.str() << "; " << wrong << " of " << pixels.size() << " pixels are wrong";
    }
    if (open * 4 > pixels.size() * 3) {
        return testing::AssertionFailure() << "only " << pixels.size() - open << " pixels could be compared";
    }
    return testing::AssertionSuccess();
}

testing::AssertionResult keepsMapping(HDC dc, const ScreenModel &model) {
    SIZE window{};
    SIZE viewport{};
    POINT windowOrigin{};
    POINT viewportOrigin{};
    GetWindowExtEx(dc, &window);
    GetViewportExtEx(dc, &viewport);
    GetWindowOrgEx(dc, &windowOrigin);
    GetViewportOrgEx(dc, &viewportOrigin);
    if (window.cx != model.x().canvas || window.cy != model.y().canvas || viewport.cx != model.x().target ||
        viewport.cy != model.y().target) {
        return testing::AssertionFailure() << window.cx << " x " << window.cy << " to " << viewport.cx << " x "
                                           << viewport.cy << ", not " << model.x().canvas << " x " << model.y().canvas
                                           << " to " << model.x().target << " x " << model.y().target;
    }
    if (windowOrigin.x != 0 || windowOrigin.y != 0 || viewportOrigin.x != 0 || viewportOrigin.y != 0) {
        return testing::AssertionFailure() << "an origin is not 0";
    }
    return testing::AssertionSuccess();
}

testing::AssertionResult hasBars(const Host &host, const ScreenModel &model) {
    const SIZE client = host.client();
    const auto wrong = [&host](int bar, const Axis &axis) {
        return host.hasBar(bar) != axis.bar || GetScrollPos(host.window(), bar) != axis.position;
    };
    if (wrong(SB_HORZ, model.x()) || wrong(SB_VERT, model.y()) || client.cx != model.x().client ||
        client.cy != model.y().client) {
        const auto barText = [](bool shown, int position) {
            return (shown ? "shown at " : "hidden at ") + std::to_string(position);
        };
        return testing::AssertionFailure()
               << "the bars are " << barText(host.hasBar(SB_HORZ), GetScrollPos(host.window(), SB_HORZ)) << " and "
               << barText(host.hasBar(SB_VERT), GetScrollPos(host.window(), SB_VERT)) << ", the client area is "
               << client.cx << " x " << client.cy << "; expected " << barText(model.x().bar, model.x().position)
               << " and " << barText(model.y().bar, model.y().position) << ", " << model.x().client << " x "
               << model.y().client;
    }
    return testing::AssertionSuccess();
}

} // namespace vellum::test

#endif
