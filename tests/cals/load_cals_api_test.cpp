// LoadCALSIntoDIB: every byte of the DIB, which errors leave a picture, and what is shown.
#include "cals/cals_pictures.h"
#include "display/pictures.h"
#include "support/faults.h"
#include "support/sample_manifest.h"
#include "support/sha256.h"

#include <gtest/gtest.h>

#include <memory>

#ifdef VELLUM_NATIVE
#include "native/shim.h"
#endif

namespace {

using namespace vellum::test;

// Loads with an error pending, so that a load that leaves the error alone is found out.
std::unique_ptr<Dib> load(const char *path) {
    SetTiffError(VELLUM_STRIP_OUT_OF_RANGE);
    return std::make_unique<Dib>(LoadCALSIntoDIB(path, 0));
}
std::unique_ptr<Dib> load(const Bytes &content) {
    const TempFile file(content);
    return load(file.path());
}

// The whole block as it must be.
Bytes expectedBlock(const BilevelPicture &picture, LONG pelsPerMeter, const Bytes &rows) {
    BITMAPINFOHEADER header{};
    header.biSize = 40;
    header.biWidth = static_cast<LONG>(picture.width());
    header.biHeight = static_cast<LONG>(picture.height());
    header.biPlanes = 1;
    header.biBitCount = 1;
    header.biSizeImage = static_cast<DWORD>(rows.size());
    header.biXPelsPerMeter = pelsPerMeter;
    header.biYPelsPerMeter = pelsPerMeter;
    header.biClrUsed = 2;
    header.biClrImportant = 2;
    Bytes block(48 + rows.size() + 100);
    std::memcpy(block.data(), &header, sizeof header);
    std::fill_n(block.begin() + 40, 3, BYTE{255}); // white; the second colour is black
    std::copy(rows.begin(), rows.end(), block.begin() + 48);
    return block;
}

TEST(LoadCals, EveryByteOfTheDibIsAsItShould) {
    const BilevelPicture picture = bilevelPicture(45, 13);
    const auto dib = load(picture.file());
    ASSERT_TRUE(*dib);
    EXPECT_EQ(TiffError(), DWORD{VELLUM_OK});
    EXPECT_EQ(dib->bytes(), expectedBlock(picture, 7874, picture.dibRows()));
    EXPECT_EQ(lockCount(dib->get()), 0U);
}

TEST(LoadCals, RowsOfEveryWidthArePaddedTo32Bits) {
    for (DWORD width = 1; width <= 67; ++width) {
        SCOPED_TRACE(width);
        const BilevelPicture picture = bilevelPicture(width, 5, width);
        const auto dib = load(picture.file());
        ASSERT_TRUE(*dib);
        EXPECT_EQ(dib->bytes(), expectedBlock(picture, 7874, picture.dibRows()));
    }
}

TEST(LoadCals, ALineIsStoredFromTheBottom) {
    const BilevelPicture picture{{rowFromRuns({0, 3}), rowFromRuns({3}), rowFromRuns({2, 1})}};
    const auto dib = load(picture.file());
    ASSERT_TRUE(*dib);
    const Bytes rows(dib->bytes().begin() + 48, dib->bytes().begin() + 60);
    EXPECT_EQ(rows, (Bytes{0x20, 0, 0, 0, 0, 0, 0, 0, 0xE0, 0, 0, 0}));
}

TEST(LoadCals, TheResolutionIsTheSameInBothDirections) {
    const BilevelPicture picture = bilevelPicture(9, 4);
    const struct {
        const char *density;
        LONG pelsPerMeter;
    } kCases[] = {{"0300", 11811},
                  {"0200", 7874},
                  {"0000", 0},
                  {"0001", 39},
                  {"0400", 15748},
                  {"-5", -196},
                  {"2147483647", 0x7FFFFFFF},
                  {"none", 0}};
    for (const auto &[density, pelsPerMeter] : kCases) {
        const auto dib = load(picture.file(density));
        ASSERT_TRUE(*dib) << density;
        EXPECT_EQ(dib->header().biXPelsPerMeter, pelsPerMeter) << density;
        EXPECT_EQ(dib->header().biYPelsPerMeter, pelsPerMeter) << density;
    }
}

TEST(LoadCals, TheOrientationDoesNotTurnThePicture) {
    const BilevelPicture picture = bilevelPicture(20, 6);
    Records records = pictureRecords(picture.counts());
    records[1] = "rorient: 180,000";
    const auto dib = load(calsFile(records, picture.code()));
    ASSERT_TRUE(*dib);
    EXPECT_EQ(dib->bytes(), expectedBlock(picture, 7874, picture.dibRows()));
}

TEST(LoadCals, CodeBehindTheLastLineDoesNotMatterNorDoesAMissingEofb) {
    const BilevelPicture picture = bilevelPicture(45, 13);
    const MessageBoxes boxes;
    Bytes longer = picture.file();
    longer.insert(longer.end(), 100, BYTE{0x55});
    const Bytes withoutEofb = calsFile(pictureRecords(picture.counts()), encodeGroup4(picture.rows, Eofb::No));
    for (const Bytes &file : {longer, withoutEofb}) {
        const auto dib = load(file);
        ASSERT_TRUE(*dib);
        EXPECT_EQ(dib->bytes(), expectedBlock(picture, 7874, picture.dibRows()));
        EXPECT_EQ(TiffError(), DWORD{VELLUM_OK});
    }
    EXPECT_EQ(boxes.count(), 0);
}

// ---------------------------------------------------------------- parts of pictures

// Loads with a warning. Result: the lines that came; the rest must be white.
std::size_t linesLoadedWithWarning(const Bytes &file, const BilevelPicture &picture, DWORD error, const char *message) {
    const MessageBoxes boxes;
    const auto dib = load(file);
    EXPECT_EQ(TiffError(), error);
    EXPECT_EQ(boxes.count(), 1);
    EXPECT_EQ(boxes.text(), message);
    EXPECT_EQ(boxes.caption(), "CALS warning");
    EXPECT_EQ(boxes.style(), UINT{MB_TASKMODAL | MB_ICONEXCLAMATION});
    if (!*dib) {
        ADD_FAILURE() << "no picture";
        return 0;
    }
    std::size_t lines = picture.height();
    while (lines > 0 && dib->bytes() != expectedBlock(picture, 7874, picture.dibRows(lines))) {
        --lines;
    }
    EXPECT_EQ(dib->bytes(), expectedBlock(picture, 7874, picture.dibRows(lines)));
    return lines;
}

constexpr char kEnds[] = "Unexpected end of file in reading data.";

// Every line different from white, so that it can be told how many came.
BilevelPicture inkyPicture() {
    BilevelPicture picture = bilevelPicture(45, 40);
    for (Row &row : picture.rows) {
        row[0] = true;
    }
    return picture;
}

TEST(LoadCalsParts, AFileThatIsCutLeavesItsLastLinesWhite) {
    const BilevelPicture picture = inkyPicture();
    const Bytes whole = calsFile(pictureRecords(picture.counts()), encodeGroup4(picture.rows, Eofb::No));
    std::size_t before = 0;
    for (std::size_t size = 2049; size + 1 < whole.size(); size += 9) {
        SCOPED_TRACE(size);
        const Bytes cut(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size));
        const std::size_t lines = linesLoadedWithWarning(cut, picture, VELLUM_UNEXPECTED_END, kEnds);
        EXPECT_LT(lines, picture.height());
        EXPECT_GE(lines, before);
        before = lines;
    }
    EXPECT_GT(before, 20U);
}

TEST(LoadCalsParts, AFileThatEndsWithItsHeaderIsWhite) {
    const BilevelPicture picture = inkyPicture();
    EXPECT_EQ(
        linesLoadedWithWarning(calsHeader(pictureRecords(picture.counts())), picture, VELLUM_UNEXPECTED_END, kEnds),
        0U);
}

TEST(LoadCalsParts, AnEofbBeforeTheLastLineLeavesTheRestWhite) {
    const BilevelPicture picture = inkyPicture();
    const Rows first(picture.rows.begin(), picture.rows.begin() + 11);
    EXPECT_EQ(linesLoadedWithWarning(calsFile(pictureRecords(picture.counts()), encodeGroup4(first)), picture,
                                     VELLUM_EOFB_UNEXPECTED, "Unexpected End of Facsimile Block (EOFB)"),
              11U);
}

// ---------------------------------------------------------------- no picture

struct Refusal {
    bool refused;
    DWORD error;
    int boxes;
    bool operator==(const Refusal &) const = default;
};
Refusal refusalOf(const Bytes &content) {
    const MessageBoxes boxes;
    const auto dib = load(content);
    return {!*dib, TiffError(), boxes.count()};
}

TEST(LoadCalsRefusals, DamagedCodeIsAnErrorAndShowsNothing) {
    const Bytes extension = {0x01, 0x00, 0x00, 0x55, 0x55, 0x55, 0x55};
    EXPECT_EQ(refusalOf(calsFile(pictureRecords(), extension)), (Refusal{true, VELLUM_CODE_ERROR, 0}));
}

TEST(LoadCalsRefusals, AHeaderThatDescribesNoPictureIsError18) {
    const Bytes code = bilevelPicture(9, 4).code();
    EXPECT_EQ(refusalOf(calsFile(without(pictureRecords(), "rtype"), code)), (Refusal{true, VELLUM_NOT_CALS, 0}));
    EXPECT_EQ(refusalOf(calsFile(pictureRecords("000009,000000"), code)), (Refusal{true, VELLUM_NOT_CALS, 0}));
    EXPECT_EQ(refusalOf(Bytes(2047, BYTE{' '})), (Refusal{true, VELLUM_NOT_CALS, 0}));
    Bytes noBlank = calsFile(pictureRecords(), code);
    noBlank[127] = 'x';
    EXPECT_EQ(refusalOf(noBlank), (Refusal{true, VELLUM_NOT_CALS, 0}));
}

TEST(LoadCalsRefusals, AFileThatDoesNotOpenIsAnIoErrorAndNoPathIsNone) {
    EXPECT_FALSE(*load(TempFile().path()));
    EXPECT_EQ(TiffError(), DWORD{VELLUM_IO_ERROR});
    for (const char *path : {static_cast<const char *>(nullptr), ""}) {
        EXPECT_FALSE(*load(path));
        EXPECT_EQ(TiffError(), DWORD{VELLUM_STRIP_OUT_OF_RANGE}) << "it stays as it was";
    }
}

// ---------------------------------------------------------------- faults

HCURSOR shownCursor() {
#ifdef VELLUM_NATIVE
    return vellum::shim::state.cursor;
#else
    return GetCursor();
#endif
}

TEST(LoadCalsFaults, ThePreviousCursorComesBack) {
    const HCURSOR arrow = LoadCursor(nullptr, IDC_ARROW);
    const HCURSOR before = SetCursor(arrow);
    const MessageBoxes boxes;
    const BilevelPicture picture = inkyPicture();
    for (const Bytes &file :
         {picture.file(), calsHeader(pictureRecords()), calsFile(pictureRecords(), {1, 0, 0, 0x55})}) {
        load(file);
        EXPECT_EQ(shownCursor(), arrow);
    }
    SetCursor(before);
}

// Fails every call of a kind in turn; natively the test program counts what is left behind after each test.
template <class Check>
long failEach(Call call, Check check) {
    const BilevelPicture picture = inkyPicture();
    const TempFile file(picture.file());
    for (long n = 0; n < 100; ++n) {
        SCOPED_TRACE(n);
        HGLOBAL loaded = nullptr;
        bool happened = false;
        SetTiffError(VELLUM_OK);
        {
            const FailNth fault(call, n);
            loaded = LoadCALSIntoDIB(file.path(), 0);
            happened = fault.happened();
        }
        const DWORD error = TiffError();
        const Dib dib(loaded);
        if (!happened) {
            EXPECT_EQ(error, DWORD{VELLUM_OK});
            EXPECT_EQ(dib.bytes(), expectedBlock(picture, 7874, picture.dibRows()));
            return n;
        }
        check(dib, error);
    }
    ADD_FAILURE() << "the load never ends";
    return 100;
}

TEST(LoadCalsFaults, WithoutMemoryThereIsNoPictureAndError1) {
    EXPECT_GE(failEach(Call::Allocate,
                       [](const Dib &dib, DWORD error) {
                           EXPECT_FALSE(dib);
                           EXPECT_EQ(error, DWORD{VELLUM_NO_MEMORY});
                       }),
              3);
}

TEST(LoadCalsFaults, AFileThatCannotBeOpenedIsAnIoError) {
    const long opens = failEach(Call::Open, [](const Dib &dib, DWORD error) {
        EXPECT_FALSE(dib);
        EXPECT_EQ(error, DWORD{VELLUM_IO_ERROR});
    });
    EXPECT_EQ(opens, 2) << "for the header and for the code";
}

TEST(LoadCalsFaults, ReadsAndSeeksThatFailNeverLookLikeSuccess) {
    const MessageBoxes boxes;
    int n = 0;
    EXPECT_GE(failEach(Call::Read,
                       [&n](const Dib &dib, DWORD error) {
                           EXPECT_FALSE(dib);
                           EXPECT_EQ(error, n++ == 0 ? DWORD{VELLUM_NOT_CALS} : DWORD{VELLUM_IO_ERROR});
                       }),
              2);
    EXPECT_GE(failEach(Call::Seek,
                       [](const Dib &dib, DWORD error) {
                           EXPECT_EQ(static_cast<bool>(dib), error == VELLUM_OK);
                           EXPECT_TRUE(error == VELLUM_IO_ERROR || error == VELLUM_OK) << error;
                       }),
              3);
    EXPECT_EQ(boxes.count(), 0);
}

// ---------------------------------------------------------------- real files

std::string digestOfLines(const Dib &dib) {
    const auto width = static_cast<DWORD>(dib.header().biWidth);
    const auto height = static_cast<DWORD>(dib.header().biHeight);
    const std::size_t stride = (std::size_t{width} + 31) / 32 * 4;
    Sha256 digest;
    for (DWORD row = 0; row < height; ++row) {
        digest.add(dib.row(row, stride).data(), (width + 7) / 8);
    }
    return digest.hex();
}

TEST(LoadCalsSamples, EveryFileLoadsToItsGoldenDigest) {
    SKIP_WITHOUT_SAMPLES();
    const MessageBoxes boxes;
    int golden = 0;
    for (const Sample &sample : samplesOfKind({"cals"})) {
        SCOPED_TRACE(sample.file);
        const auto dib = load(sample.path().c_str());
        if (sample.pages().empty()) {
            EXPECT_FALSE(*dib);
            EXPECT_EQ(TiffError(), DWORD{VELLUM_NOT_CALS});
            continue;
        }
        const Json &page = sample.pages()[0];
        ASSERT_TRUE(*dib);
        EXPECT_EQ(static_cast<DWORD>(dib->header().biWidth), page["width"].whole());
        EXPECT_EQ(static_cast<DWORD>(dib->header().biHeight), page["height"].whole());
        if (page["golden"].isTrue()) {
            EXPECT_EQ(TiffError(), DWORD{VELLUM_OK});
            EXPECT_EQ(digestOfLines(*dib), page["sha256"].text);
            ++golden;
        }
    }
    EXPECT_GE(golden, 11);
    EXPECT_EQ(boxes.count(), 1) << "one file is cut in its data";
    EXPECT_EQ(boxes.text(), kEnds);
}

TEST(LoadCalsSamples, AFileThatIsCutKeepsTheLinesThatAreThere) {
    SKIP_WITHOUT_SAMPLES();
    const MessageBoxes boxes;
    const auto whole = load(sample("cals/gdal-ccitt_1.cal").c_str());
    const auto cut = load(sample("cals/cut-data.cal").c_str());
    ASSERT_TRUE(*whole && *cut);
    EXPECT_EQ(TiffError(), DWORD{VELLUM_UNEXPECTED_END});
    const std::size_t stride = 1728 / 8;
    DWORD same = 0;
    while (same < 2376 && cut->row(same, stride) == whole->row(same, stride)) {
        ++same;
    }
    EXPECT_GT(same, 1000U);
    EXPECT_LT(same, 2376U);
    for (DWORD row = same; row < 2376; ++row) {
        EXPECT_EQ(cut->row(row, stride), Bytes(stride)) << row;
    }
}

} // namespace
