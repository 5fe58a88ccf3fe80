// What is beside the picture: the background of the window's class, the context's own clipping, and the window's need
// to be painted; also when the picture ends early.
#include "support/faults.h"
#include "support/jpeg_tiff.h"
#include "support/screen_painting.h"

#include <gtest/gtest.h>

namespace {

using namespace vellum::test;

constexpr SIZE kWindow = {71, 63};

DWORD rgbOf(COLORREF color) {
    return DWORD{GetRValue(color)} << 16 | DWORD{GetGValue(color)} << 8 | GetBValue(color);
}

// ---------------------------------------------------------------- the class brush

void expectBackground(HBRUSH brush, DWORD expected) {
    Host host(kWindow.cx, kWindow.cy, brush);
    const ScreenPicture picture = screenPicture(23, 17, 8);
    const TempFile file(picture.tiff());
    for (const DWORD flags : fourTurns()) {
        SCOPED_TRACE(describe(picture, {flags}));
        host.reset();
        const HGDIOBJ before = SelectObject(host.dc(), GetStockObject(DKGRAY_BRUSH));
        EXPECT_EQ(paint(host.window(), host.dc(), file.path(), {flags}), kDecoded);
        SelectObject(host.dc(), before);
        EXPECT_TRUE(shows(host.pixels(), ScreenModel(picture, {flags}, {kWindow}), expected));
        EXPECT_FALSE(host.needsPainting());
    }
}

TEST(ScreenBackground, HasTheColourOfTheClassBrush) {
    expectBackground(CreateSolidBrush(RGB(1, 2, 3)), 0x010203);
    expectBackground(static_cast<HBRUSH>(GetStockObject(WHITE_BRUSH)), 0xFFFFFF);
    expectBackground(static_cast<HBRUSH>(GetStockObject(BLACK_BRUSH)), 0);
}

TEST(ScreenBackground, HasTheSystemColourThatTheClassNames) {
    for (const int color : {COLOR_SCROLLBAR, COLOR_DESKTOP, COLOR_WINDOW, COLOR_HIGHLIGHT, COLOR_BTNFACE, COLOR_INFOBK,
                            COLOR_HOTLIGHT, COLOR_MENUBAR}) {
        SCOPED_TRACE(color);
        expectBackground(reinterpret_cast<HBRUSH>(static_cast<INT_PTR>(color) + 1), rgbOf(GetSysColor(color)));
    }
}

TEST(ScreenBackground, WithoutAClassBrushStaysAsItIs) {
    expectBackground(nullptr, kUntouched);
}

TEST(ScreenBackground, OfHatchesIsHatched) {
    Host host(kWindow.cx, kWindow.cy, CreateHatchBrush(HS_CROSS, RGB(255, 0, 0)));
    ScreenPicture picture = screenPicture(23, 17, 24, 23);
    const TempFile file(picture.tiff());
    SetBkColor(host.dc(), RGB(0, 0, 255));
    EXPECT_EQ(paint(host.window(), host.dc(), file.path()), kDecoded);
    const Pixels pixels = host.pixels();
    int red = 0;
    int blue = 0;
    for (int y = 17; y < kWindow.cy; ++y) {
        for (int x = 0; x < kWindow.cx; ++x) {
            const DWORD shown = pixels[static_cast<std::size_t>(y * kWindow.cx + x)];
            red += shown == 0xFF0000 ? 1 : 0;
            blue += shown == 0x0000FF ? 1 : 0;
        }
    }
    EXPECT_GT(red, 0);
    EXPECT_EQ(red + blue, kWindow.cx * (kWindow.cy - 17));
}

TEST(ScreenBackground, ReachesTheEndOfTheClientAreaAndNoFarther) {
    Host host(kWindow.cx, kWindow.cy);
    const ScreenPicture picture = screenPicture(30, 20, 8);
    const TempFile file(picture.tiff());
    const MemoryTarget target(MemoryTarget::Kind::TrueColorSection, kWindow.cx + 20, kWindow.cy + 10);
    EXPECT_EQ(paint(host.window(), target.dc(), file.path()), kDecoded);
    const Pixels pixels = target.pixels();
    const ScreenModel model(picture, {}, {kWindow});
    for (int y = 0; y < kWindow.cy + 10; ++y) {
        for (int x = 0; x < kWindow.cx + 20; ++x) {
            const bool inside = x < kWindow.cx && y < kWindow.cy;
            ASSERT_EQ(pixels[static_cast<std::size_t>(y * (kWindow.cx + 20) + x)],
                      inside ? model.at(x, y, kBackground) : kUntouched)
                << x << ", " << y;
        }
    }
}

// A picture that goes on beyond the client area ends there, but for a pixel of its own.
TEST(ScreenBackground, LargePicturesEndAtTheClientAreaToo) {
    Host host(kWindow.cx, kWindow.cy);
    const TempFile file(screenPicture(200, 180, 8).tiff());
    for (const DWORD flags : fourTurns()) {
        SCOPED_TRACE(flags);
        host.reset();
        const MemoryTarget target(MemoryTarget::Kind::TrueColorSection, 120, 100);
        EXPECT_EQ(paint(host.window(), target.dc(), file.path(), {flags}), kDecoded);
        const SIZE client = host.client();
        const Pixels pixels = target.pixels();
        for (int y = 0; y < 100; ++y) {
            for (int x = 0; x < 120; ++x) {
                if (x >= client.cx || y >= client.cy) {
                    ASSERT_EQ(pixels[static_cast<std::size_t>(y * 120 + x)], kUntouched) << x << ", " << y;
                }
            }
        }
    }
}

// ---------------------------------------------------------------- a picture scaled to nothing

TEST(ScreenBackground, IsAllThatAPictureScaledToNothingLeaves) {
    Host host(kWindow.cx, kWindow.cy);
    for (const SIZE size : {SIZE{1, 1}, SIZE{1, 100}, SIZE{100, 1}}) {
        ScreenPicture picture = screenPicture(size.cx, size.cy, 8);
        picture.xDpi = 300;
        picture.yDpi = 300;
        const TempFile file(picture.tiff());
        for (const DWORD flags : fourTurns(VELLUM_SHOW_BY_RESOLUTION)) {
            SCOPED_TRACE(describe(picture, {flags}));
            host.reset();
            EXPECT_EQ(paint(host.window(), host.dc(), file.path(), {flags}), kDecoded);
            EXPECT_FALSE(host.needsPainting());
            for (const DWORD pixel : host.pixels()) {
                ASSERT_EQ(pixel, kBackground);
            }
        }
    }
}

// ---------------------------------------------------------------- clipping

// A context that paints only inside a rectangle of its own.
class Clipped {
public:
    static constexpr RECT kInside = {9, 5, 44, 31};

    explicit Clipped(HDC dc) : dc_(dc), region_(CreateRectRgnIndirect(&kInside)) { SelectClipRgn(dc, region_); }
    Clipped(const Clipped &) = delete;
    Clipped &operator=(const Clipped &) = delete;
    ~Clipped() { DeleteObject(region_); }

    [[nodiscard]] bool stillSo() const {
        const HRGN now = CreateRectRgn(0, 0, 0, 0);
        const bool same = GetClipRgn(dc_, now) == 1 && EqualRgn(now, region_) != FALSE;
        DeleteObject(now);
        return same;
    }
    static bool holds(int x, int y) {
        return x >= kInside.left && x < kInside.right && y >= kInside.top && y < kInside.bottom;
    }

private:
    HDC dc_;
    HRGN region_;
};

TEST(ScreenClipping, OfTheContextIsHonouredAndGivenBack) {
    Host host(kWindow.cx, kWindow.cy);
    for (const DWORD bits : kScreenDepths) {
        const ScreenPicture picture = screenPicture(31, 17, bits);
        const TempFile file(picture.tiff());
        for (const DWORD flags : fourTurns()) {
            SCOPED_TRACE(describe(picture, {flags}));
            host.reset();
            const Clipped clipped(host.dc());
            EXPECT_EQ(paint(host.window(), host.dc(), file.path(), {flags}), kDecoded);
            EXPECT_TRUE(clipped.stillSo());
            const ScreenModel model(picture, {flags}, {kWindow});
            const Pixels pixels = host.pixels();
            for (int y = 0; y < kWindow.cy; ++y) {
                for (int x = 0; x < kWindow.cx; ++x) {
                    ASSERT_EQ(pixels[static_cast<std::size_t>(y * kWindow.cx + x)],
                              Clipped::holds(x, y) ? model.at(x, y, kBackground) : kUntouched)
                        << x << ", " << y;
                }
            }
        }
    }
}

TEST(ScreenClipping, IsGivenBackInEveryMode) {
    Host host(kWindow.cx, kWindow.cy);
    ScreenPicture large = screenPicture(200, 300, 8);
    large.rowsStored = 100;
    large.xDpi = 48;
    const TempFile cut(large.tiff());
    const TempFile whole(screenPicture(200, 300, 1).tiff());
    for (const DWORD mode : {DWORD{0}, DWORD{VELLUM_SHOW_BY_RESOLUTION}, DWORD{VELLUM_SHOW_FIT}}) {
        for (const DWORD flags : fourTurns(mode)) {
            for (const char *path : {cut.path(), whole.path()}) {
                host.reset();
                const Clipped clipped(host.dc());
                paint(host.window(), host.dc(), path, {flags});
                EXPECT_TRUE(clipped.stillSo()) << flags;
            }
        }
    }
}

TEST(ScreenClipping, ThatWasNotThereIsNotThereAfterwards) {
    Host host(kWindow.cx, kWindow.cy);
    const TempFile file(screenPicture(20, 10, 8).tiff());
    const HRGN region = CreateRectRgn(0, 0, 0, 0);
    for (const DWORD flags : fourTurns()) {
        host.reset();
        EXPECT_EQ(paint(host.window(), host.dc(), file.path(), {flags}), kDecoded);
        EXPECT_EQ(GetClipRgn(host.dc(), region), 0);
    }
    DeleteObject(region);
}

TEST(ScreenClipping, IsTheRoomWithoutAWindow) {
    const ScreenPicture picture = screenPicture(400, 300, 8, 30);
    const TempFile file(picture.tiff());
    const MemoryTarget target(MemoryTarget::Kind::TrueColorSection, 120, 100);
    const HRGN region = CreateRectRgn(0, 0, kWindow.cx, kWindow.cy);
    SelectClipRgn(target.dc(), region);
    DeleteObject(region);
    const Look look{VELLUM_SHOW_FIT};
    EXPECT_EQ(paint(nullptr, target.dc(), file.path(), look), kDecoded);
    EXPECT_TRUE(keepsMapping(target.dc(), ScreenModel(picture, look, {.window = kWindow, .fixed = true})));
}

// ---------------------------------------------------------------- pictures that end early

TEST(ScreenEarlyEnd, LinesSoFarStayTheRestIsAsItWasAndTheBackgroundIsFilled) {
    Host host(kWindow.cx, kWindow.cy);
    for (const DWORD bits : kScreenDepths) {
        for (const int rows : {1, 9, 16}) {
            ScreenPicture cut = screenPicture(31, 17, bits);
            cut.rowsStored = rows;
            const TempFile file(cut.tiff());
            for (const DWORD flags : fourTurns()) {
                SCOPED_TRACE(describe(cut, {flags}) + ", " + std::to_string(rows) + " rows");
                host.reset();
                EXPECT_EQ(paint(host.window(), host.dc(), file.path(), {flags}), failedWith(VELLUM_UNEXPECTED_END));
                const ScreenModel model(cut, {flags}, {kWindow});
                EXPECT_TRUE(shows(host.pixels(), model));
                EXPECT_TRUE(keepsMapping(host.dc(), model));
                EXPECT_FALSE(host.needsPainting());
            }
        }
    }
}

TEST(ScreenEarlyEnd, ScaledAndScrolledIsTheSame) {
    Host host(kWindow.cx, kWindow.cy);
    for (const DWORD bits : kScreenDepths) {
        ScreenPicture cut = screenPicture(61, 59, bits);
        cut.rowsStored = 31;
        cut.xDpi = 48;
        cut.yDpi = 48;
        const TempFile file(cut.tiff());
        const ScrollState middle{0, 100, 50};
        for (const DWORD flags : fourTurns(VELLUM_SHOW_BY_RESOLUTION)) {
            SCOPED_TRACE(describe(cut, {flags}));
            host.reset(middle, middle);
            EXPECT_EQ(paint(host.window(), host.dc(), file.path(), {flags}), failedWith(VELLUM_UNEXPECTED_END));
            const ScreenModel model(cut, {flags}, {kWindow, middle, middle});
            EXPECT_TRUE(hasBars(host, model));
            EXPECT_TRUE(shows(host.pixels(), model));
            EXPECT_FALSE(host.needsPainting());
        }
    }
}

// The frame of a picture that shows nothing of itself.
TEST(ScreenEarlyEnd, ADecodeThatFailsAtOnceFillsTheBackgroundToo) {
    Host host(kWindow.cx, kWindow.cy);
    ScreenPicture unknown = screenPicture(31, 17, 8);
    std::vector<tiff::Entry> entries = unknown.entries();
    entries[3] = tiff::shorts(259, {7});
    tiff::Builder builder;
    builder.page(entries, {unknown.packed()});
    const TempFile file(builder.bytes());
    unknown.rowsStored = 0;
    for (const DWORD flags : fourTurns()) {
        SCOPED_TRACE(flags);
        host.reset();
        EXPECT_EQ(paint(host.window(), host.dc(), file.path(), {flags}), failedWith(VELLUM_UNKNOWN_COMPRESSION));
        EXPECT_TRUE(shows(host.pixels(), ScreenModel(unknown, {flags}, {kWindow})));
        EXPECT_FALSE(host.needsPainting());
    }
}

TEST(ScreenEarlyEnd, DamagedCodeHasItsErrorAndTheLinesBeforeIt) {
    Host host(kWindow.cx, kWindow.cy);
    ScreenPicture damaged = screenPicture(31, 17, 1);
    damaged.photometric = kWhiteIsZeroPhotometric;
    std::vector<tiff::Entry> entries = damaged.entries();
    entries[3] = tiff::shorts(259, {4});
    tiff::Builder builder;
    // A blank line is one bit of code, a one; then an extension that nobody has defined.
    builder.page(entries, {Bytes{0xFE, 0x06, 0, 0, 0, 0}});
    const TempFile file(builder.bytes());
    for (DWORD &value : damaged.values) {
        value = 0;
    }
    damaged.rowsStored = 7;
    for (const DWORD flags : fourTurns()) {
        SCOPED_TRACE(flags);
        host.reset();
        EXPECT_EQ(paint(host.window(), host.dc(), file.path(), {flags}), failedWith(VELLUM_CODE_ERROR));
        EXPECT_TRUE(shows(host.pixels(), ScreenModel(damaged, {flags}, {kWindow})));
        EXPECT_FALSE(host.needsPainting());
    }
}

// Without the companion module there are no lines, which counts as success.
TEST(ScreenEarlyEnd, AJpegPictureWithoutItsModuleIsAnEmptyPlace) {
    Host host(kWindow.cx, kWindow.cy);
    const TempFile file(jpegTiff({}));
    const MessageBoxes boxes;
    EXPECT_EQ(paint(host.window(), host.dc(), file.path()), kDecoded);
    EXPECT_EQ(boxes.count(), 1);
    EXPECT_FALSE(host.needsPainting());
    const Pixels pixels = host.pixels();
    SIZE canvas{};
    GetWindowExtEx(host.dc(), &canvas);
    for (int y = 0; y < kWindow.cy; ++y) {
        for (int x = 0; x < kWindow.cx; ++x) {
            ASSERT_EQ(pixels[static_cast<std::size_t>(y * kWindow.cx + x)],
                      x < canvas.cx && y < canvas.cy ? kUntouched : kBackground)
                << x << ", " << y;
        }
    }
}

} // namespace
