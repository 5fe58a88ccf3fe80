// Saving packed DIBs: the lines of the file, what is refused, and adding to a file that is there.
#include "support/coded_tiff.h"
#include "support/faults.h"
#include "write/save_calls.h"

#include <gtest/gtest.h>

namespace {

using namespace vellum::test;

// ---------------------------------------------------------------- what is stored

TEST(SaveDib, EveryCodeStoresThePictureOfEveryDepth) {
    for (const LONG code : kEveryCode) {
        for (const WORD bits : {WORD{1}, WORD{4}, WORD{8}, WORD{24}}) {
            if (isCcitt(code) && bits != 1) {
                continue;
            }
            for (const LONG width : {1, 3, 8, 17, 100}) {
                SCOPED_TRACE(std::to_string(code) + ", " + std::to_string(bits) + " bits, width " +
                             std::to_string(width));
                const TempFile file;
                const PackedDib dib(width, 7, bits);
                ASSERT_EQ(save(file.path(), dib, code), kDecoded);
                const SavedTiff saved(file.path());
                ASSERT_TRUE(saved);
                EXPECT_EQ(saved.number(256), static_cast<DWORD>(width));
                EXPECT_EQ(saved.number(257), 7U);
                EXPECT_EQ(saved.lines(), dib.lines());
            }
        }
    }
}

TEST(SaveDib, ABilevelPictureIsBlackIsZeroWhenItsFirstColourIsBlack) {
    struct Case {
        RGBQUAD first;
        DWORD photometric;
    };
    constexpr Case kCases[] = {
        {kBlackQuad, 1}, {kWhiteQuad, 0}, {quad(0, 0, 1), 0}, {quad(1, 0, 0), 0}, {quad(0, 1, 0), 0}};
    for (const Case &c : kCases) {
        for (const LONG code : kEveryCode) {
            const TempFile file;
            const PackedDib dib(20, 5, 1, {c.first, kWhiteQuad});
            ASSERT_EQ(save(file.path(), dib, code), kDecoded);
            const SavedTiff saved(file.path());
            EXPECT_EQ(saved.number(262), c.photometric) << code;
            EXPECT_EQ(saved.lines(), dib.lines()) << "the pixels are stored as they are";
        }
    }
}

TEST(SaveDib, TheCallersFillOrderIsStoredAndTheShortFormsTake1) {
    const PackedDib dib(20, 5, 1);
    for (const LONG fillOrder : {1, 2}) {
        const TempFile file;
        ASSERT_EQ(save(file.path(), dib, VELLUM_SAVE_PACKBITS, fillOrder), kDecoded);
        const SavedTiff saved(file.path());
        EXPECT_EQ(saved.number(266), static_cast<DWORD>(fillOrder));
        EXPECT_EQ(saved.lines(), dib.lines());
    }
    const DibBlock block(dib);
    for (auto *function : {&SaveDIBInTiffFile, &SaveDIBInTiffFormat}) {
        const TempFile file;
        ASSERT_EQ(function(file.path(), block.get(), VELLUM_SAVE_LZW, 0), 1U);
        EXPECT_EQ(SavedTiff(file.path()).number(266), 1U);
        EXPECT_EQ(SavedTiff(file.path()).lines(), dib.lines());
    }
}

TEST(SaveDib, ADibOfItsOwnLoaderComesBackAsItWas) {
    for (const WORD bits : {WORD{1}, WORD{4}, WORD{8}, WORD{24}}) {
        const TempFile file;
        const PackedDib dib(21, 6, bits);
        ASSERT_EQ(save(file.path(), dib, VELLUM_SAVE_LZW), kDecoded);
        const HGLOBAL loaded = LoadTiffIntoDIB(file.path(), 0, 0);
        ASSERT_NE(loaded, nullptr);
        const TempFile again;
        EXPECT_EQ(SaveDIBInTiffFile(again.path(), loaded, VELLUM_SAVE_PACKBITS, 0), 1U);
        GlobalFree(loaded);
        EXPECT_EQ(SavedTiff(again.path()).lines(), dib.lines());
        EXPECT_EQ(SavedTiff(again.path()).numbers(320), SavedTiff(file.path()).numbers(320));
        EXPECT_EQ(SavedTiff(again.path()).numbers(262), SavedTiff(file.path()).numbers(262));
    }
}

TEST(SaveDib, SidesAbove65535AreStoredWhole) {
    const TempFile wide;
    const PackedDib wideDib(70001, 2, 1);
    ASSERT_EQ(save(wide.path(), wideDib, VELLUM_SAVE_PACKBITS), kDecoded);
    EXPECT_EQ(SavedTiff(wide.path()).number(256), 70001U);
    EXPECT_EQ(SavedTiff(wide.path()).lines(), wideDib.lines());
    for (const LONG code : {VELLUM_SAVE_GROUP4, VELLUM_SAVE_PACKBITS}) {
        const TempFile tall;
        const PackedDib tallDib(3, 70001, 1);
        ASSERT_EQ(save(tall.path(), tallDib, code), kDecoded);
        const SavedTiff saved(tall.path());
        EXPECT_EQ(saved.number(257), 70001U);
        EXPECT_EQ(saved.lines(), tallDib.lines());
        EXPECT_EQ(saved.shape(273).count, code == VELLUM_SAVE_GROUP4 ? 1U : 9U);
    }
}

// ---------------------------------------------------------------- files that are there

TEST(SaveDib, TwoSavesMakeTwoPages) {
    const TempFile file;
    PackedDib first(20, 5, 1);
    PackedDib second(9, 4, 24);
    ASSERT_EQ(save(file.path(), first, VELLUM_SAVE_GROUP4), kDecoded);
    ASSERT_EQ(save(file.path(), second, VELLUM_SAVE_LZW_DIFFERENCING), kDecoded);
    EXPECT_EQ(SavedTiff(file.path()).pages(), 2);
    EXPECT_EQ(SavedTiff(file.path(), 0).lines(), first.lines());
    EXPECT_EQ(SavedTiff(file.path(), 1).lines(), second.lines());
}

TEST(SaveDib, ANewFileHasIntelsOrderAndAnOldOneKeepsItsOwn) {
    const PackedDib dib(20, 5, 8);
    const TempFile fresh;
    ASSERT_EQ(save(fresh.path(), dib, VELLUM_SAVE_LZW), kDecoded);
    EXPECT_EQ(SavedTiff(fresh.path()).byteOrder(), VELLUM_BYTE_ORDER_II);

    const CodedPage page{.width = 8, .height = 2, .bits = 8, .key = VELLUM_KEY_NONE};
    const TempFile motorola(codedTiff(page, {Bytes(16, BYTE{9})}, tiff::kMM));
    ASSERT_EQ(save(motorola.path(), dib, VELLUM_SAVE_LZW), kDecoded);
    const SavedTiff saved(motorola.path(), 1);
    EXPECT_EQ(saved.byteOrder(), VELLUM_BYTE_ORDER_MM);
    EXPECT_EQ(saved.pages(), 2);
    EXPECT_EQ(saved.lines(), dib.lines());
    EXPECT_EQ(SavedTiff(motorola.path(), 0).lines(), Bytes(16, BYTE{9}));
}

TEST(SaveDib, AFileThatIsNoTiffIsError2AndStaysAsItIs) {
    const Bytes text = {'n', 'o', ' ', 't', 'i', 'f', 'f', '!', '!'};
    const TempFile file(text);
    EXPECT_EQ(save(file.path(), PackedDib(20, 5, 1), VELLUM_SAVE_LZW), failedWith(VELLUM_BAD_OPEN_MODE));
    EXPECT_EQ(readFile(file.path()), text);
}

TEST(SaveDib, APathThatIsTooLongOrNoneIsError2) {
    const std::string path(150, 'x');
    EXPECT_EQ(save(path.c_str(), PackedDib(20, 5, 1), VELLUM_SAVE_LZW), failedWith(VELLUM_BAD_OPEN_MODE));
    EXPECT_EQ(save(nullptr, PackedDib(20, 5, 1), VELLUM_SAVE_LZW), failedWith(VELLUM_BAD_OPEN_MODE));
}

TEST(SaveDib, AFolderThatIsNotThereIsAnIoError) {
    const std::string path = tempFolder() + "/no such folder/a.tif";
    EXPECT_EQ(save(path.c_str(), PackedDib(20, 5, 1), VELLUM_SAVE_LZW), failedWith(VELLUM_IO_ERROR));
}

// ---------------------------------------------------------------- what is refused, before anything is written

void expectRefused(const PackedDib &dib, LONG code, DWORD error) {
    const TempFile file;
    EXPECT_EQ(save(file.path(), dib, code), failedWith(error));
    EXPECT_FALSE(readFile(file.path())) << "a file was made";
}

TEST(SaveDib, ACodeThatIsNoneIsError11) {
    for (const LONG code : {210L, 200L, 0L, -1L, 8L, 0x10000L + 201}) {
        SCOPED_TRACE(code);
        expectRefused(PackedDib(20, 5, 1), code, VELLUM_UNKNOWN_COMPRESSION);
    }
}

TEST(SaveDib, CcittCodesAreForOneBitPerPixel) {
    for (const LONG code : kEveryCode) {
        for (const WORD bits : {WORD{4}, WORD{8}, WORD{24}}) {
            if (isCcitt(code)) {
                SCOPED_TRACE(code);
                expectRefused(PackedDib(20, 5, bits), code, VELLUM_BAD_COLOR_FORMAT);
            }
        }
    }
}

TEST(SaveDib, DepthsThatTheLibraryHasNoImagesForAreRefused) {
    expectRefused(PackedDib(20, 5, 16), VELLUM_SAVE_LZW, VELLUM_BAD_COLOR_FORMAT);
    expectRefused(PackedDib(20, 5, 32), VELLUM_SAVE_LZW, VELLUM_BAD_COLOR_FORMAT);
}

TEST(SaveDib, AFillOrderThatIsNoneIsError15) {
    for (const LONG fillOrder : {0, 3, -1}) {
        const TempFile file;
        EXPECT_EQ(save(file.path(), PackedDib(20, 5, 1), VELLUM_SAVE_LZW, fillOrder),
                  failedWith(VELLUM_BAD_FILL_ORDER));
        EXPECT_FALSE(readFile(file.path()));
    }
}

TEST(SaveDib, ABlockThatCannotBeLockedIsError1) {
    const TempFile file;
    SetTiffError(VELLUM_OK);
    EXPECT_EQ(SaveDIBInTiffFile(file.path(), nullptr, VELLUM_SAVE_LZW, 0), 0U);
    EXPECT_EQ(TiffError(), DWORD{VELLUM_NO_MEMORY});
    EXPECT_FALSE(readFile(file.path()));
}

TEST(SaveDib, ABlockThatHoldsLessThanItsHeaderPromisesIsRefused) {
    const Bytes whole = PackedDib(20, 5, 8).bytes();
    for (const std::size_t size :
         {std::size_t{1}, std::size_t{39}, std::size_t{40}, std::size_t{1063}, whole.size() - 1}) {
        const TempFile file;
        const DibBlock cut(Bytes(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size)));
        SetTiffError(VELLUM_OK);
        EXPECT_EQ(SaveDIBInTiffFile(file.path(), cut.get(), VELLUM_SAVE_LZW, 0), 0U) << size;
        EXPECT_EQ(TiffError(), DWORD{VELLUM_BAD_COLOR_FORMAT});
        EXPECT_EQ(lockCount(cut.get()), 0U);
        EXPECT_FALSE(readFile(file.path()));
    }
}

TEST(SaveDib, HeadersThatLieAreRefused) {
    const auto refused = [](auto lie) {
        PackedDib dib(20, 5, 8);
        Bytes bytes = dib.bytes();
        lie(dib.header);
        std::memcpy(bytes.data(), &dib.header, sizeof dib.header);
        const TempFile file;
        const DibBlock block(bytes);
        SetTiffError(VELLUM_OK);
        EXPECT_EQ(SaveDIBInTiffFile(file.path(), block.get(), VELLUM_SAVE_LZW, 0), 0U);
        EXPECT_EQ(TiffError(), DWORD{VELLUM_BAD_COLOR_FORMAT});
        EXPECT_FALSE(readFile(file.path()));
    };
    refused([](BITMAPINFOHEADER &h) { h.biSize = 12; });
    refused([](BITMAPINFOHEADER &h) { h.biSize = 0xFFFFFFF0; });
    refused([](BITMAPINFOHEADER &h) { h.biWidth = 0; });
    refused([](BITMAPINFOHEADER &h) { h.biWidth = -20; });
    refused([](BITMAPINFOHEADER &h) { h.biWidth = 0x7FFFFFFF; });
    refused([](BITMAPINFOHEADER &h) { h.biHeight = 0; });
    refused([](BITMAPINFOHEADER &h) { h.biHeight = -5; });
    refused([](BITMAPINFOHEADER &h) { h.biHeight = 6; });
    refused([](BITMAPINFOHEADER &h) { h.biPlanes = 0; });
    refused([](BITMAPINFOHEADER &h) { h.biPlanes = 2; });
    refused([](BITMAPINFOHEADER &h) { h.biBitCount = 2; });
    refused([](BITMAPINFOHEADER &h) { h.biBitCount = 24; });
    refused([](BITMAPINFOHEADER &h) { h.biCompression = 1; });
    refused([](BITMAPINFOHEADER &h) { h.biClrUsed = 257; });
    refused([](BITMAPINFOHEADER &h) { h.biClrUsed = 0xFFFFFFFF; });
}

// ---------------------------------------------------------------- JPEG

std::vector<RGBQUAD> greys(bool descending) {
    std::vector<RGBQUAD> ramp;
    for (int i = 0; i < 256; ++i) {
        const auto level = static_cast<BYTE>(descending ? 255 - i : i);
        ramp.push_back(quad(level, level, level));
    }
    return ramp;
}

TEST(SaveDibAsJpeg, WithoutTheCompanionModuleAMessageIsShownAndNothingIsWritten) {
    for (const PackedDib &dib :
         {PackedDib(20, 5, 24), PackedDib(20, 5, 8, greys(false)), PackedDib(20, 5, 8, greys(true))}) {
        const CompanionModule none("another module", "JPEGEncoder", nullptr);
        const MessageBoxes boxes;
        const TempFile file;
        EXPECT_EQ(save(file.path(), dib, VELLUM_SAVE_JPEG), kDecoded);
        EXPECT_EQ(boxes.count(), 1);
        EXPECT_EQ(boxes.caption(), "VELLUMSDK");
        EXPECT_FALSE(readFile(file.path()));
    }
}

TEST(SaveDibAsJpeg, OtherPicturesThan24BitsAndGreysAreRefused) {
    const MessageBoxes boxes;
    expectRefused(PackedDib(20, 5, 1), VELLUM_SAVE_JPEG, VELLUM_BAD_COLOR_FORMAT);
    expectRefused(PackedDib(20, 5, 4), VELLUM_SAVE_JPEG, VELLUM_BAD_COLOR_FORMAT);
    expectRefused(PackedDib(20, 5, 8), VELLUM_SAVE_JPEG, VELLUM_BAD_COLOR_FORMAT);
    expectRefused(PackedDib(65536, 1, 24), VELLUM_SAVE_JPEG, VELLUM_BAD_COLOR_FORMAT);
    expectRefused(PackedDib(1, 65536, 24), VELLUM_SAVE_JPEG, VELLUM_BAD_COLOR_FORMAT);
    EXPECT_EQ(boxes.count(), 0);
}

} // namespace
