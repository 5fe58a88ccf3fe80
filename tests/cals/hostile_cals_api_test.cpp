// CALS files that are cut, damaged or claim what they do not have: each ends as stated, soon, and in little memory.
#include "cals/cals_pictures.h"
#include "hostile/orderly.h"
#include "support/faults.h"

#include <gtest/gtest.h>

namespace {

using namespace vellum::test;

struct Loaded {
    bool picture;
    DWORD error;
    bool operator==(const Loaded &) const = default;
};
Loaded load(const Bytes &content) {
    const TempFile file(content);
    SetTiffError(VELLUM_OK);
    const OwnedBlock dib(LoadCALSIntoDIB(file.path(), 0));
    return {static_cast<bool>(dib), TiffError()};
}

// With and without a picture, nothing else.
testing::AssertionResult isOrderly(const Loaded &loaded, int boxes) {
    const bool part = loaded.error == VELLUM_UNEXPECTED_END || loaded.error == VELLUM_EOFB_UNEXPECTED;
    const bool refused =
        loaded.error == VELLUM_NOT_CALS || loaded.error == VELLUM_CODE_ERROR || loaded.error == VELLUM_NO_MEMORY;
    const bool fits = loaded.picture ? part || loaded.error == VELLUM_OK : refused;
    return fits && boxes == (loaded.picture && part ? 1 : 0) ? testing::AssertionSuccess()
                                                             : testing::AssertionFailure()
                                                                   << loaded.picture << ", error " << loaded.error
                                                                   << ", " << boxes << " boxes";
}

TEST(HostileCals, AFileCutAtAnyByteOfItsHeaderIsNone) {
    const Bytes whole = bilevelPicture(61, 12).file();
    for (std::size_t size = 0; size < 2048; size += kFileStep) {
        const Bytes cut(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size));
        EXPECT_EQ(load(cut), (Loaded{false, VELLUM_NOT_CALS})) << size;
    }
}

TEST(HostileCals, AFileCutAtAnyByteOfItsDataLoadsInPart) {
    const BilevelPicture picture = bilevelPicture(61, 60);
    const Bytes whole = calsFile(pictureRecords(picture.counts()), encodeGroup4(picture.rows, Eofb::No));
    int parts = 0;
    for (std::size_t size = 2048; size <= whole.size(); ++size) {
        const MessageBoxes boxes;
        const Bytes cut(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size));
        const Loaded loaded = load(cut);
        EXPECT_TRUE(loaded.picture) << size;
        EXPECT_TRUE(isOrderly(loaded, boxes.count())) << size;
        parts += loaded.error == VELLUM_UNEXPECTED_END ? 1 : 0;
    }
    EXPECT_GE(parts, static_cast<int>(whole.size() - 2048) - 2) << "all but the last bytes matter";
}

TEST(HostileCals, AnyByteOfTheHeaderMayBeAnything) {
    const Bytes whole = bilevelPicture(61, 12).file();
    const Stopwatch time;
    for (const BYTE byte : {BYTE{0}, BYTE{0xFF}, BYTE{'9'}, BYTE{'-'}}) {
        for (std::size_t at = 0; at < 4 * 128; at += kFileStep) {
            const MessageBoxes boxes;
            const PeakMemory memory;
            Bytes damaged = whole;
            damaged[at] = byte;
            const Loaded loaded = load(damaged);
            EXPECT_TRUE(isOrderly(loaded, boxes.count())) << at;
            EXPECT_LT(memory.bytes(), kLittleMemory) << at;
        }
    }
    EXPECT_LT(time.seconds(), 10 * kPromptSeconds);
}

TEST(HostileCals, CountsThatNoPictureHasAreError1) {
    const Bytes code = bilevelPicture(61, 12).code();
    const std::string kHundred(100, '9');
    for (const std::string &counts :
         {std::string("-1,1"), std::string("1,-1"), std::string("-9,-4"), std::string("2147483647,1"),
          std::string("2147483647,2147483647"), std::string("-2147483648,1"), std::string("1,-2147483648"),
          std::string("2147418113,1"), kHundred + ",1", "1," + kHundred, "-" + kHundred + ",1"}) {
        const PeakMemory memory;
        EXPECT_EQ(load(calsFile(pictureRecords(counts), code)), (Loaded{false, VELLUM_NO_MEMORY})) << counts;
        EXPECT_LT(memory.bytes(), 1U << 20) << counts;
    }
}

TEST(HostileCals, ASmallFileThatClaimsAHugePictureIsError1) {
    const Stopwatch time;
    const Bytes code(952, BYTE{0x55});
    for (const char *counts : {"131072,131071", "65536,262136", "33280,500000", "1,400000000", "8388608,2000",
                               "16000000,1050", "100000,150000"}) {
        const Bytes file = calsFile(pictureRecords(counts), code);
        ASSERT_EQ(file.size(), 3000U);
        const PeakMemory memory;
        EXPECT_EQ(load(file), (Loaded{false, VELLUM_NO_MEMORY})) << counts;
        EXPECT_LT(memory.bytes(), 1U << 20) << counts;
    }
    EXPECT_EQ(load(calsHeader(pictureRecords("100000,100000"))), (Loaded{false, VELLUM_NO_MEMORY}));
    EXPECT_LT(time.seconds(), kPromptSeconds);
}

// Lines so long that a few bytes could fill gigabytes if they were blank.
TEST(HostileCals, AHugePictureThatIsWiderThanAnyDrawingGetsNoMemory) {
    const Stopwatch time;
    for (const char *counts : {"2000000,7000", "8000000,2000", "8000000,500", "1000000,7000", "70000,26000"}) {
        const PeakMemory memory;
        EXPECT_EQ(load(calsFile(pictureRecords(counts), Bytes(952, BYTE{0xFF}))), (Loaded{false, VELLUM_NO_MEMORY}))
            << counts;
        EXPECT_LT(memory.bytes(), kLittleMemory) << counts;
    }
    EXPECT_LT(time.seconds(), kPromptSeconds);
}

TEST(HostileCals, AHugePictureThatBlankLinesCouldFillIsTriedOutFirst) {
    const Stopwatch time;
    const PeakMemory memory;
    Bytes some(2000, BYTE{0});
    some.insert(some.begin(), {0xFF, 0xFF}); // sixteen blank lines
    EXPECT_EQ(load(calsFile(pictureRecords("065000,012000"), some)), (Loaded{false, VELLUM_CODE_ERROR}));
    Bytes ends(2000, BYTE{0xFF}); // some blank lines, then the end
    std::copy_n(Bytes{0x00, 0x10, 0x01}.begin(), 3, ends.begin() + 60);
    EXPECT_EQ(load(calsFile(pictureRecords("065000,012000"), ends)), (Loaded{false, VELLUM_NO_MEMORY}));
    EXPECT_LT(memory.bytes(), kLittleMemory);
    EXPECT_LT(time.seconds(), kPromptSeconds);
}

// The largest drawings are not taken for such pictures.
TEST(HostileCals, ALargeDrawingWithoutItsDataIsWhite) {
    for (const Bytes &code : {Bytes(), Bytes{0xFF}}) {
        const MessageBoxes boxes;
        EXPECT_EQ(load(calsFile(pictureRecords("017600,013600"), code)), (Loaded{true, VELLUM_UNEXPECTED_END}));
        EXPECT_EQ(boxes.count(), 1);
    }
}

// A blank line is one bit.
TEST(HostileCals, ALargePictureInASmallFileLoadsWhenItsCodeIsThere) {
    const MessageBoxes boxes;
    EXPECT_EQ(load(calsFile(pictureRecords("032000,016000"), Bytes(2000, BYTE{0xFF}))), (Loaded{true, VELLUM_OK}));
    EXPECT_EQ(boxes.count(), 0);
}

TEST(HostileCals, AnyByteOfTheDataMayBeAnything) {
    const BilevelPicture picture = bilevelPicture(61, 12);
    const Bytes whole = picture.file();
    for (const BYTE flip : {BYTE{0xFF}, BYTE{0x01}, BYTE{0x80}}) {
        for (std::size_t at = 2048; at < whole.size(); ++at) {
            const MessageBoxes boxes;
            Bytes damaged = whole;
            damaged[at] = static_cast<BYTE>(damaged[at] ^ flip);
            const Loaded loaded = load(damaged);
            EXPECT_TRUE(isOrderly(loaded, boxes.count())) << at;
        }
    }
}

} // namespace
