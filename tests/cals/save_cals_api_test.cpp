// SaveDIBInCALSFormat: every byte of the file, what is refused before the file is touched, and what fails later.
#include "cals/cals_pictures.h"
#include "support/decode_lines.h"
#include "support/faults.h"
#include "write/packed_dibs.h"

#include <gtest/gtest.h>

namespace {

using namespace vellum::test;

// A packed DIB of a picture, with what a program may have in it.
struct DibOptions {
    std::vector<RGBQUAD> colours = {kWhiteQuad, kBlackQuad};
    LONG pelsPerMeter = 7874;
    DWORD coloursUsed = 2;
    bool complemented = false;
};
Bytes packedDib(const BilevelPicture &picture, const DibOptions &options = {}) {
    BITMAPINFOHEADER header{};
    header.biSize = sizeof header;
    header.biWidth = static_cast<LONG>(picture.width());
    header.biHeight = static_cast<LONG>(picture.height());
    header.biPlanes = 1;
    header.biBitCount = 1;
    header.biXPelsPerMeter = options.pelsPerMeter;
    header.biYPelsPerMeter = 1234; // not looked at
    header.biClrUsed = options.coloursUsed;
    Bytes dib(sizeof header);
    std::memcpy(dib.data(), &header, sizeof header);
    for (const RGBQUAD &colour : options.colours) {
        dib.insert(dib.end(), {colour.rgbBlue, colour.rgbGreen, colour.rgbRed, colour.rgbReserved});
    }
    for (const BYTE byte : picture.dibRows()) {
        dib.push_back(options.complemented ? static_cast<BYTE>(~byte) : byte);
    }
    return dib;
}

struct SaveOptions {
    const CalsNotes *notes = nullptr;
    const LONG *orientation = nullptr;
};
Outcome save(const char *path, const Bytes &dib, const SaveOptions &options = {}) {
    const DibBlock block(dib);
    SetTiffError(VELLUM_STRIP_OUT_OF_RANGE);
    const DWORD result = SaveDIBInCALSFormat(path, block.get(), options.notes, options.orientation, 0);
    EXPECT_EQ(lockCount(block.get()), 0U);
    EXPECT_EQ(blockBytes(block.get()), dib) << "the DIB has changed";
    return {result, TiffError()};
}

// The file that a save makes.
Bytes saved(const Bytes &dib, const SaveOptions &options = {}) {
    const TempFile file;
    EXPECT_EQ(save(file.path(), dib, options), kDecoded);
    return readFile(file.path()).value_or(Bytes());
}

std::string recordOf(const Bytes &file, const std::string &keyword) {
    for (const std::string &record : recordsOf(file)) {
        if (record.starts_with(keyword)) {
            return record.substr(0, record.find_last_not_of(' ') + 1);
        }
    }
    return "(none)";
}

Records savedRecords(const std::string &counts) {
    return {"srcdocid: NONE", "dstdocis: NONE",   "txtfileid: NONE",    "figid: NONE",   "scrgph: NONE", "doccls: NONE",
            "rtype: 1",       "rorient: 090,270", "rpelcnt: " + counts, "rdensty: 0200", "notes: NONE"};
}

TEST(SaveCals, TheFileIsTheHeaderAndTheCodeBehindIt) {
    for (const DWORD width : {1UL, 8UL, 31UL, 32UL, 45UL, 1728UL}) {
        SCOPED_TRACE(width);
        const BilevelPicture picture = bilevelPicture(width, 23, width);
        EXPECT_EQ(saved(packedDib(picture)), calsFile(savedRecords(picture.counts()), picture.code()));
    }
}

TEST(SaveCals, APageOf200DotsPerInchHasTheseRecords) {
    const BilevelPicture page{Rows(2200, Row(1728))};
    const Bytes file = saved(packedDib(page));
    Records expected = savedRecords("001728,002200");
    expected.resize(16);
    for (std::string &record : expected) {
        record = blankPadded(record);
    }
    EXPECT_EQ(recordsOf(file), expected);
}

TEST(SaveCals, WhatIsSavedLoadsAsItWas) {
    const BilevelPicture picture = bilevelPicture(100, 31);
    const TempFile file;
    ASSERT_EQ(save(file.path(), packedDib(picture)), kDecoded);
    const OwnedBlock dib(LoadCALSIntoDIB(file.path(), 0));
    ASSERT_TRUE(dib);
    const Bytes bytes = dib.bytes();
    const Bytes rows = picture.dibRows();
    ASSERT_GE(bytes.size(), 48 + rows.size());
    EXPECT_TRUE(std::equal(rows.begin(), rows.end(), bytes.begin() + 48));
}

TEST(SaveCals, APictureWhoseFirstColourIsBlackMakesTheSameFile) {
    const BilevelPicture picture = bilevelPicture(45, 23);
    EXPECT_EQ(saved(packedDib(picture, {.colours = {kBlackQuad, kWhiteQuad}, .complemented = true})),
              saved(packedDib(picture)));
}

// The second colour is what is stored as black, whatever it is, unless the first one is black altogether.
TEST(SaveCals, OnlyAFirstColourThatIsAllBlackExchangesThePixels) {
    const BilevelPicture picture = bilevelPicture(45, 23);
    const Bytes plain = saved(packedDib(picture));
    for (const RGBQUAD &first : {quad(1, 0, 0), quad(0, 1, 0), quad(0, 0, 1), quad(255, 0, 0)}) {
        EXPECT_EQ(saved(packedDib(picture, {.colours = {first, kBlackQuad}})), plain);
    }
    EXPECT_EQ(saved(packedDib(picture, {.colours = {quad(255, 0, 0), kWhiteQuad}})), plain);
    EXPECT_EQ(saved(packedDib(picture, {.colours = {kBlackQuad, kBlackQuad}, .complemented = true})), plain);
}

TEST(SaveCals, AColourCountOf0StandsForBoth) {
    const BilevelPicture picture = bilevelPicture(45, 23);
    EXPECT_EQ(saved(packedDib(picture, {.coloursUsed = 0})), saved(packedDib(picture)));
}

// By design: 90 and 270 where nobody asks for others.
TEST(SaveCals, TheOrientationIs90And270OrTheCallers) {
    const BilevelPicture picture = bilevelPicture(9, 4);
    EXPECT_EQ(recordOf(saved(packedDib(picture)), "rorient"), "rorient: 090,270");
    const LONG turned[] = {0, 270};
    EXPECT_EQ(recordOf(saved(packedDib(picture), {.orientation = turned}), "rorient"), "rorient: 000,270");
}

TEST(SaveCals, TheDensityIsTheHorizontalResolutionInDotsPerInch) {
    const BilevelPicture picture = bilevelPicture(9, 4);
    const struct {
        LONG pelsPerMeter;
        const char *record;
    } kCases[] = {
        {11811, "rdensty: 0300"}, {7874, "rdensty: 0200"}, {3937, "rdensty: 0100"},  {0, "rdensty: 0000"},
        {19, "rdensty: 0000"},    {20, "rdensty: 0001"},   {-7874, "rdensty: -199"}, {0x7FFFFFFF, "rdensty: 54546194"}};
    for (const auto &[pelsPerMeter, record] : kCases) {
        EXPECT_EQ(recordOf(saved(packedDib(picture, {.pelsPerMeter = pelsPerMeter})), "rdensty"), record);
    }
}

TEST(SaveCals, AFileOf300DotsPerInchIsSavedAsOneAgain) {
    const TempFile original(bilevelPicture(9, 4).file("0300"));
    const OwnedBlock dib(LoadCALSIntoDIB(original.path(), 0));
    const TempFile copy;
    ASSERT_EQ(SaveDIBInCALSFormat(copy.path(), dib.get(), nullptr, nullptr, 0), 1U);
    EXPECT_EQ(recordOf(readFile(copy.path()).value_or(Bytes()), "rdensty"), "rdensty: 0300");
}

TEST(SaveCals, TextsAreTheCallers) {
    const CalsNotes notes = {"S", nullptr, "T", "", nullptr, "secret", "a\nb"};
    const Bytes file = saved(packedDib(bilevelPicture(9, 4)), {.notes = &notes});
    EXPECT_EQ(recordOf(file, "srcdocid: "), "srcdocid: S");
    EXPECT_EQ(recordOf(file, "dstdocis: "), "dstdocis: NONE");
    EXPECT_EQ(recordOf(file, "txtfileid: "), "txtfileid: T");
    EXPECT_EQ(recordOf(file, "figid: "), "figid:");
    EXPECT_EQ(recordOf(file, "scrgph: "), "scrgph: NONE");
    EXPECT_EQ(recordOf(file, "doccls: "), "doccls: secret");
    EXPECT_EQ(recordOf(file, "notes: "), "notes: a\nb");
}

TEST(SaveCals, AFileThatIsThereIsReplaced) {
    const BilevelPicture picture = bilevelPicture(45, 23);
    const TempFile file(Bytes(50000, BYTE{0x11}));
    ASSERT_EQ(save(file.path(), packedDib(picture)), kDecoded);
    EXPECT_EQ(readFile(file.path()), calsFile(savedRecords(picture.counts()), picture.code()));
}

// ---------------------------------------------------------------- refusals

// Nothing of the file is touched.
Outcome refusalOf(const Bytes &dib) {
    const Bytes before(100, BYTE{0x22});
    const TempFile file(before);
    const Outcome outcome = save(file.path(), dib);
    EXPECT_EQ(readFile(file.path()), before) << "the file has been touched";
    return outcome;
}

Bytes changed(Bytes dib, std::size_t offset, std::initializer_list<BYTE> bytes) {
    std::copy(bytes.begin(), bytes.end(), dib.begin() + static_cast<std::ptrdiff_t>(offset));
    return dib;
}

TEST(SaveCalsRefusals, OtherDibsThanTheOneLayoutAreError16) {
    const Outcome wrong = failedWith(VELLUM_BAD_COLOR_FORMAT);
    const Bytes dib = packedDib(bilevelPicture(45, 23));
    EXPECT_EQ(refusalOf(PackedDib(20, 5, 8).bytes()), wrong);
    EXPECT_EQ(refusalOf(PackedDib(20, 5, 24).bytes()), wrong);
    EXPECT_EQ(refusalOf(changed(dib, 0, {36})), wrong) << "a shorter header";
    EXPECT_EQ(refusalOf(changed(dib, 0, {44})), wrong) << "a longer header";
    EXPECT_EQ(refusalOf(changed(dib, 32, {1})), wrong) << "one colour";
    EXPECT_EQ(refusalOf(changed(dib, 32, {3})), wrong) << "three colours";
    EXPECT_EQ(refusalOf(changed(dib, 12, {2})), wrong) << "two planes";
    EXPECT_EQ(refusalOf(changed(dib, 16, {1})), wrong) << "compressed";
    EXPECT_EQ(refusalOf(changed(dib, 4, {0, 0, 0, 0})), wrong) << "no width";
    EXPECT_EQ(refusalOf(changed(dib, 8, {0, 0, 0, 0})), wrong) << "no height";
    EXPECT_EQ(refusalOf(changed(dib, 8, {0xE9, 0xFF, 0xFF, 0xFF})), wrong) << "top-down";
    EXPECT_EQ(refusalOf(changed(dib, 8, {24})), wrong) << "more rows than there are";
    EXPECT_EQ(refusalOf(changed(dib, 8, {0xFF, 0xFF, 0xFF, 0x7F})), wrong);
    EXPECT_EQ(refusalOf(Bytes(dib.begin(), dib.end() - 1)), wrong);
    EXPECT_EQ(refusalOf(Bytes(dib.begin(), dib.begin() + 39)), wrong);
}

TEST(SaveCalsRefusals, AHandleThatCannotBeLockedIsError1) {
    const Bytes before(100, BYTE{0x22});
    const TempFile file(before);
    SetTiffError(VELLUM_OK);
    EXPECT_EQ(SaveDIBInCALSFormat(file.path(), nullptr, nullptr, nullptr, 0), 0U);
    EXPECT_EQ(TiffError(), DWORD{VELLUM_NO_MEMORY});
    EXPECT_EQ(readFile(file.path()), before);
}

TEST(SaveCalsRefusals, LinesThatTheEncoderDoesNotTakeAreFoundBeforeTheFileIsTouched) {
    EXPECT_EQ(refusalOf(packedDib(BilevelPicture{Rows(2, Row(33281))})), failedWith(VELLUM_CODE_ERROR));
    const BilevelPicture widest{Rows(2, Row(33280))};
    EXPECT_EQ(saved(packedDib(widest)), calsFile(savedRecords("033280,000002"), widest.code()));
}

TEST(SaveCalsRefusals, AFileThatCannotBeMadeIsAnIoError) {
    const Bytes dib = packedDib(bilevelPicture(45, 23));
    EXPECT_EQ(save(tempFolder().c_str(), dib), failedWith(VELLUM_IO_ERROR));
    EXPECT_EQ(save((tempFolder() + "/no such folder/x.cal").c_str(), dib), failedWith(VELLUM_IO_ERROR));
    EXPECT_EQ(save("", dib), failedWith(VELLUM_IO_ERROR));
    EXPECT_EQ(save(nullptr, dib), failedWith(VELLUM_IO_ERROR));
}

// ---------------------------------------------------------------- faults

// Fails every call of a kind in turn. Result: how many calls a save makes.
template <class Check>
long failEach(Call call, Check check) {
    const BilevelPicture picture = bilevelPicture(45, 23);
    const Bytes before(100, BYTE{0x22});
    const DibBlock dib(packedDib(picture));
    for (long n = 0; n < 100; ++n) {
        SCOPED_TRACE(n);
        const TempFile file(before);
        DWORD result = 0;
        bool happened = false;
        SetTiffError(VELLUM_OK);
        {
            const FailNth fault(call, n);
            result = SaveDIBInCALSFormat(file.path(), dib.get(), nullptr, nullptr, 0);
            happened = fault.happened();
        }
        const DWORD error = TiffError();
        EXPECT_EQ(lockCount(dib.get()), 0U);
        const Bytes after = readFile(file.path()).value_or(Bytes());
        if (!happened) {
            EXPECT_EQ(result, 1U);
            EXPECT_EQ(after, calsFile(savedRecords(picture.counts()), picture.code()));
            return n;
        }
        EXPECT_EQ(result, 0U);
        check(error, n, after == before);
    }
    ADD_FAILURE() << "the save never ends";
    return 100;
}

TEST(SaveCalsFaults, WithoutMemoryForTheHeaderTheFileIsNotTouched) {
    EXPECT_GE(failEach(Call::Allocate,
                       [](DWORD error, long n, bool untouched) {
                           EXPECT_EQ(error, DWORD{VELLUM_NO_MEMORY});
                           EXPECT_EQ(untouched, n == 0) << "afterwards it is being written";
                       }),
              3);
}

TEST(SaveCalsFaults, AFileThatCannotBeWrittenIsAnIoError) {
    const auto isIo = [](DWORD error, long, bool) { EXPECT_EQ(error, DWORD{VELLUM_IO_ERROR}); };
    EXPECT_EQ(failEach(Call::Open, isIo), 1);
    EXPECT_EQ(failEach(Call::Write, isIo), 2) << "the header and the code";
}

// ---------------------------------------------------------------- line functions

// Three rows of 8 bytes, bottom first; the byte at (row from the top, column) is 16 * row + column.
const Bytes kRows = {0x20, 0x21, 0x22, 0x23, 0x24, 0x25, 0x26, 0x27, 0x10, 0x11, 0x12, 0x13,
                     0x14, 0x15, 0x16, 0x17, 0x00, 0x01, 0x02, 0x03, 0x04, 0x05, 0x06, 0x07};

struct CalsLines {
    Bytes rows = kRows;
    CalsLineContext context = {rows.data(), 3, 3, 8, 0};
    Bytes line = Bytes(5, BYTE{0xAA});
};

TEST(CalsLineFunctions, FillTheLineFromTheRowCountedFromTheBottom) {
    CalsLines lines;
    EXPECT_EQ(DllFillCALSLineDIB(lines.line.data(), 0, &lines.context), 0U);
    EXPECT_EQ(lines.line, (Bytes{0x00, 0x01, 0x02, 0xAA, 0xAA}));
    EXPECT_EQ(DllFillCALSLineDIB(lines.line.data(), 2, &lines.context), 0U);
    EXPECT_EQ(lines.line, (Bytes{0x20, 0x21, 0x22, 0xAA, 0xAA}));
    lines.context.invert = 5;
    EXPECT_EQ(DllFillCALSLineDIB(lines.line.data(), 1, &lines.context), 0U);
    EXPECT_EQ(lines.line, (Bytes{0xEF, 0xEE, 0xED, 0xAA, 0xAA}));
    EXPECT_EQ(lines.rows, kRows);
}

TEST(CalsLineFunctions, FlushTheLineToTheRowCountedFromTheBottom) {
    CalsLines lines;
    lines.context.invert = 5; // for the other one
    EXPECT_EQ(DllFlushCALSLineDIB(lines.line.data(), 0, &lines.context), 0U);
    EXPECT_EQ(DllFlushCALSLineDIB(lines.line.data(), 2, &lines.context), 0U);
    EXPECT_EQ(lines.rows, (Bytes{0xAA, 0xAA, 0xAA, 0x23, 0x24, 0x25, 0x26, 0x27, 0x10, 0x11, 0x12, 0x13,
                                 0x14, 0x15, 0x16, 0x17, 0xAA, 0xAA, 0xAA, 0x03, 0x04, 0x05, 0x06, 0x07}));
}

TEST(CalsLineFunctions, LeaveRowsOutsideThePictureAlone) {
    for (const DWORD row : {3UL, 4UL, 0x7FFFFFFFUL, 0xFFFFFFFFUL}) {
        CalsLines lines;
        EXPECT_EQ(DllFlushCALSLineDIB(lines.line.data(), row, &lines.context), 0U);
        EXPECT_EQ(DllFillCALSLineDIB(lines.line.data(), row, &lines.context), 0U);
        EXPECT_EQ(lines.rows, kRows);
        EXPECT_EQ(lines.line, Bytes(5, BYTE{0xAA}));
    }
}

} // namespace
