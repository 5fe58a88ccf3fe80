// Windows: the wait cursor while text is put on forms and pictures, and the cursor from before afterwards, whatever
// becomes of the picture.
#include "annot/overlays.h"
#include "display/pictures.h"
#include "support/gdi_calls.h"

#include <gtest/gtest.h>

#include <functional>

namespace vellum::test {
namespace {

constexpr auto kFace = "Arial";

std::vector<HCURSOR> shown; // by the library, one after the other
std::vector<HCURSOR> whileDrawing;
ImportPatch settingCursor;
ImportPatch drawingText;

HCURSOR WINAPI noteCursor(HCURSOR cursor) {
    shown.push_back(cursor);
    return settingCursor.original<decltype(SetCursor)>()(cursor);
}

BOOL WINAPI noteDrawing(HDC dc, int x, int y, UINT options, const RECT *area, const char *text, UINT length,
                        const INT *distances) {
    whileDrawing.push_back(GetCursor());
    return drawingText.original<decltype(ExtTextOutA)>()(dc, x, y, options, area, text, length, distances);
}

bool onlyWait(const std::vector<HCURSOR> &cursors) {
    const HCURSOR wait = LoadCursor(nullptr, IDC_WAIT);
    return std::all_of(cursors.begin(), cursors.end(), [wait](HCURSOR cursor) { return cursor == wait; });
}

class OverlayCursor : public testing::Test {
protected:
    OverlayCursor() {
        settingCursor.replace("SetCursor", &noteCursor);
        drawingText.replace("ExtTextOutA", &noteDrawing);
    }
    ~OverlayCursor() override {
        settingCursor.restore();
        drawingText.restore();
        SetCursor(before_);
    }

    // Shown first of all, and nothing else until the one before comes back.
    static void expectWaiting(const std::function<void()> &work) {
        for (const HCURSOR previous : {LoadCursor(nullptr, IDC_ARROW), LoadCursor(nullptr, IDC_CROSS), HCURSOR{}}) {
            SetCursor(previous);
            shown.clear();
            work();
            EXPECT_EQ(GetCursor(), previous);
            ASSERT_GE(shown.size(), 2U);
            EXPECT_EQ(shown.back(), previous);
            shown.pop_back();
            EXPECT_TRUE(onlyWait(shown));
        }
    }
    static void expectWaitingToDraw(const std::function<void()> &work) {
        whileDrawing.clear();
        expectWaiting(work);
        EXPECT_GE(whileDrawing.size(), 3U);
        EXPECT_TRUE(onlyWait(whileDrawing));
    }

private:
    HCURSOR before_ = SetCursor(LoadCursor(nullptr, IDC_ARROW));
};

struct Forms {
    TempFile form{picture(400, 300, {1, 1}).tiff()};
    TextFile text{"Name: A. Clerk"};
    FaxPageParams params = smallPage(text.path());
};

TEST_F(OverlayCursor, IsTheWaitCursorWhileAFormIsPrintedOn) {
    const Forms forms;
    expectWaitingToDraw([&] { GlobalFree(DIBFormOverlay(forms.form.path(), &forms.params)); });
    expectWaitingToDraw([&] { const LoadedBitmap printed(BitmapFormOverlay(forms.form.path(), &forms.params)); });
}

TEST_F(OverlayCursor, ComesBackWhenThereIsNoFormOrNoText) {
    const Forms forms;
    const TempFile noTiff(Bytes{'x', 'y', 'z'});
    const FaxPageParams noText = smallPage("no such file");
    for (const char *path : {"no such file.tif", noTiff.path(), static_cast<const char *>(nullptr)}) {
        expectWaiting([&] { EXPECT_EQ(BitmapFormOverlay(path, &forms.params), nullptr); });
        expectWaiting([&] { EXPECT_EQ(DIBFormOverlay(path, &forms.params), nullptr); });
    }
    for (const FaxPageParams *params : {&noText, static_cast<const FaxPageParams *>(nullptr)}) {
        expectWaiting([&] { const LoadedBitmap plain(BitmapFormOverlay(forms.form.path(), params)); });
        expectWaiting([&] { EXPECT_EQ(DIBFormOverlay(forms.form.path(), params), nullptr); });
    }
}

TEST_F(OverlayCursor, ComesBackWhenAFormCannotBeDrawnOn) {
    const Forms forms;
    for (const auto kind : {GdiCalls::Fail::MemoryDc, GdiCalls::Fail::Selection}) {
        const GdiCalls calls(kind);
        expectWaiting([&] { const LoadedBitmap plain(BitmapFormOverlay(forms.form.path(), &forms.params)); });
        expectWaiting([&] { EXPECT_EQ(DIBFormOverlay(forms.form.path(), &forms.params), nullptr); });
    }
}

// A picture of either sort.
struct Pictures {
    LoadedBitmap bitmap{CreateBitmap(231, 60, 1, 1, nullptr)};
    DibBlock dib{PackedDib(231, 60, 8)};
};

TEST_F(OverlayCursor, IsTheWaitCursorWhileAPictureIsPrintedOn) {
    const Pictures pictures;
    expectWaitingToDraw([&] {
        const LoadedBitmap printed(BitmapTextOverlay(pictures.bitmap.get(), 5, 5, "text", kFace, 12, 0, 0));
        EXPECT_TRUE(printed);
    });
    expectWaitingToDraw([&] {
        const HGLOBAL printed = DIBTextOverlay(pictures.dib.get(), 5, 5, "text", kFace, 12);
        EXPECT_NE(printed, nullptr);
        GlobalFree(printed);
    });
}

TEST_F(OverlayCursor, IsShownAndComesBackEvenWhenAnArgumentIsMissing) {
    const Pictures pictures;
    const struct {
        bool picture;
        const char *text;
        const char *face;
    } kCalls[] = {{false, "text", kFace}, {true, nullptr, kFace}, {true, "text", nullptr}, {false, nullptr, nullptr}};
    for (const auto &[picture, text, face] : kCalls) {
        const HBITMAP bitmap = picture ? pictures.bitmap.get() : nullptr;
        const HGLOBAL dib = picture ? pictures.dib.get() : nullptr;
        expectWaiting([&] { EXPECT_EQ(BitmapTextOverlay(bitmap, 5, 5, text, face, 12, 0, 0), nullptr); });
        expectWaiting([&] { EXPECT_EQ(DIBTextOverlay(dib, 5, 5, text, face, 12), nullptr); });
    }
}

TEST_F(OverlayCursor, ComesBackWhenAPictureCannotBeCopiedOrDrawnOn) {
    const Pictures pictures;
    for (const auto kind : {GdiCalls::Fail::Bitmap, GdiCalls::Fail::MemoryDc, GdiCalls::Fail::Selection}) {
        const GdiCalls calls(kind);
        expectWaiting(
            [&] { EXPECT_EQ(BitmapTextOverlay(pictures.bitmap.get(), 5, 5, "text", kFace, 12, 0, 0), nullptr); });
    }
    for (const auto kind : {GdiCalls::Fail::DibSection, GdiCalls::Fail::MemoryDc, GdiCalls::Fail::Selection}) {
        const GdiCalls calls(kind);
        expectWaiting([&] { EXPECT_EQ(DIBTextOverlay(pictures.dib.get(), 5, 5, "text", kFace, 12), nullptr); });
    }
}

} // namespace
} // namespace vellum::test
