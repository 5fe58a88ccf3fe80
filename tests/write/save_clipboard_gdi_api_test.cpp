// Saving the bitmap on the clipboard, which stays the clipboard's.
#include "support/dialog_user.h"
#include "support/faults.h"
#include "support/gdi_calls.h"
#include "write/bitmaps.h"
#include "write/packed_dibs.h"
#include "write/saved_pixels.h"

#include <gtest/gtest.h>

namespace {

using namespace vellum::test;

class SaveClipboard : public testing::Test {
protected:
    void SetUp() override { put(nullptr); }
    void TearDown() override { put(nullptr); }

    // Gives the clipboard a bitmap, or empties it.
    static void put(HBITMAP bitmap) {
        ASSERT_TRUE(OpenClipboard(nullptr));
        EmptyClipboard();
        if (bitmap != nullptr) {
            EXPECT_NE(SetClipboardData(CF_BITMAP, bitmap), nullptr);
        }
        CloseClipboard();
    }

    static Pixels clipboardPixels() {
        if (!OpenClipboard(nullptr)) {
            return {};
        }
        Pixels pixels = pixelsOf(static_cast<HBITMAP>(GetClipboardData(CF_BITMAP)));
        CloseClipboard();
        return pixels;
    }

    static Outcome save(const char *path, LONG code, GdiCalls::Fail fail = GdiCalls::Fail::Nothing) {
        SetTiffError(VELLUM_NOT_CALS);
        const GdiCalls calls(fail);
        const DWORD result = SaveTiffFileFromClipboard(path, code, 0);
        EXPECT_EQ(calls.counts().objects, 0);
        EXPECT_EQ(calls.counts().contexts, 0);
        EXPECT_EQ(calls.counts().clipboardOpen, 0);
        EXPECT_EQ(calls.counts().clipboardEmptied, 0);
        return {result, TiffError()};
    }
};

TEST_F(SaveClipboard, TheBitmapIsSavedWithFillOrder2) {
    for (const LONG code : {VELLUM_SAVE_UNCOMPRESSED, VELLUM_SAVE_LZW, VELLUM_SAVE_GROUP3_1D, VELLUM_SAVE_GROUP4}) {
        put(monochromeBitmap(41, 6).release());
        const Pixels expected = bilevelPixels(41, 6);
        const TempFile file;
        ASSERT_EQ(save(file.path(), code), kDecoded);
        const SavedTiff saved(file.path());
        EXPECT_EQ(saved.number(266), 2U);
        EXPECT_EQ(pixelsOf(saved), expected) << code;
        EXPECT_EQ(clipboardPixels(), expected) << "it is still on the clipboard";
    }
}

TEST_F(SaveClipboard, ABitmapOfTheScreenKeepsItsColours) {
    put(screenBitmap(7, 5).release());
    const TempFile file;
    ASSERT_EQ(save(file.path(), VELLUM_SAVE_LZW_DIFFERENCING), kDecoded);
    const SavedTiff saved(file.path());
    EXPECT_EQ(saved.number(262), 2U);
    EXPECT_EQ(saved.number(266), 2U);
    EXPECT_EQ(pixelsOf(saved), clipboardPixels());
    EXPECT_EQ(pixelsOf(saved)[0], 0xFF0000U);
}

TEST_F(SaveClipboard, WithoutABitmapTheResultIs0AndNothingIsShown) {
    const MessageBoxes boxes;
    const TempFile file;
    EXPECT_EQ(save(file.path(), VELLUM_SAVE_LZW), failedWith(VELLUM_NOT_CALS));
    EXPECT_EQ(boxes.count(), 0);
    EXPECT_FALSE(readFile(file.path()));
}

TEST_F(SaveClipboard, ACodeThatIsNoneIsAPlain0) {
    put(monochromeBitmap(41, 6).release());
    const MessageBoxes boxes;
    const TempFile file;
    EXPECT_EQ(save(file.path(), 210), failedWith(VELLUM_NOT_CALS));
    EXPECT_EQ(boxes.count(), 0);
    EXPECT_FALSE(readFile(file.path()));
}

TEST_F(SaveClipboard, AFailedSaveShowsTheMessageBox) {
    put(screenBitmap(7, 5).release());
    const MessageBoxes boxes;
    const TempFile file;
    EXPECT_EQ(save(file.path(), VELLUM_SAVE_GROUP4), failedWith(VELLUM_BAD_COLOR_FORMAT));
    EXPECT_EQ(boxes.count(), 1);
    EXPECT_EQ(boxes.text(), "Saving has failed.");
    EXPECT_EQ(boxes.caption(), "TIFF error");
    EXPECT_EQ(boxes.style(), 48U);
    EXPECT_FALSE(readFile(file.path()));
}

TEST_F(SaveClipboard, AClipboardThatDoesNotOpenOrDeliverIsTold) {
    put(monochromeBitmap(41, 6).release());
    struct Case {
        GdiCalls::Fail fail;
        const char *text;
    };
    constexpr Case kCases[] = {{GdiCalls::Fail::OpenClipboard, "Could not open clipboard"},
                               {GdiCalls::Fail::GetClipboardData, "Could not receive bitmap from clipboard"}};
    for (const Case &c : kCases) {
        const MessageBoxes boxes;
        const TempFile file;
        EXPECT_EQ(save(file.path(), VELLUM_SAVE_GROUP4, c.fail).result, 0U);
        EXPECT_EQ(boxes.count(), 1);
        EXPECT_EQ(boxes.text(), c.text);
        EXPECT_EQ(boxes.caption(), "VELLUM SDK");
        EXPECT_EQ(boxes.style(), 48U);
        EXPECT_FALSE(readFile(file.path()));
    }
}

TEST_F(SaveClipboard, TheDialogBeginsWithReversedBitsAndCannotChangeThem) {
    put(monochromeBitmap(41, 6).release());
    const TempFile file;
    const DialogUser user([](HWND dialog) {
        EXPECT_TRUE(isChecked(dialog, 1015));
        press(dialog, 208);
        press(dialog, 1014);
        type(dialog, 250, "");
        press(dialog, IDOK);
    });
    ASSERT_EQ(SaveTiffFileFromClipboard(file.path(), 0, 1), 1U);
    EXPECT_EQ(SavedTiff(file.path()).number(266), 2U);
    EXPECT_EQ(SavedTiff(file.path()).number(259), 4U);
    EXPECT_EQ(pixelsOf(SavedTiff(file.path())), bilevelPixels(41, 6));
}

TEST_F(SaveClipboard, WhileTheUserThinksTheClipboardIsFree) {
    put(monochromeBitmap(41, 6).release());
    const TempFile file;
    const DialogUser user([](HWND dialog) {
        // Another program puts something in its place.
        put(screenBitmap(7, 5).release());
        press(dialog, 203);
        type(dialog, 250, "");
        press(dialog, IDOK);
    });
    ASSERT_EQ(SaveTiffFileFromClipboard(file.path(), 0, 1), 1U);
    EXPECT_EQ(pixelsOf(SavedTiff(file.path())), clipboardPixels()) << "what is there is saved";
}

TEST_F(SaveClipboard, ABitmapOfAnotherDepthThanTheUserWasAskedAboutIsSavedAsWhatItIs) {
    put(screenBitmap(7, 5).release());
    const TempFile file;
    const DialogUser user([](HWND dialog) {
        put(monochromeBitmap(41, 6).release());
        press(dialog, 203);
        type(dialog, 250, "");
        press(dialog, IDOK);
    });
    ASSERT_EQ(SaveTiffFileFromClipboard(file.path(), 0, 1), 1U);
    const SavedTiff saved(file.path());
    EXPECT_EQ(saved.number(258), 1U);
    EXPECT_EQ(saved.number(262), 3U) << "a palette image, as a bitmap of two colours is without any choice";
    EXPECT_EQ(pixelsOf(saved), clipboardPixels());
}

TEST_F(SaveClipboard, MonochromeWasChosenForAnotherBitmap) {
    put(monochromeBitmap(41, 6).release());
    const TempFile file;
    const DialogUser user([](HWND dialog) {
        press(dialog, 260);
        put(screenBitmap(7, 5).release());
        press(dialog, 203);
        type(dialog, 250, "");
        press(dialog, IDOK);
    });
    ASSERT_EQ(SaveTiffFileFromClipboard(file.path(), 0, 1), 1U);
    EXPECT_EQ(pixelsOf(SavedTiff(file.path())), clipboardPixels());
}

TEST_F(SaveClipboard, ABitmapThatIsGoneWhenTheUserIsReadyIsTold) {
    put(monochromeBitmap(41, 6).release());
    const MessageBoxes boxes;
    const TempFile file;
    const DialogUser user([](HWND dialog) {
        put(nullptr);
        type(dialog, 250, "");
        press(dialog, IDOK);
    });
    EXPECT_EQ(SaveTiffFileFromClipboard(file.path(), 0, 1), 0U);
    EXPECT_EQ(boxes.text(), "Could not receive bitmap from clipboard");
    EXPECT_FALSE(readFile(file.path()));
}

} // namespace
