// The pages with more than one bit a pixel: a grey scan of a printed page with a picture, a photograph, and a chart in
// 64 colours. A4 at 200 dpi.
#include "bench/canvas.h"
#include "bench/pages.h"

#include <algorithm>

namespace bench {
namespace {

constexpr unsigned kWidth = 1654;
constexpr unsigned kHeight = 2339;

Page empty(unsigned samplesPerPixel) {
    Page page;
    page.width = kWidth;
    page.height = kHeight;
    page.bitsPerSample = 8;
    page.samplesPerPixel = samplesPerPixel;
    page.rowBytes = kWidth * samplesPerPixel;
    page.rows.resize(page.rowBytes * kHeight);
    return page;
}

std::uint8_t sample(double value) {
    return static_cast<std::uint8_t>(std::clamp(value, 0.0, 255.0));
}

// Light and shade of a scene, 0 to 1: large shapes, smaller ones in them, and texture.
double scene(unsigned x, unsigned y, std::uint32_t seed) {
    return 0.5 + 0.30 * surface(x / 340.0, y / 340.0, seed) + 0.14 * surface(x / 90.0, y / 90.0, seed + 1) +
           0.06 * surface(x / 21.0, y / 21.0, seed + 2) + 0.03 * surface(x / 5.0, y / 5.0, seed + 3);
}

// How much of a pixel is black when nine pixels of a page of three times the resolution become one, 0 to 9.
int coverage(const Page &fine, unsigned x, unsigned y) {
    int black = 0;
    for (unsigned dy = 0; dy < 3; ++dy) {
        for (unsigned dx = 0; dx < 3; ++dx) {
            const unsigned fineX = std::min(3 * x + dx, fine.width - 1);
            const std::uint8_t *row = fine.row(std::min(3 * y + dy, fine.height - 1));
            black += (row[fineX / 8] >> (7 - fineX % 8)) & 1;
        }
    }
    return black;
}

} // namespace

Page greyScan() {
    Page page = empty(1);
    const Page &text = pageNamed("text-dense-600");
    Random noise(11);
    for (unsigned y = 0; y < kHeight; ++y) {
        for (unsigned x = 0; x < kWidth; ++x) {
            const bool picture = x > 250 && x < 1400 && y > 1300 && y < 2100;
            const double light = picture ? 255 * scene(x, y, 20) : 240 - 22.0 * coverage(text, x, y);
            page.rows[y * page.rowBytes + x] = sample(light + noise.below(5) - 2);
        }
    }
    return page;
}

Page photo() {
    Page page = empty(3);
    Random noise(12);
    for (unsigned y = 0; y < kHeight; ++y) {
        std::uint8_t *at = page.rows.data() + y * page.rowBytes;
        for (unsigned x = 0; x < kWidth; ++x) {
            const double light = 255 * scene(x, y, 30);
            const double tint = 40 * surface(x / 500.0, y / 500.0, 40);
            *at++ = sample(light + tint + noise.below(5) - 2);
            *at++ = sample(light + noise.below(5) - 2);
            *at++ = sample(light - tint + noise.below(5) - 2);
        }
    }
    return page;
}

Page paletteGraphic() {
    Page page = empty(1);
    page.palette = true;
    const Page &labels = pageNamed("text-sparse-200");
    Random random(13);
    const auto fill = [&](unsigned left, unsigned top, unsigned right, unsigned bottom, int colour) {
        for (unsigned y = top; y < bottom; ++y) {
            std::fill(page.rows.begin() + static_cast<std::ptrdiff_t>(y * page.rowBytes + left),
                      page.rows.begin() + static_cast<std::ptrdiff_t>(y * page.rowBytes + right),
                      static_cast<std::uint8_t>(colour));
        }
    };
    fill(0, 0, kWidth, kHeight, 1);
    // A background that shades off in dithered steps, bars of a chart, and lettering over all.
    for (unsigned y = 0; y < 700; ++y) {
        for (unsigned x = 0; x < kWidth; ++x) {
            const unsigned level = y * 16 / 175;
            const bool next = (level % 4) * 4 > ((x & 1) * 8 + (y & 1) * 4 + ((x ^ y) >> 1 & 1) * 2);
            page.rows[y * page.rowBytes + x] = static_cast<std::uint8_t>(16 + level / 4 + (next ? 1 : 0));
        }
    }
    for (unsigned bar = 0; bar < 24; ++bar) {
        const unsigned left = 120 + bar * 60;
        fill(left, 2200 - static_cast<unsigned>(100 + random.below(1300)), left + 44, 2200, 40 + static_cast<int>(bar));
    }
    for (unsigned line = 0; line < 14; ++line) {
        fill(100, 800 + line * 100, 1580, 802 + line * 100, 5);
    }
    for (unsigned y = 0; y < kHeight; ++y) {
        for (unsigned x = 0; x < kWidth; ++x) {
            if (((labels.row(y)[x / 8] >> (7 - x % 8)) & 1) != 0) {
                page.rows[y * page.rowBytes + x] = 0;
            }
        }
    }
    return page;
}

} // namespace bench
