// The scan of header and directory chain when a TIFF is opened.
#include "core/directory_reader.h"
#include "opened_tiff.h"
#include "support/faults.h"

namespace vellum::test {
namespace {

// What the scan stored for one image.
struct Slot {
    DWORD offset;
    DWORD size;
    WORD flags;
};

Slot slotOf(TiffHandle tiff, DWORD index) {
    const TiffFileView file(tiff);
    if (!file) {
        ADD_FAILURE() << "not open";
        return {};
    }
    const TiffImageSlot &slot = file->images[index];
    return {slot.directoryOffset, slot.directorySize, slot.flags};
}

DWORD lastLinkPosOf(TiffHandle tiff) {
    const TiffFileView file(tiff);
    return file ? file->lastLinkPos : 0;
}

// The error of an open call that must fail.
DWORD errorOfOpening(const Bytes &content, Place place) {
    SetTiffError(0);
    const OpenedTiff tiff(content, place);
    EXPECT_FALSE(tiff);
    return SetTiffError(0);
}

class Scan : public ::testing::TestWithParam<Variant> {
protected:
    void SetUp() override { SetTiffError(VELLUM_OK); }
    void TearDown() override { SetTiffError(VELLUM_OK); }

    [[nodiscard]] tiff::Builder builder() const { return tiff::Builder(GetParam().byteOrder); }
    [[nodiscard]] Place place() const { return GetParam().place; }
    [[nodiscard]] bool onDisk() const { return place() == Place::File; }

    // The flags of an image with these entries.
    [[nodiscard]] WORD flagsOf(const std::vector<tiff::Entry> &entries) const {
        tiff::Builder file = builder();
        file.directory(entries);
        const OpenedTiff tiff(file.bytes(), place());
        return slotOf(tiff.get(), 0).flags;
    }

    // The directory size of an image with these entries.
    [[nodiscard]] DWORD sizeOf(const std::vector<tiff::Entry> &entries) const {
        tiff::Builder file = builder();
        file.directory(entries);
        const OpenedTiff tiff(file.bytes(), place());
        return slotOf(tiff.get(), 0).size;
    }
};
INSTANTIATE_TEST_SUITE_P(, Scan, allVariants(), variantName);

TEST_P(Scan, FindsNoImagesBehindALinkOf0) {
    const OpenedTiff tiff(builder().bytes(), place());
    ASSERT_TRUE(tiff);
    EXPECT_EQ(imageCount(tiff.get()), 0u);
    EXPECT_EQ(lastLinkPosOf(tiff.get()), 4u);
    EXPECT_EQ(TiffError(), 0u);
}

TEST_P(Scan, FollowsTheChain) {
    tiff::Builder file = builder();
    const std::uint32_t first = file.directory({tiff::shorts(256, {1}), tiff::shorts(258, {8, 8, 8})});
    const std::uint32_t second = file.directory({tiff::shorts(256, {2})});
    const std::uint32_t third = file.directory({});
    const OpenedTiff tiff(file.bytes(), place());
    ASSERT_TRUE(tiff);
    EXPECT_EQ(imageCount(tiff.get()), 3u);
    EXPECT_EQ(slotOf(tiff.get(), 0).offset, first);
    EXPECT_EQ(slotOf(tiff.get(), 0).size, 16u + 18);
    EXPECT_EQ(slotOf(tiff.get(), 1).offset, second);
    EXPECT_EQ(slotOf(tiff.get(), 1).size, 16u);
    EXPECT_EQ(slotOf(tiff.get(), 2).offset, third);
    EXPECT_EQ(slotOf(tiff.get(), 2).size, 0u);
    EXPECT_EQ(slotOf(tiff.get(), 3).offset, 0u);
    EXPECT_EQ(lastLinkPosOf(tiff.get()), file.lastLink());
    EXPECT_EQ(TiffError(), 0u);
}

TEST_P(Scan, FollowsAChainThatGoesBackwards) {
    tiff::Builder file = builder();
    const std::uint32_t front = file.directory({tiff::shorts(256, {2})});
    const std::uint32_t back = file.directory({tiff::shorts(256, {1})});
    file.linkTo(front);
    file.set32(4, back);
    file.set32(front + 14, 0);
    const OpenedTiff tiff(file.bytes(), place());
    EXPECT_EQ(imageCount(tiff.get()), 2u);
    EXPECT_EQ(slotOf(tiff.get(), 0).offset, back);
    EXPECT_EQ(slotOf(tiff.get(), 1).offset, front);
    EXPECT_EQ(lastLinkPosOf(tiff.get()), front + 14);
}

// By design.
TEST_P(Scan, FollowsALoopUntil1000ImagesAreCounted) {
    tiff::Builder file = builder();
    const std::uint32_t first = file.directory({tiff::shorts(256, {1})});
    const std::uint32_t second = file.directory({tiff::shorts(256, {2})});
    file.linkTo(first);
    const OpenedTiff tiff(file.bytes(), place());
    EXPECT_EQ(imageCount(tiff.get()), 1000u);
    EXPECT_EQ(TiffError(), 0u);
    EXPECT_EQ(slotOf(tiff.get(), 998).offset, first);
    EXPECT_EQ(slotOf(tiff.get(), 999).offset, second);
    EXPECT_EQ(lastLinkPosOf(tiff.get()), first + 14) << "the link to the last image taken";
    EXPECT_EQ(GetTiffImage(tiff.get(), 999), 1u);
}

TEST_P(Scan, IgnoresMoreThan1000Images) {
    tiff::Builder file = builder();
    for (unsigned i = 0; i < 1003; ++i) {
        file.directory({tiff::shorts(256, {i})});
    }
    const OpenedTiff tiff(file.bytes(), place());
    EXPECT_EQ(imageCount(tiff.get()), 1000u);
    EXPECT_EQ(TiffError(), 0u);
}

TEST_P(Scan, RefusesOtherByteOrdersWithError14) {
    for (const std::uint8_t wrong : Bytes{'i', 'm', 'X', 0}) {
        Bytes content = builder().bytes();
        content[0] = wrong;
        EXPECT_EQ(errorOfOpening(content, place()), 14u) << wrong;
        content[0] = content[1];
        content[1] = wrong;
        EXPECT_EQ(errorOfOpening(content, place()), 14u) << wrong;
    }
    Bytes content = builder().bytes();
    content[0] = 'I';
    content[1] = 'M';
    EXPECT_EQ(errorOfOpening(content, place()), 14u);
}

TEST_P(Scan, RefusesOtherMagicNumbersWithError8) {
    for (const std::uint32_t magic : {0u, 41u, 43u, 42u << 8, 0xFFFFu}) {
        tiff::Builder file = builder();
        file.set16(2, magic);
        EXPECT_EQ(errorOfOpening(file.bytes(), place()), 8u) << magic;
    }
}

TEST_P(Scan, AddsUpTheLengthsOfTheRecords) {
    EXPECT_EQ(sizeOf({tiff::byteValues(300, {1, 2, 3, 4})}), 16u);
    EXPECT_EQ(sizeOf({tiff::byteValues(300, {1, 2, 3, 4, 5})}), 17u);
    EXPECT_EQ(sizeOf({tiff::shorts(300, {1, 2})}), 16u);
    EXPECT_EQ(sizeOf({tiff::shorts(300, {1, 2, 3})}), 18u);
    EXPECT_EQ(sizeOf({tiff::longs(300, {1})}), 16u);
    EXPECT_EQ(sizeOf({tiff::longs(300, {1, 2})}), 20u);
    EXPECT_EQ(sizeOf({tiff::rationals(300, {1, 2})}), 20u);
    EXPECT_EQ(sizeOf({tiff::typed(300, 9, 2, 4, {1, 2})}), 20u);
    EXPECT_EQ(sizeOf({tiff::typed(300, 8, 4, 1, {1, 2, 3, 4})}), 16u) << "SSHORTs count as bytes";
    EXPECT_EQ(sizeOf({tiff::typed(300, 12, 5, 1, {1, 2, 3, 4, 5})}), 17u) << "types it does not know too";
    EXPECT_EQ(sizeOf({tiff::field(300, 5, 0, 1)}), 16u) << "a RATIONAL without values";
    EXPECT_EQ(sizeOf({tiff::field(300, 4, 0, 1), tiff::field(301, 3, 0, 1)}), 32u);
}

TEST_P(Scan, CountsLengthsBeyond32Bits) {
    EXPECT_EQ(sizeOf({tiff::field(300, 4, 0x3FFFFFFC, 8)}), 12u + 4 * 0x3FFFFFFCu);
    EXPECT_EQ(sizeOf({tiff::field(300, 4, 0x40000000, 8)}), 0xFFFFFFFFu) << "4 GB and no 0";
    EXPECT_EQ(sizeOf({tiff::field(300, 5, 0x20000000, 8)}), 0xFFFFFFFFu);
    EXPECT_EQ(sizeOf({tiff::field(300, 3, 0x80000000, 8)}), 0xFFFFFFFFu);
    EXPECT_EQ(sizeOf({tiff::field(300, 1, 0xFFFFFFFF, 8), tiff::field(301, 1, 20, 8)}), 0xFFFFFFFFu);
    EXPECT_EQ(sizeOf({tiff::field(300, 5, 0xFFFFFFFF, 8), tiff::field(301, 5, 0xFFFFFFFF, 8)}), 0xFFFFFFFFu);
}

TEST_P(Scan, TakesTheKindOfImageFromNewSubfileType) {
    EXPECT_EQ(flagsOf({tiff::longs(254, {0})}), 0);
    EXPECT_EQ(flagsOf({tiff::longs(254, {1})}), 1);
    EXPECT_EQ(flagsOf({tiff::longs(254, {2})}), 2);
    EXPECT_EQ(flagsOf({tiff::shorts(254, {2})}), 2);
    EXPECT_EQ(flagsOf({tiff::byteValues(254, {2})}), 2);
    EXPECT_EQ(flagsOf({tiff::longs(254, {0x4102})}), 2) << "only the low byte";
    EXPECT_EQ(flagsOf({tiff::shorts(254, {1, 2})}), 1) << "only the first value";
}

TEST_P(Scan, TakesTheKindOfImageFromSubfileTypeLess1) {
    EXPECT_EQ(flagsOf({tiff::shorts(255, {1})}), 0);
    EXPECT_EQ(flagsOf({tiff::shorts(255, {2})}), 1);
    EXPECT_EQ(flagsOf({tiff::shorts(255, {3})}), 2);
    EXPECT_EQ(flagsOf({tiff::shorts(255, {0})}), 255) << "in 8 bits";
    EXPECT_EQ(flagsOf({tiff::longs(255, {2})}), 1);
}

TEST_P(Scan, TakesTheLaterOfBothSubfileTypes) {
    EXPECT_EQ(flagsOf({tiff::shorts(255, {2})}), 1);
    EXPECT_EQ(flagsOf({tiff::shorts(255, {2}), tiff::longs(254, {0})}), 0);
    EXPECT_EQ(flagsOf({tiff::longs(254, {2}), tiff::shorts(255, {2})}), 1);
    EXPECT_EQ(flagsOf({tiff::longs(254, {2}), tiff::longs(254, {1})}), 1);
    EXPECT_EQ(flagsOf({tiff::shorts(255, {0}), tiff::longs(254, {2})}), 2) << "the whole flags are replaced";
}

// By design.
TEST_P(Scan, TakesTheLowByteOfTheOffsetForASubfileTypeThatLiesOutside) {
    EXPECT_EQ(flagsOf({tiff::field(254, 4, 2, 0x1203)}), 3);
    EXPECT_EQ(flagsOf({tiff::field(255, 4, 2, 0x1203)}), 2);
    EXPECT_EQ(flagsOf({tiff::field(254, 9, 1, 0x1203)}), 3);
}

TEST_P(Scan, FailsWhenTheFirstDirectoryCannotBeReached) {
    for (const std::uint32_t offset : {0x7FFFFFFFu, 100000u}) {
        tiff::Builder file = builder();
        file.linkTo(offset);
        EXPECT_EQ(errorOfOpening(file.bytes(), place()), 6u) << offset;
    }
}

TEST_P(Scan, KeepsTheImagesBeforeALinkThatLeadsOutside) {
    tiff::Builder file = builder();
    file.directory({tiff::shorts(256, {1})});
    file.directory({tiff::longs(254, {2})});
    file.linkTo(100000);
    const std::uint32_t link = file.lastLink();
    const OpenedTiff tiff(file.bytes(), place());
    ASSERT_TRUE(tiff);
    EXPECT_EQ(TiffError(), 6u) << "pending";
    EXPECT_EQ(imageCount(tiff.get()), 2u);
    EXPECT_EQ(slotOf(tiff.get(), 1).flags, 2);
    EXPECT_EQ(slotOf(tiff.get(), 2).offset, 0u);
    EXPECT_EQ(lastLinkPosOf(tiff.get()), link);
    EXPECT_EQ(GetTiffImage(tiff.get(), 1), 1u);
}

class ErrorFree : public ::testing::Test {
protected:
    void SetUp() override { SetTiffError(VELLUM_OK); }
    void TearDown() override { SetTiffError(VELLUM_OK); }
};
using ScanOfAFile = ErrorFree;
using ScanOfAMemoryTiff = ErrorFree;

TEST_F(ScanOfAFile, CutAnywhereInTheHeader) {
    for (const std::uint16_t order : {tiff::kII, tiff::kMM}) {
        const Bytes header = tiff::Builder(order).bytes();
        for (std::size_t size = 0; size < header.size(); ++size) {
            const bool half = size == 1 && order == tiff::kMM;
            EXPECT_EQ(errorOfOpening(Bytes(header.begin(), header.begin() + static_cast<long>(size)), Place::File),
                      half ? 14u : 6u)
                << size;
        }
    }
    EXPECT_EQ(errorOfOpening({'X'}, Place::File), 14u);
}

TEST_F(ScanOfAFile, CutAnywhereInTheFirstDirectory) {
    tiff::Builder file;
    file.directory({tiff::shorts(256, {1}), tiff::shorts(257, {1})});
    const Bytes whole = file.bytes();
    for (std::size_t size = 8; size < whole.size(); ++size) {
        EXPECT_EQ(errorOfOpening(Bytes(whole.begin(), whole.begin() + static_cast<long>(size)), Place::File), 6u)
            << size;
    }
    EXPECT_TRUE(OpenedTiff(whole, Place::File));
}

TEST_F(ScanOfAFile, CutAnywhereInALaterDirectoryKeepsTheImagesBefore) {
    tiff::Builder file;
    file.directory({tiff::shorts(256, {1})});
    const std::size_t second = file.position();
    file.directory({tiff::shorts(256, {2}), tiff::shorts(257, {2})});
    const Bytes whole = file.bytes();
    const std::size_t link = file.lastLink();
    for (std::size_t size = second; size < link; ++size) {
        SetTiffError(0);
        const OpenedTiff tiff(Bytes(whole.begin(), whole.begin() + static_cast<long>(size)), Place::File);
        ASSERT_TRUE(tiff) << size;
        EXPECT_EQ(TiffError(), 6u);
        EXPECT_EQ(imageCount(tiff.get()), 1u);
        EXPECT_EQ(slotOf(tiff.get(), 1).offset, 0u);
    }
    // By design: a directory that is there but whose link is not fails the whole scan.
    for (std::size_t size = link; size < whole.size(); ++size) {
        EXPECT_EQ(errorOfOpening(Bytes(whole.begin(), whole.begin() + static_cast<long>(size)), Place::File), 6u);
    }
}

TEST_F(ScanOfAFile, WithABrokenDirectoryLeavesWhatItsFirstEntriesSaid) {
    tiff::Builder file;
    file.directory({tiff::shorts(256, {1})});
    const std::uint32_t second = file.directory({tiff::longs(254, {2}), tiff::longs(254, {1})});
    Bytes cut = file.bytes();
    cut.resize(second + 2 + 12 + 5);
    const OpenedTiff tiff(cut, Place::File);
    EXPECT_EQ(imageCount(tiff.get()), 1u);
    EXPECT_EQ(slotOf(tiff.get(), 1).flags, 2);
    EXPECT_EQ(slotOf(tiff.get(), 1).size, 16u);
}

TEST_F(ScanOfAFile, CannotGoToOffsetsOf2GBAndMore) {
    tiff::Builder file;
    file.directory({tiff::shorts(256, {1})});
    file.linkTo(0x80000000);
    {
        const OpenedTiff tiff(file.bytes(), Place::File);
        ASSERT_TRUE(tiff);
        EXPECT_EQ(SetTiffError(0), 6u);
        EXPECT_EQ(imageCount(tiff.get()), 1u);
    }
    tiff::Builder first;
    first.linkTo(0xFFFFFFFF);
    EXPECT_EQ(errorOfOpening(first.bytes(), Place::File), 6u);
}

TEST_F(ScanOfAMemoryTiff, ThatIsCutReadsZerosBehindItsEnd) {
    tiff::Builder file;
    file.directory({tiff::shorts(256, {1})});
    Bytes cut = file.bytes();
    EXPECT_EQ(errorOfOpening({'I', 'I'}, Place::Memory), 8u) << "a magic number of 0";
    EXPECT_EQ(errorOfOpening({'I'}, Place::Memory), 14u);
    {
        cut.resize(8 + 2);
        const OpenedTiff tiff(cut, Place::Memory);
        ASSERT_TRUE(tiff);
        EXPECT_EQ(imageCount(tiff.get()), 1u) << "one entry of zeros, and a link of 0";
        EXPECT_EQ(slotOf(tiff.get(), 0).size, 16u);
        EXPECT_EQ(TiffError(), 0u);
    }
    {
        cut.resize(8);
        const OpenedTiff tiff(cut, Place::Memory);
        EXPECT_EQ(imageCount(tiff.get()), 1u) << "no entries";
    }
    cut.resize(7);
    cut[4] = 0;
    const OpenedTiff tiff(cut, Place::Memory);
    EXPECT_EQ(imageCount(tiff.get()), 0u);
}

// By design: a memory stream takes positions before its start.
TEST_F(ScanOfAMemoryTiff, TakesOffsetsOf2GBAndMoreForAnEmptyDirectory) {
    tiff::Builder file;
    file.linkTo(0x80000000);
    {
        const OpenedTiff tiff(file.bytes(), Place::Memory);
        ASSERT_TRUE(tiff);
        EXPECT_EQ(imageCount(tiff.get()), 1u);
        EXPECT_EQ(slotOf(tiff.get(), 0).size, 0u);
    }
    file.linkTo(0xFFFFFFFF);
    EXPECT_EQ(errorOfOpening(file.bytes(), Place::Memory), 6u) << "-1 says that a seek failed";
}

TEST_F(ScanOfAMemoryTiff, GoesByTheSizeItIsGiven) {
    tiff::Builder file;
    file.directory({tiff::shorts(256, {1})});
    HGLOBAL block = makeBlock(file.bytes());
    TiffHandle tiff = OpenTiffInMemory(block, 7, T_READ);
    EXPECT_EQ(tiff, nullptr) << "the first directory begins behind the end";
    EXPECT_EQ(SetTiffError(0), 6u);
    tiff = OpenTiffInMemory(block, 8, T_READ);
    EXPECT_EQ(imageCount(tiff), 1u) << "but reads are not held against it";
    CloseTiffFile(tiff);
    tiff = OpenTiffInMemory(block, 0xFFFFFFFF, T_READ);
    EXPECT_EQ(tiff, nullptr) << "a size that is no LONG";
    SetTiffError(0);
    GlobalFree(block);
}

TEST_F(ScanOfAFile, SurvivesEveryFailingRead) {
    tiff::Builder file;
    file.directory({tiff::shorts(256, {1})});
    file.directory({tiff::shorts(256, {2})});
    const TempFile disk(file.bytes());
    unsigned long reads = 0;
    {
        const FailNth counter(Call::Read, FailNth::kNever);
        CloseTiffFile(OpenTiffFile(disk.path(), T_READ));
        reads = counter.calls();
    }
    EXPECT_LE(reads, 9u) << "header, magic number and three links, and two a directory";
    for (unsigned long nth = 0; nth < reads; ++nth) {
        SetTiffError(0);
        const FailNth fault(Call::Read, static_cast<long>(nth));
        TiffHandle tiff = OpenTiffFile(disk.path(), T_READ);
        EXPECT_EQ(TiffError(), 6u) << nth;
        if (tiff != nullptr) {
            EXPECT_EQ(imageCount(tiff), 1u) << nth << ": only the second image may be lost";
        }
        CloseTiffFile(tiff);
    }
}

TEST_F(ScanOfAFile, SurvivesEveryFailingSeek) {
    tiff::Builder file;
    file.directory({tiff::shorts(256, {1})});
    file.directory({tiff::shorts(256, {2})});
    const TempFile disk(file.bytes());
    unsigned long seeks = 0;
    {
        const FailNth counter(Call::Seek, FailNth::kNever);
        CloseTiffFile(OpenTiffFile(disk.path(), T_READ));
        seeks = counter.calls();
    }
    EXPECT_GE(seeks, 2u) << "to each directory";
    unsigned long harmless = 0;
    for (unsigned long nth = 0; nth < seeks; ++nth) {
        SetTiffError(0);
        const FailNth fault(Call::Seek, static_cast<long>(nth));
        TiffHandle tiff = OpenTiffFile(disk.path(), T_READ);
        if (TiffError() == 0) {
            ++harmless;
            EXPECT_EQ(imageCount(tiff), 2u) << nth;
            EXPECT_EQ(lastLinkPosOf(tiff), file.lastLink()) << nth << ": images are appended there";
        } else {
            EXPECT_EQ(TiffError(), 6u) << nth;
            EXPECT_TRUE(tiff == nullptr || imageCount(tiff) == 1) << nth << ": only the second image may be lost";
        }
        CloseTiffFile(tiff);
    }
    EXPECT_LT(harmless, seeks);
}

// 65535 entries a thousand times, in a file of 786 KB.
TEST_P(Scan, OfTheWorstLoopTakesSeconds) {
    tiff::Builder file = builder();
    const std::uint32_t first = file.directory(std::vector<tiff::Entry>(65535, tiff::shorts(256, {1})));
    file.linkTo(first);
    const OpenedTiff tiff(file.bytes(), place());
    EXPECT_EQ(imageCount(tiff.get()), 1000u);
    EXPECT_EQ(slotOf(tiff.get(), 999).size, 65535u * 16);
}

} // namespace
} // namespace vellum::test
