// LoadTiffIntoDIB: where every byte of a picture lands, and which errors leave a picture.
#include "display/pictures.h"
#include "support/faults.h"
#include "support/jpeg_tiff.h"

#include <gtest/gtest.h>

#include <memory>

namespace {

using namespace vellum::test;

// Loads with an error pending, so that a load that leaves the error alone is found out.
std::unique_ptr<Dib> load(const char *path, DWORD index = 0) {
    SetTiffError(VELLUM_NOT_CALS);
    return std::make_unique<Dib>(LoadTiffIntoDIB(path, index, 0));
}
std::unique_ptr<Dib> loadBytes(const Bytes &tiff, DWORD index = 0) {
    const TempFile file(tiff);
    return load(file.path(), index);
}

void expectHolds(const Dib &dib, const Picture &picture, DWORD rows) {
    ASSERT_TRUE(dib);
    for (DWORD row = 0; row < picture.page.height; ++row) {
        EXPECT_EQ(dib.row(row, picture.stride()), row < rows ? picture.dibRow(row) : Bytes(picture.stride()))
            << "row " << row;
    }
}

TEST(LoadDib, AOneBitImageOfWidth1HasRowsOf4Bytes) {
    const Picture narrow = picture(1, 3, {1, 1});
    const auto dib = loadBytes(narrow.tiff());
    ASSERT_TRUE(*dib);
    ASSERT_EQ(dib->header().biSizeImage, 12U);
    const Bytes rows(dib->bytes().end() - 12, dib->bytes().end());
    EXPECT_EQ(rows, (Bytes{narrow.packed[2], 0, 0, 0, narrow.packed[1], 0, 0, 0, narrow.packed[0], 0, 0, 0}));
}

TEST(LoadDib, RowsOfEveryDepthAndWidthArePaddedTo32Bits) {
    const DWORD widths[] = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 15, 16, 17, 31, 32, 33, 63, 65};
    for (const Depth &depth : kDepths) {
        for (const DWORD width : widths) {
            SCOPED_TRACE(std::to_string(depth.bitsPerPixel()) + " bits, width " + std::to_string(width));
            const Picture original = picture(width, 3, depth);
            const auto dib = loadBytes(original.tiff());
            EXPECT_EQ(TiffError(), DWORD{VELLUM_OK});
            EXPECT_EQ(dib->header().biBitCount, depth.bitsPerPixel());
            EXPECT_EQ(dib->header().biClrUsed, depth.samples == 3 ? 0U : 1U << depth.bits);
            EXPECT_EQ(dib->header().biSizeImage, 3 * original.stride());
            EXPECT_EQ(dib->bytes().size(), dib->bitsOffset() + 3 * original.stride());
            expectHolds(*dib, original, 3);
        }
    }
}

TEST(LoadDib, TheFirstPixel123OfA24BitImageIsStoredAs321) {
    Picture colours = picture(3, 2, {8, 3});
    colours.packed = {1, 2, 3, 4, 5, 6, 7, 8, 9, 11, 12, 13, 14, 15, 16, 17, 18, 19};
    const auto dib = loadBytes(colours.tiff());
    ASSERT_TRUE(*dib);
    EXPECT_EQ(dib->row(0, 12), (Bytes{3, 2, 1, 6, 5, 4, 9, 8, 7, 0, 0, 0}));
    EXPECT_EQ(dib->row(1, 12), (Bytes{13, 12, 11, 16, 15, 14, 19, 18, 17, 0, 0, 0}));
}

TEST(LoadDib, HeaderAndColourTableAreThoseOfTheImage) {
    for (const Depth &depth : kDepths) {
        SCOPED_TRACE(depth.bitsPerPixel());
        const Bytes tiff = picture(9, 2, depth).tiff();
        const OpenedTiff opened(tiff);
        ASSERT_TRUE(registerImage(opened.get(), 0));
        const Dib colours(GetTiffRGBQuad(opened.get(), 0));
        const auto dib = loadBytes(tiff);
        ASSERT_TRUE(*dib);
        Bytes head(dib->bytes().begin(), dib->bytes().begin() + static_cast<std::ptrdiff_t>(dib->bitsOffset()));
        std::fill_n(head.begin() + offsetof(BITMAPINFOHEADER, biSizeImage), 4, BYTE{0});
        EXPECT_EQ(head, colours.bytes());
    }
}

TEST(LoadDib, AnyImageOfAFileIsLoadedByItsIndex) {
    tiff::Builder file;
    const Picture first = picture(5, 2, {8, 1});
    const Picture second = picture(11, 4, {1, 1});
    file.page(entriesOf(first.page), {first.packed});
    file.page(entriesOf(second.page), {second.packed});
    expectHolds(*loadBytes(file.bytes(), 1), second, 4);
    expectHolds(*loadBytes(file.bytes(), 0), first, 2);
    EXPECT_FALSE(*loadBytes(file.bytes(), 2)) << "an index of the table, but of no image";
    EXPECT_EQ(TiffError(), DWORD{VELLUM_IO_ERROR});
    EXPECT_FALSE(*loadBytes(file.bytes(), 1000));
    EXPECT_EQ(TiffError(), DWORD{VELLUM_INDEX_OUT_OF_RANGE});
    EXPECT_FALSE(*loadBytes(file.bytes(), 0xFFFFFFFF));
    EXPECT_EQ(TiffError(), DWORD{VELLUM_INDEX_OUT_OF_RANGE});
}

TEST(LoadDib, StripsThatEndEarlyLeaveThePictureWithError5AndTheOtherRowsZero) {
    for (const Depth &depth : kDepths) {
        SCOPED_TRACE(depth.bitsPerPixel());
        const Picture original = picture(13, 6, depth);
        Bytes code = original.packed;
        code.resize(4 * original.lineBytes() + original.lineBytes() / 2);
        const auto dib = loadBytes(codedTiffCodeLast(original.page, code));
        EXPECT_EQ(TiffError(), DWORD{VELLUM_UNEXPECTED_END});
        expectHolds(*dib, original, 4);
    }
}

// Writers that know blank strips store them once.
TEST(LoadDib, StripsThatShareTheirCodeAllLoadRight) {
    const Picture strip = picture(3, 2, {8, 3});
    CodedPage page = strip.page;
    page.height = 6;
    page.rowsPerStrip = 2;
    tiff::Builder file;
    const std::uint32_t at = file.append(strip.packed);
    std::vector<tiff::Entry> entries = entriesOf(page);
    entries.insert(std::find_if(entries.begin(), entries.end(), [](const tiff::Entry &e) { return e.tag > 273; }),
                   tiff::longs(273, {at, at, at}));
    file.directory(entries);
    const auto dib = loadBytes(file.bytes());
    EXPECT_EQ(TiffError(), DWORD{VELLUM_OK});
    for (DWORD row = 0; row < 6; ++row) {
        EXPECT_EQ(dib->row(row, strip.stride()), strip.dibRow(row % 2)) << "row " << row;
    }
}

TEST(LoadDib, AnEofbBeforeTheLastRowLeavesThePictureWithError20) {
    Picture original = picture(16, 8, {1, 1});
    original.page.key = VELLUM_KEY_GROUP4;
    Bytes upper(original.packed.begin(), original.packed.begin() + 6);
    const auto dib = loadBytes(codedTiff(original.page, {encodeStrip(original.page, upper)}));
    EXPECT_EQ(TiffError(), DWORD{VELLUM_EOFB_UNEXPECTED});
    expectHolds(*dib, original, 3);
}

TEST(LoadDib, DamagedCodeLeavesNothing) {
    CodedPage page{.width = 8, .height = 2, .bits = 8, .key = VELLUM_KEY_LZW};
    const Bytes notDefined = LzwCodes().code(kLzwClear, 9).code(65, 9).code(300, 9).bytes();
    EXPECT_FALSE(*loadBytes(codedTiff(page, {notDefined})));
    EXPECT_EQ(TiffError(), DWORD{VELLUM_CODE_ERROR});
}

TEST(LoadDib, EveryReasonForNoPictureHasItsError) {
    const auto expectError = [](const std::vector<tiff::Entry> &entries, DWORD error) {
        tiff::Builder file;
        file.directory(entries);
        EXPECT_FALSE(*loadBytes(file.bytes()));
        EXPECT_EQ(TiffError(), error);
    };
    const tiff::Entry width = tiff::shorts(256, {8});
    const tiff::Entry height = tiff::shorts(257, {1});
    const tiff::Entry offsets = tiff::longs(273, {8});
    expectError({height, offsets}, VELLUM_TAG_MISSING);
    expectError({width, offsets}, VELLUM_TAG_MISSING);
    expectError({width, height}, VELLUM_TAG_MISSING);
    expectError({width, height, tiff::shorts(258, {16}), offsets}, VELLUM_BAD_COLOR_FORMAT);
    expectError({width, height, tiff::shorts(258, {8}), tiff::shorts(262, {3}), offsets}, VELLUM_TAG_MISSING);
    expectError({width, height, tiff::shorts(259, {7}), offsets}, VELLUM_UNKNOWN_COMPRESSION);
    expectError({width, height, tiff::shorts(266, {3}), offsets}, VELLUM_BAD_FILL_ORDER);
    expectError({width, height, tiff::longs(273, {0x7FFFFFF0})}, VELLUM_IO_ERROR);
}

TEST(LoadDib, FilesThatDoNotOpenHaveTheErrorOfTheOpenCall) {
    EXPECT_FALSE(*load("no such file.tif"));
    EXPECT_EQ(TiffError(), DWORD{VELLUM_IO_ERROR});
    EXPECT_FALSE(*load(std::string(150, 'x').c_str()));
    EXPECT_EQ(TiffError(), DWORD{VELLUM_PATH_TOO_LONG});
    EXPECT_FALSE(*loadBytes(Bytes(64, BYTE{'x'})));
    EXPECT_EQ(TiffError(), DWORD{VELLUM_BAD_BYTE_ORDER});
    EXPECT_FALSE(*loadBytes({0x49, 0x49, 43, 0, 8, 0, 0, 0, 0, 0, 0, 0, 0, 0}));
    EXPECT_EQ(TiffError(), DWORD{VELLUM_NOT_TIFF});
}

TEST(LoadDib, TheFileStaysAsItWas) {
    const Bytes tiff = picture(10, 3, {8, 3}).tiff();
    const TempFile file(tiff);
    EXPECT_TRUE(*load(file.path()));
    EXPECT_EQ(readFile(file.path()), tiff);
}

// A companion module ends its runs as a test asks: the loaders know nothing but the error number.
DWORD endsWith = 0;

DWORD VELLUMAPI endsAfterOneLine(CodecState *state) {
    DWORD result = InitDecodeBuffers(state);
    if (result == 0) {
        std::fill_n(state->lineBuffer, state->bytesPerLine, BYTE{0x5A});
        result = FlushDataBuffer(state);
    }
    return result == 0 ? endsWith : result;
}

TEST(LoadDib, OnlyErrors5And19And20LeavePartOfThePicture) {
    const TempFile file(jpegTiff({.width = 20, .height = 3}));
    const CompanionModule module(kCompanionName, kCompanionEntry, asEntry(&endsAfterOneLine));
    for (DWORD error = 0; error <= 22; ++error) {
        SCOPED_TRACE(error);
        endsWith = error;
        const auto dib = load(file.path());
        EXPECT_EQ(static_cast<bool>(*dib), error == 0 || error == 5 || error == 19 || error == 20);
        EXPECT_EQ(TiffError(), error);
        if (*dib) {
            EXPECT_EQ(dib->row(0, 20), Bytes(20, BYTE{0x5A}));
            EXPECT_EQ(dib->row(1, 20), Bytes(20));
        }
    }
    EXPECT_EQ(module.loads(), 0);
}

TEST(LoadDib, AJpegImageWithoutItsModuleIsAPictureOfZeros) {
    const TempFile file(jpegTiff({}));
    const MessageBoxes boxes;
    const auto dib = load(file.path());
    EXPECT_EQ(TiffError(), DWORD{VELLUM_OK});
    ASSERT_TRUE(*dib);
    EXPECT_EQ(dib->row(0, 20), Bytes(20));
    EXPECT_EQ(boxes.count(), 1);
}

} // namespace
