// Images defined in memory: slots, tags, and what happens when memory runs out.
#include "support/encode_lines.h"
#include "support/faults.h"
#include "support/read_tags.h"
#include "support/tiff_builder.h"

#include <gtest/gtest.h>

namespace {

using namespace vellum::test;

class ImageDefinition : public ::testing::Test {
protected:
    ImageDefinition() { SetTiffError(VELLUM_OK); }
    WrittenTiff tiff_{"defined.tif"};
};

TEST_F(ImageDefinition, NumbersImagesFromZeroAndCountsThem) {
    EXPECT_EQ(DefineTiffImage(tiff_.get()), 0);
    EXPECT_EQ(DefineTiffImage(tiff_.get()), 1);
    EXPECT_EQ(NumberOfTiffImages(tiff_.get(), VELLUM_ALL_IMAGES), 2);
    EXPECT_EQ(IsTiffImageRegistered(tiff_.get(), 1), 1u);
    EXPECT_TRUE(longValues(tiff_.get(), 0, 0).empty());
    EXPECT_EQ(TiffError(), DWORD{VELLUM_OK});
}

TEST_F(ImageDefinition, TakesSlotZeroOnAnExistingFileWhateverItHolds) {
    tiff::Builder file;
    file.directory({tiff::shorts(256, {8}), tiff::shorts(257, {1})});
    file.directory({tiff::shorts(256, {16}), tiff::shorts(257, {1})});
    const TempFile onDisk(file.bytes());
    const WrittenTiff existing(onDisk.path(), T_APPEND);
    EXPECT_EQ(DefineTiffImage(existing.get()), 0);
    EXPECT_EQ(NumberOfTiffImages(existing.get(), VELLUM_ALL_IMAGES), 3);
    EXPECT_TRUE(longValues(existing.get(), 0, 0).empty());
}

TEST_F(ImageDefinition, RefusesTheThousandAndFirstImage) {
    for (LONG index = 0; index < 1000; ++index) {
        ASSERT_EQ(DefineTiffImage(tiff_.get()), index);
    }
    EXPECT_EQ(DefineTiffImage(tiff_.get()), -1);
    EXPECT_EQ(TiffError(), DWORD{VELLUM_NO_MEMORY});
    EXPECT_EQ(NumberOfTiffImages(tiff_.get(), VELLUM_ALL_IMAGES), 1000);
}

TEST_F(ImageDefinition, DoesNotUseASlotTwice) {
    EXPECT_EQ(DefineTiffImage(tiff_.get()), 0);
    EXPECT_EQ(DropTiffImage(tiff_.get(), 0), 1u);
    EXPECT_EQ(DefineTiffImage(tiff_.get()), 1);
}

TEST_F(ImageDefinition, RefusesAHandleThatIsNone) {
    EXPECT_EQ(DefineTiffImage(nullptr), -1);
    EXPECT_EQ(TiffError(), DWORD{VELLUM_NO_MEMORY});
}

TEST_F(ImageDefinition, KeepsTagsInTheOrderInWhichTheyWereDefined) {
    DefineTiffImage(tiff_.get());
    EXPECT_EQ(DefineTiffImageInfo(tiff_.get(), 0, 305, 3, 7), 1);
    EXPECT_EQ(DefineTiffImageInfo(tiff_.get(), 0, 256, 4, 0x12345678), 1);
    EXPECT_EQ(DefineTiffImageInfo(tiff_.get(), 0, 258, 1, 0x1FF), 1);
    EXPECT_EQ(longValues(tiff_.get(), 0, 0), (std::vector<DWORD>{305, 256, 258}));
    EXPECT_EQ(firstNumber(tiff_.get(), 0, 256), 0x12345678u);
    EXPECT_EQ(storedTag(tiff_.get(), 0, 258), (StoredTag{{0xFF}, 1, 1})) << "the low part of the number";
    EXPECT_EQ(storedTag(tiff_.get(), 0, 305), (StoredTag{{7, 0}, 3, 1}));
}

TEST_F(ImageDefinition, ReplacesATagAndPutsItLast) {
    DefineTiffImage(tiff_.get());
    const BYTE text[] = "abcdefgh";
    DefineTiffImageInfo(tiff_.get(), 0, 256, 4, 1);
    EXPECT_EQ(DefineTiffImageInfoBuffer(tiff_.get(), 0, 270, text, 2, sizeof text), 1);
    DefineTiffImageInfo(tiff_.get(), 0, 257, 4, 2);
    EXPECT_EQ(DefineTiffImageInfoBuffer(tiff_.get(), 0, 270, "xy", 2, 3), 1);
    EXPECT_EQ(longValues(tiff_.get(), 0, 0), (std::vector<DWORD>{256, 257, 270}));
    EXPECT_EQ(storedTag(tiff_.get(), 0, 270), (StoredTag{{'x', 'y', 0}, 2, 3}));
    EXPECT_EQ(firstNumber(tiff_.get(), 0, 256), 1u);
    EXPECT_EQ(firstNumber(tiff_.get(), 0, 257), 2u);
}

TEST_F(ImageDefinition, ReplacesEveryOneOfATagThatAFileHasTwice) {
    tiff::Builder file;
    file.directory({tiff::shorts(256, {8}), tiff::shorts(270, {1}), tiff::shorts(270, {2}), tiff::longs(273, {1, 2})});
    const TempFile onDisk(file.bytes());
    const WrittenTiff existing(onDisk.path(), T_READ);
    ASSERT_EQ(GetTiffImage(existing.get(), 0), 1u);
    EXPECT_EQ(DefineTiffImageInfo(existing.get(), 0, 270, 3, 9), 1);
    EXPECT_EQ(longValues(existing.get(), 0, 0), (std::vector<DWORD>{256, 273, 270}));
    EXPECT_EQ(firstNumber(existing.get(), 0, 270), 9u);
}

TEST_F(ImageDefinition, SizesValuesByTypeWithOneByteForTheOthers) {
    DefineTiffImage(tiff_.get());
    const BYTE values[24] = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16, 17, 18, 19, 20, 21, 22, 23, 24};
    const struct {
        DWORD type;
        DWORD bytes;
    } kSizes[] = {{1, 3}, {2, 3}, {3, 6},  {4, 12}, {5, 24}, {6, 3},
                  {7, 3}, {8, 3}, {9, 12}, {10, 3}, {12, 3}, {999, 3}};
    for (const auto &[type, bytes] : kSizes) {
        ASSERT_EQ(DefineTiffImageInfoBuffer(tiff_.get(), 0, 40000 + type, values, type, 3), 1);
        const StoredTag stored = storedTag(tiff_.get(), 0, static_cast<LONG>(40000 + type));
        EXPECT_EQ(stored.bytes, Bytes(values, values + bytes)) << "type " << type;
        EXPECT_EQ(stored.type, type);
        EXPECT_EQ(stored.count, 3u);
    }
}

TEST_F(ImageDefinition, HoldsManyTagsAndLongOnes) {
    DefineTiffImage(tiff_.get());
    for (DWORD tag = 1000; tag < 1500; ++tag) {
        ASSERT_EQ(DefineTiffImageInfo(tiff_.get(), 0, tag, 4, tag * 3), 1);
    }
    const Bytes large(100000, 0x5A);
    ASSERT_EQ(DefineTiffImageInfoBuffer(tiff_.get(), 0, 700, large.data(), 7, 100000), 1);
    EXPECT_EQ(longValues(tiff_.get(), 0, 0).size(), 501u);
    EXPECT_EQ(firstNumber(tiff_.get(), 0, 1499), 4497u);
    EXPECT_EQ(storedTag(tiff_.get(), 0, 700).bytes, large);
}

TEST_F(ImageDefinition, DefinesNothingForAnImageThatIsNotRegistered) {
    EXPECT_EQ(DefineTiffImageInfo(tiff_.get(), 0, 256, 4, 1), 0);
    EXPECT_EQ(TiffError(), DWORD{VELLUM_OK});
    EXPECT_EQ(DefineTiffImageInfo(tiff_.get(), 1000, 256, 4, 1), 0);
    EXPECT_EQ(TiffError(), DWORD{VELLUM_INDEX_OUT_OF_RANGE});
    EXPECT_EQ(DefineTiffImageInfo(nullptr, 0, 256, 4, 1), 0);
}

TEST_F(ImageDefinition, RefusesCountsThatNoMemoryHolds) {
    DefineTiffImage(tiff_.get());
    const DWORD value = 1;
    EXPECT_EQ(DefineTiffImageInfoBuffer(tiff_.get(), 0, 256, &value, 5, 0x20000000), 0);
    EXPECT_EQ(TiffError(), DWORD{VELLUM_NO_MEMORY});
    EXPECT_EQ(DefineTiffImageInfoBuffer(tiff_.get(), 0, 256, nullptr, 4, 1), 0);
    EXPECT_TRUE(longValues(tiff_.get(), 0, 0).empty());
    EXPECT_EQ(DefineTiffImageInfoBuffer(tiff_.get(), 0, 256, nullptr, 4, 0), 1) << "no values are fine";
}

TEST_F(ImageDefinition, ReportsWantOfMemory) {
    {
        const FailNth noBlock(Call::Allocate, 0);
        EXPECT_EQ(DefineTiffImage(tiff_.get()), -1);
    }
    EXPECT_EQ(TiffError(), DWORD{VELLUM_NO_MEMORY});
    EXPECT_EQ(NumberOfTiffImages(tiff_.get(), VELLUM_ALL_IMAGES), 0);
    SetTiffError(VELLUM_OK);
    ASSERT_EQ(DefineTiffImage(tiff_.get()), 0);
    ASSERT_EQ(DefineTiffImageInfo(tiff_.get(), 0, 256, 4, 1), 1);
    const Bytes large(200);
    {
        const FailNth noGrowth(Call::Reallocate, 0);
        EXPECT_EQ(DefineTiffImageInfoBuffer(tiff_.get(), 0, 270, large.data(), 2, 200), 0);
    }
    EXPECT_EQ(TiffError(), DWORD{VELLUM_NO_MEMORY});
    EXPECT_EQ(longValues(tiff_.get(), 0, 0), (std::vector<DWORD>{256}));
    EXPECT_EQ(DefineTiffImageInfoBuffer(tiff_.get(), 0, 270, large.data(), 2, 200), 1) << "and goes on afterwards";
}

class GeneralTags : public ImageDefinition {
protected:
    static BITMAP bitmap(LONG width, LONG height, WORD planes, WORD bits) {
        BITMAP record{};
        record.bmWidth = width;
        record.bmHeight = height;
        record.bmPlanes = planes;
        record.bmBitsPixel = bits;
        return record;
    }
    DWORD define(LONG width, LONG height, WORD planes, WORD bits) {
        return DefineGeneralTags(tiff_.get(), 0, bitmap(width, height, planes, bits));
    }
    GeneralTags() { DefineTiffImage(tiff_.get()); }
};

TEST_F(GeneralTags, DescribeABilevelImageWithStripsOfEightKilobytes) {
    EXPECT_EQ(define(1728, 1100, 1, 1), 0u);
    EXPECT_EQ(longValues(tiff_.get(), 0, 0), (std::vector<DWORD>{256, 257, 278, 258}));
    EXPECT_EQ(storedTag(tiff_.get(), 0, 256), (StoredTag{{0xC0, 0x06}, 3, 1}));
    EXPECT_EQ(firstNumber(tiff_.get(), 0, 257), 1100u);
    EXPECT_EQ(firstNumber(tiff_.get(), 0, 278), 37u);
    EXPECT_EQ(firstNumber(tiff_.get(), 0, 258), 1u);
}

TEST_F(GeneralTags, CapTheStripAtTheHeightAndGiveWideLinesOneEach) {
    EXPECT_EQ(define(1728, 20, 1, 1), 0u);
    EXPECT_EQ(firstNumber(tiff_.get(), 0, 278), 20u);
    EXPECT_EQ(define(9000, 20, 1, 8), 0u);
    EXPECT_EQ(firstNumber(tiff_.get(), 0, 278), 1u);
    EXPECT_EQ(define(8192, 20, 1, 8), 0u);
    EXPECT_EQ(firstNumber(tiff_.get(), 0, 278), 1u);
    EXPECT_EQ(define(4096, 20, 1, 8), 0u);
    EXPECT_EQ(firstNumber(tiff_.get(), 0, 278), 2u);
}

TEST_F(GeneralTags, MakeOneStripOfCcittImages) {
    for (const DWORD compression : {2u, 3u, 4u}) {
        DefineTiffImageInfo(tiff_.get(), 0, 259, 3, compression);
        EXPECT_EQ(define(1728, 1100, 1, 1), 0u);
        EXPECT_EQ(firstNumber(tiff_.get(), 0, 278), 1100u) << "compression " << compression;
    }
    for (const DWORD compression : {0u, 1u, 5u, 7u, 32773u}) {
        DefineTiffImageInfo(tiff_.get(), 0, 259, 3, compression);
        EXPECT_EQ(define(1728, 1100, 1, 1), 0u);
        EXPECT_EQ(firstNumber(tiff_.get(), 0, 278), 37u) << "compression " << compression;
    }
}

TEST_F(GeneralTags, DescribeThreeSamplesFor24Bits) {
    EXPECT_EQ(define(10, 10, 1, 24), 0u);
    EXPECT_EQ(longValues(tiff_.get(), 0, 0), (std::vector<DWORD>{256, 257, 278, 258, 277, 284}));
    EXPECT_EQ(storedTag(tiff_.get(), 0, 258), (StoredTag{{8, 0, 8, 0, 8, 0}, 3, 3}));
    EXPECT_EQ(firstNumber(tiff_.get(), 0, 277), 3u);
    EXPECT_EQ(firstNumber(tiff_.get(), 0, 284), 1u);
}

TEST_F(GeneralTags, MultiplyPlanesAndBits) {
    EXPECT_EQ(define(10, 10, 4, 1), 0u);
    EXPECT_EQ(firstNumber(tiff_.get(), 0, 258), 4u);
    EXPECT_EQ(define(10, 10, 1, 16), 0u);
    EXPECT_EQ(firstNumber(tiff_.get(), 0, 258), 16u);
    EXPECT_EQ(define(10, 10, 3, 8), 0u);
    EXPECT_EQ(storedTag(tiff_.get(), 0, 258).count, 3u);
}

TEST_F(GeneralTags, RefuseOtherDepthsAndNoWidthWithoutSettingTheError) {
    for (const WORD bits : std::initializer_list<WORD>{0, 2, 3, 15, 32, 48}) {
        EXPECT_EQ(define(10, 10, 1, bits), DWORD{VELLUM_BAD_COLOR_FORMAT}) << bits;
    }
    EXPECT_EQ(define(0, 10, 1, 1), DWORD{VELLUM_TAG_MISSING});
    EXPECT_EQ(define(-5, 10, 1, 2), DWORD{VELLUM_TAG_MISSING}) << "the width is looked at first";
    EXPECT_TRUE(longValues(tiff_.get(), 0, 0).empty());
    EXPECT_EQ(TiffError(), DWORD{VELLUM_OK});
}

TEST_F(GeneralTags, CutNumbersAbove65535ToTheirLowHalf) {
    EXPECT_EQ(define(65536 + 7, 65536 + 9, 1, 1), 0u);
    EXPECT_EQ(firstNumber(tiff_.get(), 0, 256), 7u);
    EXPECT_EQ(firstNumber(tiff_.get(), 0, 257), 9u);
}

TEST_F(GeneralTags, MakeOneTileOfAColourJpeg) {
    DefineTiffImageInfo(tiff_.get(), 0, 259, 3, 6);
    EXPECT_EQ(define(640, 480, 1, 24), 0u);
    EXPECT_EQ(longValues(tiff_.get(), 0, 0),
              (std::vector<DWORD>{259, 256, 257, 258, 277, 284, 322, 323, 512, 515, 530, 532}));
    EXPECT_EQ(firstNumber(tiff_.get(), 0, 322), 640u);
    EXPECT_EQ(firstNumber(tiff_.get(), 0, 323), 480u);
    EXPECT_EQ(firstNumber(tiff_.get(), 0, 512), 1u);
    EXPECT_EQ(firstNumber(tiff_.get(), 0, 515), 0u);
    EXPECT_EQ(storedTag(tiff_.get(), 0, 530), (StoredTag{{2, 0, 2, 0}, 3, 2}));
    const Bytes reference = {0, 0, 0, 0, 255, 0, 0, 0, 128, 0, 0, 0, 255, 0, 0, 0, 128, 0, 0, 0, 255, 0, 0, 0};
    EXPECT_EQ(storedTag(tiff_.get(), 0, 532), (StoredTag{reference, 5, 3}));
}

TEST_F(GeneralTags, MakeOneTileOfAGreyJpeg) {
    DefineTiffImageInfo(tiff_.get(), 0, 259, 3, 6);
    EXPECT_EQ(define(640, 480, 1, 8), 0u);
    EXPECT_EQ(longValues(tiff_.get(), 0, 0), (std::vector<DWORD>{259, 256, 257, 258, 277, 284, 322, 323, 512, 515}));
    EXPECT_EQ(storedTag(tiff_.get(), 0, 258), (StoredTag{{8, 0}, 3, 1}));
}

TEST_F(GeneralTags, GiveJpegEightBitsASampleWhateverTheDepth) {
    DefineTiffImageInfo(tiff_.get(), 0, 259, 3, 6);
    for (const WORD bits : std::initializer_list<WORD>{1, 4, 16}) {
        EXPECT_EQ(define(640, 480, 1, bits), 0u);
        EXPECT_EQ(storedTag(tiff_.get(), 0, 258), (StoredTag{{8, 0}, 3, 1}));
    }
    EXPECT_EQ(define(640, 480, 1, 32), DWORD{VELLUM_BAD_COLOR_FORMAT});
}

TEST_F(GeneralTags, SayOneWhenAJpegTagCannotBeDefined) {
    DefineTiffImageInfo(tiff_.get(), 0, 259, 3, 6);
    long failures = 0;
    for (long nth = 0; nth < 40; ++nth) {
        const FailNth noGrowth(Call::Reallocate, nth);
        const DWORD result = define(640, 480, 1, 24);
        EXPECT_EQ(result, noGrowth.happened() ? 1u : 0u);
        failures += noGrowth.happened() ? 1 : 0;
    }
    EXPECT_GT(failures, 0);
}

TEST_F(GeneralTags, TakeAnyHeight) {
    EXPECT_EQ(define(16, 0, 1, 1), 0u);
    EXPECT_EQ(firstNumber(tiff_.get(), 0, 257), 0u);
    EXPECT_EQ(firstNumber(tiff_.get(), 0, 278), 0u);
    EXPECT_EQ(define(16, -1, 1, 1), 0u);
    EXPECT_EQ(firstNumber(tiff_.get(), 0, 257), 0xFFFFu);
}

TEST_F(GeneralTags, SayOneWhenATagCannotBeDefined) {
    EXPECT_EQ(DefineGeneralTags(tiff_.get(), 5, bitmap(10, 10, 1, 1)), 1u);
    const BYTE filling[60] = {};
    DefineTiffImageInfoBuffer(tiff_.get(), 0, 270, filling, 1, sizeof filling);
    const FailNth noGrowth(Call::Reallocate, 0);
    EXPECT_EQ(define(10, 10, 1, 1), 1u);
    EXPECT_EQ(firstNumber(tiff_.get(), 0, 256), 10u) << "tags defined before stay";
}

} // namespace
