// Saving device-dependent bitmaps and DIB sections: every pixel must have the colour in the TIFF that it has on the
// screen.
#include "support/faults.h"
#include "support/gdi_calls.h"
#include "write/bitmaps.h"
#include "write/packed_dibs.h"
#include "write/saved_pixels.h"

#include <gtest/gtest.h>

namespace {

using namespace vellum::test;

constexpr LONG kGeneralCodes[] = {VELLUM_SAVE_UNCOMPRESSED, VELLUM_SAVE_PACKBITS, VELLUM_SAVE_LZW,
                                  VELLUM_SAVE_LZW_DIFFERENCING};
constexpr LONG kCcittCodes[] = {VELLUM_SAVE_MODIFIED_HUFFMAN, VELLUM_SAVE_GROUP3_1D, VELLUM_SAVE_GROUP3_2D,
                                VELLUM_SAVE_GROUP4};

// Saves, and sees that everything is given back.
Outcome save(const char *path, HBITMAP bitmap, LONG code, LONG fillOrder = 1) {
    const HCURSOR arrow = LoadCursor(nullptr, IDC_ARROW);
    const HCURSOR before = SetCursor(arrow);
    SetTiffError(VELLUM_NOT_CALS);
    const GdiCalls calls;
    const DWORD result = SaveBitmapInTiffFileExt(path, bitmap, code, 0, fillOrder);
    EXPECT_EQ(calls.counts().objects, 0);
    EXPECT_EQ(calls.counts().contexts, 0);
    EXPECT_EQ(GetCursor(), arrow);
    SetCursor(before);
    return {result, TiffError()};
}

void expectFails(HBITMAP bitmap, LONG code, DWORD error) {
    const MessageBoxes boxes;
    const TempFile file;
    EXPECT_EQ(save(file.path(), bitmap, code), failedWith(error));
    EXPECT_EQ(boxes.count(), 1);
    EXPECT_EQ(boxes.text(), "Saving has failed.");
    EXPECT_EQ(boxes.caption(), "TIFF error");
    EXPECT_EQ(boxes.style(), 48U);
    EXPECT_FALSE(readFile(file.path())) << "a file was made";
}

TEST(SaveBitmap, AMonochromeBitmapIsBlackWhereItIsBlack) {
    for (const int width : {1, 7, 16, 17, 31, 100}) {
        const TestBitmap bitmap = monochromeBitmap(width, 5);
        const Pixels expected = bilevelPixels(width, 5);
        ASSERT_EQ(pixelsOf(bitmap.get()), expected);
        for (const LONG code : kGeneralCodes) {
            const TempFile file;
            ASSERT_EQ(save(file.path(), bitmap.get(), code), kDecoded);
            const SavedTiff saved(file.path());
            EXPECT_EQ(saved.number(262), 3U);
            EXPECT_EQ(saved.numbers(320), (std::vector<DWORD>{0xFF00, 0, 0xFF00, 0, 0xFF00, 0}));
            EXPECT_EQ(pixelsOf(saved), expected) << width << ", code " << code;
        }
        for (const LONG code : kCcittCodes) {
            const TempFile file;
            ASSERT_EQ(save(file.path(), bitmap.get(), code), kDecoded);
            const SavedTiff saved(file.path());
            EXPECT_EQ(saved.number(262), 0U);
            EXPECT_FALSE(saved.has(320));
            EXPECT_EQ(pixelsOf(saved), expected) << width << ", code " << code;
        }
    }
}

TEST(SaveBitmap, ABitmapOfTheScreenIsSavedWith24BitsAndItsColours) {
    for (const int width : {1, 2, 3, 5, 33}) {
        const TestBitmap bitmap = screenBitmap(width, 6);
        const Pixels expected = pixelsOf(bitmap.get());
        ASSERT_EQ(expected[0], 0xFF0000U) << "red";
        for (const LONG code : kGeneralCodes) {
            const TempFile file;
            ASSERT_EQ(save(file.path(), bitmap.get(), code), kDecoded);
            const SavedTiff saved(file.path());
            EXPECT_EQ(saved.numbers(258), (std::vector<DWORD>{8, 8, 8}));
            EXPECT_EQ(saved.number(262), 2U);
            EXPECT_EQ(pixelsOf(saved), expected) << width << ", code " << code;
        }
    }
}

TEST(SaveBitmap, DibSectionsOfEveryDepthKeepTheirColours) {
    for (const WORD bits : {WORD{1}, WORD{4}, WORD{8}, WORD{16}, WORD{24}, WORD{32}}) {
        std::vector<RGBQUAD> colours = bits <= 8 ? manyColours(std::size_t{1} << bits) : std::vector<RGBQUAD>();
        if (bits == 1) {
            colours = {kBlackQuad, kWhiteQuad};
        }
        const TestBitmap bitmap = sectionBitmap(19, 7, bits, colours);
        const TempFile file;
        ASSERT_EQ(save(file.path(), bitmap.get(), VELLUM_SAVE_LZW), kDecoded) << bits;
        const SavedTiff saved(file.path());
        EXPECT_EQ(saved.numbers(258), bits <= 8 ? std::vector<DWORD>{bits} : (std::vector<DWORD>{8, 8, 8}));
        EXPECT_EQ(saved.number(262), bits <= 8 ? 3U : 2U);
        EXPECT_EQ(pixelsOf(saved), pixelsOf(bitmap.get())) << bits;
    }
}

TEST(SaveBitmap, ABilevelSectionWithWhiteFirstIsNotTurnedOver) {
    const TestBitmap bitmap = sectionBitmap(19, 7, 1, {kWhiteQuad, kBlackQuad});
    for (const LONG code : {VELLUM_SAVE_LZW, VELLUM_SAVE_GROUP4}) {
        const TempFile file;
        ASSERT_EQ(save(file.path(), bitmap.get(), code), kDecoded);
        EXPECT_EQ(pixelsOf(SavedTiff(file.path())), pixelsOf(bitmap.get()));
    }
}

TEST(SaveBitmap, ResolutionIsTheScreens) {
    const TempFile file;
    ASSERT_EQ(save(file.path(), monochromeBitmap(9, 4).get(), VELLUM_SAVE_GROUP4), kDecoded);
    const HDC screen = GetDC(nullptr);
    const auto x = static_cast<DWORD>(GetDeviceCaps(screen, LOGPIXELSX));
    const auto y = static_cast<DWORD>(GetDeviceCaps(screen, LOGPIXELSY));
    ReleaseDC(nullptr, screen);
    const SavedTiff saved(file.path());
    EXPECT_EQ(saved.numbers(282), (std::vector<DWORD>{x, 1}));
    EXPECT_EQ(saved.numbers(283), (std::vector<DWORD>{y, 1}));
    EXPECT_EQ(saved.number(296), 2U);
    EXPECT_EQ(saved.text(305), "VELLUM.DLL from Corvane Software, Inc.Version 7.00");
    EXPECT_EQ(saved.shape(306), (SavedTiff::Shape{2, 1}));
}

TEST(SaveBitmap, TheCallersFillOrderIsStoredAndTheShortFormsTake1) {
    const TestBitmap bitmap = monochromeBitmap(40, 9);
    for (const LONG fillOrder : {1, 2}) {
        const TempFile file;
        ASSERT_EQ(save(file.path(), bitmap.get(), VELLUM_SAVE_GROUP4, fillOrder), kDecoded);
        EXPECT_EQ(SavedTiff(file.path()).number(266), static_cast<DWORD>(fillOrder));
        EXPECT_EQ(pixelsOf(SavedTiff(file.path())), pixelsOf(bitmap.get()));
    }
    for (auto *function : {&SaveBitmapInTiffFile, &SaveBitmapInTiffFormat}) {
        const TempFile file;
        EXPECT_EQ(function(file.path(), bitmap.get(), VELLUM_SAVE_GROUP4, 0), 1U);
        EXPECT_EQ(SavedTiff(file.path()).number(266), 1U);
    }
}

TEST(SaveBitmap, TwoSavesMakeTwoPages) {
    const TempFile file;
    const TestBitmap first = monochromeBitmap(40, 9);
    const TestBitmap second = screenBitmap(5, 5);
    ASSERT_EQ(save(file.path(), first.get(), VELLUM_SAVE_GROUP4), kDecoded);
    ASSERT_EQ(save(file.path(), second.get(), VELLUM_SAVE_LZW), kDecoded);
    EXPECT_EQ(SavedTiff(file.path()).pages(), 2);
    EXPECT_EQ(pixelsOf(SavedTiff(file.path(), 0)), pixelsOf(first.get()));
    EXPECT_EQ(pixelsOf(SavedTiff(file.path(), 1)), pixelsOf(second.get()));
}

TEST(SaveBitmap, NoBitmapAndACodeThatIsNoneAreAPlain0) {
    const MessageBoxes boxes;
    const TempFile file;
    const TestBitmap bitmap = monochromeBitmap(9, 4);
    EXPECT_EQ(save(file.path(), nullptr, VELLUM_SAVE_LZW), failedWith(VELLUM_NOT_CALS)) << "the error is as it was";
    for (const LONG code : {210L, 200L, 0L, -1L}) {
        EXPECT_EQ(save(file.path(), bitmap.get(), code), failedWith(VELLUM_NOT_CALS));
    }
    EXPECT_EQ(boxes.count(), 0);
    EXPECT_FALSE(readFile(file.path()));
}

TEST(SaveBitmap, CcittCodesAreForOneBitPerPixelAndJpegForColours) {
    const TestBitmap coloured = screenBitmap(9, 4);
    for (const LONG code : kCcittCodes) {
        expectFails(coloured.get(), code, VELLUM_BAD_COLOR_FORMAT);
    }
    expectFails(monochromeBitmap(9, 4).get(), VELLUM_SAVE_JPEG, VELLUM_BAD_COLOR_FORMAT);
}

TEST(SaveBitmap, WhatIsNoBitmapFailsWithTheMessageBox) {
    const HPEN pen = CreatePen(PS_SOLID, 1, 0);
    expectFails(reinterpret_cast<HBITMAP>(pen), VELLUM_SAVE_LZW, VELLUM_BAD_COLOR_FORMAT);
    DeleteObject(pen);
    expectFails(reinterpret_cast<HBITMAP>(0x1234), VELLUM_SAVE_LZW, VELLUM_BAD_COLOR_FORMAT);
}

TEST(SaveBitmap, ABitmapThatCannotBeReadFailsWithTheMessageBox) {
    const TestBitmap bitmap = monochromeBitmap(9, 4);
    for (const auto fail : {GdiCalls::Fail::GetDiBits, GdiCalls::Fail::GetDc}) {
        const MessageBoxes boxes;
        const TempFile file;
        const GdiCalls calls(fail);
        EXPECT_EQ(SaveBitmapInTiffFile(file.path(), bitmap.get(), VELLUM_SAVE_LZW, 0), 0U);
        EXPECT_EQ(calls.counts().contexts, 0);
        EXPECT_EQ(boxes.text(), "Saving has failed.");
        EXPECT_FALSE(readFile(file.path()));
    }
}

TEST(SaveBitmap, AFileThatIsNoTiffIsError2AndTheMessageBox) {
    const MessageBoxes boxes;
    const TempFile file(Bytes{'n', 'o', ' ', 't', 'i', 'f', 'f', '!', '!'});
    EXPECT_EQ(save(file.path(), monochromeBitmap(9, 4).get(), VELLUM_SAVE_LZW), failedWith(VELLUM_BAD_OPEN_MODE));
    EXPECT_EQ(boxes.count(), 1);
}

TEST(SaveBitmap, WithoutMemoryTheSaveFailsAndGivesEverythingBack) {
    const TestBitmap bitmap = sectionBitmap(9, 4, 8, manyColours(256));
    for (const Call call : {Call::Allocate, Call::Reallocate}) {
        bool happened = true;
        for (long n = 0; happened; ++n) {
            ASSERT_LT(n, 1000);
            SCOPED_TRACE(n);
            const MessageBoxes boxes;
            const TempFile file;
            Outcome outcome;
            {
                const FailNth fault(call, n);
                outcome = save(file.path(), bitmap.get(), VELLUM_SAVE_LZW);
                happened = fault.happened();
            }
            EXPECT_EQ(outcome.result, happened ? 0U : 1U);
            EXPECT_EQ(boxes.count(), happened ? 1 : 0);
            if (happened) {
                EXPECT_TRUE(outcome.error == VELLUM_NO_MEMORY || outcome.error == VELLUM_BAD_OPEN_MODE)
                    << outcome.error;
                EXPECT_EQ(SavedTiff(file.path()).pages(), 0);
            }
        }
    }
}

// ---------------------------------------------------------------- headerless code streams

struct Mode {
    LONG mode;
    DWORD key;
};
constexpr Mode kModes[] = {{VELLUM_CCITT_GROUP3_1D, VELLUM_KEY_GROUP3_1D},
                           {VELLUM_CCITT_MODIFIED_HUFFMAN, VELLUM_KEY_MODIFIED_HUFFMAN},
                           {VELLUM_CCITT_GROUP3_2D, VELLUM_KEY_GROUP3_2D},
                           {VELLUM_CCITT_GROUP4, VELLUM_KEY_GROUP4},
                           {VELLUM_CCITT_UNCOMPRESSED, VELLUM_KEY_NONE}};

// The pixels of a code stream, least significant bit first, taken as GetDIBits delivers them: 1 for white.
Pixels pixelsOfStream(const char *path, int width, int height, DWORD key) {
    const RawFile file{std::string(path)};
    LineLog log;
    const RawCode code{
        .width = static_cast<DWORD>(width), .height = static_cast<DWORD>(height), .key = key, .fillOrder = 2};
    if (decodeRawInto(log, file.get(), code) != kDecoded) {
        return {};
    }
    Pixels pixels;
    const std::size_t lineBytes = static_cast<std::size_t>(width + 7) / 8;
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            const BYTE byte = log.data.at(static_cast<std::size_t>(y) * lineBytes + static_cast<std::size_t>(x) / 8);
            pixels.push_back((byte >> (7 - x % 8) & 1) != 0 ? kWhitePixel : kBlackPixel);
        }
    }
    return pixels;
}

// By design: no complement, unlike a TIFF. What is white on the screen is a black run of the code.
TEST(SaveCcittFile, EveryModeWritesTheBitmapsOwnBitsInReversedBytes) {
    for (const int width : {1, 16, 41}) {
        const TestBitmap bitmap = monochromeBitmap(width, 9);
        for (const Mode &mode : kModes) {
            const TempFile file;
            const GdiCalls calls;
            EXPECT_EQ(SaveBitmapInCcittFile(file.path(), bitmap.get(), mode.mode), 1U);
            EXPECT_EQ(calls.counts().contexts, 0);
            EXPECT_EQ(calls.counts().objects, 0);
            EXPECT_EQ(TiffError(), DWORD{VELLUM_OK});
            EXPECT_EQ(pixelsOfStream(file.path(), width, 9, mode.key), pixelsOf(bitmap.get())) << mode.mode;
        }
    }
}

TEST(SaveCcittFile, ThereIsNothingButTheCode) {
    const TestBitmap bitmap = monochromeBitmap(16, 2);
    const TempFile file(Bytes(100, BYTE{1}));
    ASSERT_EQ(SaveBitmapInCcittFile(file.path(), bitmap.get(), VELLUM_CCITT_UNCOMPRESSED), 1U);
    EXPECT_EQ(readFile(file.path())->size(), 4U) << "what was in the file before is gone";
}

TEST(SaveCcittFile, AColouredBitmapIsSavedInBlackAndWhite) {
    const TestBitmap bitmap = screenBitmap(8, 1);
    paint(bitmap.get(), 8, {0, 0xFFFFFF, 0, 0, 0xFFFFFF, 0xFFFFFF, 0, 0xFFFFFF});
    const TempFile file;
    ASSERT_EQ(SaveBitmapInCcittFile(file.path(), bitmap.get(), VELLUM_CCITT_GROUP4), 1U);
    EXPECT_EQ(pixelsOfStream(file.path(), 8, 1, VELLUM_KEY_GROUP4), pixelsOf(bitmap.get()));
}

TEST(SaveCcittFile, AnyOtherModeAndNoBitmapAre0AtOnce) {
    const MessageBoxes boxes;
    const TestBitmap bitmap = monochromeBitmap(16, 2);
    const TempFile file;
    SetTiffError(VELLUM_NOT_CALS);
    for (const LONG mode : {4, 10, 0, -1, 208}) {
        EXPECT_EQ(SaveBitmapInCcittFile(file.path(), bitmap.get(), mode), 0U);
    }
    EXPECT_EQ(SaveBitmapInCcittFile(file.path(), nullptr, VELLUM_CCITT_GROUP4), 0U);
    EXPECT_EQ(TiffError(), DWORD{VELLUM_NOT_CALS});
    EXPECT_EQ(boxes.count(), 0);
    EXPECT_FALSE(readFile(file.path()));
}

TEST(SaveCcittFile, FailuresShowTheMessageBox) {
    const TestBitmap bitmap = monochromeBitmap(16, 2);
    const auto expectFails = [](const char *path, HBITMAP source, DWORD error) {
        const MessageBoxes boxes;
        EXPECT_EQ(SaveBitmapInCcittFile(path, source, VELLUM_CCITT_GROUP4), 0U);
        EXPECT_EQ(TiffError(), error);
        EXPECT_EQ(boxes.count(), 1);
        EXPECT_EQ(boxes.text(), "Saving has failed.");
        EXPECT_EQ(boxes.caption(), "TIFF error");
        EXPECT_EQ(boxes.style(), 48U);
    };
    const std::string noFolder = tempFolder() + "/no such folder/a.g4";
    expectFails(noFolder.c_str(), bitmap.get(), VELLUM_IO_ERROR);
    expectFails(nullptr, bitmap.get(), VELLUM_IO_ERROR);
    const TempFile file;
    expectFails(file.path(), reinterpret_cast<HBITMAP>(0x1234), VELLUM_BAD_COLOR_FORMAT);
    const FailNth fault(Call::Write, 0);
    expectFails(file.path(), bitmap.get(), VELLUM_IO_ERROR);
}

} // namespace
