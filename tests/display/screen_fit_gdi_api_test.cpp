// Fitted pictures: the whole of them, with square pixels, as large as the room lets them; no scroll bars.
#include "support/screen_painting.h"

#include <gtest/gtest.h>

namespace {

using namespace vellum::test;

constexpr DWORD kFit = VELLUM_SHOW_FIT;
constexpr SIZE kWindow = {91, 73};

class ScreenFit : public testing::TestWithParam<DWORD> {};

INSTANTIATE_TEST_SUITE_P(Depths, ScreenFit, testing::ValuesIn(kScreenDepths),
                         [](const testing::TestParamInfo<DWORD> &depth) {
                             return "Of" + std::to_string(depth.param) + "Bits";
                         });

TEST_P(ScreenFit, ShowsLargePicturesWhole) {
    Easel easel(kWindow);
    for (const SIZE size : {SIZE{233, 187}, SIZE{400, 60}, SIZE{60, 400}}) {
        easel.expectPainted(screenPicture(size.cx, size.cy, GetParam(), 30), allTurns(kFit));
    }
}

TEST_P(ScreenFit, EnlargesSmallPictures) {
    Easel easel(kWindow);
    for (const SIZE size : {SIZE{3, 2}, SIZE{7, 9}, SIZE{1, 1}, SIZE{31, 4}}) {
        easel.expectPainted(screenPicture(size.cx, size.cy, GetParam()), allTurns(kFit));
    }
}

TEST_P(ScreenFit, HidesTheBarsAndSetsThemTo0) {
    Easel easel(kWindow);
    const Host &host = easel.host;
    const ScrollState shown{0, 100, 70, true};
    for (const DWORD flags : fourTurns(kFit)) {
        easel.expectPainted(screenPicture(233, 187, GetParam(), 30), Look{flags}, shown, shown);
        EXPECT_FALSE(host.hasBar(SB_HORZ));
        EXPECT_FALSE(host.hasBar(SB_VERT));
        EXPECT_EQ(GetScrollPos(host.window(), SB_HORZ), 0);
        EXPECT_EQ(GetScrollPos(host.window(), SB_VERT), 0);
    }
}

TEST_P(ScreenFit, InMemoryIsThatOfTheWindow) {
    Host host(kWindow.cx, kWindow.cy);
    const ScreenPicture picture = screenPicture(133, 187, GetParam(), 30);
    const TempFile file(picture.tiff());
    for (const DWORD flags : allTurns(kFit)) {
        SCOPED_TRACE(describe(picture, {flags}));
        host.reset();
        const MemoryTarget target(MemoryTarget::Kind::Compatible, kWindow.cx, kWindow.cy);
        EXPECT_EQ(paint(host.window(), target.dc(), file.path(), {flags}), kDecoded);
        EXPECT_TRUE(shows(target.pixels(), ScreenModel(picture, {flags}, {kWindow})));
        const MemoryTarget alone(MemoryTarget::Kind::Compatible, kWindow.cx, kWindow.cy);
        EXPECT_EQ(paint(nullptr, alone.dc(), file.path(), {flags}), kDecoded);
        EXPECT_TRUE(
            shows(alone.pixels(), ScreenModel(picture, {flags}, {.window = kWindow, .fixed = true}), kUntouched));
    }
}

TEST(ScreenFitting, GoesBeforeTheResolutionAndTheRatios) {
    ScreenPicture picture = screenPicture(133, 187, 8, 30);
    picture.xDpi = 204;
    picture.yDpi = 98;
    Easel(kWindow).expectPainted(picture, fourTurns(kFit | VELLUM_SHOW_BY_RESOLUTION), {5, 1, 1, 9});
}

// ---------------------------------------------------------------- the room

SIZE viewportOf(SIZE window, int width, int height, DWORD flags) {
    Host host(window.cx, window.cy);
    const ScrollState shown{0, 100, 70, true};
    host.reset(shown, shown);
    const TempFile file(screenPicture(width, height, 1, 10).tiff());
    EXPECT_EQ(paint(host.window(), host.dc(), file.path(), {flags}), kDecoded);
    EXPECT_EQ(GetMapMode(host.dc()), MM_ISOTROPIC);
    SIZE viewport{};
    GetViewportExtEx(host.dc(), &viewport);
    return viewport;
}

// Square pixels shorten one side of the room: a canvas that is far too wide or too high for it leaves the other one.
TEST(ScreenFitting, In400x300HasThatMuchRoom) {
    EXPECT_EQ(viewportOf({400, 300}, 100, 10, kFit).cx, 400);
    EXPECT_EQ(viewportOf({400, 300}, 10, 100, kFit).cy, 300);
    EXPECT_EQ(viewportOf({400, 300}, 100, 10, kFit | VELLUM_ROTATE_180).cx, 400);
    EXPECT_EQ(viewportOf({400, 300}, 10, 100, kFit | VELLUM_ROTATE_180).cy, 300);
}

TEST(ScreenFitting, In400x300TurnedBy90HasRoomOf300x400) {
    for (const DWORD rotation : {VELLUM_ROTATE_90, VELLUM_ROTATE_270}) {
        EXPECT_EQ(viewportOf({400, 300}, 10, 100, kFit | rotation).cx, 300);
        EXPECT_EQ(viewportOf({400, 300}, 100, 10, kFit | rotation).cy, 400);
    }
}

TEST(ScreenFitting, HasSquarePixels) {
    const HDC screen = GetDC(nullptr);
    const double deviceWidth = GetDeviceCaps(screen, HORZSIZE) / static_cast<double>(GetDeviceCaps(screen, HORZRES));
    const double deviceHeight = GetDeviceCaps(screen, VERTSIZE) / static_cast<double>(GetDeviceCaps(screen, VERTRES));
    ReleaseDC(nullptr, screen);
    for (const DWORD rotation : {VELLUM_ROTATE_0, VELLUM_ROTATE_90}) {
        const SIZE canvas = rotation == VELLUM_ROTATE_0 ? SIZE{60, 90} : SIZE{90, 60};
        const SIZE viewport = viewportOf({400, 300}, 60, 90, kFit | rotation);
        const double width = viewport.cx * deviceWidth / canvas.cx;
        const double height = viewport.cy * deviceHeight / canvas.cy;
        EXPECT_NEAR(width / height, 1, 0.01) << rotation;
    }
}

// The rest of the room is background.
TEST(ScreenFitting, ACanvasTallerThanTheClientAreaIsCutAtItsEnd) {
    const ScreenPicture picture = screenPicture(400, 60, 8, 20);
    const Look look{kFit | VELLUM_ROTATE_90};
    const ScreenModel model(picture, look, {kWindow});
    ASSERT_GT(model.y().target, model.y().client) << "the room is 73 x 91, the client area 91 x 73";
    Easel(kWindow).expectPainted(picture, look);
}

} // namespace
