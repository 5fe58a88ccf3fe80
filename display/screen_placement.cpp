// The arithmetic of scales, scroll positions and scroll bars, in 64 bits where two lengths meet.
#include "display/screen_placement.h"

#include "support/numeric.h"

#include <algorithm>
#include <cstdint>

namespace vellum {
namespace {

// Where the shown part begins, in pixels of the screen.
LONG scrolledBy(LONG hidden, const ScrollState &scroll) {
    const std::int64_t range = std::int64_t{scroll.most} - scroll.least;
    if (hidden <= 0 || range <= 0) {
        return 0;
    }
    const std::int64_t position = std::clamp<std::int64_t>(std::int64_t{scroll.position} - scroll.least, 0, range);
    return static_cast<LONG>((2 * position * hidden + range) / (2 * range));
}

std::int64_t positionOf(const Projection &along, LONG pixel) {
    if (along.canvas <= 0) {
        return 0;
    }
    const std::int64_t distance = std::int64_t{pixel} - along.shown.first;
    return (2 * distance * along.target + along.canvas) / (2 * std::int64_t{along.canvas});
}

} // namespace

double scaleFactor(double deviceDotsPerInch, double pictureDotsPerInch, DWORD numerator, DWORD denominator) {
    const double scale = pictureDotsPerInch > 0 ? deviceDotsPerInch / pictureDotsPerInch : 1.0;
    return numerator == 0 || denominator == 0 ? scale : scale * numerator / denominator;
}

LONG targetLength(LONG canvas, double scale) {
    return canvas <= 0 ? 0 : std::clamp(truncateToLong(canvas * scale + 0.5), LONG{0}, kLargestTarget);
}

Span shownSpan(LONG canvas, LONG target, LONG client, const ScrollState &scroll) {
    if (canvas <= 0 || target <= 0 || client <= 0) {
        return {};
    }
    const std::int64_t start = scrolledBy(target - client, scroll);
    const std::int64_t first =
        std::min((2 * start * canvas + target) / (2 * std::int64_t{target}), canvas - std::int64_t{1});
    const std::int64_t covering = (std::int64_t{client} * canvas + target - 1) / target;
    return {static_cast<LONG>(first), static_cast<LONG>(std::min<std::int64_t>(first + covering, canvas))};
}

LONG Projection::at(LONG pixel) const {
    return static_cast<LONG>(std::clamp<std::int64_t>(positionOf(*this, pixel), 0, most));
}

bool Projection::isCut() const {
    return positionOf(*this, shown.end) > most;
}

LONG Projection::pixelAt(LONG screenPixel) const {
    if (target <= 0) {
        return shown.first;
    }
    const std::int64_t behind = std::int64_t{canvas} * (2 * std::int64_t{screenPixel} + 1);
    const std::int64_t pixel = shown.first + (behind + 2 * std::int64_t{target} - 1) / (2 * std::int64_t{target}) - 1;
    return static_cast<LONG>(std::clamp<std::int64_t>(pixel, shown.first, std::int64_t{shown.end} - 1));
}

ScrollBars scrollBarsFor(const Extent &target, const Extent &roomWithoutBars, const Extent &barThickness) {
    // A window that has no room for a bar has it without showing it.
    const LONG besideVertical = roomWithoutBars.width - barThickness.width;
    const LONG aboveHorizontal = roomWithoutBars.height - barThickness.height;
    ScrollBars bars;
    bars.vertical = target.height > roomWithoutBars.height;
    bars.horizontal = target.width > (bars.vertical && besideVertical >= 0 ? besideVertical : roomWithoutBars.width);
    // A vertical bar that is needed because of the horizontal one does not change that.
    bars.vertical = target.height > (bars.horizontal && aboveHorizontal > 0 ? aboveHorizontal : roomWithoutBars.height);
    return bars;
}

} // namespace vellum
