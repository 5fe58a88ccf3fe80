// The library knows of a picture on the screen only while it is being painted.
#include "core/library_state.h"
#include "support/gdi_calls.h"
#include "support/screen_painting.h"

#include <gtest/gtest.h>

namespace {

using namespace vellum::test;

constexpr SIZE kWindow = {71, 63};

class ScreenState : public testing::Test {
protected:
    void TearDown() override { EXPECT_EQ(vellum::library.screen, nullptr); }

    Host host_{kWindow.cx, kWindow.cy};
    ScreenPicture picture_ = screenPicture(157, 139, 8);
};

TEST_F(ScreenState, KnowsNothingOfAPictureThatHasBeenPainted) {
    const TempFile file(picture_.tiff());
    EXPECT_EQ(paint(host_.window(), host_.dc(), file.path()), kDecoded);
}

TEST_F(ScreenState, KnowsNothingOfAPictureThatEndedEarly) {
    picture_.rowsStored = 70;
    const TempFile file(picture_.tiff());
    EXPECT_EQ(paint(host_.window(), host_.dc(), file.path()), failedWith(VELLUM_UNEXPECTED_END));
}

TEST_F(ScreenState, KnowsNothingOfAPictureThatThereWasNoMemoryFor) {
    const TempFile file(picture_.tiff());
    for (const GdiCalls::Fail fail : {GdiCalls::Fail::Bitmap, GdiCalls::Fail::MemoryDc}) {
        const GdiCalls calls(fail);
        EXPECT_EQ(paint(host_.window(), host_.dc(), file.path()), failedWith(VELLUM_NO_MEMORY));
        EXPECT_EQ(vellum::library.screen, nullptr);
    }
}

// The first size is that of the smaller client area, when the first picture is not yet being painted.
TEST_F(ScreenState, KnowsNothingOfPicturesPaintedFromWithinOthers) {
    const TempFile file(picture_.tiff());
    int times = 0;
    host_.onSize = [&] {
        ++times;
        const HDC dc = GetDC(host_.window());
        paint(host_.window(), dc, file.path(), {VELLUM_ROTATE_90});
        ReleaseDC(host_.window(), dc);
        EXPECT_EQ(vellum::library.screen, nullptr);
    };
    EXPECT_EQ(paint(host_.window(), host_.dc(), file.path()), kDecoded);
    EXPECT_GT(times, 0);
}

} // namespace
