// Handles that outlive a rebuild of their file, and what a rebuild refuses.
#include "support/decode_lines.h"
#include "support/encode_lines.h"
#include "support/read_tags.h"
#include "support/tiff_builder.h"

#include <gtest/gtest.h>

namespace {

using namespace vellum::test;

std::vector<TagValue> page() {
    return pictureTags(800, 40, 1, 40);
}

LineSource black() {
    LineSource source;
    source.lineBytes = 100;
    source.data.assign(4000, 0xFF);
    return source;
}

class StaleHandle : public ::testing::Test {
protected:
    StaleHandle() {
        for (int pages = 0; pages < 2; ++pages) {
            LineSource source = black();
            EXPECT_EQ(WrittenTiff(file_.path(), T_APPEND).add(page(), source), 1u);
        }
    }
    void expectPages(DWORD count) const {
        const OpenedTiff tiff{std::string(file_.path())};
        ASSERT_EQ(NumberOfTiffImages(tiff.get(), VELLUM_ALL_IMAGES), static_cast<LONG>(count));
        for (DWORD index = 0; index < count; ++index) {
            LineLog log;
            log.lineBytes = 100;
            ASSERT_EQ(GetTiffImage(tiff.get(), index), 1u);
            EXPECT_EQ(DecodeTiffImage(tiff.get(), index, 0, 0, log.userValue(), LineLog::receive), 1u);
            EXPECT_EQ(log.data, Bytes(4000, 0xFF)) << "page " << index;
        }
    }
    TempFile file_;
};

TEST_F(StaleHandle, DoesNotWriteItsLinkIntoTheRebuiltFile) {
    const WrittenTiff early(file_.path(), T_APPEND);
    const std::string text(300, 'x');
    ASSERT_EQ(AddTiffTagToImage(file_.path(), 0, 270, 2, text.c_str(), 301), 1u);
    const auto before = readFile(file_.path());
    LineSource source = black();
    EXPECT_EQ(early.add(page(), source), 0u);
    EXPECT_EQ(TiffError(), DWORD{VELLUM_IO_ERROR});
    EXPECT_EQ(readFile(file_.path()), before);
    expectPages(2);
}

TEST_F(StaleHandle, CopiesBehindTheLastImageOfTheRebuiltFile) {
    tiff::Builder builder;
    builder.page({tiff::shorts(256, {800}), tiff::shorts(257, {40}), tiff::longs(278, {40})},
                 {tiff::Bytes(4000, 0xFF)});
    const TempFile other(builder.bytes());
    const TiffHandle early = OpenTiffFile(file_.path(), T_APPEND);
    const TiffHandle from = OpenTiffFile(other.path(), T_READ);
    const std::string text(300, 'x');
    ASSERT_EQ(AddTiffTagToImage(file_.path(), 0, 270, 2, text.c_str(), 301), 1u);
    EXPECT_EQ(CopyTiffImage(from, 0, early), 1u) << TiffError();
    CloseTiffFile(from);
    CloseTiffFile(early);
    expectPages(3);
}

TEST_F(StaleHandle, OfAnAppendIsFineAsLongAsNobodyElseWrites) {
    const WrittenTiff tiff(file_.path(), T_APPEND);
    LineSource first = black();
    LineSource second = black();
    EXPECT_EQ(tiff.add(page(), first), 1u);
    EXPECT_EQ(tiff.add(page(), second), 1u) << "in the first one's place";
    expectPages(3);
}

TEST_F(StaleHandle, DoesNotDropWhatOthersHaveChainedBehindItsImage) {
    const WrittenTiff tiff(file_.path(), T_APPEND);
    LineSource first = black();
    LineSource others = black();
    LineSource second = black();
    EXPECT_EQ(tiff.add(page(), first), 1u);
    EXPECT_EQ(WrittenTiff(file_.path(), T_APPEND).add(page(), others), 1u);
    EXPECT_EQ(tiff.add(page(), second), 0u);
    EXPECT_EQ(TiffError(), DWORD{VELLUM_IO_ERROR});
    expectPages(4);
}

TEST_F(StaleHandle, DoesNotChainBehindAnImageThatWasReplaced) {
    const WrittenTiff tiff(file_.path(), T_APPEND);
    LineSource first = black();
    LineSource second = black();
    LineSource late = black();
    EXPECT_EQ(tiff.add(page(), first), 1u);
    const WrittenTiff early(file_.path(), T_APPEND);
    EXPECT_EQ(tiff.add(page(), second), 1u) << "in the first one's place";
    EXPECT_EQ(early.add(page(), late), 0u);
    EXPECT_EQ(TiffError(), DWORD{VELLUM_IO_ERROR});
    expectPages(3);
}

TEST(MemoryHeader, MayHaveAnyLinkThatLeadsNowhere) {
    for (const BYTE filling : Bytes{0x00, 0x01, 0xFF}) {
        const HGLOBAL block = makeBlock({'I', 'I', 42, 0, 8, 0, 0, 0});
        const TiffHandle tiff = OpenTiffInMemory(block, 8, T_CREAT);
        const LONG index = DefineTiffImage(tiff);
        for (const TagValue &tag : page()) {
            ASSERT_TRUE(define(tiff, index, tag));
        }
        LineSource source = black();
        source.data.assign(4000, filling);
        EXPECT_EQ(EncodeTiffImage(tiff, 0, source.userValue(), LineSource::supply), 1u) << TiffError();
        const OpenedTiff written(blockBytes(GetMemoryTiffHandle(tiff)));
        EXPECT_EQ(NumberOfTiffImages(written.get(), VELLUM_ALL_IMAGES), 1);
        GlobalFree(GetMemoryTiffHandle(tiff));
        CloseTiffFile(tiff);
    }
}

TEST_F(StaleHandle, EditsRefuseNumbersThatAreNoTags) {
    const auto before = readFile(file_.path());
    EXPECT_EQ(AddTiffTagToImage(file_.path(), 0, 65536 + 256, 1, "abcde", 5), 0u);
    EXPECT_EQ(TiffError(), DWORD{VELLUM_BAD_TAG});
    EXPECT_EQ(readFile(file_.path()), before);
}

TEST_F(StaleHandle, EditsRefuseTypesOfWhichOnlyAPartWouldBeStored) {
    const auto before = readFile(file_.path());
    const BYTE values[16] = {};
    for (const DWORD type : {8u, 10u, 11u, 12u}) {
        EXPECT_EQ(AddTiffTagToImage(file_.path(), 0, 40000, type, values, 1), 0u) << type;
        EXPECT_EQ(TiffError(), DWORD{VELLUM_BAD_TAG}) << type;
    }
    EXPECT_EQ(readFile(file_.path()), before);
}

TEST(Rebuild, RefusesEveryTagThatLeadsToAnotherDirectory) {
    for (const unsigned tag : {330u, 400u, 34665u, 34853u, 40965u, 50933u}) {
        tiff::Builder builder;
        builder.page({tiff::shorts(256, {8}), tiff::shorts(257, {1}), tiff::longs(tag, {8})}, {{0x77}});
        const TempFile file(builder.bytes());
        EXPECT_EQ(AddTiffTagToImage(file.path(), 0, 270, 2, "x", 2), 0u) << tag;
        EXPECT_EQ(TiffError(), DWORD{VELLUM_BAD_TAG}) << tag;
        EXPECT_EQ(DeleteTiffTagOfImage(file.path(), 0, tag), 1u) << tag;
    }
}

} // namespace
