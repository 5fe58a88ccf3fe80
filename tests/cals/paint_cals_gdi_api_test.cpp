// CALS files on the screen: every rotation and size beside the model that judges TIFF images, and what can go wrong.
#include "cals/cals_pictures.h"
#include "hostile/orderly.h"
#include "support/gdi_calls.h"
#include "support/screen_painting.h"

#include <gtest/gtest.h>

namespace {

using namespace vellum::test;

// A picture whose set bits are black. Wide and deep enough blocks that no size loses a colour.
ScreenPicture drawing(int width, int height, DWORD density = 0) {
    ScreenPicture made{.width = width, .height = height, .bits = 1, .photometric = kWhiteIsZeroPhotometric};
    Random random(static_cast<std::uint32_t>(width * 1000 + height));
    for (int i = 0; i < width * height; ++i) {
        made.values.push_back(random.below(2));
    }
    if (density != 0) {
        made.xDpi = density;
        made.yDpi = density;
    }
    return made;
}

Rows rowsOf(const ScreenPicture &picture) {
    Rows rows;
    for (int y = 0; y < picture.height; ++y) {
        Row row;
        for (int x = 0; x < picture.width; ++x) {
            row.push_back(picture.value(x, y) == 1);
        }
        rows.push_back(row);
    }
    return rows;
}

Bytes calsFileOf(const ScreenPicture &picture) {
    char density[16];
    std::snprintf(density, sizeof density, "%04lu", picture.xDpi.value_or(0));
    return BilevelPicture{rowsOf(picture)}.file(density);
}

Outcome paintCals(HWND window, HDC dc, const char *path, const Look &look = {}) {
    LONG zoom[4] = {};
    std::copy(look.ratios.begin(), look.ratios.end(), zoom);
    SetTiffError(VELLUM_TOO_FEW_COLORS);
    const DWORD result =
        DecompressCALSToScreen(window, dc, path, look.ratios.empty() ? nullptr : zoom, static_cast<BYTE>(look.flags));
    return {result, TiffError()};
}

constexpr PaintedFormat kCalsFormat = {calsFileOf, paintCals};

constexpr SIZE kWindow = {120, 90};

TEST(PaintCals, PixelForPixelInEveryRotation) {
    Easel easel(kWindow, kCalsFormat);
    for (const SIZE size : {SIZE{1, 1}, SIZE{3, 7}, SIZE{31, 33}, SIZE{64, 65}}) {
        easel.expectPainted(drawing(size.cx, size.cy), allTurns());
    }
}

TEST(PaintCals, ScrolledInEveryRotation) {
    Easel easel(kWindow, kCalsFormat);
    const ScreenPicture large = drawing(301, 257);
    easel.expectPainted(large, allTurns(), {}, {0, 100, 0}, {0, 100, 100});
    easel.expectPainted(large, allTurns(), {}, {0, 100, 37}, {0, 1000, 501});
}

TEST(PaintCals, ByResolutionInEveryRotation) {
    Easel easel(kWindow, kCalsFormat);
    easel.expectPainted(drawing(63, 50, 48), allTurns(VELLUM_SHOW_BY_RESOLUTION));
    easel.expectPainted(drawing(40, 30, 96), allTurns(VELLUM_SHOW_BY_RESOLUTION), {3, 1, 2, 1});
}

TEST(PaintCals, ByResolutionWithoutADensityIsPixelForPixel) {
    Easel easel(kWindow, kCalsFormat);
    ScreenPicture plain = drawing(63, 50);
    easel.expectPainted(plain, fourTurns(VELLUM_SHOW_BY_RESOLUTION));
}

TEST(PaintCals, FittedInEveryRotation) {
    Easel easel({128, 128}, kCalsFormat);
    easel.expectPainted(drawing(32, 32), allTurns(VELLUM_SHOW_FIT));
    easel.expectPainted(drawing(32, 64, 300), allTurns(VELLUM_SHOW_FIT | VELLUM_SHOW_BY_RESOLUTION));
}

TEST(PaintCals, APairOfRatiosWithANegativeNumberCountsForNothing) {
    const Host host(kWindow.cx, kWindow.cy);
    const TempFile file(calsFileOf(drawing(40, 30, 96)));
    const LONG zoom[] = {-3, 1, 2, -1};
    EXPECT_EQ(DecompressCALSToScreen(host.window(), host.dc(), file.path(), zoom, VELLUM_SHOW_BY_RESOLUTION), 1U);
    SIZE extent{};
    GetViewportExtEx(host.dc(), &extent);
    EXPECT_EQ(extent.cx, 40);
    EXPECT_EQ(extent.cy, 30);
}

TEST(PaintCals, SetBitsAreBlackUnlessInverted) {
    Host host(kWindow.cx, kWindow.cy);
    const TempFile file(BilevelPicture{Rows{Row{true, false}}}.file());
    host.reset();
    EXPECT_EQ(paintCals(host.window(), host.dc(), file.path()), kDecoded);
    EXPECT_EQ(host.pixels()[0], 0U);
    EXPECT_EQ(host.pixels()[1], 0xFFFFFFU);
    host.reset();
    EXPECT_EQ(paintCals(host.window(), host.dc(), file.path(), {VELLUM_SHOW_INVERTED}), kDecoded);
    EXPECT_EQ(host.pixels()[0], 0xFFFFFFU);
    EXPECT_EQ(host.pixels()[1], 0U);
}

TEST(PaintCals, OnAMemoryContext) {
    const ScreenPicture picture = drawing(33, 20);
    const TempFile file(calsFileOf(picture));
    const MemoryTarget target(MemoryTarget::Kind::TrueColorSection, 60, 40);
    EXPECT_EQ(paintCals(nullptr, target.dc(), file.path(), {VELLUM_ROTATE_180}), kDecoded);
    const Pixels pixels = target.pixels();
    for (int y = 0; y < 20; ++y) {
        for (int x = 0; x < 33; ++x) {
            ASSERT_EQ(pixels[static_cast<std::size_t>(y * 60 + x)], picture.color(32 - x, 19 - y)) << x << ", " << y;
        }
    }
}

TEST(PaintCals, IsWhatDecompressToScreenDoesWithACalsFile) {
    Host host(kWindow.cx, kWindow.cy);
    const ScreenPicture picture = drawing(33, 20);
    const TempFile file(calsFileOf(picture));
    for (const LONG kind : {VELLUM_SHOW_ANY, VELLUM_SHOW_CALS}) {
        host.reset();
        EXPECT_EQ(DecompressToScreen(kind, host.window(), host.dc(), file.path(), 0, nullptr, VELLUM_ROTATE_90), 1U);
        EXPECT_TRUE(shows(host.pixels(), ScreenModel(picture, {VELLUM_ROTATE_90}, {kWindow})));
    }
    EXPECT_EQ(DecompressToScreen(VELLUM_SHOW_TIFF, host.window(), host.dc(), file.path(), 0, nullptr, 0), 0U);
}

TEST(PaintCals, DecompressToScreenHandsTheRatiosOn) {
    Host host(kWindow.cx, kWindow.cy);
    const TempFile file(calsFileOf(drawing(20, 10, 96)));
    const DWORD ratios[] = {2, 1, 3, 1};
    EXPECT_EQ(DecompressToScreen(VELLUM_SHOW_ANY, host.window(), host.dc(), file.path(), 0, ratios,
                                 VELLUM_SHOW_BY_RESOLUTION),
              1U);
    SIZE extent{};
    GetViewportExtEx(host.dc(), &extent);
    EXPECT_EQ(extent.cx, 40);
    EXPECT_EQ(extent.cy, 30);
}

// ---- what can go wrong

struct Failure {
    const char *name;
    Bytes file;
    DWORD error;
};

std::vector<Failure> failures() {
    const Bytes whole = calsFileOf(drawing(33, 20));
    return {
        {"no raster type", calsFile(without(pictureRecords(), "rtype")), VELLUM_NOT_CALS},
        {"too short for a header", Bytes(whole.begin(), whole.begin() + 2047), VELLUM_NOT_CALS},
        {"only a header", Bytes(whole.begin(), whole.begin() + 2048), VELLUM_UNEXPECTED_END},
        {"negative counts", calsFile(pictureRecords("-00009,000004"), {1, 2, 3}), VELLUM_NO_MEMORY},
        {"a huge picture", calsFile(pictureRecords("2147483647,2147483647"), Bytes(1000, BYTE{0xFF})),
         VELLUM_NO_MEMORY},
    };
}

TEST(PaintCals, SaysWhyAPictureCannotBePainted) {
    for (const Failure &failure : failures()) {
        for (DWORD flags = 0; flags < 16; ++flags) {
            SCOPED_TRACE(std::string(failure.name) + ", flags " + std::to_string(flags));
            Host host(kWindow.cx, kWindow.cy);
            host.reset();
            const HCURSOR arrow = LoadCursor(nullptr, IDC_ARROW);
            SetCursor(arrow);
            const TempFile file(failure.file);
            const GdiCalls calls;
            EXPECT_EQ(paintCals(host.window(), host.dc(), file.path(), {flags}), (Outcome{0, failure.error}));
            EXPECT_EQ(calls.counts().objects, 0);
            EXPECT_EQ(GetCursor(), arrow);
        }
    }
}

// Blank lines of one bit each: enough of them for all lines, but no scanner makes lines so long.
TEST(PaintCals, LinesTooLongForAnyScannerAreError1AtOnce) {
    Host host(kWindow.cx, kWindow.cy);
    for (const char *counts : {"8000000,20000", "120000000,20000"}) {
        const TempFile file(calsFile(pictureRecords(counts), Bytes(2508, BYTE{0xFF})));
        for (const DWORD mode : {DWORD{0}, DWORD{VELLUM_SHOW_BY_RESOLUTION}, DWORD{VELLUM_SHOW_FIT}}) {
            for (const DWORD flags : allTurns(mode)) {
                SCOPED_TRACE(std::string(counts) + ", flags " + std::to_string(flags));
                host.reset();
                const Stopwatch watch;
                EXPECT_EQ(paintCals(host.window(), host.dc(), file.path(), {flags}), (Outcome{0, VELLUM_NO_MEMORY}));
                EXPECT_LT(watch.seconds(), 1);
                EXPECT_TRUE(host.needsPainting());
            }
        }
    }
}

TEST(PaintCals, ALargeBlankPageWhoseCodeIsThereIsPainted) {
    Host host(kWindow.cx, kWindow.cy);
    const TempFile file(calsFile(pictureRecords("032000,016000"), Bytes(2100, BYTE{0xFF})));
    EXPECT_EQ(paintCals(host.window(), host.dc(), file.path()), kDecoded);
    EXPECT_EQ(host.pixels().front(), 0xFFFFFFU);
}

TEST(PaintCals, TakesNeitherAnEmptyPathNorNoContext) {
    const Host host(kWindow.cx, kWindow.cy);
    const TempFile file(calsFileOf(drawing(3, 3)));
    EXPECT_EQ(paintCals(host.window(), host.dc(), ""), (Outcome{0, VELLUM_TOO_FEW_COLORS}));
    EXPECT_EQ(paintCals(host.window(), host.dc(), nullptr), (Outcome{0, VELLUM_TOO_FEW_COLORS}));
    EXPECT_EQ(paintCals(host.window(), nullptr, file.path()), (Outcome{0, VELLUM_TOO_FEW_COLORS}));
    EXPECT_EQ(paintCals(host.window(), host.dc(), "no such file.cal"), (Outcome{0, VELLUM_IO_ERROR}));
}

TEST(PaintCals, LinesBeforeTheDamageStayAndTheBackgroundIsFilled) {
    Host host(kWindow.cx, kWindow.cy);
    ScreenPicture picture = drawing(33, 40);
    Bytes cut = calsFileOf(picture);
    cut.resize(2048 + (cut.size() - 2048) / 2);
    const TempFile file(cut);
    host.reset();
    EXPECT_EQ(paintCals(host.window(), host.dc(), file.path()), (Outcome{0, VELLUM_UNEXPECTED_END}));
    const Pixels pixels = host.pixels();
    for (int x = 0; x < 33; ++x) {
        EXPECT_EQ(pixels[static_cast<std::size_t>(x)], picture.color(x, 0)) << x;
    }
    EXPECT_EQ(pixels[39 * 120], kUntouched) << "a line that was never decoded";
    EXPECT_EQ(pixels[39 * 120 + 33], kBackground);
    EXPECT_EQ(pixels[60 * 120], kBackground);
    EXPECT_FALSE(host.needsPainting());
}

TEST(PaintCals, WithoutABitmapOrAMemoryContextThereIsError1) {
    const TempFile file(calsFileOf(drawing(33, 20)));
    for (const auto fail : {GdiCalls::Fail::Bitmap, GdiCalls::Fail::MemoryDc}) {
        Host host(kWindow.cx, kWindow.cy);
        host.reset();
        const GdiCalls calls(fail);
        EXPECT_EQ(paintCals(host.window(), host.dc(), file.path()), (Outcome{0, VELLUM_NO_MEMORY}));
        EXPECT_EQ(calls.counts().objects, 0);
    }
}

TEST(PaintCals, ItsLineFunctionsDoNothingWhileNothingIsPainted) {
    BYTE line[] = {0xFF};
    for (const auto function :
         {FlushCALSLineToScreen, FlushCALS90LineToScreen, FlushCALS180LineToScreen, FlushCALS270LineToScreen}) {
        EXPECT_EQ(function(line, 0, nullptr), 0U);
    }
    EXPECT_EQ(line[0], 0xFF);
}

} // namespace
