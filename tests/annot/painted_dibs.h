// Windows: DIBs painted by PaintDIBWithNote in a window of 300 x 200, and what must be seen of them there.
#pragma once

#include "support/screen_host.h"
#include "write/packed_dibs.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>

namespace vellum::test {

inline constexpr int kClientWidth = 300;
inline constexpr int kClientHeight = 200;

struct DibLook {
    std::optional<RECT> area = {};
    std::optional<std::array<LONG, 4>> zoom = {};
    DWORD mode = 0;
    const NoteRecord *note = nullptr;
};

// Answers WM_PAINT until nothing is left to be painted, as a program does. Result: how often it had to.
inline int paint(const Host &host, HGLOBAL dib, const DibLook &look = {}) {
    int paints = 0;
    while (host.needsPainting() && paints < 10) {
        ++paints;
        EXPECT_EQ(PaintDIBWithNote(host.window(), dib, look.area ? &*look.area : nullptr,
                                   look.zoom ? look.zoom->data() : nullptr, look.mode, look.note),
                  1);
    }
    return paints;
}

// A picture in memory, and its pixels.
class DibPicture {
public:
    DibPicture(LONG width, LONG height, WORD bits, LONG xPelsPerMeter = 0, LONG yPelsPerMeter = 0)
        : dib_(width, height, bits) {
        dib_.header.biXPelsPerMeter = xPelsPerMeter;
        dib_.header.biYPelsPerMeter = yPelsPerMeter;
        block_.emplace(makeBlock(dib_.bytes()));
        pixels_ = pixelsOf(*block_);
    }
    [[nodiscard]] HGLOBAL get() const { return block_->get(); }
    [[nodiscard]] LONG width() const { return dib_.header.biWidth; }
    [[nodiscard]] LONG height() const { return dib_.header.biHeight; }
    [[nodiscard]] DWORD at(LONG x, LONG y) const { return pixels_[static_cast<std::size_t>(y * width() + x)]; }
    // What pixels that are zero look like.
    [[nodiscard]] DWORD zero() const {
        if (dib_.header.biBitCount > 8) {
            return 0;
        }
        const RGBQUAD &first = dib_.colours.front();
        return DWORD{first.rgbRed} << 16 | DWORD{first.rgbGreen} << 8 | first.rgbBlue;
    }

private:
    PackedDib dib_;
    std::optional<Dib> block_;
    Pixels pixels_;
};

// A part of a picture on the screen by the scaler's rule, and the background beside it.
inline Pixels expected(const DibPicture &picture, const RECT &part, const SIZE &shown, const SIZE &client) {
    Pixels pixels(static_cast<std::size_t>(client.cx * client.cy), kBackground);
    const LONG width = part.right - part.left;
    const LONG height = part.bottom - part.top;
    for (LONG y = 0; y < std::min(shown.cy, client.cy); ++y) {
        for (LONG x = 0; x < std::min(shown.cx, client.cx); ++x) {
            const LONG row = part.top + static_cast<LONG>(std::floor(double(y) * height / shown.cy + 0.5));
            const LONG column = part.left + static_cast<LONG>(std::floor(double(x) * width / shown.cx + 0.5));
            const bool there = row < part.bottom && row < picture.height() && column < picture.width();
            pixels[static_cast<std::size_t>(y * client.cx + x)] = there ? picture.at(column, row) : picture.zero();
        }
    }
    return pixels;
}

inline RECT whole(const DibPicture &picture) {
    return {0, 0, picture.width(), picture.height()};
}

inline const SIZE kClient = {kClientWidth, kClientHeight};

inline Pixels complement(Pixels pixels, const SIZE &shown) {
    for (LONG y = 0; y < shown.cy; ++y) {
        for (LONG x = 0; x < shown.cx; ++x) {
            pixels[static_cast<std::size_t>(y * kClientWidth + x)] ^= 0xFFFFFF;
        }
    }
    return pixels;
}

} // namespace vellum::test
