// Windows: texts drawn and measured plainly, for comparison with notes.
#pragma once

#include "annot/notes.h"
#include "support/bitmap_pixels.h"
#include "support/screen_host.h"

#include <vector>

namespace vellum::test {

using Lines = std::vector<std::string>;

inline SIZE plainExtent(HDC dc, const std::string &line) {
    SIZE size{};
    GetTextExtentPoint32A(dc, line.data(), static_cast<int>(line.size()), &size);
    return size;
}

// The widest line, and the heights of all.
inline SIZE plainSize(HDC dc, const Lines &lines) {
    SIZE size{};
    for (const std::string &line : lines) {
        const SIZE extent = plainExtent(dc, line);
        size = {std::max(size.cx, extent.cx), size.cy + extent.cy};
    }
    return size;
}

inline void drawPlainly(HDC dc, const RECT &area, const Lines &lines) {
    TEXTMETRICA metrics{};
    GetTextMetricsA(dc, &metrics);
    int y = area.top;
    for (const std::string &line : lines) {
        ExtTextOutA(dc, area.left, y, ETO_CLIPPED, &area, line.data(), static_cast<UINT>(line.size()), nullptr);
        y += metrics.tmHeight + metrics.tmExternalLeading;
    }
}

// The pixels that have another colour than before, as their smallest rectangle; empty when there are none.
inline RECT changedArea(const Pixels &before, const Pixels &after, int width) {
    RECT area = {0x7FFFFFFF, 0x7FFFFFFF, 0, 0};
    for (std::size_t i = 0; i < before.size() && i < after.size(); ++i) {
        if (before[i] != after[i]) {
            const LONG x = static_cast<LONG>(i) % width;
            const LONG y = static_cast<LONG>(i) / width;
            area = {std::min(area.left, x), std::min(area.top, y), std::max(area.right, x + 1),
                    std::max(area.bottom, y + 1)};
        }
    }
    return area.right == 0 ? RECT{} : area;
}

} // namespace vellum::test
