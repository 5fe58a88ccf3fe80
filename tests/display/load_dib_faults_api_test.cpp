// LoadTiffIntoDIB where the system lets it down, under the wait cursor, and asked for more than a file can hold.
#include "display/pictures.h"
#include "hostile/orderly.h"
#include "support/faults.h"
#include "support/jpeg_tiff.h"

#include <gtest/gtest.h>

#ifdef VELLUM_NATIVE
#include "native/shim.h"
#endif

namespace {

using namespace vellum::test;

HCURSOR shownCursor() {
#ifdef VELLUM_NATIVE
    return vellum::shim::state.cursor;
#else
    return GetCursor();
#endif
}

HCURSOR cursorDuringDecode = nullptr;
DWORD decodeResult = 0;

DWORD VELLUMAPI notesTheCursor(CodecState *) {
    cursorDuringDecode = shownCursor();
    return decodeResult;
}

TEST(LoadDibCursor, IsTheWaitCursorWhileTheImageLoadsAndThePreviousOneAfterwards) {
    const HCURSOR arrow = LoadCursor(nullptr, IDC_ARROW);
    const HCURSOR before = SetCursor(arrow);
    const TempFile file(jpegTiff({}));
    const CompanionModule module(kCompanionName, kCompanionEntry, asEntry(&notesTheCursor));
    for (const DWORD result : {DWORD{VELLUM_OK}, DWORD{VELLUM_CODE_ERROR}, DWORD{VELLUM_UNEXPECTED_END}}) {
        cursorDuringDecode = nullptr;
        decodeResult = result;
        const Dib dib(LoadTiffIntoDIB(file.path(), 0, 0));
        EXPECT_EQ(cursorDuringDecode, LoadCursor(nullptr, IDC_WAIT));
        EXPECT_EQ(shownCursor(), arrow);
    }
    const TempFile noColours(jpegTiff({.left = {256}}));
    EXPECT_EQ(LoadTiffIntoDIB(noColours.path(), 0, 0), nullptr);
    EXPECT_EQ(shownCursor(), arrow);
    SetCursor(before);
}

// Fails every call of a kind in turn; natively the test program counts what is left behind after each test. Result: how
// many calls a load makes.
template <class Check>
long failEach(Call call, const char *path, Check check) {
    constexpr long kEnough = 1000;
    for (long n = 0; n < kEnough; ++n) {
        SCOPED_TRACE(n);
        SetTiffError(VELLUM_OK);
        HGLOBAL loaded = nullptr;
        bool happened = false;
        {
            const FailNth fault(call, n);
            loaded = LoadTiffIntoDIB(path, 0, 0);
            happened = fault.happened();
        }
        const DWORD error = TiffError();
        const Dib dib(loaded);
        if (!happened) {
            EXPECT_TRUE(dib);
            EXPECT_EQ(error, DWORD{VELLUM_OK});
            return n;
        }
        check(dib, error);
    }
    ADD_FAILURE() << "the load never ends";
    return kEnough;
}

TEST(LoadDibFaults, WithoutMemoryThereIsNoPictureAndError1) {
    for (const DWORD key : {DWORD{VELLUM_KEY_NONE}, DWORD{VELLUM_KEY_LZW}, DWORD{VELLUM_KEY_PACKBITS}}) {
        SCOPED_TRACE(keyName(key));
        Picture original = picture(9, 4, {8, 3}, 2);
        original.page.key = key;
        const TempFile file(original.tiff());
        const auto refused = [](const Dib &dib, DWORD error) {
            EXPECT_FALSE(dib);
            EXPECT_EQ(error, DWORD{VELLUM_NO_MEMORY});
        };
        EXPECT_GE(failEach(Call::Allocate, file.path(), refused), 4);
        EXPECT_GE(failEach(Call::Reallocate, file.path(), refused), 1);
    }
}

TEST(LoadDibFaults, AFileThatCannotBeOpenedAnyMoreIsAnIoError) {
    const TempFile file(picture(9, 4, {8, 3}, 2).tiff());
    const long opens = failEach(Call::Open, file.path(), [](const Dib &dib, DWORD error) {
        EXPECT_FALSE(dib);
        EXPECT_EQ(error, DWORD{VELLUM_IO_ERROR});
    });
    EXPECT_EQ(opens, 3) << "to look for images, for the image's tags, and for its code";
}

// Some seeks only bring a position back that nothing needs afterwards.
TEST(LoadDibFaults, APositionThatCannotBeReachedIsAnIoErrorOrDoesNotMatter) {
    const Picture original = picture(9, 4, {8, 3}, 2);
    const TempFile file(original.tiff());
    int refused = 0;
    const long seeks = failEach(Call::Seek, file.path(), [&](const Dib &dib, DWORD error) {
        if (!dib) {
            EXPECT_EQ(error, DWORD{VELLUM_IO_ERROR});
            ++refused;
            return;
        }
        EXPECT_EQ(error, DWORD{VELLUM_OK});
        for (DWORD row = 0; row < 4; ++row) {
            EXPECT_EQ(dib.row(row, original.stride()), original.dibRow(row)) << row;
        }
    });
    EXPECT_GE(refused, 4) << "of " << seeks;
}

TEST(LoadDibFaults, ReadsThatFailNeverLookLikeSuccess) {
    const TempFile file(picture(9, 4, {8, 3}, 2).tiff());
    const long reads = failEach(Call::Read, file.path(), [](const Dib &dib, DWORD error) {
        EXPECT_NE(error, DWORD{VELLUM_OK});
        EXPECT_TRUE(!dib || error == VELLUM_UNEXPECTED_END) << error;
    });
    EXPECT_GE(reads, 2);
}

// ---------------------------------------------------------------- sizes

TEST(LoadDibSizes, ASmallFileThatClaimsAHugePictureIsRefusedForWantOfMemory) {
    for (const Depth &depth : kDepths) {
        for (const DWORD key : {DWORD{VELLUM_KEY_NONE}, DWORD{VELLUM_KEY_LZW}, DWORD{VELLUM_KEY_PACKBITS}}) {
            SCOPED_TRACE(std::string(keyName(key)) + ", " + std::to_string(depth.bitsPerPixel()) + " bits");
            const CodedPage page{
                .width = 65535, .height = 65535, .bits = depth.bits, .samples = depth.samples, .key = key};
            const Bytes tiff = codedTiff(page, {Bytes(600, BYTE{0x55})});
            ASSERT_LE(tiff.size(), 1024U);
            const TempFile file(tiff);
            const PeakMemory memory;
            SetTiffError(VELLUM_OK);
            EXPECT_EQ(LoadTiffIntoDIB(file.path(), 0, 0), nullptr);
            EXPECT_EQ(TiffError(), DWORD{VELLUM_NO_MEMORY});
            EXPECT_LT(memory.bytes(), 1U << 20);
        }
    }
}

// Loads a page whose every strip has the same code; the rows are all alike.
void expectLoads(const CodedPage &page, const Bytes &strip, std::size_t strips, BYTE value) {
    const TempFile file(codedTiff(page, std::vector<Bytes>(strips, strip)));
    SetTiffError(VELLUM_NOT_CALS);
    const HGLOBAL dib = LoadTiffIntoDIB(file.path(), 0, 0);
    EXPECT_EQ(TiffError(), DWORD{VELLUM_OK});
    ASSERT_NE(dib, nullptr);
    BITMAPINFOHEADER header{};
    const auto *bytes = static_cast<const BYTE *>(GlobalLock(dib));
    std::memcpy(&header, bytes, sizeof header);
    EXPECT_GT(header.biSizeImage, 16U << 20) << "not large enough to need a look at the file";
    const BYTE *bits = bytes + sizeof header + header.biClrUsed * sizeof(RGBQUAD);
    EXPECT_TRUE(std::all_of(bits, bits + header.biSizeImage, [value](BYTE byte) { return byte == value; }));
    GlobalUnlock(dib);
    GlobalFree(dib);
}

TEST(LoadDibSizes, LargePicturesInSmallFilesLoadWhenTheirCodeIsThere) {
    // Blank Group 4: a bit a line, the densest code there is.
    const CodedPage blank{.width = 32000, .height = 16000, .key = VELLUM_KEY_GROUP4};
    expectLoads(blank, Bytes(2000, BYTE{0xFF}), 1, 0);

    // Blank one-dimensional lines of 2560-pixel runs.
    const CodedPage white{.width = 25600, .height = 6000, .key = VELLUM_KEY_MODIFIED_HUFFMAN, .rowsPerStrip = 100};
    expectLoads(white, encodeModifiedHuffman(Rows(100, Row(25600))), 60, 0);

    // PackBits of one colour; LZW of one colour, near the longest strings there are.
    const CodedPage packed{.width = 5120, .height = 4000, .bits = 8, .key = VELLUM_KEY_PACKBITS, .rowsPerStrip = 100};
    Bytes runs;
    for (int i = 0; i < 100 * 40; ++i) {
        runs.insert(runs.end(), {0x81, 0x77});
    }
    expectLoads(packed, runs, 40, 0x77);
    const CodedPage lzw{.width = 4096, .height = 4800, .bits = 8, .key = VELLUM_KEY_LZW, .rowsPerStrip = 400};
    expectLoads(lzw, encodeLzw(Bytes(std::size_t{4096} * 400, BYTE{0x42})), 12, 0x42);
}

} // namespace
