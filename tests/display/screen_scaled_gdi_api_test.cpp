// Pictures by their resolution, up and down, square and with a fax's 204 x 98 dots per inch, with ratios and scrolled.
#include "support/screen_painting.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace {

using namespace vellum::test;

constexpr SIZE kWindow = {71, 63};
constexpr DWORD kByResolution = VELLUM_SHOW_BY_RESOLUTION;

// The window must not be larger than what is drawn of it.
class ScreenScaled : public testing::TestWithParam<DWORD> {
protected:
    void SetUp() override {
        const HDC screen = GetDC(nullptr);
        ASSERT_EQ(GetDeviceCaps(screen, LOGPIXELSX), 96);
        ASSERT_EQ(GetDeviceCaps(screen, LOGPIXELSY), 96);
        ReleaseDC(nullptr, screen);
    }
};

INSTANTIATE_TEST_SUITE_P(Depths, ScreenScaled, testing::ValuesIn(kScreenDepths),
                         [](const testing::TestParamInfo<DWORD> &depth) {
                             return "Of" + std::to_string(depth.param) + "Bits";
                         });

ScreenPicture resolved(int width, int height, DWORD bits, DWORD xDpi, DWORD yDpi, int square = 1) {
    ScreenPicture picture = screenPicture(width, height, bits, square);
    picture.xDpi = xDpi;
    picture.yDpi = yDpi;
    return picture;
}

// In every rotation.
class ScaledEasel : public Easel {
public:
    ScaledEasel() : Easel(kWindow) {}
    void expectScaled(const ScreenPicture &picture, const Ratios &ratios = {}, const ScrollState &horizontal = {},
                      const ScrollState &vertical = {}) {
        expectPainted(picture, fourTurns(kByResolution), ratios, horizontal, vertical);
    }
};

// ---------------------------------------------------------------- up, by whole factors: every pixel counts

TEST_P(ScreenScaled, UpByWholeFactorsEveryPixelIsARectangle) {
    ScaledEasel easel;
    for (const DWORD xDpi : {96U, 48U, 32U}) {
        for (const DWORD yDpi : {96U, 48U, 32U, 24U}) {
            SCOPED_TRACE(std::to_string(xDpi) + " x " + std::to_string(yDpi) + " dots per inch");
            easel.expectScaled(resolved(13, 11, GetParam(), xDpi, yDpi));
        }
    }
}

TEST_P(ScreenScaled, UpAndScrolledThePartStartsAtAWholePixel) {
    ScaledEasel easel;
    for (const int position : {1, 29, 87, 100}) {
        SCOPED_TRACE(position);
        easel.expectScaled(resolved(61, 59, GetParam(), 48, 32), {}, {0, 100, position}, {0, 100, 100 - position});
        easel.expectScaled(resolved(61, 59, GetParam(), 24, 16), {}, {0, 100, position}, {0, 100, position});
    }
}

// ---------------------------------------------------------------- down, and by odd factors

TEST_P(ScreenScaled, DownByAThirdOfTheirSizeSquaresStayInTheirPlaces) {
    ScaledEasel easel;
    easel.expectScaled(resolved(140, 120, GetParam(), 300, 300, 20));
    for (const int position : {0, 41, 100}) {
        SCOPED_TRACE(position);
        easel.expectScaled(resolved(500, 425, GetParam(), 300, 300, 20), {}, {0, 100, position}, {0, 100, position});
    }
}

TEST_P(ScreenScaled, AFaxOf204By98KeepsItsProportionsTurnedToo) {
    ScaledEasel easel;
    easel.expectScaled(resolved(130, 60, GetParam(), 204, 98, 17));
    for (const int position : {0, 63, 100}) {
        SCOPED_TRACE(position);
        easel.expectScaled(resolved(340, 147, GetParam(), 204, 98, 17), {}, {0, 100, position},
                           {0, 100, 100 - position});
    }
    Host host(kWindow.cx, kWindow.cy);
    for (const DWORD rotation : {VELLUM_ROTATE_0, VELLUM_ROTATE_90}) {
        const ScreenPicture fax = resolved(102, 49, GetParam(), 204, 98, 17);
        const TempFile file(fax.tiff());
        host.reset();
        EXPECT_EQ(paint(host.window(), host.dc(), file.path(), {kByResolution | rotation}), kDecoded);
        SIZE viewport{};
        GetViewportExtEx(host.dc(), &viewport);
        EXPECT_EQ(viewport.cx, 48) << "half an inch";
        EXPECT_EQ(viewport.cy, 48) << "half an inch";
    }
}

TEST_P(ScreenScaled, ByOddFactorsSquaresStayInTheirPlaces) {
    ScaledEasel easel;
    for (const DWORD dpi : {72U, 120U, 200U}) {
        SCOPED_TRACE(dpi);
        easel.expectScaled(resolved(41, 37, GetParam(), dpi, 150, 9));
        easel.expectScaled(resolved(225, 250, GetParam(), dpi, 75, 12), {}, {0, 100, 36}, {0, 100, 77});
    }
}

TEST_P(ScreenScaled, InMemoryTheyAreThoseOfTheWindow) {
    Host host(kWindow.cx, kWindow.cy);
    const ScreenPicture up = resolved(61, 59, GetParam(), 48, 32);
    const ScreenPicture down = resolved(340, 147, GetParam(), 204, 98, 17);
    const ScrollState scrolled{0, 100, 40};
    for (const ScreenPicture *picture : {&up, &down}) {
        const TempFile file(picture->tiff());
        for (const DWORD flags : allTurns(kByResolution)) {
            SCOPED_TRACE(describe(*picture, {flags}));
            host.reset(scrolled, scrolled);
            const ScreenModel model(*picture, {flags}, {kWindow, scrolled, scrolled});
            const MemoryTarget target(MemoryTarget::Kind::TrueColorSection, model.x().client, model.y().client);
            EXPECT_EQ(paint(host.window(), target.dc(), file.path(), {flags}), kDecoded);
            EXPECT_TRUE(shows(target.pixels(), model));
            EXPECT_TRUE(keepsMapping(target.dc(), model));
        }
    }
}

// ---------------------------------------------------------------- what the scale is

SIZE sizeShown(const ScreenPicture &picture, const Look &look) {
    Host host(kWindow.cx, kWindow.cy);
    const TempFile file(picture.tiff());
    EXPECT_EQ(paint(host.window(), host.dc(), file.path(), look), kDecoded);
    SIZE viewport{};
    GetViewportExtEx(host.dc(), &viewport);
    return viewport;
}

void expectSize(const ScreenPicture &picture, const Look &look, LONG width, LONG height) {
    SCOPED_TRACE(describe(picture, look));
    const SIZE size = sizeShown(picture, look);
    EXPECT_EQ(size.cx, width);
    EXPECT_EQ(size.cy, height);
}

TEST(ScreenScale, Of300DpiIs32Hundredths) {
    expectSize(resolved(1000, 500, 1, 300, 300), {kByResolution}, 320, 160);
    expectSize(resolved(1000, 500, 1, 300, 300), {kByResolution | VELLUM_ROTATE_90}, 160, 320);
}

TEST(ScreenScale, RoundsSizesToTheNearest) {
    expectSize(resolved(3, 5, 1, 200, 200), {kByResolution}, 1, 2);   // 1.44, 2.4
    expectSize(resolved(12, 14, 1, 200, 200), {kByResolution}, 6, 7); // 5.76, 6.72
}

TEST(ScreenScale, IsMultipliedByTheRatios) {
    const ScreenPicture picture = resolved(100, 50, 1, 96, 48);
    expectSize(picture, {kByResolution}, 100, 100);
    expectSize(picture, {kByResolution, {3, 2, 1, 4}}, 150, 25);
    expectSize(picture, {kByResolution, {1, 10, 7, 1}}, 10, 700);
    expectSize(picture, {kByResolution | VELLUM_ROTATE_90, {3, 2, 1, 4}}, 150, 25);
    expectSize(picture, {kByResolution | VELLUM_ROTATE_180, {3, 2, 1, 4}}, 150, 25);
    expectSize(picture, {kByResolution | VELLUM_ROTATE_270, {3, 2, 1, 4}}, 150, 25);
}

TEST(ScreenScale, IgnoresAPairWithAZero) {
    const ScreenPicture picture = resolved(100, 50, 1, 96, 48);
    expectSize(picture, {kByResolution, {0, 2, 1, 4}}, 100, 25);
    expectSize(picture, {kByResolution, {3, 0, 1, 4}}, 100, 25);
    expectSize(picture, {kByResolution, {3, 2, 0, 4}}, 150, 100);
    expectSize(picture, {kByResolution, {3, 2, 1, 0}}, 150, 100);
    expectSize(picture, {kByResolution, {0, 0, 0, 0}}, 100, 100);
}

TEST(ScreenScale, CountsByResolutionOnly) {
    expectSize(resolved(100, 50, 1, 300, 300), {0}, 100, 50);
    expectSize(resolved(100, 50, 1, 300, 300), {0, {3, 2, 1, 4}}, 100, 50);
    expectSize(resolved(100, 50, 1, 300, 300), {VELLUM_ROTATE_90, {3, 2, 1, 4}}, 50, 100);
}

TEST(ScreenScale, WithoutAResolutionIsAPixelForAPixel) {
    expectSize(screenPicture(100, 50, 1), {kByResolution}, 100, 50);
    expectSize(resolved(100, 50, 1, 0, 0), {kByResolution}, 100, 50);
    ScreenPicture strangeUnit = resolved(100, 50, 1, 300, 300);
    strangeUnit.unit = 4;
    expectSize(strangeUnit, {kByResolution}, 100, 50);
    ScreenPicture acrossOnly = screenPicture(100, 50, 1);
    acrossOnly.xDpi = 192;
    expectSize(acrossOnly, {kByResolution}, 50, 50);
    expectSize(acrossOnly, {kByResolution | VELLUM_ROTATE_90}, 50, 50);
}

// A resolution in centimetres stands in the header as it is in the file, as if it were one in metres.
TEST(ScreenScale, InCentimetresIsThatOfTheHeader) {
    ScreenPicture metric = resolved(20, 10, 1, 1890, 3780);
    metric.unit = 3;
    expectSize(metric, {kByResolution}, 40, 10);
}

TEST_P(ScreenScaled, WithRatiosSquaresStayInTheirPlaces) {
    ScaledEasel easel;
    easel.expectScaled(resolved(33, 31, GetParam(), 96, 96), {2, 1, 1, 1});
    easel.expectScaled(resolved(33, 31, GetParam(), 96, 96), {2, 1, 3, 1}, {0, 10, 3}, {0, 10, 8});
    easel.expectScaled(resolved(170, 147, GetParam(), 204, 98, 14), {9, 10, 7, 5}, {0, 10, 3}, {0, 10, 8});
}

// ---------------------------------------------------------------- the context afterwards

TEST_P(ScreenScaled, LeaveTheStretchModeOfTheirDepth) {
    Host host(kWindow.cx, kWindow.cy);
    for (const DWORD flags : {DWORD{0}, kByResolution, DWORD{VELLUM_SHOW_FIT}}) {
        const TempFile file(resolved(30, 30, GetParam(), 300, 300).tiff());
        host.reset();
        SetStretchBltMode(host.dc(), BLACKONWHITE);
        EXPECT_EQ(paint(host.window(), host.dc(), file.path(), {flags}), kDecoded);
        EXPECT_EQ(GetStretchBltMode(host.dc()), GetParam() == 1 ? WHITEONBLACK : COLORONCOLOR);
    }
}

// Strokes that are a pixel wide across the lines, every sixth one from the first on: those of ones, on zeros.
ScreenPicture striped(int first, DWORD photometric) {
    ScreenPicture picture = resolved(96, 24, 1, 288, 288);
    picture.photometric = photometric;
    for (std::size_t i = 0; i < picture.values.size(); ++i) {
        picture.values[i] = i % 6 == static_cast<std::size_t>(first) ? 1 : 0;
    }
    return picture;
}

// The line of the screen, 32 pixels long, that a line of the image has become.
Pixels lineOnScreen(const Pixels &pixels, bool turned) {
    Pixels line;
    for (int i = 0; i < 32; ++i) {
        line.push_back(pixels[static_cast<std::size_t>(turned ? i * kWindow.cx : i)]);
    }
    return line;
}

TEST(ScreenScale, OfABilevelPictureKeepsThinStrokesOfOnesWhereverTheyAre) {
    Host host(kWindow.cx, kWindow.cy);
    for (int first = 0; first < 6; ++first) {
        for (const DWORD photometric : {kWhiteIsZeroPhotometric, kBlackIsZeroPhotometric}) {
            const TempFile file(striped(first, photometric).tiff());
            for (DWORD rotation = 0; rotation < 4; ++rotation) {
                SCOPED_TRACE("from " + std::to_string(first) + ", rotation " + std::to_string(rotation));
                EXPECT_EQ(paint(host.window(), host.dc(), file.path(), {kByResolution | rotation}), kDecoded);
                const Pixels line = lineOnScreen(host.pixels(), (rotation & 1) != 0);
                EXPECT_EQ(std::count(line.begin(), line.end(), photometric == kBlackIsZeroPhotometric ? 0xFFFFFF : 0),
                          16);
            }
        }
    }
}

} // namespace
