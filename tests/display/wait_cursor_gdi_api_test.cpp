// The wait cursor while an image is loaded into a bitmap, onto the clipboard, or painted, and the previous one
// afterwards. The companion module looks at it in the middle of the decode.
#include "support/bitmap_pixels.h"
#include "support/faults.h"
#include "support/jpeg_tiff.h"
#include "support/screen_painting.h"

#include <gtest/gtest.h>

#include <functional>

namespace {

using namespace vellum::test;

HCURSOR cursorDuringDecode = nullptr;
DWORD decodeResult = 0;

DWORD VELLUMAPI notesTheCursor(CodecState *) {
    cursorDuringDecode = GetCursor();
    return decodeResult;
}

class WaitCursors : public testing::Test {
protected:
    ~WaitCursors() override { SetCursor(before_); }

    // Whether the decode ends well or not.
    void expectWaiting(const std::function<void(const char *path)> &work) {
        const CompanionModule module(kCompanionName, kCompanionEntry, asEntry(&notesTheCursor));
        for (const HCURSOR previous : {LoadCursor(nullptr, IDC_ARROW), LoadCursor(nullptr, IDC_CROSS), HCURSOR{}}) {
            for (const DWORD result : {DWORD{VELLUM_OK}, DWORD{VELLUM_CODE_ERROR}, DWORD{VELLUM_UNEXPECTED_END}}) {
                SCOPED_TRACE(result);
                SetCursor(previous);
                cursorDuringDecode = nullptr;
                decodeResult = result;
                work(file_.path());
                EXPECT_EQ(TiffError(), result);
                EXPECT_EQ(cursorDuringDecode, LoadCursor(nullptr, IDC_WAIT));
                EXPECT_EQ(GetCursor(), previous);
            }
        }
    }

    // An image that the decoder never gets.
    static void expectGivenBack(const std::function<void(const char *path)> &work) {
        const HCURSOR arrow = LoadCursor(nullptr, IDC_ARROW);
        SetCursor(arrow);
        const TempFile noWidth(jpegTiff({.left = {256}}));
        work(noWidth.path());
        EXPECT_NE(TiffError(), DWORD{VELLUM_OK});
        EXPECT_EQ(GetCursor(), arrow);
        work("no such file.tif");
        EXPECT_EQ(TiffError(), DWORD{VELLUM_IO_ERROR});
        EXPECT_EQ(GetCursor(), arrow);
    }

private:
    const HCURSOR before_ = SetCursor(LoadCursor(nullptr, IDC_ARROW));
    const TempFile file_{jpegTiff({})};
};

TEST_F(WaitCursors, IsShownWhileABitmapLoads) {
    const auto work = [](const char *path) { const LoadedBitmap bitmap(LoadTiffIntoBitmap(path, 0, 0)); };
    expectWaiting(work);
    expectGivenBack(work);
}

TEST_F(WaitCursors, IsShownWhileAnImageOfAnOpenFileLoads) {
    expectWaiting([](const char *path) {
        const OpenedTiff tiff{std::string(path)};
        ASSERT_TRUE(registerImage(tiff.get(), 0));
        const LoadedBitmap bitmap(LoadTiffChainIntoBitmap(tiff.get(), 0));
    });
}

TEST_F(WaitCursors, IsShownWhileTheClipboardIsLoaded) {
    const auto work = [](const char *path) { LoadTiffFileIntoClipboard(path, 0, 0); };
    expectWaiting(work);
    expectGivenBack(work);
    ASSERT_TRUE(OpenClipboard(nullptr));
    EmptyClipboard();
    CloseClipboard();
}

TEST_F(WaitCursors, IsShownWhileAnImageIsPainted) {
    Host host(50, 40);
    for (const DWORD flags : fourTurns()) {
        const auto work = [&](const char *path) {
            host.reset();
            paint(host.window(), host.dc(), path, {flags});
        };
        expectWaiting(work);
        expectGivenBack(work);
    }
}

} // namespace
