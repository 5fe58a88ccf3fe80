// Bilevel pictures and CALS files of them, coded by the tests' own encoder.
#pragma once

#include "cals/cals_files.h"
#include "support/random_pictures.h"

#include <cstdio>

namespace vellum::test {

struct BilevelPicture {
    Rows rows;

    [[nodiscard]] DWORD width() const { return rows.empty() ? 0 : static_cast<DWORD>(rows[0].size()); }
    [[nodiscard]] DWORD height() const { return static_cast<DWORD>(rows.size()); }
    [[nodiscard]] std::size_t lineBytes() const { return (std::size_t{width()} + 7) / 8; }
    [[nodiscard]] std::size_t stride() const { return (std::size_t{width()} + 31) / 32 * 4; }

    // The rows of a DIB of the picture, lowest row first, from its first line on or of some first lines only; the
    // others are white.
    [[nodiscard]] Bytes dibRows() const { return dibRows(height()); }
    [[nodiscard]] Bytes dibRows(std::size_t lines) const {
        Bytes bytes(stride() * height());
        for (std::size_t y = 0; y < lines; ++y) {
            const Bytes line = packRow(rows[y]);
            std::copy(line.begin(), line.end(),
                      bytes.begin() + static_cast<std::ptrdiff_t>((height() - 1 - y) * stride()));
        }
        return bytes;
    }

    [[nodiscard]] std::string counts() const {
        char text[32];
        std::snprintf(text, sizeof text, "%06lu,%06lu", static_cast<unsigned long>(width()),
                      static_cast<unsigned long>(height()));
        return text;
    }
    [[nodiscard]] Bytes code() const { return encodeGroup4(rows); }
    [[nodiscard]] Bytes file(const std::string &density = "0200") const {
        return calsFile(pictureRecords(counts(), density), code());
    }
};

inline BilevelPicture bilevelPicture(DWORD width, DWORD height, std::uint32_t seed = 7) {
    Random random(seed);
    return {randomRows(random, width, height)};
}

} // namespace vellum::test
