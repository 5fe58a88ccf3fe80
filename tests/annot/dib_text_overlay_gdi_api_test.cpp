// Text on a copy of a DIB, by the DIB's own resolution and in its own colours.
#include "annot/overlays.h"
#include "support/faults.h"
#include "support/gdi_calls.h"

#include <gtest/gtest.h>

namespace vellum::test {
namespace {

constexpr WORD kDepths4[] = {1, 4, 8, 24};

PackedDib picture(WORD bits, LONG pixelsPerMeter = 0) {
    PackedDib dib(231, 60, bits);
    dib.header.biXPelsPerMeter = pixelsPerMeter;
    dib.header.biYPelsPerMeter = pixelsPerMeter;
    return dib;
}

// The DIB's pixels with lines of text on them: drawn on a section of the test's.
Pixels expected(const PackedDib &dib, const LOGFONTA &font, const RECT &clip, const std::vector<PlacedLine> &lines) {
    struct {
        BITMAPINFOHEADER header;
        RGBQUAD colours[256];
    } info{};
    info.header = dib.header;
    std::copy(dib.colours.begin(), dib.colours.end(), info.colours);
    void *rows = nullptr;
    const TestBitmap section(
        CreateDIBSection(nullptr, reinterpret_cast<BITMAPINFO *>(&info), DIB_RGB_COLORS, &rows, nullptr, 0));
    const Bytes bytes = dib.bytes();
    const std::size_t offset = sizeof dib.header + dib.colours.size() * sizeof(RGBQUAD);
    std::memcpy(rows, bytes.data() + offset, bytes.size() - offset);
    return drawnOn(section.get(), font, clip, lines);
}

// The overlay; the caller's DIB must stay as it is.
Bytes overlaid(const PackedDib &dib, LONG x, LONG y, const char *text, DWORD points = 10) {
    const DibBlock block(dib);
    const GdiCalls calls;
    const HGLOBAL result = DIBTextOverlay(block.get(), x, y, text, "Arial", points);
    EXPECT_EQ(GdiCalls::counts().objects, 0);
    EXPECT_EQ(GdiCalls::counts().allContexts(), 0);
    EXPECT_EQ(lockCount(block.get()), 0U);
    EXPECT_TRUE(blockBytes(block.get()) == dib.bytes()) << "the DIB has changed";
    EXPECT_NE(result, block.get());
    EXPECT_EQ(lockCount(result), 0U);
    const Bytes bytes = blockBytes(result);
    GlobalFree(result);
    return bytes;
}

TEST(DibTextOverlay, TheTextIsDrawnAtEveryDepth) {
    for (const WORD bits : kDepths4) {
        SCOPED_TRACE(bits);
        const PackedDib dib = picture(bits);
        const Dib result(makeBlock(overlaid(dib, 7, 9, "Text\r\nlines")));
        const LOGFONTA font = overlayFont("Arial", 10, screenResolution());
        const int height = lineHeightOf(font);
        const Pixels with = expected(dib, font, {7, 9, 231, 60}, {{7, 9, "Text"}, {7, 9 + height, "lines"}});
        EXPECT_TRUE(pixelsOf(result) == with);
        EXPECT_FALSE(pixelsOf(result) == pixelsOf(Dib(makeBlock(dib.bytes()))));
    }
}

TEST(DibTextOverlay, NothingElseOfTheDibChanges) {
    for (const WORD bits : {WORD{1}, WORD{4}, WORD{8}, WORD{16}, WORD{24}, WORD{32}}) {
        const PackedDib dib = picture(bits);
        EXPECT_TRUE(overlaid(dib, 500, 9, "Text") == dib.bytes()) << bits << " bits";
        EXPECT_FALSE(overlaid(dib, 5, 9, "Text") == dib.bytes()) << bits << " bits";
    }
}

TEST(DibTextOverlay, AShortColourTableStaysShortAndTheTextHasOneOfItsColours) {
    PackedDib dib(90, 40, 8, {quad(250, 240, 230), quad(9, 8, 7), quad(200, 0, 0)});
    Bytes bytes = dib.bytes();
    std::fill(bytes.begin() + sizeof dib.header + 3 * sizeof(RGBQUAD), bytes.end(), BYTE{2});
    const DibBlock block(bytes);
    const HGLOBAL result = DIBTextOverlay(block.get(), 5, 5, "Text", "Arial", 12);
    const Bytes made = blockBytes(result);
    GlobalFree(result);
    ASSERT_EQ(made.size(), bytes.size());
    EXPECT_TRUE(std::equal(made.begin(), made.begin() + sizeof dib.header + 3 * sizeof(RGBQUAD), bytes.begin()));
    bool text = false;
    for (std::size_t i = sizeof dib.header + 3 * sizeof(RGBQUAD); i < made.size(); ++i) {
        EXPECT_LT(made[i], 3);
        text = text || made[i] == 1;
    }
    EXPECT_TRUE(text) << "the darkest colour is the second one";
}

TEST(DibTextOverlay, PixelValuesBehindTheColourTableStay) {
    PackedDib dib = picture(8);
    dib.colours.resize(5);
    dib.header.biClrUsed = 5;
    EXPECT_TRUE(overlaid(dib, 500, 9, "Text") == dib.bytes());
}

TEST(DibTextOverlay, AColourTableWithoutACountIsWhole) {
    PackedDib dib = picture(4);
    dib.header.biClrUsed = 0;
    EXPECT_TRUE(overlaid(dib, 500, 9, "Text") == dib.bytes());
}

TEST(DibTextOverlay, ALongerHeaderAndSpareColoursStay) {
    PackedDib longer = picture(8);
    longer.header.biSize = 108;
    EXPECT_TRUE(overlaid(longer, 500, 9, "Text") == longer.bytes());
    PackedDib colours = picture(24);
    colours.colours = manyColours(7);
    colours.header.biClrUsed = 7;
    EXPECT_TRUE(overlaid(colours, 500, 9, "Text") == colours.bytes());
}

TEST(DibTextOverlay, OnADibOf200DotsPerInchThePositionIsScaled) {
    ASSERT_EQ(screenResolution(), 96U);
    const PackedDib dib = picture(1, 7874);
    const Dib result(makeBlock(overlaid(dib, 96, 0, "X")));
    const LOGFONTA font = overlayFont("Arial", 10, 200);
    EXPECT_TRUE(pixelsOf(result) == expected(dib, font, {96, 0, 231, 60}, {{200, 0, "X"}}));
}

TEST(DibTextOverlay, OnADibOf200DotsPerInchAcrossAnd100DownEachDirectionHasItsOwn) {
    ASSERT_EQ(screenResolution(), 96U);
    const LOGFONTA font = overlayFont("Arial", 10, 100);
    PackedDib dib = picture(1);
    dib.header.biXPelsPerMeter = 7874;
    dib.header.biYPelsPerMeter = 3937;
    const Dib result(makeBlock(overlaid(dib, 48, 24, "X")));
    EXPECT_TRUE(pixelsOf(result) == expected(dib, font, {48, 24, 231, 60}, {{100, 25, "X"}}));
    // 200 * 39.37 and 100 * 39.37 without their fractions.
    EXPECT_EQ(result.header().biXPelsPerMeter, 7873);
    EXPECT_EQ(result.header().biYPelsPerMeter, 3936);
}

TEST(DibTextOverlay, TheNewDibHasTheResolutionInWholeDotsPerInch) {
    struct Case {
        LONG given;
        LONG kept;
    };
    for (const Case &entry : {Case{7874, 7873}, Case{11811, 11811}, Case{8031, 7992}, Case{0, 0}, Case{-5, 0},
                              Case{39, 0}, Case{0x7FFFFFFF, 2147483618}}) {
        const Dib result(makeBlock(overlaid(picture(1, entry.given), 500, 0, "X")));
        EXPECT_EQ(result.header().biXPelsPerMeter, entry.kept) << entry.given;
        EXPECT_EQ(result.header().biYPelsPerMeter, entry.kept) << entry.given;
    }
}

// The system keeps all pixels of the letters that it draws, seen or not: those of a few would fill a program's memory.
TEST(DibTextOverlay, LettersDoNotGetMuchLargerThanThePicture) {
    struct Case {
        LONG width;
        LONG pixelsPerMeter;
        DWORD points;
        LONG height;
    };
    for (const Case &entry :
         {Case{100, 7874, 300, -833}, Case{100, 3937000, 10, -1024}, Case{100, 10000000, 10, -1024},
          Case{30000, 7874, 300, -833}, Case{30000, 7874, 800, -2222}, Case{30000, 10000000, 10, -2683}}) {
        PackedDib dib(entry.width, 60, 1);
        dib.header.biXPelsPerMeter = entry.pixelsPerMeter;
        dib.header.biYPelsPerMeter = entry.pixelsPerMeter;
        const DibBlock block(dib);
        const GdiCalls calls;
        GlobalFree(DIBTextOverlay(block.get(), 0, 0, "Text", "Arial", entry.points));
        EXPECT_EQ(GdiCalls::counts().font.lfHeight, entry.height) << entry.pixelsPerMeter << ' ' << entry.points;
    }
}

TEST(DibTextOverlay, WithoutDibTextOrFaceThereIsNoResult) {
    const DibBlock block(picture(8));
    EXPECT_EQ(DIBTextOverlay(nullptr, 0, 0, "x", "Arial", 10), nullptr);
    EXPECT_EQ(DIBTextOverlay(block.get(), 0, 0, nullptr, "Arial", 10), nullptr);
    EXPECT_EQ(DIBTextOverlay(block.get(), 0, 0, "x", nullptr, 10), nullptr);
    EXPECT_EQ(lockCount(block.get()), 0U);
}

TEST(DibTextOverlay, ADibThatIsNotTakenGivesNoResult) {
    std::vector<PackedDib> dibs(6, picture(8));
    dibs[0].header.biHeight = -60;
    dibs[1].header.biCompression = BI_RLE8;
    dibs[2].header.biWidth = 0;
    dibs[3].header.biBitCount = 2;
    dibs[4].header.biHeight = 0x7FFFFFFF;
    dibs[5].header.biClrUsed = 257;
    const GdiCalls calls;
    for (const PackedDib &dib : dibs) {
        PackedDib sound = picture(8);
        Bytes bytes = sound.bytes();
        std::memcpy(bytes.data(), &dib.header, sizeof dib.header);
        const DibBlock block(bytes);
        EXPECT_EQ(DIBTextOverlay(block.get(), 0, 0, "x", "Arial", 10), nullptr);
    }
    Bytes cut = picture(8).bytes();
    cut.pop_back();
    EXPECT_EQ(DIBTextOverlay(DibBlock(cut).get(), 0, 0, "x", "Arial", 10), nullptr);
    EXPECT_EQ(DIBTextOverlay(DibBlock(Bytes(10)).get(), 0, 0, "x", "Arial", 10), nullptr);
    EXPECT_EQ(GdiCalls::counts().objects, 0);
    EXPECT_EQ(GdiCalls::tried(GdiCalls::Fail::DibSection), 0);
}

TEST(DibTextOverlay, WhateverFailsNothingIsLeftBehind) {
    const DibBlock block(picture(8));
    for (const auto kind : {GdiCalls::Fail::DibSection, GdiCalls::Fail::MemoryDc, GdiCalls::Fail::Selection}) {
        const GdiCalls calls(kind, 0);
        EXPECT_EQ(DIBTextOverlay(block.get(), 0, 0, "x", "Arial", 10), nullptr);
        EXPECT_EQ(GdiCalls::counts().objects, 0);
        EXPECT_EQ(GdiCalls::counts().allContexts(), 0);
    }
    const GdiCalls calls;
    const FailNth fault(Call::Allocate, 0);
    EXPECT_EQ(DIBTextOverlay(block.get(), 0, 0, "x", "Arial", 10), nullptr);
    EXPECT_TRUE(fault.happened());
    EXPECT_EQ(GdiCalls::counts().objects, 0);
    EXPECT_EQ(lockCount(block.get()), 0U);
}

} // namespace
} // namespace vellum::test
