// Pictures for the painter's tests, of every depth that can be painted, which know the colour of each of their pixels
// on a true-colour screen.
#pragma once

#include "support/paths.h"
#include "support/random_pictures.h"
#include "support/tiff_builder.h"

#include <optional>

namespace vellum::test {

inline constexpr DWORD kWhiteIsZeroPhotometric = 0;
inline constexpr DWORD kBlackIsZeroPhotometric = 1;
inline constexpr DWORD kRgbPhotometric = 2;
inline constexpr DWORD kPalettePhotometric = 3;

inline constexpr DWORD kScreenDepths[] = {1, 4, 8, 24};

// The colours of palette pictures: no two entries have the same red.
constexpr DWORD paletteColor(DWORD entry) {
    return ((entry * 97 + 13) & 255) << 16 | ((entry * 57 + 201) & 255) << 8 | ((entry * 31 + 7) & 255);
}

struct ScreenPicture {
    int width = 0;
    int height = 0;
    DWORD bits = 1;                   // a pixel
    std::optional<DWORD> photometric; // no tag without it
    std::vector<DWORD> values = {};   // row by row, as stored; 24 bits: 0xRRGGBB
    std::optional<DWORD> xDpi = {};   // no tag without it
    std::optional<DWORD> yDpi = {};
    DWORD unit = 2;
    std::optional<int> rowsStored = {}; // the data end behind these rows

    [[nodiscard]] DWORD value(int x, int y) const {
        return values[static_cast<std::size_t>(y) * static_cast<std::size_t>(width) + static_cast<std::size_t>(x)];
    }

    // 0x00RRGGBB, as it is painted without inversion.
    [[nodiscard]] DWORD color(int x, int y) const {
        const DWORD stored = value(x, y);
        if (bits == 24) {
            return stored;
        }
        if (bits == 1) {
            const bool white = (stored == 1) != (photometric.value_or(0) == kWhiteIsZeroPhotometric);
            return white ? 0xFFFFFF : 0;
        }
        return photometric == kPalettePhotometric ? paletteColor(stored) : (stored << (8 - bits)) * 0x010101;
    }

    [[nodiscard]] std::size_t lineBytes() const { return (static_cast<std::size_t>(width) * bits + 7) / 8; }

    // The bits behind a line's last pixel are ones.
    [[nodiscard]] Bytes packedRow(int row) const {
        Bytes packed;
        if (bits == 24) {
            for (int x = 0; x < width; ++x) {
                for (const int shift : {16, 8, 0}) {
                    packed.push_back(static_cast<BYTE>(value(x, row) >> shift));
                }
            }
            return packed;
        }
        packed.assign(lineBytes(), 0xFF);
        for (int x = 0; x < width; ++x) {
            const DWORD bit = static_cast<DWORD>(x) * bits;
            const DWORD shift = 8 - bits - bit % 8;
            const DWORD mask = ((1U << bits) - 1) << shift;
            packed[bit / 8] = static_cast<BYTE>((packed[bit / 8] & ~mask) | value(x, row) << shift);
        }
        return packed;
    }

    [[nodiscard]] Bytes packed() const {
        Bytes all;
        for (int row = 0; row < rowsStored.value_or(height); ++row) {
            const Bytes line = packedRow(row);
            all.insert(all.end(), line.begin(), line.end());
        }
        return all;
    }

    [[nodiscard]] std::vector<tiff::Entry> entries() const {
        const DWORD samples = bits == 24 ? 3 : 1;
        std::vector<tiff::Entry> made = {
            tiff::longs(256, {static_cast<DWORD>(width)}),
            tiff::longs(257, {static_cast<DWORD>(height)}),
            tiff::shorts(258, std::vector<std::uint32_t>(samples, bits / samples)),
            tiff::shorts(259, {1}),
        };
        if (photometric) {
            made.push_back(tiff::shorts(262, {*photometric}));
        }
        made.push_back(tiff::shorts(277, {samples}));
        if (xDpi) {
            made.push_back(tiff::rationals(282, {*xDpi, 1}));
        }
        if (yDpi) {
            made.push_back(tiff::rationals(283, {*yDpi, 1}));
        }
        made.push_back(tiff::shorts(296, {unit}));
        if (photometric == kPalettePhotometric) {
            made.push_back(tiff::shorts(320, colorMap()));
        }
        return made;
    }

    // The data at the very end, so that missing rows are missing from the file.
    [[nodiscard]] Bytes tiff() const {
        const auto withDataAt = [this](std::size_t offset) {
            std::vector<tiff::Entry> all = entries();
            auto at = all.begin();
            while (at->tag < 273) {
                ++at;
            }
            all.insert(at, tiff::longs(273, {static_cast<std::uint32_t>(offset)}));
            tiff::Builder file;
            file.directory(all);
            return file.bytes();
        };
        Bytes bytes = withDataAt(withDataAt(0).size());
        const Bytes data = packed();
        bytes.insert(bytes.end(), data.begin(), data.end());
        return bytes;
    }

private:
    // All reds, all greens, all blues; the low bytes do not count.
    [[nodiscard]] std::vector<std::uint32_t> colorMap() const {
        std::vector<std::uint32_t> map;
        for (const int shift : {16, 8, 0}) {
            for (DWORD i = 0; i < 1U << bits; ++i) {
                map.push_back((paletteColor(i) >> shift & 255) << 8 | (i * 29 & 255));
            }
        }
        return map;
    }
};

constexpr DWORD usualPhotometric(DWORD bits) {
    return bits == 1 ? kBlackIsZeroPhotometric : bits == 24 ? kRgbPhotometric : kPalettePhotometric;
}

// Squares of this many pixels, each of a colour of its own; 1: every pixel is.
inline ScreenPicture screenPicture(int width, int height, DWORD bits, int square = 1) {
    Random random(static_cast<std::uint32_t>(width * 1000 + height) + bits);
    const int across = (width + square - 1) / square;
    std::vector<DWORD> colors;
    for (int i = 0; i < across * ((height + square - 1) / square); ++i) {
        colors.push_back(random.below(1U << bits));
    }
    ScreenPicture made{.width = width, .height = height, .bits = bits, .photometric = usualPhotometric(bits)};
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            made.values.push_back(colors[static_cast<std::size_t>(y / square * across + x / square)]);
        }
    }
    return made;
}

} // namespace vellum::test
