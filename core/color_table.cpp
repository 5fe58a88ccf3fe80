// The colour table of a registered image: the file's own for palette images, black and white or a grey ramp otherwise.
#include "core/image_dimensions.h"
#include "core/image_info.h"
#include "support/byte_order.h"

#include <algorithm>

namespace vellum {
namespace {

constexpr DWORD kUnknownPhotometric = 0xFFFFFFFF;

constexpr RGBQUAD grey(BYTE level) {
    return {level, level, level, 0};
}
constexpr RGBQUAD kBlack = grey(0);
constexpr RGBQUAD kWhite = grey(255);

// The entries that are to be filled.
struct ColorTable {
    RGBQUAD *entries;
    DWORD count;

    [[nodiscard]] bool bilevel() const { return count == 2; }
    [[nodiscard]] DWORD step() const { return 256 / count; }
    void set(RGBQUAD zero, RGBQUAD one) const {
        entries[0] = zero;
        entries[1] = one;
    }
};

void fillWhiteIsZero(const ColorTable &table) {
    if (table.bilevel()) {
        table.set(kWhite, kBlack);
        return;
    }
    // By design: the levels are the negated ones in 8 bits, so the whitest entry is black: 0, 240, 224 ... 16. Files
    // and programs that go by this table look the same everywhere.
    for (DWORD i = 0; i < table.count; ++i) {
        table.entries[i] = grey(static_cast<BYTE>(0u - table.step() * i));
    }
}

void fillBlackIsZero(const ColorTable &table) {
    if (table.bilevel()) {
        table.set(kBlack, kWhite);
        return;
    }
    for (DWORD i = 0; i < table.count; ++i) {
        table.entries[i] = grey(static_cast<BYTE>(table.step() * i));
    }
}

// Takes the high bytes of the map's 16-bit values, all reds before all greens before all blues. A map shorter than the
// table, or one that holds fewer values than it says, fills only part of it. In a longer one, which no depth asks for,
// the planes still lie as far apart as the table is long.
void fillFromMap(const ColorTable &table, const TagValues &map) {
    const GlobalView<const BYTE> values(map.data.get(), 0);
    if (!values) {
        return;
    }
    const auto held = static_cast<DWORD>(values.bytes() / sizeof(WORD));
    const DWORD colors = std::min({table.count, map.count / 3, held / 3});
    const auto highByte = [&values](DWORD at) { return values.get()[at * sizeof(WORD) + 1]; };
    for (DWORD i = 0; i < colors; ++i) {
        table.entries[i] = {highByte(2 * colors + i), highByte(colors + i), highByte(i), 0};
    }
}

Error fillPalette(TiffHandle tiff, DWORD index, const ColorTable &table) {
    if (!hasTag(tiff, index, Tag::ColorMap)) {
        return Error::TagMissing;
    }
    if (table.bilevel()) {
        // By design: a 1-bit palette image is shown in black on white whatever its map says.
        table.set(kWhite, kBlack);
        return Error::None;
    }
    const auto map = allValues(tiff, index, Tag::ColorMap);
    if (!map) {
        return Error::NoMemory;
    }
    fillFromMap(table, *map);
    return Error::None;
}

Error fill(TiffHandle tiff, DWORD index, const ColorTable &table) {
    switch (firstValue(tiff, index, Tag::Photometric).value_or(kUnknownPhotometric)) {
    case kWhiteIsZero:
    case kTransparencyMask:
        fillWhiteIsZero(table);
        return Error::None;
    case kBlackIsZero:
        fillBlackIsZero(table);
        return Error::None;
    case kRgb:
        return Error::None;
    case kPalette:
        return fillPalette(tiff, index, table);
    default:
        if (table.bilevel()) {
            table.set(kWhite, kBlack);
        }
        return Error::None;
    }
}

} // namespace

GlobalBlock makeColorTable(TiffHandle tiff, DWORD index) {
    BITMAPINFOHEADER header = {};
    if (const Error error = describeImage(tiff, index, header); error != Error::None) {
        setError(error);
        return {};
    }
    GlobalBlock block = GlobalBlock::allocate(Size(sizeof header) + Size(header.biClrUsed) * Size(sizeof(RGBQUAD)));
    const GlobalView<BITMAPINFOHEADER> view(block.get());
    if (!view) {
        setError(Error::NoMemory);
        return {};
    }
    *view = header;
    const ColorTable table{reinterpret_cast<RGBQUAD *>(view.get() + 1), header.biClrUsed};
    if (const Error error = fill(tiff, index, table); error != Error::None) {
        setError(error);
        return {};
    }
    return block;
}

} // namespace vellum
