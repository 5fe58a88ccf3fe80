// The save dialog, driven as a user drives it: which buttons are enabled and checked, what each choice does to the file
// that is saved.
#include "support/import_patch.h"
#include "write/bitmaps.h"
#include "write/save_dialog_calls.h"
#include "write/saved_pixels.h"

#include <gtest/gtest.h>

namespace {

using namespace vellum::test;

void expectOpening(WORD bits, const Buttons &enabled, const Buttons &checked) {
    const TempFile file;
    EXPECT_EQ(saveAsking(file.path(), PackedDib(20, 5, bits),
                         [&](HWND dialog) {
                             EXPECT_EQ(enabledIn(dialog), enabled);
                             EXPECT_EQ(checkedIn(dialog), checked);
                             EXPECT_EQ(textOf(dialog), std::string("Saving ") + file.path());
                             EXPECT_EQ(textOf(GetDlgItem(dialog, kTitle)), file.path());
                             press(dialog, IDCANCEL);
                         }),
              failedWith(VELLUM_OK));
    EXPECT_FALSE(readFile(file.path()));
}

// ---------------------------------------------------------------- on opening

TEST(SaveDialog, ForTwoColoursOpensWithMonochromeAndTheCcittCodes) {
    expectOpening(1, kBilevelButtons, {201, kMonochrome, kNormal});
}

TEST(SaveDialog, ForAPaletteOpensWithPaletteColourAndWithoutTheCcittCodes) {
    expectOpening(4, kPaletteButtons, {201, kPalette, kNormal});
    expectOpening(8, kPaletteButtons, {201, kPalette, kNormal});
}

TEST(SaveDialog, For24BitsHasJpegToo) {
    expectOpening(24, kTrueColourButtons, {201, kPalette, kNormal});
}

TEST(SaveDialog, BeginsWithTheCallersFillOrder) {
    const TempFile file;
    EXPECT_EQ(saveAsking(
                  file.path(), PackedDib(20, 5, 1),
                  [](HWND dialog) {
                      EXPECT_EQ(checkedIn(dialog), (Buttons{201, kMonochrome, kReverse}));
                      press(dialog, IDOK);
                  },
                  2),
              kDecoded);
    EXPECT_EQ(SavedTiff(file.path()).number(266), 2U);
}

TEST(SaveDialog, HasTheTextsOfItsButtons) {
    struct Text {
        int control;
        const char *text;
    };
    constexpr Text kTexts[] = {{201, "No compression"},       {202, "PackBits"},           {203, "LZW"},
                               {204, "Differencing and LZW"}, {205, "CCITT G3 1D No EOL"}, {206, "CCITT G3 1D EOL"},
                               {207, "CCITT G3 2D"},          {208, "CCITT G4"},           {209, "JPEG"},
                               {kMonochrome, "Monochrome"},   {kGreyscale, "Greyscale"},   {kPalette, "Palette color"},
                               {kNormal, "&Normal"},          {kReverse, "&Revers"}};
    const TempFile file;
    saveAsking(file.path(), PackedDib(20, 5, 1), [&](HWND dialog) {
        for (const Text &text : kTexts) {
            EXPECT_EQ(textOf(GetDlgItem(dialog, text.control)), text.text);
        }
        press(dialog, IDCANCEL);
    });
}

TEST(SaveDialog, TheTabulatorGoesThroughTheGroupsToTheTextsAndTheButtons) {
    const TempFile file;
    saveAsking(file.path(), PackedDib(20, 5, 1), [](HWND dialog) {
        std::vector<int> order;
        HWND control = GetDlgItem(dialog, 201);
        do {
            order.push_back(GetDlgCtrlID(control));
            control = GetNextDlgTabItem(dialog, control, FALSE);
        } while (control != nullptr && GetDlgCtrlID(control) != 201 && order.size() < 20);
        EXPECT_EQ(order, (std::vector<int>{201, kMonochrome, kNormal, kTitle, kArtist, IDOK, IDCANCEL}));
        EXPECT_EQ(LOWORD(SendMessageA(dialog, DM_GETDEFID, 0, 0)), IDOK);
        press(dialog, IDCANCEL);
    });
}

// Programs may show the template with a window of theirs.
TEST(SaveDialog, ItsProcedureServesAProgramsOwnCall) {
    BITMAP source{};
    source.bmPlanes = 1;
    const HMODULE library = libraryModule();
    for (const WORD bits : {WORD{1}, WORD{8}, WORD{16}, WORD{24}, WORD{32}}) {
        source.bmBitsPixel = bits;
        const DialogUser user([bits](HWND dialog) {
            EXPECT_EQ(enabledIn(dialog), bits == 1    ? kBilevelButtons
                                         : bits == 24 ? kTrueColourButtons
                                                      : kPaletteButtons);
            press(dialog, bits == 1 ? IDOK : IDCANCEL);
        });
        EXPECT_EQ(DialogBoxParamA(library, "SAVETIFF", nullptr, &DllTiffSaveDlg, reinterpret_cast<LPARAM>(&source)),
                  bits == 1 ? 1 : 0);
    }
    const DialogUser user([](HWND dialog) { press(dialog, IDOK); });
    EXPECT_EQ(DialogBoxParamA(library, "SAVETIFF", nullptr, &DllTiffSaveDlg, 0), 1) << "without a source";
}

TEST(SaveDialog, ItsTemplateHasItsOwnCaption) {
    // Without the procedure nobody changes it.
    const DialogUser user([](HWND dialog) {
        EXPECT_EQ(textOf(dialog), "Saving TIFF file");
        EndDialog(dialog, 7);
    });
    const auto procedure = [](HWND, UINT, WPARAM, LPARAM) CALLBACK -> INT_PTR { return FALSE; };
    EXPECT_EQ(DialogBoxParamA(libraryModule(), "SAVETIFF", nullptr, procedure, 0), 7);
}

// ---------------------------------------------------------------- what the choices do

TEST(SaveDialog, EveryCodeOfABilevelPictureIsTaken) {
    const PackedDib dib(20, 5, 1);
    for (const int code : {201, 202, 203, 205, 206, 207, 208}) {
        const TempFile file;
        const TempFile expected;
        ASSERT_EQ(saveAsking(file.path(), dib, presses({code})), kDecoded) << code;
        const DibBlock block(dib);
        ASSERT_EQ(SaveDIBInTiffFile(expected.path(), block.get(), code, 0), 1U);
        EXPECT_EQ(SavedTiff(file.path()).number(259), SavedTiff(expected.path()).number(259));
        EXPECT_EQ(SavedTiff(file.path()).numbers(292), SavedTiff(expected.path()).numbers(292));
        EXPECT_EQ(SavedTiff(file.path()).lines(), dib.lines());
    }
}

TEST(SaveDialog, TheCcittCodesStoreABilevelPictureAsBlackOrWhiteIsZero) {
    for (const int code : {205, 206, 207, 208}) {
        const TempFile white;
        ASSERT_EQ(saveAsking(white.path(), PackedDib(20, 5, 1), presses({code})), kDecoded);
        EXPECT_EQ(SavedTiff(white.path()).number(262), 0U);
        const TempFile black;
        ASSERT_EQ(saveAsking(black.path(), PackedDib(20, 5, 1, {kBlackQuad, kWhiteQuad}), presses({code})), kDecoded);
        EXPECT_EQ(SavedTiff(black.path()).number(262), 1U);
    }
}

TEST(SaveDialog, MonochromeStoresABilevelPictureAsBlackOrWhiteIsZeroToo) {
    const TempFile file;
    ASSERT_EQ(saveAsking(file.path(), PackedDib(20, 5, 1, {kBlackQuad, kWhiteQuad}), presses({203, kMonochrome})),
              kDecoded);
    EXPECT_EQ(SavedTiff(file.path()).number(262), 1U);
    EXPECT_EQ(SavedTiff(file.path()).number(259), 5U) << "LZW stays chosen";
}

// By design: white first, as the loaders take every bilevel palette image.
TEST(SaveDialog, ABilevelPictureWithoutAChoiceOfColoursIsAPaletteImageThatEveryReaderShowsRight) {
    for (const bool blackFirst : {false, true}) {
        const TempFile file;
        const PackedDib dib(20, 5, 1,
                            blackFirst ? std::vector<RGBQUAD>{kBlackQuad, kWhiteQuad}
                                       : std::vector<RGBQUAD>{kWhiteQuad, kBlackQuad});
        ASSERT_EQ(saveAsking(file.path(), dib, presses({})), kDecoded);
        const SavedTiff saved(file.path());
        EXPECT_EQ(saved.number(262), 3U);
        EXPECT_EQ(saved.numbers(320), (std::vector<DWORD>{0xFF00, 0, 0xFF00, 0, 0xFF00, 0}));
        const Pixels pixels = pixelsOf(saved);
        ASSERT_EQ(pixels.size(), 100U);
        const bool firstBit = (dib.at(0, 0) & 0x80) != 0;
        EXPECT_EQ(pixels[0], firstBit == blackFirst ? kWhitePixel : kBlackPixel);
        const TestBitmap loaded(LoadTiffIntoBitmap(file.path(), 0, 0));
        EXPECT_EQ(pixelsOf(loaded.get()), pixels);
    }
}

TEST(SaveDialog, EveryCodeOfAPalettePictureIsTaken) {
    const PackedDib dib(20, 5, 8);
    constexpr DWORD kCompressions[] = {1, 32773, 5, 5};
    for (int code = 201; code <= 204; ++code) {
        const TempFile file;
        ASSERT_EQ(saveAsking(file.path(), dib, presses({code})), kDecoded);
        const SavedTiff saved(file.path());
        EXPECT_EQ(saved.number(259), kCompressions[code - 201]);
        EXPECT_EQ(saved.has(317), code == 204);
        EXPECT_EQ(saved.number(262), 3U);
        EXPECT_EQ(saved.lines(), dib.lines());
    }
}

TEST(SaveDialog, GreyscaleStoresLevelsInsteadOfAPalette) {
    std::vector<RGBQUAD> ramp = manyColours(256);
    const TempFile white;
    ASSERT_EQ(saveAsking(white.path(), PackedDib(20, 5, 8, ramp), presses({kGreyscale, 204})), kDecoded);
    EXPECT_EQ(SavedTiff(white.path()).number(262), 0U);
    EXPECT_FALSE(SavedTiff(white.path()).has(320));
    EXPECT_EQ(SavedTiff(white.path()).number(317), 2U);
    ramp[0] = kBlackQuad;
    const TempFile black;
    ASSERT_EQ(saveAsking(black.path(), PackedDib(20, 5, 8, ramp), presses({kGreyscale})), kDecoded);
    EXPECT_EQ(SavedTiff(black.path()).number(262), 1U);
    const TempFile back;
    ASSERT_EQ(saveAsking(back.path(), PackedDib(20, 5, 8, ramp), presses({kGreyscale, kPalette})), kDecoded);
    EXPECT_EQ(SavedTiff(back.path()).number(262), 3U);
}

TEST(SaveDialog, TrueColoursStayRgbWhateverIsChosen) {
    const PackedDib dib(20, 5, 24);
    for (const auto &choice : {presses({}), presses({kPalette}), presses({kGreyscale})}) {
        const TempFile file;
        ASSERT_EQ(saveAsking(file.path(), dib, choice), kDecoded);
        EXPECT_EQ(SavedTiff(file.path()).number(262), 2U);
        EXPECT_EQ(SavedTiff(file.path()).lines(), dib.lines());
    }
}

TEST(SaveDialog, TheFillOrderIsTheUsers) {
    const PackedDib dib(20, 5, 1);
    const TempFile reversed;
    ASSERT_EQ(saveAsking(reversed.path(), dib, presses({208, kReverse}), 1), kDecoded);
    EXPECT_EQ(SavedTiff(reversed.path()).number(266), 2U);
    EXPECT_EQ(SavedTiff(reversed.path()).lines(), dib.lines());
    const TempFile normal;
    ASSERT_EQ(saveAsking(normal.path(), dib, presses({208, kNormal}), 2), kDecoded);
    EXPECT_EQ(SavedTiff(normal.path()).number(266), 1U);
}

// A disabled button takes no click, but a program can send the message that it would send.
TEST(SaveDialog, ChosenCodesFallBackWhenTheColoursDoNotTakeThem) {
    const auto send = [](HWND dialog, int control) {
        SendMessageA(dialog, WM_COMMAND, static_cast<WPARAM>(control), 0);
    };
    const TempFile file;
    EXPECT_EQ(saveAsking(file.path(), PackedDib(20, 5, 8),
                         [&](HWND dialog) {
                             press(dialog, 204);
                             send(dialog, kMonochrome);
                             EXPECT_EQ(checkedIn(dialog), (Buttons{201, kMonochrome, kNormal}));
                             EXPECT_TRUE(isEnabled(dialog, 208));
                             EXPECT_FALSE(isEnabled(dialog, 204));
                             press(dialog, 208);
                             send(dialog, kGreyscale);
                             EXPECT_EQ(checkedIn(dialog), (Buttons{201, kGreyscale, kNormal}));
                             EXPECT_FALSE(isEnabled(dialog, 205));
                             EXPECT_TRUE(isEnabled(dialog, 204));
                             send(dialog, kMonochrome);
                             press(dialog, 205);
                             send(dialog, kPalette);
                             EXPECT_EQ(checkedIn(dialog), (Buttons{201, kPalette, kNormal}));
                             press(dialog, 203);
                             send(dialog, kMonochrome);
                             EXPECT_TRUE(isChecked(dialog, 203)) << "LZW takes all colours";
                             press(dialog, 208);
                             press(dialog, IDOK);
                         }),
              failedWith(VELLUM_BAD_COLOR_FORMAT));
    EXPECT_FALSE(readFile(file.path()));
}

TEST(SaveDialog, OtherNumbersAndNotificationsDoNothing) {
    const TempFile file;
    saveAsking(file.path(), PackedDib(20, 5, 8), [](HWND dialog) {
        const Buttons before = checkedIn(dialog);
        for (const WPARAM wParam : {WPARAM{200}, WPARAM{210}, WPARAM{252}, WPARAM{3}, MAKEWPARAM(203, BN_DBLCLK)}) {
            SendMessageA(dialog, WM_COMMAND, wParam, 0);
            EXPECT_EQ(checkedIn(dialog), before);
        }
        press(dialog, IDCANCEL);
    });
}

} // namespace
