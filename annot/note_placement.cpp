// The arithmetic of notes. Sums of two numbers are formed in 64 bits.
#include "annot/note_placement.h"

#include "support/numeric.h"

#include <algorithm>
#include <cstdint>

namespace vellum {
namespace {

constexpr double kMetersPerInch = 0.0254000508001016;
// Fewer pixels per metre are no resolution: one dot per inch.
constexpr LONG kLeastPelsPerMeter = 40;
// GDI counts in 27 bits.
constexpr std::int64_t kFarthest = 0x3FFFFFF;

LONG rounded(double value) {
    return truncateToLong(value + 0.5);
}

LONG narrowed(std::int64_t value) {
    return static_cast<LONG>(std::clamp<std::int64_t>(value, -0x80000000LL, 0x7FFFFFFF));
}

LONG onDevice(std::int64_t value) {
    return static_cast<LONG>(std::clamp(value, -kFarthest, kFarthest));
}

double scaleAlong(LONG pelsPerMeter, LONG deviceDotsPerInch, DWORD flags) {
    const bool byResolution = (flags & VELLUM_NOTE_BY_RESOLUTION) != 0 && pelsPerMeter > kLeastPelsPerMeter;
    return byResolution ? deviceDotsPerInch / (pelsPerMeter * kMetersPerInch) : 1.0;
}

double zoomed(double scale, const LONG *ratio) {
    return ratio[0] > 0 && ratio[1] > 0 ? scale * ratio[0] / ratio[1] : scale;
}

LONG scrolledAlong(LONG pixels, double scale, LONG scrollPosition, double scrollScale, LONG client) {
    const LONG target = targetLength(pixels, scale);
    if (target == 0) {
        return 0;
    }
    const LONG slack = std::max(target - client, LONG{0});
    const LONG position = std::max(rounded(scrollPosition * scrollScale), LONG{0});
    return rounded(static_cast<double>(position) * slack / target);
}

struct Direction {
    LONG pixels;
    LONG client;
    double scale;
    LONG offset;
};

LONG clickedAlong(const Direction &along, LONG click, bool centered) {
    std::int64_t position = click;
    if (centered) {
        const LONG margin = (along.client - targetLength(along.pixels, along.scale)) / 2;
        position = std::max<std::int64_t>(position - std::max(margin, LONG{0}), 0);
    }
    return narrowed(std::int64_t{rounded(static_cast<double>(position) / along.scale)} + along.offset);
}

} // namespace

NoteScale noteScale(const NotedImage &image, const LONG *zoom, DWORD flags) {
    NoteScale scale = {scaleAlong(image.xPelsPerMeter, image.deviceDotsPerInchX, flags),
                       scaleAlong(image.yPelsPerMeter, image.deviceDotsPerInchY, flags)};
    if (zoom != nullptr) {
        scale = {zoomed(scale.x, zoom), zoomed(scale.y, zoom + 2)};
    }
    return scale;
}

POINT scrolledOffset(const NotedImage &image, const NoteScale &scale) {
    // By design: the vertical position is scaled by the horizontal scale, too. Programs that place notes this way set
    // their scroll bars accordingly.
    return {scrolledAlong(image.pixels.width, scale.x, image.scrollX, scale.x, image.client.width),
            scrolledAlong(image.pixels.height, scale.y, image.scrollY, scale.x, image.client.height)};
}

POINT notePlace(const NotedImage &image, const NoteView &view, const POINT &place) {
    const NoteScale scale = noteScale(image, view.zoom, view.flags);
    const POINT offset = view.imageOffset != nullptr ? *view.imageOffset : scrolledOffset(image, scale);
    if (view.clickPoint == nullptr) {
        return {narrowed(std::int64_t{place.x} + offset.x), narrowed(std::int64_t{place.y} + offset.y)};
    }
    const bool centered = (view.flags & VELLUM_NOTE_CENTERED) != 0;
    const Direction across = {image.pixels.width, image.client.width, scale.x, offset.x};
    const Direction down = {image.pixels.height, image.client.height, scale.y, offset.y};
    return {clickedAlong(across, view.clickPoint->x, centered), clickedAlong(down, view.clickPoint->y, centered)};
}

std::optional<RECT> noteOnDevice(const NoteRecord &note, const NoteCanvas &canvas, const NoteScale &sizeScale) {
    const std::int64_t dx = std::int64_t{note.left} - canvas.imageOffset.x;
    const std::int64_t dy = std::int64_t{note.top} - canvas.imageOffset.y;
    if (dx < 0 || dy < 0) {
        // By design: a note that begins outside is not drawn, even if most of it would be seen.
        return std::nullopt;
    }
    const std::int64_t left = std::int64_t{rounded(static_cast<double>(dx) * canvas.scale.x)} + canvas.origin.x;
    const std::int64_t top = std::int64_t{rounded(static_cast<double>(dy) * canvas.scale.y)} + canvas.origin.y;
    const double width = static_cast<double>(std::int64_t{note.right} - note.left);
    const double height = static_cast<double>(std::int64_t{note.bottom} - note.top);
    return RECT{onDevice(left), onDevice(top), onDevice(left + rounded(width * sizeScale.x)),
                onDevice(top + rounded(height * sizeScale.y))};
}

} // namespace vellum
