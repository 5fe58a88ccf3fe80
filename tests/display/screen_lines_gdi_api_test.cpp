// The painter's twelve line functions in the hands of a program, and paintings that begin while another one is going
// on.
#include "support/gdi_calls.h"
#include "support/screen_painting.h"

#include <gtest/gtest.h>

#include <climits>

namespace {

using namespace vellum::test;

constexpr SIZE kWindow = {120, 100};

using ScreenLineFunction = DWORD(VELLUMAPI *)(BYTE *line, LONG row, ScreenLineContext *context);

constexpr ScreenLineFunction kFunctions[] = {
    FlushMonoLineToScreen,  FlushMonoRotLineToScreen,  FlushMonoRot18LineToScreen,  FlushMonoRot27LineToScreen,
    FlushRGBLineToScreen,   FlushRGBRotLineToScreen,   FlushRGBRot18LineToScreen,   FlushRGBRot27LineToScreen,
    FlushRGB24LineToScreen, FlushRGB24RotLineToScreen, FlushRGB24Rot18LineToScreen, FlushRGB24Rot27LineToScreen,
};

constexpr LONG kRows[] = {0, 1, 5, -1, LONG_MIN, LONG_MAX};

// A context as a program might fill it, with the line bitmap and the buffers that every function needs.
class OwnContext {
public:
    static constexpr int kSide = 8;

    OwnContext() : target_(MemoryTarget::Kind::TrueColorSection, kSide, kSide) {
        header_.bmiHeader.biSize = sizeof header_.bmiHeader;
        header_.bmiHeader.biWidth = kSide;
        header_.bmiHeader.biHeight = 1;
        header_.bmiHeader.biPlanes = 1;
        header_.bmiHeader.biBitCount = 24;
        context.dc = target_.dc();
        context.bitmap = CreateCompatibleBitmap(target_.dc(), kSide, 1);
        context.pixelCount = kSide;
        context.bitmapBytes = 2;
        context.header = &header_;
        context.rasterOperation = SRCCOPY;
        context.workBuffer = work;
    }
    OwnContext(const OwnContext &) = delete;
    OwnContext &operator=(const OwnContext &) = delete;
    ~OwnContext() { DeleteObject(context.bitmap); }

    void expectUntouched() const {
        EXPECT_EQ(target_.pixels(), Pixels(kSide * kSide, kUntouched));
        for (const BYTE byte : work) {
            EXPECT_EQ(byte, 0);
        }
    }

    ScreenLineContext context{};
    BYTE work[kSide * 4 + 64] = {};

private:
    MemoryTarget target_;
    BITMAPINFO header_{};
};

void expectNothingHappens() {
    OwnContext own;
    for (const ScreenLineFunction function : kFunctions) {
        for (const LONG row : kRows) {
            BYTE line[64];
            for (std::size_t i = 0; i < sizeof line; ++i) {
                line[i] = static_cast<BYTE>(i + 1);
            }
            EXPECT_EQ(function(line, row, &own.context), 0U);
            for (std::size_t i = 0; i < sizeof line; ++i) {
                EXPECT_EQ(line[i], i + 1) << "red and blue are exchanged, too, only while a picture is painted";
            }
            EXPECT_EQ(function(line, row, nullptr), 0U);
            EXPECT_EQ(function(nullptr, row, &own.context), 0U);
            EXPECT_EQ(function(nullptr, row, nullptr), 0U);
        }
    }
    own.expectUntouched();
}

TEST(ScreenLineFunctions, WhileNothingIsPaintedReturn0AndTouchNothing) {
    SetTiffError(VELLUM_NOT_CALS);
    const GdiCalls calls;
    expectNothingHappens();
    EXPECT_EQ(calls.counts().lines, 0);
    EXPECT_EQ(TiffError(), DWORD{VELLUM_NOT_CALS});
}

TEST(ScreenLineFunctions, AfterAPaintingTouchNothingEither) {
    Host host(kWindow.cx, kWindow.cy);
    for (const DWORD bits : kScreenDepths) {
        ScreenPicture picture = screenPicture(30, 20, bits);
        const TempFile whole(picture.tiff());
        picture.rowsStored = 7;
        const TempFile cut(picture.tiff());
        for (const char *path : {whole.path(), cut.path()}) {
            for (const DWORD flags : fourTurns()) {
                host.reset();
                paint(host.window(), host.dc(), path, {flags});
                expectNothingHappens();
            }
        }
    }
}

TEST(ScreenLineFunctions, AfterAPaintingThatFailedTouchNothingEither) {
    Host host(kWindow.cx, kWindow.cy);
    const TempFile file(screenPicture(30, 20, 8).tiff());
    for (const GdiCalls::Fail fail : {GdiCalls::Fail::Bitmap, GdiCalls::Fail::MemoryDc}) {
        host.reset();
        {
            const GdiCalls calls(fail);
            EXPECT_EQ(paint(host.window(), host.dc(), file.path()), failedWith(VELLUM_NO_MEMORY));
        }
        expectNothingHappens();
    }
}

// ---------------------------------------------------------------- paintings from within a painting

// A program that paints whenever its window's size changes, as it does when scroll bars come and go.
class Repainting {
public:
    Repainting(Host &host, std::function<void()> repaint) : host_(host) {
        host.onSize = [this, repaint = std::move(repaint)] {
            if (depth_ == kDeepest) {
                ADD_FAILURE() << "no end of repaintings";
                return;
            }
            ++depth_;
            ++times;
            repaint();
            --depth_;
        };
    }
    Repainting(const Repainting &) = delete;
    Repainting &operator=(const Repainting &) = delete;
    ~Repainting() { host_.onSize = nullptr; }

    int times = 0;

private:
    static constexpr int kDeepest = 20;
    Host &host_;
    int depth_ = 0;
};

void paintOnOwnContext(const Host &host, const char *path, const Look &look) {
    const HDC dc = GetDC(host.window());
    paint(host.window(), dc, path, look);
    ReleaseDC(host.window(), dc);
}

class ScreenReentry : public testing::Test {
protected:
    // Paints with the host repainting so meanwhile; then once more in peace.
    template <class Repaint>
    void expectSound(const Look &look, const Repaint &repaint) {
        SCOPED_TRACE(describe(picture_, look));
        host_.reset({0, 100, 0, false}, {0, 100, 0, false});
        {
            const GdiCalls calls;
            Repainting repainting(host_, repaint);
            EXPECT_EQ(paint(host_.window(), host_.dc(), file_.path(), look), kDecoded);
            EXPECT_GT(repainting.times, 0) << "the scroll bars have changed nothing";
            EXPECT_EQ(calls.counts().objects, 0);
            EXPECT_EQ(calls.counts().contexts, 0);
            EXPECT_EQ(calls.counts().memoryContexts, 0);
            EXPECT_EQ(calls.counts().savedStates, 0);
        }
        expectNothingHappens();
        easel_.expectPainted(picture_, look, {0, 10, 4}, {0, 10, 6});
    }

    Easel easel_{kWindow};
    Host &host_ = easel_.host;
    const ScreenPicture picture_ = screenPicture(253, 231, 8);
    const TempFile file_{picture_.tiff()};
};

TEST_F(ScreenReentry, ByTheSamePictureIsHarmless) {
    for (const DWORD flags : fourTurns()) {
        expectSound({flags}, [this, flags] { paintOnOwnContext(host_, file_.path(), {flags}); });
    }
}

TEST_F(ScreenReentry, OnTheSameContextIsHarmless) {
    for (const DWORD flags : fourTurns()) {
        expectSound({flags}, [this, flags] { paint(host_.window(), host_.dc(), file_.path(), {flags}); });
    }
}

TEST_F(ScreenReentry, ByAnotherPictureIsHarmless) {
    const TempFile wide(screenPicture(999, 5, 1).tiff());
    const TempFile high(screenPicture(5, 999, 24).tiff());
    for (const DWORD flags : fourTurns()) {
        for (const char *path : {wide.path(), high.path()}) {
            expectSound({flags}, [this, path] { paintOnOwnContext(host_, path, {VELLUM_ROTATE_270}); });
        }
    }
}

TEST_F(ScreenReentry, ByAFittedOneThatHidesTheBarsIsHarmless) {
    for (const DWORD flags : fourTurns()) {
        host_.reset({0, 100, 0, false}, {0, 100, 0, false});
        Repainting repainting(host_, [this] { paintOnOwnContext(host_, file_.path(), {VELLUM_SHOW_FIT}); });
        EXPECT_EQ(paint(host_.window(), host_.dc(), file_.path(), {flags}), kDecoded);
        EXPECT_GT(repainting.times, 0);
        expectNothingHappens();
    }
    easel_.expectPainted(picture_, Look{VELLUM_ROTATE_90});
}

TEST_F(ScreenReentry, ByAFailingOneIsHarmless) {
    expectSound({}, [this] { paintOnOwnContext(host_, "no such file.tif", {}); });
}

TEST_F(ScreenReentry, ThePictureIsTheOneThatWasAskedForFirst) {
    const TempFile other(screenPicture(999, 999, 1).tiff());
    for (const DWORD flags : fourTurns()) {
        SCOPED_TRACE(flags);
        host_.reset({0, 100, 0, false}, {0, 100, 0, false});
        Repainting repainting(host_, [&] { paintOnOwnContext(host_, other.path(), {VELLUM_ROTATE_180}); });
        EXPECT_EQ(paint(host_.window(), host_.dc(), file_.path(), {flags}), kDecoded);
        EXPECT_GT(repainting.times, 0);
        const ScreenModel model(picture_, {flags}, {kWindow});
        EXPECT_TRUE(hasBars(host_, model));
        EXPECT_TRUE(keepsMapping(host_.dc(), model));
        EXPECT_TRUE(shows(host_.pixels(), model));
    }
}

TEST_F(ScreenReentry, TheWaitCursorIsShownMeanwhile) {
    host_.reset({0, 100, 0, false}, {0, 100, 0, false});
    SetCursor(LoadCursor(nullptr, IDC_ARROW));
    HCURSOR meanwhile = nullptr;
    Repainting repainting(host_, [&meanwhile] { meanwhile = GetCursor(); });
    EXPECT_EQ(paint(host_.window(), host_.dc(), file_.path()), kDecoded);
    EXPECT_EQ(meanwhile, LoadCursor(nullptr, IDC_WAIT));
    EXPECT_EQ(GetCursor(), LoadCursor(nullptr, IDC_ARROW));
}

} // namespace
