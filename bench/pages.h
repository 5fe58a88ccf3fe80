// The pages that the decoders are measured on, A4 and made from nothing, the same ones in every build: five kinds of
// black-and-white page at 200 and 600 dpi, and three kinds of sampled page at 200 dpi.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace bench {

struct Page {
    std::string name;
    unsigned width = 0;
    unsigned height = 0;
    unsigned bitsPerSample = 0;
    unsigned samplesPerPixel = 0;
    bool palette = false;
    std::size_t rowBytes = 0;
    // Rows without gaps, top row first. Bilevel pages: 1 for black, the spare bits of a row 0.
    std::vector<std::uint8_t> rows;

    [[nodiscard]] const std::uint8_t *row(unsigned y) const { return rows.data() + y * rowBytes; }
};

// Names of all pages: "text-dense-200" and the like.
std::vector<std::string> pageNames();
bool isBilevel(const std::string &pageName);

// Makes a page, or gives the one made before: every page is kept to the end.
const Page &pageNamed(const std::string &name);

// The makers, at any resolution.
Page denseText(int dotsPerInch);
Page sparseText(int dotsPerInch);
Page lineDrawing(int dotsPerInch);
Page halftone(int dotsPerInch);
Page blank(int dotsPerInch);
Page greyScan();
Page photo();
Page paletteGraphic();

} // namespace bench
