// The colour table that goes with an image.
#include "opened_tiff.h"
#include "support/faults.h"

#include <cstring>
#include <optional>

namespace vellum::test {
namespace {

using Entries = std::vector<tiff::Entry>;

// A colour as 0xRRGGBB; the reserved byte, which must be 0, would show above.
using Color = DWORD;

struct Table {
    BITMAPINFOHEADER header = {};
    std::vector<Color> colors;
};

// Nothing when there is no table.
std::optional<Table> tableOf(const OneImage &image) {
    HGLOBAL block = GetTiffRGBQuad(image.get(), 0);
    if (block == nullptr) {
        return std::nullopt;
    }
    EXPECT_EQ(lockCount(block), 0u);
    const Bytes bytes = blockBytes(block);
    GlobalFree(block);
    Table table;
    std::memcpy(&table.header, bytes.data(), sizeof table.header);
    EXPECT_EQ(bytes.size(), sizeof table.header + 4 * table.header.biClrUsed);
    for (std::size_t at = sizeof table.header; at < bytes.size(); at += 4) {
        table.colors.push_back(bytes[at] | DWORD{bytes[at + 1]} << 8 | DWORD{bytes[at + 2]} << 16 |
                               DWORD{bytes[at + 3]} << 24);
    }
    return table;
}

constexpr DWORD kNoPhotometric = 0xFFFF;

Entries entriesFor(DWORD bits, DWORD photometric, const Entries &others = {}) {
    Entries entries = {tiff::shorts(256, {5}), tiff::shorts(257, {5}), tiff::shorts(258, {bits})};
    if (photometric != kNoPhotometric) {
        entries.push_back(tiff::shorts(262, {photometric}));
    }
    entries.insert(entries.end(), others.begin(), others.end());
    return entries;
}

std::vector<Color> colorsOf(DWORD bits, DWORD photometric, const Entries &others = {}) {
    const OneImage image(entriesFor(bits, photometric, others));
    const auto table = tableOf(image);
    EXPECT_TRUE(table) << bits << " bits, photometric " << photometric;
    return table ? table->colors : std::vector<Color>();
}

// A map of so many colours: entry i is red 0x<i>01, green 0x<i + 1>02, blue 0x<i + 2>03.
std::vector<std::uint32_t> mapOf(DWORD colors) {
    std::vector<std::uint32_t> values;
    for (DWORD plane = 0; plane < 3; ++plane) {
        for (DWORD i = 0; i < colors; ++i) {
            values.push_back(((i + plane) & 0xFF) << 8 | (plane + 1));
        }
    }
    return values;
}
Color mapped(DWORD i) {
    return (i & 0xFF) << 16 | ((i + 1) & 0xFF) << 8 | ((i + 2) & 0xFF);
}

const std::vector<Color> kBlackWhite = {0x000000, 0xFFFFFF};
const std::vector<Color> kWhiteBlack = {0xFFFFFF, 0x000000};

class ColorTable : public ::testing::Test {
protected:
    void SetUp() override { SetTiffError(VELLUM_OK); }
    void TearDown() override { SetTiffError(VELLUM_OK); }
};

TEST_F(ColorTable, BeginsWithTheHeader) {
    for (const std::uint16_t order : {tiff::kII, tiff::kMM}) {
        const OneImage image(entriesFor(8, 1), order);
        const auto table = tableOf(image);
        ASSERT_TRUE(table);
        BITMAPINFOHEADER header = {};
        EXPECT_EQ(GetTiffDimensions(image.get(), 0, &header), 0u);
        EXPECT_EQ(std::memcmp(&table->header, &header, sizeof header), 0);
        EXPECT_EQ(table->colors.size(), 256u);
    }
}

TEST_F(ColorTable, OfBilevelImages) {
    EXPECT_EQ(colorsOf(1, 0), kWhiteBlack);
    EXPECT_EQ(colorsOf(1, 1), kBlackWhite);
    EXPECT_EQ(colorsOf(1, 2), (std::vector<Color>{0, 0})) << "RGB has no table";
    EXPECT_EQ(colorsOf(1, 4), kWhiteBlack);
    EXPECT_EQ(colorsOf(1, 5), kWhiteBlack);
    EXPECT_EQ(colorsOf(1, 32768), kWhiteBlack);
    EXPECT_EQ(colorsOf(1, kNoPhotometric), kWhiteBlack);
}

TEST_F(ColorTable, OfBlackIsZeroIsARamp) {
    const auto four = colorsOf(4, 1);
    ASSERT_EQ(four.size(), 16u);
    for (DWORD i = 0; i < 16; ++i) {
        EXPECT_EQ(four[i], i * 16 * 0x010101) << i << ": 0, 16, 32 ... 240";
    }
    const auto eight = colorsOf(8, 1);
    ASSERT_EQ(eight.size(), 256u);
    for (DWORD i = 0; i < 256; ++i) {
        EXPECT_EQ(eight[i], i * 0x010101);
    }
}

// By design.
TEST_F(ColorTable, OfWhiteIsZeroIsTheNegatedRampIn8Bits) {
    for (const DWORD photometric : {0u, 4u}) {
        const auto four = colorsOf(4, photometric);
        ASSERT_EQ(four.size(), 16u);
        EXPECT_EQ(four[0], 0u) << "black, though it stands for white";
        for (DWORD i = 1; i < 16; ++i) {
            EXPECT_EQ(four[i], (256 - i * 16) * 0x010101) << i << ": 240, 224 ... 16";
        }
        const auto eight = colorsOf(8, photometric);
        ASSERT_EQ(eight.size(), 256u);
        EXPECT_EQ(eight[0], 0u);
        for (DWORD i = 1; i < 256; ++i) {
            EXPECT_EQ(eight[i], (256 - i) * 0x010101) << i << ": 255, 254 ... 1";
        }
    }
}

TEST_F(ColorTable, OfRgbImagesIsEmpty) {
    const Entries samples = {tiff::shorts(277, {3})};
    for (const DWORD photometric : std::vector<DWORD>{0, 1, 2, 4, 6, kNoPhotometric}) {
        EXPECT_TRUE(colorsOf(8, photometric, samples).empty()) << photometric;
    }
    EXPECT_EQ(colorsOf(8, 2), std::vector<Color>(256)) << "one sample: room, but no colours";
}

TEST_F(ColorTable, OfOtherColorModelsHasNoColors) {
    EXPECT_EQ(colorsOf(8, 5), std::vector<Color>(256));
    EXPECT_EQ(colorsOf(4, kNoPhotometric), std::vector<Color>(16));
}

TEST_F(ColorTable, OfPaletteImagesTakesTheHighBytesOfTheMap) {
    for (const std::uint16_t order : {tiff::kII, tiff::kMM}) {
        const OneImage image(entriesFor(8, 3, {tiff::shorts(320, mapOf(256))}), order);
        const auto table = tableOf(image);
        ASSERT_TRUE(table);
        for (DWORD i = 0; i < 256; ++i) {
            EXPECT_EQ(table->colors[i], mapped(i)) << i;
        }
    }
    const auto four = colorsOf(4, 3, {tiff::shorts(320, mapOf(16))});
    ASSERT_EQ(four.size(), 16u);
    EXPECT_EQ(four[15], mapped(15));
}

TEST_F(ColorTable, OfAShorterMapIsFilledAsFarAsItGoes) {
    const auto colors = colorsOf(8, 3, {tiff::shorts(320, mapOf(100))});
    ASSERT_EQ(colors.size(), 256u) << "biClrUsed stays";
    EXPECT_EQ(colors[0], mapped(0));
    EXPECT_EQ(colors[99], mapped(99));
    EXPECT_EQ(colors[100], 0u);
    const auto uneven = colorsOf(8, 3, {tiff::shorts(320, {0x1100, 0x2200, 0x3300, 0x4400, 0x5500})});
    EXPECT_EQ(uneven[0], 0x112233u) << "5 values are one colour";
    EXPECT_EQ(uneven[1], 0u);
    EXPECT_EQ(colorsOf(8, 3, {tiff::shorts(320, {1, 2})}), std::vector<Color>(256));
}

TEST_F(ColorTable, OfALongerMapGoesByTheDepth) {
    // By design: the planes are as far apart as the table is long.
    const auto colors = colorsOf(4, 3, {tiff::shorts(320, mapOf(256))});
    ASSERT_EQ(colors.size(), 16u);
    EXPECT_EQ(colors[1], (1u << 16 | 17u << 8 | 33u));
}

TEST_F(ColorTable, OfAMapThatHoldsLessThanItSaysIsSafe) {
    // Bytes instead of SHORTs: 768 bytes are 384 numbers of 16 bits, 128 colours.
    const auto bytes = colorsOf(8, 3, {tiff::byteValues(320, std::vector<std::uint32_t>(768, 0x55))});
    ASSERT_EQ(bytes.size(), 256u);
    EXPECT_EQ(bytes[127], 0x555555u);
    EXPECT_EQ(bytes[128], 0u);
    EXPECT_EQ(colorsOf(8, 3, {tiff::field(320, 5, 0, 7)}), std::vector<Color>(256));
    EXPECT_EQ(colorsOf(8, 3, {tiff::field(320, 3, 0, 7)}), std::vector<Color>(256));
}

// By design.
TEST_F(ColorTable, OfBilevelPaletteImagesIsBlackOnWhite) {
    EXPECT_EQ(colorsOf(1, 3, {tiff::shorts(320, mapOf(2))}), kWhiteBlack);
}

TEST_F(ColorTable, OfPaletteImagesNeedsAMap) {
    for (const DWORD bits : {1u, 4u, 8u, 24u}) {
        const OneImage image(entriesFor(bits, 3));
        SetTiffError(0);
        EXPECT_EQ(GetTiffRGBQuad(image.get(), 0), nullptr) << bits;
        EXPECT_EQ(TiffError(), 10u);
    }
    EXPECT_TRUE(colorsOf(24, 3, {tiff::shorts(320, mapOf(256))}).empty()) << "24 bits have no table all the same";
}

TEST_F(ColorTable, NeedsDimensions) {
    const OneImage noLength({tiff::shorts(256, {5}), tiff::shorts(258, {8})});
    EXPECT_EQ(GetTiffRGBQuad(noLength.get(), 0), nullptr);
    EXPECT_EQ(SetTiffError(0), 10u);
    const OneImage twoBits(entriesFor(2, 1));
    EXPECT_EQ(GetTiffRGBQuad(twoBits.get(), 0), nullptr);
    EXPECT_EQ(SetTiffError(0), 16u);
}

TEST_F(ColorTable, NeedsMemory) {
    const OneImage image(entriesFor(8, 3, {tiff::shorts(320, mapOf(256))}));
    for (const long nth : {0L, 1L}) {
        const FailNth fault(Call::Allocate, nth);
        EXPECT_EQ(GetTiffRGBQuad(image.get(), 0), nullptr) << nth;
        EXPECT_EQ(SetTiffError(0), 1u);
    }
}

} // namespace
} // namespace vellum::test
