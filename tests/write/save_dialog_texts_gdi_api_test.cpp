// The save dialog's texts, what Cancel leaves, and the dialog in front of the other savers.
#include "support/faults.h"
#include "support/gdi_calls.h"
#include "write/bitmaps.h"
#include "write/save_dialog_calls.h"
#include "write/saved_pixels.h"

#include <gtest/gtest.h>

namespace {

using namespace vellum::test;

void clearTexts() {
    const TempFile file;
    saveAsking(file.path(), PackedDib(20, 5, 8), [](HWND dialog) {
        type(dialog, kTitle, "");
        type(dialog, kArtist, "");
        press(dialog, IDOK);
    });
}

TEST(SaveDialog, TitleAndArtistAreStored) {
    const TempFile file;
    ASSERT_EQ(saveAsking(file.path(), PackedDib(20, 5, 8),
                         [](HWND dialog) {
                             type(dialog, kTitle, "A harbour & its ships");
                             type(dialog, kArtist, "B\xF8rge");
                             press(dialog, IDOK);
                         }),
              kDecoded);
    EXPECT_EQ(SavedTiff(file.path()).text(270), "A harbour & its ships");
    EXPECT_EQ(SavedTiff(file.path()).text(315), "B\xF8rge");
    clearTexts();
}

TEST(SaveDialog, TheTitleBeginsAsTheFileName) {
    const TempFile file;
    ASSERT_EQ(saveAsking(file.path(), PackedDib(20, 5, 8), presses({})), kDecoded);
    EXPECT_EQ(SavedTiff(file.path()).text(270), file.path());
    clearTexts();
}

TEST(SaveDialog, TextsEndAfter100Characters) {
    const std::string text(150, 'x');
    const TempFile file;
    ASSERT_EQ(saveAsking(file.path(), PackedDib(20, 5, 8),
                         [&text](HWND dialog) {
                             type(dialog, kTitle, text);
                             SetDlgItemTextA(dialog, kArtist, text.c_str());
                             press(dialog, IDOK);
                         }),
              kDecoded);
    EXPECT_EQ(SavedTiff(file.path()).text(270), text.substr(0, 100));
    EXPECT_EQ(SavedTiff(file.path()).text(315), text.substr(0, 100));
    clearTexts();
}

TEST(SaveDialog, AFileNameThatIsLongerIsCut) {
    const std::string name = tempFolder() + "\\" + std::string(100, 'n') + ".tif";
    const std::string cut = name.substr(0, 100);
    const DibBlock block(PackedDib(20, 5, 8));
    const DialogUser user([&](HWND dialog) {
        EXPECT_EQ(textOf(dialog), "Saving " + cut);
        EXPECT_EQ(textOf(GetDlgItem(dialog, kTitle)), cut);
        press(dialog, IDCANCEL);
    });
    EXPECT_EQ(SaveDIBInTiffFile(name.c_str(), block.get(), 0, 1), 0U);
    EXPECT_TRUE(user.acted());
}

// By design: a program asks for the first page and saves the others alike.
TEST(SaveDialog, TextsStayForSavesThatDoNotAsk) {
    const TempFile file;
    const PackedDib dib(20, 5, 8);
    saveAsking(file.path(), dib, [](HWND dialog) {
        type(dialog, kTitle, "Ledger");
        type(dialog, kArtist, "Clerk");
        press(dialog, IDOK);
    });
    const DibBlock block(dib);
    ASSERT_EQ(SaveDIBInTiffFile(file.path(), block.get(), VELLUM_SAVE_LZW, 0), 1U);
    EXPECT_EQ(SavedTiff(file.path(), 1).text(270), "Ledger");
    EXPECT_EQ(SavedTiff(file.path(), 1).text(315), "Clerk");
    clearTexts();
}

// ---------------------------------------------------------------- Cancel, failures

TEST(SaveDialog, CancelLeavesTheErrorAt0AndTheTextsAsTheyWere) {
    const TempFile file;
    const PackedDib dib(20, 5, 8);
    EXPECT_EQ(saveAsking(file.path(), dib,
                         [](HWND dialog) {
                             type(dialog, kArtist, "Nobody");
                             press(dialog, IDCANCEL);
                         }),
              failedWith(VELLUM_OK));
    EXPECT_FALSE(readFile(file.path()));
    const DibBlock block(dib);
    ASSERT_EQ(SaveDIBInTiffFile(file.path(), block.get(), VELLUM_SAVE_LZW, 0), 1U);
    EXPECT_EQ(SavedTiff(file.path()).text(270), "");
    EXPECT_EQ(SavedTiff(file.path()).text(315), "");
}

TEST(SaveDialog, ClosingTheWindowIsCancel) {
    const TempFile file;
    EXPECT_EQ(saveAsking(file.path(), PackedDib(20, 5, 8),
                         [](HWND dialog) { SendMessageA(dialog, WM_SYSCOMMAND, SC_CLOSE, 0); }),
              failedWith(VELLUM_OK));
    EXPECT_FALSE(readFile(file.path()));
}

TEST(SaveDialog, IsNotShownForWhatCannotBeSaved) {
    const TempFile file;
    const DibBlock deep(PackedDib(20, 5, 32));
    const DialogUser user([](HWND) {});
    EXPECT_EQ(SaveDIBInTiffFile(file.path(), deep.get(), 0, 1), 0U);
    EXPECT_EQ(TiffError(), DWORD{VELLUM_BAD_COLOR_FORMAT});
    EXPECT_EQ(SaveBitmapInTiffFile(file.path(), nullptr, 0, 1), 0U);
    EXPECT_FALSE(user.acted());
}

// ---------------------------------------------------------------- bitmaps and fax receivers

TEST(SaveDialog, ABitmapOfTheScreenIsShownAsOneOf24Bits) {
    const TestBitmap bitmap = screenBitmap(9, 4);
    const TempFile file;
    const DialogUser user([](HWND dialog) {
        EXPECT_EQ(enabledIn(dialog), kTrueColourButtons);
        press(dialog, 202);
        press(dialog, IDOK);
    });
    ASSERT_EQ(SaveBitmapInTiffFile(file.path(), bitmap.get(), 0, 1), 1U);
    EXPECT_EQ(SavedTiff(file.path()).number(259), 32773U);
    EXPECT_EQ(SavedTiff(file.path()).text(270), file.path());
    EXPECT_EQ(pixelsOf(SavedTiff(file.path())), pixelsOf(bitmap.get()));
    clearTexts();
}

TEST(SaveDialog, AMonochromeBitmapIsBlackWhereItIsBlackWhateverIsChosen) {
    const TestBitmap bitmap = monochromeBitmap(19, 4);
    for (const int pressed : {201, 203, 206, 208, kMonochrome}) {
        const TempFile file;
        const DialogUser user([pressed](HWND dialog) {
            EXPECT_EQ(enabledIn(dialog), kBilevelButtons);
            press(dialog, pressed);
            press(dialog, IDOK);
        });
        ASSERT_EQ(SaveBitmapInTiffFile(file.path(), bitmap.get(), 0, 1), 1U);
        EXPECT_EQ(pixelsOf(SavedTiff(file.path())), pixelsOf(bitmap.get())) << pressed;
    }
    clearTexts();
}

TEST(SaveDialog, CancelOfABitmapShowsNoMessage) {
    const TestBitmap bitmap = monochromeBitmap(19, 4);
    const MessageBoxes boxes;
    const TempFile file;
    const GdiCalls calls;
    const DialogUser user([](HWND dialog) { press(dialog, IDCANCEL); });
    SetTiffError(VELLUM_NOT_CALS);
    EXPECT_EQ(SaveBitmapInTiffFile(file.path(), bitmap.get(), 0, 1), 0U);
    EXPECT_EQ(TiffError(), DWORD{VELLUM_OK});
    EXPECT_EQ(boxes.count(), 0);
    EXPECT_EQ(calls.counts().contexts, 0);
    EXPECT_FALSE(readFile(file.path()));
}

TEST(SaveDialog, ForFaxReceiversABilevelPictureIsWhiteIsZeroWhateverIsChosen) {
    const DibBlock block(PackedDib(20, 5, 1, {kBlackQuad, kWhiteQuad}));
    for (const int pressed : {201, 208, kMonochrome}) {
        const TempFile file;
        const DialogUser user([pressed](HWND dialog) {
            press(dialog, pressed);
            press(dialog, IDOK);
        });
        ASSERT_EQ(SaveDIBInGammaTiffFile(file.path(), block.get(), 0, 1, 1), 1U);
        EXPECT_EQ(SavedTiff(file.path()).number(262), 0U) << pressed;
    }
    clearTexts();
}

} // namespace
