// Text on a copy of a bitmap: where it lands, where it is cut off, and what is left behind.
#include "annot/overlays.h"
#include "annot/uneven_screen.h"
#include "support/faults.h"
#include "support/gdi_calls.h"

#include <gtest/gtest.h>

namespace vellum::test {
namespace {

constexpr int kWidth = 200;
constexpr int kHeight = 120;
constexpr RECT kWhole = {0, 0, kWidth, kHeight};

struct Overlay {
    LONG x = 10;
    LONG y = 12;
    const char *text = "Received";
    const char *face = "Arial";
    DWORD points = 12;
    DWORD xResolution = 0;
    DWORD yResolution = 0;

    [[nodiscard]] HBITMAP on(HBITMAP bitmap) const {
        return BitmapTextOverlay(bitmap, x, y, text, face, points, xResolution, yResolution);
    }
    [[nodiscard]] LOGFONTA font() const {
        return overlayFont(face, points, yResolution == 0 ? screenResolution() : yResolution);
    }
};

// The overlay on a picture of the screen's depth, and that the picture itself stays as it is.
Pixels drawn(const Overlay &overlay) {
    const TestBitmap picture = screenBitmap(kWidth, kHeight);
    const Pixels before = pixelsOf(picture.get());
    const GdiCalls calls;
    const LoadedBitmap result(overlay.on(picture.get()));
    EXPECT_TRUE(result);
    EXPECT_NE(result.get(), picture.get());
    EXPECT_TRUE(pixelsOf(picture.get()) == before);
    EXPECT_EQ(GdiCalls::counts().objects, 1);
    EXPECT_EQ(GdiCalls::counts().allContexts(), 0);
    return pixelsOf(result.get());
}

Pixels expected(const Overlay &overlay, const RECT &clip, const std::vector<PlacedLine> &lines) {
    return drawnOn(screenBitmap(kWidth, kHeight).get(), overlay.font(), clip, lines);
}

Pixels untouched() {
    return pixelsOf(screenBitmap(kWidth, kHeight).get());
}

TEST(BitmapTextOverlay, WithoutResolutionsTheTextBeginsExactlyThere) {
    const Overlay overlay;
    const Pixels pixels = drawn(overlay);
    EXPECT_FALSE(pixels == untouched());
    EXPECT_TRUE(pixels == expected(overlay, {10, 12, kWidth, kHeight}, {{10, 12, "Received"}}));
}

TEST(BitmapTextOverlay, TheScreensResolutionIsTheSameAsNone) {
    EXPECT_TRUE(drawn({.xResolution = screenResolution(), .yResolution = screenResolution()}) == drawn({}));
}

TEST(BitmapTextOverlay, OnAFinerPictureThePositionIsScaled) {
    const Overlay overlay{.x = 20, .y = 11, .xResolution = 2 * screenResolution(), .yResolution = 144};
    const int y = static_cast<int>((11 * 144 + screenResolution() / 2) / screenResolution());
    EXPECT_TRUE(drawn(overlay) == expected(overlay, {20, 11, kWidth, kHeight}, {{40, y, "Received"}}));
}

TEST(BitmapTextOverlay, OnACoarserPictureTheTextsBeginningIsCutOff) {
    const Overlay overlay{
        .x = 40, .y = 30, .xResolution = screenResolution() / 2, .yResolution = screenResolution() / 2};
    const Pixels pixels = drawn(overlay);
    EXPECT_TRUE(pixels == expected(overlay, {40, 30, kWidth, kHeight}, {{20, 15, "Received"}}));
    EXPECT_FALSE(pixels == expected(overlay, kWhole, {{20, 15, "Received"}}));
}

// By design: the second line begins above the coordinate, and so does what it may cover.
TEST(BitmapTextOverlay, OnACoarserPictureTheSecondLineIsWhole) {
    const Overlay overlay{
        .x = 10, .y = 60, .text = "A\r\nBy", .xResolution = screenResolution(), .yResolution = screenResolution() / 2};
    const int second = 30 + lineHeightOf(overlay.font());
    ASSERT_LT(second, 55);
    const TestBitmap picture = screenBitmap(kWidth, kHeight);
    drawnOn(picture.get(), overlay.font(), {10, 60, kWidth, kHeight}, {{10, 30, "A"}});
    EXPECT_TRUE(drawn(overlay) ==
                drawnOn(picture.get(), overlay.font(), {10, second, kWidth, kHeight}, {{10, second, "By"}}));
}

TEST(BitmapTextOverlay, AResolutionOf0InOneDirectionIsTheScreensInThatOneOnly) {
    const DWORD finer = 2 * screenResolution();
    const Overlay across{.xResolution = finer};
    EXPECT_TRUE(drawn(across) == expected(across, {10, 12, kWidth, kHeight}, {{20, 12, "Received"}}));
    const Overlay down{.yResolution = finer};
    EXPECT_TRUE(drawn(down) == expected(down, {10, 12, kWidth, kHeight}, {{10, 24, "Received"}}));
}

TEST(BitmapTextOverlay, OnAScreenOfTwoResolutionsEachDirectionHasItsOwn) {
    const FreshLibrary library;
    ASSERT_NE(library.get(), libraryModule());
    const auto overlayText = library.entry<decltype(BitmapTextOverlay)>("BitmapTextOverlay");
    ASSERT_NE(overlayText, nullptr);
    const UnevenScreen screen(48, 192, library.get());
    const TestBitmap picture = screenBitmap(kWidth, kHeight);
    const LoadedBitmap finer(overlayText(picture.get(), 10, 12, "Received", "Arial", 6, 192, 288));
    EXPECT_TRUE(pixelsOf(finer.get()) ==
                expected({.points = 6, .yResolution = 288}, {10, 12, kWidth, kHeight}, {{40, 18, "Received"}}));
    const LoadedBitmap without(overlayText(picture.get(), 10, 12, "Received", "Arial", 6, 0, 0));
    EXPECT_TRUE(pixelsOf(without.get()) ==
                expected({.points = 6, .yResolution = 192}, {10, 12, kWidth, kHeight}, {{10, 12, "Received"}}));
}

TEST(BitmapTextOverlay, EveryLineFeedMovesDownByALine) {
    const Overlay overlay{.text = "A\r\nB\r\n\r\nC\nD"};
    const int height = lineHeightOf(overlay.font());
    EXPECT_TRUE(
        drawn(overlay) ==
        expected(overlay, {10, 12, kWidth, kHeight},
                 {{10, 12, "A"}, {10, 12 + height, "B"}, {10, 12 + 3 * height, "C"}, {10, 12 + 4 * height, "D"}}));
}

TEST(BitmapTextOverlay, LineFeedsBeforeTheFirstLineCount) {
    const Overlay overlay{.text = "\r\n\nA"};
    EXPECT_TRUE(drawn(overlay) ==
                expected(overlay, {10, 12, kWidth, kHeight}, {{10, 12 + 2 * lineHeightOf(overlay.font()), "A"}}));
}

TEST(BitmapTextOverlay, ACarriageReturnAloneBeginsNoLine) {
    const Overlay overlay{.text = "A\rB"};
    EXPECT_TRUE(drawn(overlay) == expected(overlay, {10, 12, kWidth, kHeight}, {{10, 12, "A"}, {10, 12, "B"}}));
    EXPECT_TRUE(drawn({.text = "A\r\nB"}) == drawn({.text = "A\nB"}));
    EXPECT_FALSE(drawn({.text = "A\rB"}) == drawn({.text = "A\r\nB"}));
}

TEST(BitmapTextOverlay, TextWithoutCharactersDrawsNothing) {
    EXPECT_TRUE(drawn({.text = ""}) == untouched());
    EXPECT_TRUE(drawn({.text = "\r\n\r\n"}) == untouched());
}

TEST(BitmapTextOverlay, OutsideThePictureNothingIsDrawn) {
    for (const POINT &at : {POINT{kWidth, 10}, POINT{10, kHeight}, POINT{0x7FFFFFFF, 0}, POINT{0, 0x7FFFFFFF},
                            POINT{-0x7FFFFFFF - 1, 0}, POINT{0, -0x7FFFFFFF - 1}, POINT{5000, 5000}}) {
        EXPECT_TRUE(drawn({.x = at.x, .y = at.y}) == untouched()) << at.x << ", " << at.y;
        EXPECT_TRUE(drawn({.x = at.x, .y = at.y, .xResolution = 0xFFFFFFFF, .yResolution = 0xFFFFFFFF}) == untouched());
    }
}

TEST(BitmapTextOverlay, AtAnEdgeThePartInsideIsDrawn) {
    for (const POINT &at : {POINT{-15, 12}, POINT{10, -5}, POINT{kWidth - 9, 12}, POINT{10, kHeight - 6}}) {
        const Overlay overlay{.x = at.x, .y = at.y};
        const Pixels pixels = drawn(overlay);
        EXPECT_FALSE(pixels == untouched()) << at.x << ", " << at.y;
        EXPECT_TRUE(pixels == expected(overlay, kWhole, {{at.x, at.y, "Received"}})) << at.x << ", " << at.y;
    }
}

TEST(BitmapTextOverlay, LinesFromAboveComeIntoThePicture) {
    const Overlay overlay{.y = -1000, .text = "A\n\n\n\n\n\n\n\n\n\n\n\n\n\n\n\n\n\n\n\nB"};
    const int height = lineHeightOf(overlay.font());
    Overlay moved = overlay;
    moved.y = -20 * height + 30;
    EXPECT_TRUE(drawn(moved) == expected(moved, kWhole, {{10, 30, "B"}}));
}

TEST(BitmapTextOverlay, ALineOfAMillionCharactersAndAMillionLinesAreDrawnAsFarAsTheyAreSeen) {
    const std::string line(1000000, 'x');
    const Overlay overlay{.text = line.c_str()};
    const DWORD start = GetTickCount();
    EXPECT_TRUE(drawn(overlay) == expected(overlay, {10, 12, kWidth, kHeight}, {{10, 12, std::string(300, 'x')}}));
    std::string lines;
    for (int i = 0; i < 1000000; ++i) {
        lines += "x\r\n";
    }
    EXPECT_FALSE(drawn({.text = lines.c_str()}) == untouched());
    EXPECT_LT(GetTickCount() - start, 20000U);
}

TEST(BitmapTextOverlay, TheCopyHasTheBitmapsSizeAndDepth) {
    const TestBitmap mono = monochromeBitmap(37, 21);
    const std::vector<RGBQUAD> colours = manyColours(256);
    const TestBitmap eight = sectionBitmap(37, 21, 8, colours);
    const TestBitmap four = sectionBitmap(37, 21, 4, {colours.begin(), colours.begin() + 16});
    const TestBitmap one = sectionBitmap(37, 21, 1, {kWhiteQuad, quad(255, 0, 0)});
    const TestBitmap full = sectionBitmap(37, 21, 24, {});
    for (const TestBitmap *bitmap : {&mono, &eight, &four, &one, &full}) {
        const Pixels before = pixelsOf(bitmap->get());
        const LoadedBitmap copy(BitmapTextOverlay(bitmap->get(), 500, 0, "x", "Arial", 10, 0, 0));
        ASSERT_TRUE(copy);
        BITMAP from{};
        BITMAP to{};
        GetObject(bitmap->get(), sizeof from, &from);
        GetObject(copy.get(), sizeof to, &to);
        EXPECT_EQ(to.bmWidth, 37);
        EXPECT_EQ(to.bmHeight, 21);
        EXPECT_EQ(to.bmPlanes, from.bmPlanes);
        EXPECT_EQ(to.bmBitsPixel, from.bmBitsPixel);
        EXPECT_TRUE(pixelsOf(copy.get()) == before) << from.bmBitsPixel << " bits";
        const LoadedBitmap text(BitmapTextOverlay(bitmap->get(), 2, 0, "x", "Arial", 12, 0, 0));
        ASSERT_TRUE(text);
        EXPECT_FALSE(pixelsOf(text.get()) == before) << from.bmBitsPixel << " bits";
        EXPECT_TRUE(pixelsOf(bitmap->get()) == before);
    }
}

TEST(BitmapTextOverlay, TheFontIsAllDefaultsButHeightAndFace) {
    const TestBitmap picture = monochromeBitmap(20, 20);
    const GdiCalls calls;
    const LoadedBitmap copy(BitmapTextOverlay(picture.get(), 0, 0, "x", "Times New Roman", 9, 300, 200));
    const LOGFONTA expectedFont = overlayFont("Times New Roman", 9, 200);
    EXPECT_EQ(std::memcmp(&GdiCalls::counts().font, &expectedFont, sizeof expectedFont), 0);
    EXPECT_EQ(expectedFont.lfHeight, -25);
    const std::string face(100, 'q');
    const LoadedBitmap other(BitmapTextOverlay(picture.get(), 0, 0, "x", face.c_str(), 9, 0, 0));
    EXPECT_EQ(std::string(GdiCalls::counts().font.lfFaceName, LF_FACESIZE), face.substr(0, 31) + '\0');
}

TEST(BitmapTextOverlay, WithoutBitmapTextOrFaceThereIsNoResult) {
    const TestBitmap picture = screenBitmap(20, 20);
    const GdiCalls calls;
    EXPECT_EQ(BitmapTextOverlay(nullptr, 0, 0, "x", "Arial", 10, 0, 0), nullptr);
    EXPECT_EQ(BitmapTextOverlay(picture.get(), 0, 0, nullptr, "Arial", 10, 0, 0), nullptr);
    EXPECT_EQ(BitmapTextOverlay(picture.get(), 0, 0, "x", nullptr, 10, 0, 0), nullptr);
    EXPECT_EQ(BitmapTextOverlay(reinterpret_cast<HBITMAP>(0x1234), 0, 0, "x", "Arial", 10, 0, 0), nullptr);
    EXPECT_EQ(GdiCalls::counts().objects, 0);
    EXPECT_EQ(GdiCalls::tried(GdiCalls::Fail::MemoryDc), 0);
}

TEST(BitmapTextOverlay, WhateverFailsNothingIsLeftBehind) {
    const TestBitmap picture = screenBitmap(20, 20);
    const TestBitmap section = sectionBitmap(20, 20, 8, manyColours(256));
    const Overlay overlay;
    for (const auto kind : {GdiCalls::Fail::Bitmap, GdiCalls::Fail::MemoryDc, GdiCalls::Fail::Selection}) {
        const GdiCalls calls(kind, 0);
        EXPECT_EQ(overlay.on(picture.get()), nullptr);
        EXPECT_EQ(GdiCalls::counts().objects, 0);
        EXPECT_EQ(GdiCalls::counts().allContexts(), 0);
    }
    {
        const GdiCalls calls(GdiCalls::Fail::CopyImage, 0);
        EXPECT_EQ(overlay.on(section.get()), nullptr);
    }
    {
        const FailNth fault(Call::Allocate, 0);
        EXPECT_EQ(overlay.on(picture.get()), nullptr);
        EXPECT_TRUE(fault.happened());
    }
    const GdiCalls calls(GdiCalls::Fail::Font, 0);
    const LoadedBitmap withoutFont(overlay.on(picture.get()));
    EXPECT_TRUE(withoutFont) << "the context's own font serves";
}

TEST(BitmapTextOverlay, TheCursorAndTheErrorNumberStay) {
    const TestBitmap picture = screenBitmap(20, 20);
    const HCURSOR arrow = LoadCursor(nullptr, IDC_ARROW);
    SetCursor(arrow);
    SetTiffError(VELLUM_NOT_CALS);
    const LoadedBitmap copy(Overlay{}.on(picture.get()));
    EXPECT_EQ(GetCursor(), arrow);
    EXPECT_EQ(TiffError(), DWORD{VELLUM_NOT_CALS});
    SetTiffError(VELLUM_OK);
}

TEST(BitmapTextOverlay, SizesWithoutMeaningDoNoHarm) {
    for (const DWORD points : {0U, 1U, 5000U, 0x7FFFFFFFU, 0x80000000U, 0xFFFFFFFFU}) {
        const TestBitmap picture = screenBitmap(60, 40);
        const LoadedBitmap copy(BitmapTextOverlay(picture.get(), 0, 0, "Text", "Arial", points, 0, 0));
        EXPECT_TRUE(copy) << points;
    }
}

} // namespace
} // namespace vellum::test
