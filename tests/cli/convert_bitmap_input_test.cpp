// vellum convert: Windows bitmaps of every kind as input, and those that are none.
#include "cli/bitmaps.h"
#include "cli/vellum_process.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace vellum::test {
namespace {

using Names = std::vector<std::string>;

constexpr LONG kDots300 = 11811; // pixels a metre
const RGBQUAD kBlack = color(0, 0, 0);
const RGBQUAD kWhite = color(255, 255, 255);

std::vector<RGBQUAD> greyRamp() {
    std::vector<RGBQUAD> colors;
    for (unsigned level = 0; level < 256; ++level) {
        const auto byte = static_cast<BYTE>(level);
        colors.push_back(color(byte, byte, byte));
    }
    return colors;
}

// The TIFF that a bitmap becomes.
Bytes asTiff(const WorkFolder &folder, const BitmapSpec &spec) {
    folder.put("in.bmp", bitmapFile(spec));
    const Outcome outcome = folder.run({"convert", "in.bmp", "out.tif"});
    EXPECT_EQ(outcome.err, "");
    EXPECT_EQ(outcome.status, 0U);
    return folder.get("out.tif").value_or(Bytes());
}

struct Kind {
    WORD bits;
    std::vector<RGBQUAD> colors;
    const char *report;
    const char *page; // what info tells of it
};

std::vector<Kind> kinds() {
    return {
        {1, {kBlack, kWhite}, "1 bit, g4", "1     BlackIsZero  Group 4      1       300 x 300 dpi"},
        {1, {kWhite, kBlack}, "1 bit, g4", "1     WhiteIsZero  Group 4      1       300 x 300 dpi"},
        {4, patternBitmap(4).colors, "4 bits, lzw", "4     palette      LZW          1       300 x 300 dpi"},
        {8, patternBitmap(8).colors, "8 bits, lzw-diff", "8     palette      LZW, differencing  1       300 x 300 dpi"},
        {8, greyRamp(), "8 bits, lzw-diff", "8     BlackIsZero  LZW, differencing  1       300 x 300 dpi"},
        {24, {}, "24 bits, lzw-diff", "3 x 8  RGB          LZW, differencing  1       300 x 300 dpi"}};
}

class ConvertBitmapOfDepth : public testing::TestWithParam<Kind> {};

TEST_P(ConvertBitmapOfDepth, ComesBackByteForByte) {
    BitmapSpec spec = patternBitmap(GetParam().bits);
    spec.colors = GetParam().colors;
    spec.pixelsPerMeter = kDots300;
    const WorkFolder folder;
    folder.put("in.bmp", bitmapFile(spec));
    EXPECT_EQ(folder.run({"convert", "in.bmp", "out.tif"}).out,
              std::string("out.tif: page 1: 13 x 3, ") + GetParam().report + "\n");
    const std::string told = folder.run({"info", "out.tif"}).out;
    EXPECT_NE(told.find(GetParam().page), std::string::npos) << told;
    EXPECT_EQ(folder.run({"convert", "out.tif", "back.bmp"}).status, 0U);
    EXPECT_EQ(folder.get("back.bmp"), bitmapFile(spec));
}

INSTANTIATE_TEST_SUITE_P(All, ConvertBitmapOfDepth, testing::ValuesIn(kinds()), [](const auto &kind) {
    return "Kind" + std::to_string(kind.index) + "Of" + std::to_string(kind.param.bits) + "Bits";
});

TEST(ConvertBitmapInput, TwoOtherColoursBecomeAPaletteOf4Bits) {
    BitmapSpec spec = patternBitmap(1);
    spec.colors = {color(200, 10, 30), color(1, 2, 3)};
    const WorkFolder folder;
    folder.put("in.bmp", bitmapFile(spec));
    EXPECT_EQ(folder.run({"convert", "in.bmp", "out.tif"}).out, "out.tif: page 1: 13 x 3, 4 bits, lzw\n");
    EXPECT_EQ(folder.run({"convert", "out.tif", "back.bmp"}).status, 0U);
    const Bytes bitmap = folder.get("back.bmp").value_or(Bytes());
    BitmapSpec expected = patternBitmap(4);
    for (std::size_t row = 0; row < 3; ++row) {
        for (std::size_t x = 0; x < 14; ++x) {
            const bool set = x < 13 && (spec.rows[row * 4 + x / 8] & (0x80 >> x % 8)) != 0;
            BYTE &pair = expected.rows[row * 8 + x / 2];
            pair = static_cast<BYTE>(x % 2 == 0 ? (set ? 0x10 : 0) : pair | (set ? 1 : 0));
        }
    }
    ASSERT_EQ(bitmap.size(), 14U + 40U + 64U + expected.rows.size());
    EXPECT_TRUE(std::equal(expected.rows.begin(), expected.rows.end(), bitmap.begin() + 118));
    EXPECT_EQ(Bytes(bitmap.begin() + 54, bitmap.begin() + 62), (Bytes{30, 10, 200, 0, 3, 2, 1, 0}));

    const Outcome refused = folder.run({"convert", "in.bmp", "fax.tif", "--compression", "g4"});
    EXPECT_EQ(refused.err, "vellum: in.bmp: page 1: g4 codes 1 bit per pixel; the page has 4 bits per pixel.\n");
    EXPECT_EQ(refused.status, 1U);
    EXPECT_FALSE(folder.get("fax.tif"));
}

TEST(ConvertBitmapInput, HeadersOfAllSizesMeanTheSame) {
    const WorkFolder folder;
    BitmapSpec spec = patternBitmap(8);
    const Bytes expected = asTiff(folder, spec);
    ASSERT_FALSE(expected.empty());
    for (const DWORD headerBytes : {12UL, 64UL, 108UL, 124UL}) {
        spec.headerBytes = headerBytes;
        EXPECT_EQ(asTiff(folder, spec), expected) << "header of " << headerBytes;
    }
}

TEST(ConvertBitmapInput, BitmapsMayStandEitherWayUp) {
    const WorkFolder folder;
    for (const WORD bits : {WORD{1}, WORD{8}, WORD{24}}) {
        BitmapSpec spec = patternBitmap(bits);
        const Bytes expected = asTiff(folder, spec);
        const std::size_t stride = spec.rows.size() / 3;
        for (std::size_t at = 0; at < stride; ++at) {
            std::swap(spec.rows[at], spec.rows[2 * stride + at]);
        }
        spec.height = -3;
        EXPECT_EQ(asTiff(folder, spec), expected) << bits;
    }
}

TEST(ConvertBitmapInput, TheFourthByteOf32BitsIsDropped) {
    BitmapSpec spec = patternBitmap(24);
    BitmapSpec wide = patternBitmap(32);
    for (std::size_t pixel = 0; pixel < 39; ++pixel) {
        const std::size_t from = pixel / 13 * 40 + pixel % 13 * 3;
        std::copy_n(spec.rows.begin() + static_cast<std::ptrdiff_t>(from), 3,
                    wide.rows.begin() + static_cast<std::ptrdiff_t>(pixel * 4));
    }
    const WorkFolder folder;
    const Bytes expected = asTiff(folder, spec);
    EXPECT_EQ(asTiff(folder, wide), expected);
    wide.compression = BI_BITFIELDS;
    EXPECT_EQ(asTiff(folder, wide), expected);
    wide.headerBytes = 108;
    EXPECT_EQ(asTiff(folder, wide), expected);
}

TEST(ConvertBitmapInput, WhatStandsBehindALinesLastPixelIsLeftBehind) {
    BitmapSpec spec = patternBitmap(1);
    const WorkFolder folder;
    spec.colors = {kBlack, kWhite};
    const auto uncompressed = [&folder](const BitmapSpec &bitmap) {
        folder.put("in.bmp", bitmapFile(bitmap));
        EXPECT_EQ(folder.run({"convert", "in.bmp", "out.tif", "--compression=none"}).status, 0U);
        return folder.get("out.tif");
    };
    const auto expected = uncompressed(spec);
    for (std::size_t row = 0; row < 3; ++row) {
        spec.rows[row * 4 + 1] |= 7;
        spec.rows[row * 4 + 3] = 0xAA;
    }
    EXPECT_EQ(uncompressed(spec), expected);
}

TEST(ConvertBitmapInput, ColoursThatAreNotThereAreBlack) {
    BitmapSpec spec = patternBitmap(8);
    BitmapSpec full = spec;
    spec.colors.resize(100);
    full.colors.resize(100);
    full.colors.resize(256, kBlack);
    const WorkFolder folder;
    EXPECT_EQ(asTiff(folder, spec), asTiff(folder, full));
    // Said to have 256, with room for 100.
    spec.colorsUsed = 0;
    EXPECT_EQ(asTiff(folder, spec), asTiff(folder, full));
}

TEST(ConvertBitmapInput, ResolutionsAreDotsPerInchWhereTheyCanBe) {
    struct Case {
        LONG pixelsPerMeter;
        const char *dots;
    };
    const WorkFolder folder;
    for (const Case &entry :
         {Case{2834, "72/1"}, {2835, "72/1"}, {7874, "200/1"}, {3000, "762000/10000"}, {10, "2540/10000"}}) {
        BitmapSpec spec = patternBitmap(24);
        spec.pixelsPerMeter = entry.pixelsPerMeter;
        asTiff(folder, spec);
        const std::string told = folder.run({"info", "--tags", "out.tif"}).out;
        EXPECT_NE(told.find(std::string("1  ") + entry.dots + "\n"), std::string::npos) << entry.dots << told;
        EXPECT_NE(told.find("ResolutionUnit"), std::string::npos);
    }
    asTiff(folder, patternBitmap(24));
    EXPECT_EQ(folder.run({"info", "--tags", "out.tif"}).out.find("Resolution "), std::string::npos);
}

TEST(ConvertBitmapInput, ABitmapIsOnePageAndGoesToTiffOnly) {
    const WorkFolder folder;
    folder.put("in.bmp", bitmapFile(patternBitmap(24)));
    const Outcome beyond = folder.run({"convert", "in.bmp", "out.tif", "--page", "2"});
    EXPECT_EQ(beyond.err, "vellum: in.bmp: there is no page 2; the file has 1.\n");
    EXPECT_EQ(beyond.status, 1U);
    const Outcome bitmap = folder.run({"convert", "in.bmp", "out.bmp"});
    EXPECT_EQ(bitmap.err, "vellum: in.bmp: a bitmap is converted to TIFF and CALS only.\n");
    EXPECT_EQ(bitmap.status, 1U);
    EXPECT_EQ(folder.files(), Names{"in.bmp"});
    EXPECT_EQ(folder.run({"convert", "in.bmp", "out.tif", "--all"}).status, 0U);
    EXPECT_EQ(folder.files(), (Names{"in.bmp", "out.tif"}));
}

TEST(ConvertBitmapInput, TheContentCountsAndNotTheName) {
    const WorkFolder folder;
    folder.put("in.tif", bitmapFile(patternBitmap(24)));
    EXPECT_EQ(folder.run({"convert", "in.tif", "out.tiff"}).out, "out.tiff: page 1: 13 x 3, 24 bits, lzw-diff\n");
}

struct Hostile {
    const char *what;
    Bytes file;
    const char *message;
};

constexpr const char *kDamaged = "the bitmap's header is damaged.";
constexpr const char *kCut = "the bitmap file ends before its picture does.";
constexpr const char *kDepths = "only bitmaps of 1, 4, 8, 24 and 32 bits per pixel can be read.";
constexpr const char *kCompressed = "compressed bitmaps cannot be read.";

Bytes cut(Bytes file, std::size_t length) {
    file.resize(length);
    return file;
}

Bytes changed(BitmapSpec spec, void (*change)(BitmapSpec &)) {
    change(spec);
    return bitmapFile(spec);
}

constexpr const char *kTooWide = "the bitmap is too wide.";

std::vector<Hostile> bitmapsOfWrongSizes() {
    const BitmapSpec spec = patternBitmap(8);
    const Bytes whole = bitmapFile(spec);
    return {
        {"two letters", {'B', 'M'}, kCut},
        {"cut in the header", cut(whole, 30), kCut},
        {"cut behind the header", cut(whole, 54), kCut},
        {"cut in the colours", cut(whole, 300), kCut},
        {"one byte short", cut(whole, whole.size() - 1), kCut},
        {"no width", changed(spec, [](BitmapSpec &s) { s.width = 0; }), kDamaged},
        {"a negative width", changed(spec, [](BitmapSpec &s) { s.width = -13; }), kDamaged},
        {"no height", changed(spec, [](BitmapSpec &s) { s.height = 0; }), kDamaged},
        {"the least height", changed(spec, [](BitmapSpec &s) { s.height = MINLONG; }), kCut},
        {"the largest size", changed(spec, [](BitmapSpec &s) { s.width = s.height = MAXLONG; }), kTooWide},
    };
}

std::vector<Hostile> bitmapsOfWrongKinds() {
    const BitmapSpec spec = patternBitmap(8);
    return {
        {"two planes", changed(spec, [](BitmapSpec &s) { s.planes = 2; }), kDamaged},
        {"a header of 13 bytes", changed(spec, [](BitmapSpec &s) { s.headerBytes = 13; }), kDamaged},
        {"a header of 5000 bytes", changed(spec, [](BitmapSpec &s) { s.headerBytes = 5000; }), kDamaged},
        {"rows in the header", changed(spec, [](BitmapSpec &s) { s.offset = 20; }), kDamaged},
        {"rows behind the end", changed(spec, [](BitmapSpec &s) { s.offset = 0xFFFFFFFF; }), kCut},
        {"no room for colours", changed(spec, [](BitmapSpec &s) { s.offset = 57; }), "the bitmap has no colours."},
        {"many colours", changed(spec, [](BitmapSpec &s) { s.colorsUsed = 0x7FFFFFFF; }), kDamaged},
        {"0 bits", changed(spec, [](BitmapSpec &s) { s.bits = 0; }), kDepths},
        {"16 bits", changed(spec, [](BitmapSpec &s) { s.bits = 16; }), kDepths},
        {"run lengths", changed(spec, [](BitmapSpec &s) { s.compression = BI_RLE8; }), kCompressed},
        {"masks for 8 bits", changed(spec, [](BitmapSpec &s) { s.compression = BI_BITFIELDS; }), kCompressed},
    };
}

void expectRefusals(const std::vector<Hostile> &bitmaps) {
    const WorkFolder folder;
    folder.put("out.tif", {1, 2, 3});
    for (const Hostile &hostile : bitmaps) {
        folder.put("in.bmp", hostile.file);
        const Outcome outcome = folder.run({"convert", "in.bmp", "out.tif"});
        EXPECT_EQ(outcome.err, std::string("vellum: in.bmp: page 1: ") + hostile.message + "\n") << hostile.what;
        EXPECT_EQ(outcome.out, "") << hostile.what;
        EXPECT_EQ(outcome.status, 1U) << hostile.what;
    }
    EXPECT_EQ(folder.get("out.tif"), (Bytes{1, 2, 3}));
    EXPECT_EQ(folder.files(), (Names{"in.bmp", "out.tif"}));
}

TEST(ConvertBitmapInput, SizesThatLieAreRefusedInWords) {
    expectRefusals(bitmapsOfWrongSizes());
}

TEST(ConvertBitmapInput, HeadersThatLieAreRefusedInWords) {
    expectRefusals(bitmapsOfWrongKinds());
}

} // namespace
} // namespace vellum::test
