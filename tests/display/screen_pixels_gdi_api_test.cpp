// A pixel for a pixel: every depth, rotation and width, upright and inverted, on windows and in memory, and every part
// of pictures that are larger than the window.
#include "support/screen_painting.h"

#include <gtest/gtest.h>

namespace {

using namespace vellum::test;

constexpr SIZE kWindow = {71, 63};

class ScreenPixels : public testing::TestWithParam<DWORD> {};

INSTANTIATE_TEST_SUITE_P(Depths, ScreenPixels, testing::ValuesIn(kScreenDepths),
                         [](const testing::TestParamInfo<DWORD> &depth) {
                             return "Of" + std::to_string(depth.param) + "Bits";
                         });

TEST_P(ScreenPixels, OfASmallPictureAreItsOwnAtEveryWidth) {
    Easel easel(kWindow);
    for (const int width : {1, 2, 3, 4, 5, 7, 8, 9, 15, 16, 17, 31, 32, 33, 63}) {
        easel.expectPainted(screenPicture(width, width % 2 == 0 ? 6 : 5, GetParam()), allTurns());
    }
}

TEST_P(ScreenPixels, OfSmallHeightsAreItsOwn) {
    Easel easel(kWindow);
    for (const int height : {1, 2, 3, 33, 63}) {
        easel.expectPainted(screenPicture(11, height, GetParam()), fourTurns());
    }
}

TEST_P(ScreenPixels, OfALargePictureInALargeWindowAreItsOwn) {
    Easel easel({401, 389});
    ScreenPicture picture = screenPicture(193, 187, GetParam());
    picture.xDpi = 48;
    picture.yDpi = 48;
    easel.expectPainted(picture, allTurns());
    easel.expectPainted(picture, fourTurns(VELLUM_SHOW_BY_RESOLUTION));
}

TEST_P(ScreenPixels, OfAPictureThatJustFillsTheWindowAreItsOwn) {
    Easel upright(kWindow);
    Easel turned({kWindow.cy, kWindow.cx});
    const ScreenPicture picture = screenPicture(kWindow.cx, kWindow.cy, GetParam());
    for (const DWORD flags : allTurns()) {
        Easel &easel = (flags & 1) != 0 ? turned : upright;
        easel.expectPainted(picture, Look{flags});
    }
}

TEST_P(ScreenPixels, InEveryScrollPositionAreThoseOfItsPart) {
    Easel easel(kWindow);
    const ScreenPicture large = screenPicture(157, 139, GetParam());
    for (const int across : {0, 1, 37, 50, 99, 100}) {
        SCOPED_TRACE("scrolled to " + std::to_string(across));
        easel.expectPainted(large, across == 37 ? allTurns() : fourTurns(), {}, {0, 100, across},
                            {0, 100, 100 - across});
    }
}

TEST_P(ScreenPixels, OfAPictureLargerInOneDirectionOnlyAreThoseOfItsPart) {
    Easel easel(kWindow);
    for (const int position : {0, 3, 10}) {
        SCOPED_TRACE("scrolled to " + std::to_string(position));
        const ScrollState scrolled{0, 10, position};
        easel.expectPainted(screenPicture(301, 9, GetParam()), fourTurns(), {}, scrolled, scrolled);
        easel.expectPainted(screenPicture(9, 301, GetParam()), fourTurns(), {}, scrolled, scrolled);
    }
}

TEST_P(ScreenPixels, InMemoryAreThoseOfTheWindow) {
    using Kind = MemoryTarget::Kind;
    Host host(kWindow.cx, kWindow.cy);
    for (const int width : {7, 33, 157}) {
        const ScreenPicture picture = screenPicture(width, width - 2, GetParam());
        const TempFile file(picture.tiff());
        for (const Kind kind : {Kind::TrueColorSection, Kind::Section24, Kind::Compatible}) {
            for (const DWORD flags : kind == Kind::TrueColorSection ? allTurns() : fourTurns()) {
                const Look look{flags};
                SCOPED_TRACE(describe(picture, look) + ", kind " + std::to_string(static_cast<int>(kind)));
                const ScrollState scrolled{0, 10, 7};
                host.reset(scrolled, scrolled);
                const ScreenModel model(picture, look, {kWindow, scrolled, scrolled});
                const MemoryTarget target(kind, model.x().client, model.y().client);
                EXPECT_EQ(paint(host.window(), target.dc(), file.path(), look), kDecoded);
                EXPECT_TRUE(hasBars(host, model));
                EXPECT_TRUE(keepsMapping(target.dc(), model));
                EXPECT_TRUE(shows(target.pixels(), model));
            }
        }
    }
}

TEST_P(ScreenPixels, WithoutAWindowFillTheContextsClipBox) {
    for (const int size : {20, 157}) {
        for (const DWORD flags : allTurns()) {
            const ScreenPicture picture = screenPicture(size, size - 3, GetParam());
            SCOPED_TRACE(describe(picture, {flags}));
            const TempFile file(picture.tiff());
            const MemoryTarget target(MemoryTarget::Kind::TrueColorSection, kWindow.cx, kWindow.cy);
            const ScreenModel model(picture, {flags}, {.window = kWindow, .fixed = true});
            EXPECT_EQ(paint(nullptr, target.dc(), file.path(), {flags}), kDecoded);
            EXPECT_TRUE(shows(target.pixels(), model, kUntouched)) << "nothing is filled";
        }
    }
}

TEST_P(ScreenPixels, PaintedTwiceOnOneContextAreTheSame) {
    Host host(kWindow.cx, kWindow.cy);
    const ScreenPicture picture = screenPicture(157, 139, GetParam());
    const TempFile file(picture.tiff());
    const ScrollState scrolled{0, 100, 60};
    for (const DWORD flags : allTurns()) {
        SCOPED_TRACE(describe(picture, {flags}));
        host.reset(scrolled, scrolled);
        const ScreenModel model(picture, {flags}, {kWindow, scrolled, scrolled});
        for (int round = 0; round < 2; ++round) {
            EXPECT_EQ(paint(host.window(), host.dc(), file.path(), {flags}), kDecoded);
            EXPECT_TRUE(shows(host.pixels(), model)) << "round " << round;
            fillPixels(host.dc(), {0, 0, model.x().client, model.y().client}, kUntouched);
        }
    }
}

TEST(ScreenTargets, AMonochromeBitmapShowsABilevelPicture) {
    const ScreenPicture picture = screenPicture(kWindow.cx, kWindow.cy, 1);
    const TempFile file(picture.tiff());
    for (const DWORD flags : {VELLUM_ROTATE_0, VELLUM_ROTATE_180 | VELLUM_SHOW_INVERTED}) {
        const MemoryTarget target(MemoryTarget::Kind::Monochrome, kWindow.cx, kWindow.cy);
        const Look look{static_cast<DWORD>(flags)};
        EXPECT_EQ(paint(nullptr, target.dc(), file.path(), look), kDecoded);
        EXPECT_TRUE(shows(target.pixels(), ScreenModel(picture, look, {.window = kWindow, .fixed = true})));
    }
}

TEST(ScreenTargets, AContextsOwnMappingDoesNotMatter) {
    Host host(kWindow.cx, kWindow.cy);
    const ScreenPicture picture = screenPicture(99, 87, 8);
    const TempFile file(picture.tiff());
    const ScrollState scrolled{0, 10, 7};
    for (const DWORD flags : fourTurns()) {
        host.reset(scrolled, scrolled);
        SetMapMode(host.dc(), MM_ANISOTROPIC);
        SetWindowOrgEx(host.dc(), 12, -5, nullptr);
        SetViewportOrgEx(host.dc(), 30, 20, nullptr);
        SetWindowExtEx(host.dc(), 100, 10, nullptr);
        SetViewportExtEx(host.dc(), 3, -40, nullptr);
        EXPECT_EQ(paint(host.window(), host.dc(), file.path(), {flags}), kDecoded);
        const ScreenModel model(picture, {flags}, {kWindow, scrolled, scrolled});
        EXPECT_TRUE(shows(host.pixels(), model));
        EXPECT_TRUE(keepsMapping(host.dc(), model));
    }
}

TEST(ScreenTargets, APaintMessagesContextShowsThePicture) {
    Host host(kWindow.cx, kWindow.cy);
    for (const int size : {30, 157}) {
        const ScreenPicture picture = screenPicture(size, size - 4, 8);
        const TempFile file(picture.tiff());
        for (const DWORD flags : fourTurns()) {
            SCOPED_TRACE(describe(picture, {flags}));
            host.reset({0, 100, 0, false}, {0, 100, 0, false});
            PAINTSTRUCT painting{};
            const HDC dc = BeginPaint(host.window(), &painting);
            EXPECT_EQ(paint(host.window(), dc, file.path(), {flags}), kDecoded);
            EndPaint(host.window(), &painting);
            const ScreenModel model(picture, {flags}, {kWindow});
            EXPECT_TRUE(hasBars(host, model));
            EXPECT_TRUE(shows(host.pixels(), model));
            EXPECT_FALSE(host.needsPainting());
        }
    }
}

// ---------------------------------------------------------------- corners, as users describe them

constexpr DWORD kCorner = 0xFF0000;

// Black but for the first pixel of row 0.
ScreenPicture cornered() {
    ScreenPicture picture = screenPicture(100, 50, 24, 100);
    for (DWORD &value : picture.values) {
        value = 0;
    }
    picture.values[0] = kCorner;
    return picture;
}

void expectCorner(DWORD rotation, SIZE canvas, POINT corner) {
    constexpr int kSide = 120;
    Host host(kSide, kSide);
    const TempFile file(cornered().tiff());
    EXPECT_EQ(paint(host.window(), host.dc(), file.path(), {rotation}), kDecoded);
    const Pixels pixels = host.pixels();
    ASSERT_EQ(pixels.size(), std::size_t{kSide * kSide});
    for (int i = 0; i < kSide * kSide; ++i) {
        const POINT at{i % kSide, i / kSide};
        const DWORD expected = at.x == corner.x && at.y == corner.y   ? kCorner
                               : at.x < canvas.cx && at.y < canvas.cy ? 0
                                                                      : kBackground;
        ASSERT_EQ(pixels[static_cast<std::size_t>(i)], expected) << at.x << ", " << at.y;
    }
}

TEST(ScreenCorners, UprightTheFirstPixelIsAtTheUpperLeft) {
    expectCorner(VELLUM_ROTATE_0, {100, 50}, {0, 0});
}

TEST(ScreenCorners, Of100x50TurnedBy90TheCanvasIs50x100AndTheFirstRowTheRightmostColumnFromTheTop) {
    expectCorner(VELLUM_ROTATE_90, {50, 100}, {49, 0});
}

TEST(ScreenCorners, TurnedBy180TheFirstPixelIsAtTheLowerRight) {
    expectCorner(VELLUM_ROTATE_180, {100, 50}, {99, 49});
}

TEST(ScreenCorners, TurnedBy270TheFirstPixelIsAtTheLowerLeft) {
    expectCorner(VELLUM_ROTATE_270, {50, 100}, {0, 99});
}

// ---------------------------------------------------------------- colours

TEST(ScreenColors, OfGreyRampsAreThoseOfTheirTables) {
    Easel easel(kWindow);
    for (const DWORD bits : {4U, 8U}) {
        ScreenPicture grey = screenPicture(19, 17, bits);
        grey.photometric = kBlackIsZeroPhotometric;
        easel.expectPainted(grey, allTurns());
    }
}

// The four ways to say what a bit means, and none.
TEST(ScreenColors, OfBilevelPicturesFollowThePhotometricInterpretation) {
    Easel easel(kWindow);
    for (const std::optional<DWORD> photometric :
         {std::optional<DWORD>(kWhiteIsZeroPhotometric), std::optional<DWORD>(kBlackIsZeroPhotometric),
          std::optional<DWORD>(kPalettePhotometric), std::optional<DWORD>(4), std::optional<DWORD>()}) {
        SCOPED_TRACE(photometric ? static_cast<int>(*photometric) : -1);
        ScreenPicture bilevel = screenPicture(19, 17, 1);
        bilevel.photometric = photometric;
        easel.expectPainted(bilevel, allTurns());
    }
}

DWORD operationOf(DWORD photometric, DWORD flags) {
    Host host(kWindow.cx, kWindow.cy);
    ScreenPicture bilevel = screenPicture(1, 1, 1);
    bilevel.values[0] = 0;
    bilevel.photometric = photometric;
    const TempFile file(bilevel.tiff());
    EXPECT_EQ(paint(host.window(), host.dc(), file.path(), {flags}), kDecoded);
    // A zero bit is black by itself.
    return host.pixels()[0] == 0 ? SRCCOPY : NOTSRCCOPY;
}

TEST(ScreenColors, WhiteIsZeroIsCopiedNegatedAndInvertedAsItIs) {
    EXPECT_EQ(operationOf(0, 0), DWORD{NOTSRCCOPY});
    EXPECT_EQ(operationOf(0, VELLUM_SHOW_INVERTED), DWORD{SRCCOPY});
    EXPECT_EQ(operationOf(1, 0), DWORD{SRCCOPY});
    EXPECT_EQ(operationOf(1, VELLUM_SHOW_INVERTED), DWORD{NOTSRCCOPY});
}

TEST(ScreenColors, OfBilevelPicturesAreTheContextsTextAndBackgroundColours) {
    Host host(kWindow.cx, kWindow.cy);
    ScreenPicture bilevel = screenPicture(2, 1, 1);
    bilevel.values = {0, 1};
    const TempFile file(bilevel.tiff());
    SetTextColor(host.dc(), RGB(200, 10, 20));
    SetBkColor(host.dc(), RGB(30, 40, 250));
    EXPECT_EQ(paint(host.window(), host.dc(), file.path()), kDecoded);
    EXPECT_EQ(host.pixels()[0], 0xC80A14U);
    EXPECT_EQ(host.pixels()[1], 0x1E28FAU);
    EXPECT_EQ(GetTextColor(host.dc()), RGB(200, 10, 20));
    EXPECT_EQ(GetBkColor(host.dc()), RGB(30, 40, 250));
}

// Decoded CCITT lines have 1 for black, which the photometric interpretation then turns into a colour.
TEST(ScreenColors, OfAFaxPageAreBlackOnWhite) {
    Host host(kWindow.cx, kWindow.cy);
    const ScreenPicture page = [] {
        ScreenPicture made = screenPicture(37, 21, 1);
        made.photometric = kWhiteIsZeroPhotometric;
        return made;
    }();
    Rows rows;
    for (int y = 0; y < page.height; ++y) {
        Row row;
        for (int x = 0; x < page.width; ++x) {
            row.push_back(page.value(x, y) == 1);
        }
        rows.push_back(row);
    }
    std::vector<tiff::Entry> entries = page.entries();
    entries[3] = tiff::shorts(259, {4});
    tiff::Builder builder(tiff::kMM);
    builder.page(entries, {encodeGroup4(rows)});
    const TempFile file(builder.bytes());
    for (const DWORD flags : allTurns()) {
        SCOPED_TRACE(describe(page, {flags}));
        host.reset();
        EXPECT_EQ(paint(host.window(), host.dc(), file.path(), {flags}), kDecoded);
        EXPECT_TRUE(shows(host.pixels(), ScreenModel(page, {flags}, {kWindow})));
    }
}

} // namespace
