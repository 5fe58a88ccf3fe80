// Copying images from file to file: what the copy holds and where, how copies are linked, and what is refused.
#include "support/decode_lines.h"
#include "support/encode_lines.h"
#include "support/faults.h"
#include "support/read_tags.h"
#include "write/copying.h"
#include "write/raw_pages.h"

#include <gtest/gtest.h>

namespace {

using namespace vellum::test;

class Copy : public ::testing::Test {
protected:
    TempFolder folder_;
    const std::string to_ = folder_.file("to.tif");
};

TEST_F(Copy, ANewFileIsHeaderThenDirectoryThenValuesThenStrips) {
    const std::string from = folder_.add(
        "from.tif", onePage(tiff::kII, plainEntries(2, 2, {tiff::ascii(305, "seven!")}), {{1, 2}, {3, 4, 5}}));
    ASSERT_EQ(copyInFile(from, 0, to_, T_CREAT), kCopied);
    const RawTiff written(to_);
    ASSERT_EQ(written.pages.size(), 1u);
    EXPECT_EQ(written.pages[0].offset, 8u);
    const auto bytes = readFile(to_);
    ASSERT_TRUE(bytes);
    EXPECT_EQ(Bytes(bytes->begin(), bytes->begin() + 10), (Bytes{'I', 'I', 42, 0, 8, 0, 0, 0, 9, 0}));
    // Behind 9 entries and the link: two offsets, two byte counts, the text of 7 bytes; then the strips without gaps.
    const std::uint32_t values = 8 + 2 + 9 * 12 + 4;
    EXPECT_EQ(written.pages[0].numbers(273), (std::vector<std::uint32_t>{values + 23, values + 25}));
    EXPECT_EQ(bytes->size(), values + 28);
    EXPECT_EQ(written.pages[0].strips, (std::vector<Bytes>{{1, 2}, {3, 4, 5}}));
}

TEST_F(Copy, AllTagsAndStripsOfEveryPageOfBothByteOrders) {
    for (const std::uint16_t order : {tiff::kII, tiff::kMM}) {
        const std::string from = folder_.add("from.tif", manyPages(order));
        const RawTiff original(from);
        ASSERT_EQ(original.pages.size(), 4u);
        for (DWORD page = 0; page < 4; ++page) {
            SCOPED_TRACE(page);
            ASSERT_EQ(copyInFile(from, page, to_, T_CREAT), kCopied);
            const RawTiff copy(to_);
            ASSERT_EQ(copy.pages.size(), 1u);
            EXPECT_TRUE(copy.whole);
            EXPECT_FALSE(copy.motorola);
            expectCopied(copy.pages[0], original.pages[page]);
        }
    }
}

TEST_F(Copy, AnAppendedImageStandsAtTheEndInTheFilesByteOrder) {
    for (const std::uint16_t order : {tiff::kII, tiff::kMM}) {
        const std::string from = folder_.add("from.tif", manyPages(tiff::kII));
        folder_.add("to.tif", manyPages(order));
        const RawTiff before(to_);
        const auto bytesBefore = readFile(to_);
        ASSERT_EQ(copyInFile(from, 1, to_, T_APPEND), kCopied);
        RawTiff after(to_);
        ASSERT_EQ(after.pages.size(), 5u);
        EXPECT_TRUE(after.whole);
        EXPECT_EQ(after.motorola, order == tiff::kMM);
        EXPECT_EQ(after.pages[4].offset, before.size());
        expectCopied(after.pages[4], RawTiff(from).pages[1]);
        // Nothing but the link has changed.
        Bytes kept = after.slice(0, static_cast<std::uint32_t>(before.size()));
        for (std::uint32_t i = 0; i < 4; ++i) {
            kept[before.pages[3].linkAt + i] = 0;
        }
        EXPECT_TRUE(kept == *bytesBefore);
    }
}

TEST_F(Copy, SeveralCopiesToOneHandleFollowEachOther) {
    const std::string from = folder_.add("from.tif", manyPages(tiff::kMM));
    const RawTiff original(from);
    for (const bool append : {false, true}) {
        if (append) {
            folder_.add("to.tif", manyPages(tiff::kMM));
        }
        const std::size_t before = append ? 4 : 0;
        {
            const OpenedTiff source(from);
            const WrittenTiff destination(to_.c_str(), append ? T_APPEND : T_CREAT);
            for (const DWORD page : {2UL, 0UL, 3UL, 1UL, 2UL}) {
                ASSERT_EQ(copyImage(source.get(), page, destination.get()), kCopied);
            }
        }
        const RawTiff copy(to_);
        EXPECT_TRUE(copy.whole);
        ASSERT_EQ(copy.pages.size(), before + 5);
        std::size_t at = before;
        for (const std::size_t page : {2U, 0U, 3U, 1U, 2U}) {
            expectCopied(copy.pages[at++], original.pages[page]);
        }
    }
}

TEST_F(Copy, AThousandImagesGoIntoAFileAndNotOneMore) {
    const std::string from = folder_.add("from.tif", onePage(tiff::kII, plainEntries(1, 3), {{1, 2, 3}}));
    const OpenedTiff source(from);
    {
        const WrittenTiff destination(to_.c_str());
        for (int i = 0; i < 1000; ++i) {
            ASSERT_EQ(copyImage(source.get(), 0, destination.get()), kCopied) << i;
        }
        EXPECT_EQ(copyImage(source.get(), 0, destination.get()), failedWith(VELLUM_INDEX_OUT_OF_RANGE));
    }
    const auto full = readFile(to_);
    EXPECT_EQ(GetNumberOfImagesInTiffFile(to_.c_str()), 1000u);
    EXPECT_EQ(copyInFile(from, 0, to_, T_APPEND), failedWith(VELLUM_INDEX_OUT_OF_RANGE));
    EXPECT_TRUE(readFile(to_) == full);
}

TEST_F(Copy, EncodedAndCopiedImagesFollowEachOther) {
    const std::string from = folder_.add("from.tif", codedPage(VELLUM_KEY_GROUP4, tiff::kII));
    {
        const OpenedTiff source(from);
        const WrittenTiff destination(to_.c_str());
        ASSERT_EQ(copyImage(source.get(), 0, destination.get()), kCopied);
        LineSource lines;
        lines.lineBytes = 2;
        lines.data = {1, 2, 3, 4};
        ASSERT_EQ(destination.add(pictureTags(16, 2, 1, 2), lines), 1u);
        EXPECT_EQ(GetNumberOfImagesInTiffFile(to_.c_str()), 2u);
        ASSERT_EQ(copyImage(source.get(), 0, destination.get()), kCopied);
    }
    const RawTiff copy(to_);
    ASSERT_EQ(copy.pages.size(), 3u);
    EXPECT_EQ(copy.pages[1].strips, (std::vector<Bytes>{{1, 2, 3, 4}}));
}

TEST_F(Copy, ImagesThatCameToTheFileMeanwhileAreNotCutOff) {
    const std::string from = folder_.add("from.tif", manyPages(tiff::kII));
    folder_.add("to.tif", manyPages(tiff::kMM));
    {
        const OpenedTiff source(from);
        const WrittenTiff early(to_.c_str(), T_APPEND);
        ASSERT_EQ(copyInFile(from, 0, to_, T_APPEND), kCopied);
        ASSERT_EQ(copyInFile(from, 1, to_, T_APPEND), kCopied);
        ASSERT_EQ(copyImage(source.get(), 2, early.get()), kCopied);
    }
    const RawTiff all(to_);
    ASSERT_EQ(all.pages.size(), 7u);
    expectCopied(all.pages[6], RawTiff(from).pages[2]);
}

TEST_F(Copy, AChainThatBreaksOrLoopsIsNotAppendedTo) {
    const std::string from = folder_.add("from.tif", manyPages(tiff::kII));
    for (const bool loops : {false, true}) {
        tiff::Builder file;
        const std::uint32_t first = file.page(plainEntries(1, 3), {{1, 2}});
        file.linkTo(loops ? first : 100000);
        folder_.add("to.tif", file.bytes());
        EXPECT_EQ(copyInFile(from, 0, to_, T_APPEND), failedWith(loops ? VELLUM_INDEX_OUT_OF_RANGE : VELLUM_IO_ERROR));
        EXPECT_TRUE(readFile(to_) == file.bytes());
    }
}

TEST_F(Copy, ANewTiffInMemoryStartsAChainOfItsOwn) {
    const std::string from = folder_.add("from.tif", manyPages(tiff::kII));
    const OpenedTiff source(from);
    HGLOBAL block = makeBlock(manyPages(tiff::kII));
    TiffHandle destination = OpenTiffInMemory(block, 8, T_CREAT);
    ASSERT_EQ(copyImage(source.get(), 0, destination), kCopied);
    const RawTiff memory(blockBytes(GetMemoryTiffHandle(destination)));
    CloseTiffFile(destination);
    GlobalFree(block);
    EXPECT_EQ(memory.pages.size(), 1u);
}

TEST_F(Copy, NeitherImageStaysRegisteredUnlessTheSourceWas) {
    const std::string from = folder_.add("from.tif", manyPages(tiff::kII));
    const OpenedTiff source(from);
    const WrittenTiff destination(to_.c_str());
    ASSERT_EQ(copyImage(source.get(), 1, destination.get()), kCopied);
    EXPECT_EQ(IsTiffImageRegistered(source.get(), 1), 0u);
    EXPECT_EQ(IsTiffImageRegistered(destination.get(), 0), 0u);
    ASSERT_TRUE(registerImage(source.get(), 1));
    const auto offsets = longValues(source.get(), 1, 273);
    ASSERT_EQ(copyImage(source.get(), 1, destination.get()), kCopied);
    EXPECT_EQ(IsTiffImageRegistered(source.get(), 1), 1u);
    EXPECT_EQ(IsTiffImageRegistered(destination.get(), 1), 0u);
    EXPECT_EQ(longValues(source.get(), 1, 273), offsets) << "the source's tags have changed";
}

TEST_F(Copy, TheCopyCanBeLoadedThroughTheSameHandle) {
    const std::string from = folder_.add("from.tif", manyPages(tiff::kMM));
    const OpenedTiff source(from);
    const WrittenTiff destination(to_.c_str());
    ASSERT_EQ(copyImage(source.get(), 2, destination.get()), kCopied);
    TiffFileInfo info{};
    GetTiffFileInfo(destination.get(), &info);
    EXPECT_EQ(info.firstDirectoryOffset, 8u);
    EXPECT_EQ(info.imageCount, 1u);
    ASSERT_TRUE(registerImage(destination.get(), 0));
    EXPECT_EQ(storedTag(destination.get(), 0, 65000).bytes, (Bytes{1, 2, 3, 4, 5}));
}

TEST_F(Copy, TagsThatTheCallerDefinedAreCopied) {
    const std::string from = folder_.add("from.tif", manyPages(tiff::kMM));
    const OpenedTiff source(from);
    ASSERT_TRUE(registerImage(source.get(), 2));
    ASSERT_EQ(DefineTiffImageInfoBuffer(source.get(), 2, 305, "new", 2, 4), 1);
    ASSERT_EQ(DefineTiffImageInfo(source.get(), 2, 65000, 3, 77), 1);
    {
        const WrittenTiff destination(to_.c_str());
        ASSERT_EQ(copyImage(source.get(), 2, destination.get()), kCopied);
    }
    const RawTiff copy(to_);
    ASSERT_EQ(copy.pages.size(), 1u);
    expectCopied(copy.pages[0], RawTiff(from).pages[2], {305, 65000});
    EXPECT_EQ(copy.pages[0].numbers(65000), (std::vector<std::uint32_t>{77}));
    ASSERT_NE(copy.pages[0].find(305), nullptr);
    EXPECT_EQ(copy.pages[0].find(305)->values, (Bytes{'n', 'e', 'w', 0}));
}

TEST_F(Copy, TheDecodedPixelsAreTheSame) {
    for (const DWORD key : kAllKeys) {
        for (const std::uint16_t order : {tiff::kII, tiff::kMM}) {
            SCOPED_TRACE(keyName(key));
            const std::string from = folder_.add("from.tif", codedPage(key, order));
            ASSERT_EQ(copyInFile(from, 0, to_, T_CREAT), kCopied);
            LineLog logs[2];
            int i = 0;
            for (const std::string &path : {from, to_}) {
                const OpenedTiff tiff(path);
                ASSERT_TRUE(registerImage(tiff.get(), 0));
                EXPECT_EQ(decodeInto(logs[i], tiff.get(), 0), kDecoded);
                ++i;
            }
            EXPECT_EQ(logs[0].lines, 20u);
            EXPECT_TRUE(logs[0].data == logs[1].data);
        }
    }
}

TEST_F(Copy, ShortOffsetsStayShortWhereTheyFit) {
    const std::string from =
        folder_.add("from.tif", pageWith({tiff::shorts(273, {8, 20}), tiff::shorts(279, {12, 5})}));
    ASSERT_EQ(copyInFile(from, 0, to_, T_CREAT), kCopied);
    const RawTiff copy(to_);
    ASSERT_NE(copy.pages[0].find(273), nullptr);
    EXPECT_EQ(copy.pages[0].find(273)->type, 3u);
    expectCopied(copy.pages[0], RawTiff(from).pages[0]);
}

TEST_F(Copy, ShortOffsetsBecomeLongJustWhereTheyNoLongerFit) {
    const std::string from =
        folder_.add("from.tif", pageWith({tiff::shorts(273, {8, 20}), tiff::shorts(279, {12, 5})}));
    // 8 entries: the second strip of a copy at E lies at E + 102 + 12.
    for (const DWORD end : {0xFFFFUL - 114, 0xFFFFUL - 113}) {
        tiff::Builder large;
        large.page(plainEntries(1, 3), {{1, 2, 3}});
        large.append(tiff::Bytes(end - large.position(), 0));
        folder_.add("to.tif", large.bytes());
        ASSERT_EQ(copyInFile(from, 0, to_, T_APPEND), kCopied);
        const RawTiff copy(to_);
        ASSERT_EQ(copy.pages.size(), 2u);
        EXPECT_EQ(copy.pages[1].find(273)->type, end == 0xFFFFUL - 114 ? 3u : 4u);
        expectCopied(copy.pages[1], RawTiff(from).pages[0]);
    }
}

TEST_F(Copy, ByteCountsThatAreShortStaySo) {
    const std::string from = folder_.add("from.tif", pageWith({tiff::longs(273, {8, 20}), tiff::shorts(279, {12, 5})}));
    ASSERT_EQ(copyInFile(from, 0, to_, T_CREAT), kCopied);
    expectCopied(RawTiff(to_).pages[0], RawTiff(from).pages[0]);
}

TEST_F(Copy, TilesAreCopiedAsStripsAre) {
    const std::string from =
        folder_.add("from.tif", pageWith({tiff::longs(322, {16}), tiff::longs(323, {16}), tiff::longs(324, {30, 8, 30}),
                                          tiff::shorts(325, {10, 20, 10})}));
    ASSERT_EQ(copyInFile(from, 0, to_, T_CREAT), kCopied);
    expectCopied(RawTiff(to_).pages[0], RawTiff(from).pages[0]);
}

TEST_F(Copy, AStripOf100000BytesIsCopiedInFourReads) {
    unsigned long reads[2] = {};
    for (const std::size_t size : {std::size_t{1}, std::size_t{100000}}) {
        const std::string from =
            folder_.add("from.tif", onePage(tiff::kII, plainEntries(1, 3), {tiff::Bytes(size, 0x5A)}));
        const OpenedTiff source(from);
        const WrittenTiff destination(to_.c_str());
        const FailNth counter(Call::Read, FailNth::kNever);
        ASSERT_EQ(copyImage(source.get(), 0, destination.get()), kCopied);
        reads[size == 1 ? 0 : 1] = counter.calls();
    }
    EXPECT_EQ(reads[1], reads[0] + 3);
}

// ---- memory

TEST_F(Copy, FromMemoryIntoAFileAndBack) {
    const RawTiff original(manyPages(tiff::kMM));
    {
        const OpenedTiff source(manyPages(tiff::kMM));
        const WrittenTiff destination(to_.c_str());
        ASSERT_EQ(copyImage(source.get(), 2, destination.get()), kCopied);
        ASSERT_EQ(copyImage(source.get(), 1, destination.get()), kCopied);
    }
    const RawTiff copy(to_);
    ASSERT_EQ(copy.pages.size(), 2u);
    expectCopied(copy.pages[0], original.pages[2]);
    const OpenedTiff source(to_);
    const WrittenTiff destination;
    ASSERT_EQ(copyImage(source.get(), 1, destination.get()), kCopied);
    ASSERT_EQ(copyImage(source.get(), 0, destination.get()), kCopied);
    const RawTiff memory(destination.memory());
    ASSERT_EQ(memory.pages.size(), 2u);
    EXPECT_TRUE(memory.whole);
    expectCopied(memory.pages[0], original.pages[1]);
    expectCopied(memory.pages[1], original.pages[2]);
}

TEST_F(Copy, FromMemoryIntoMemoryIsRefused) {
    const OpenedTiff source(manyPages(tiff::kII));
    const WrittenTiff destination;
    EXPECT_EQ(copyImage(source.get(), 0, destination.get()), failedWith(VELLUM_IO_ERROR));
}

TEST_F(Copy, AStripOutsideAMemoryTiffIsRefused) {
    const OpenedTiff source(pageWith({tiff::longs(273, {8}), tiff::longs(279, {5000})}));
    const WrittenTiff destination(to_.c_str());
    EXPECT_EQ(copyImage(source.get(), 0, destination.get()), failedWith(VELLUM_IO_ERROR));
}

// ---- failures

struct Refused {
    const char *name;
    std::vector<tiff::Entry> stripTags;
    DWORD error;
};

class CopyRefuses : public ::testing::TestWithParam<Refused> {};

TEST_P(CopyRefuses, AndNothingIsWritten) {
    const TempFolder folder;
    const std::string from = folder.add("from.tif", pageWith(GetParam().stripTags));
    EXPECT_EQ(copyInFile(from, 0, folder.file("to.tif"), T_CREAT), failedWith(GetParam().error));
    EXPECT_EQ(folder.names(), std::vector<std::string>{"from.tif"});
    const Bytes existing = manyPages(tiff::kMM);
    const std::string to = folder.add("to.tif", existing);
    EXPECT_EQ(copyInFile(from, 0, to, T_APPEND), failedWith(GetParam().error));
    EXPECT_TRUE(readFile(to) == existing);
    EXPECT_EQ(copyInFile(from, 0, to, T_CREAT), failedWith(GetParam().error));
    EXPECT_TRUE(readFile(to) == existing) << "not even a file that was to be made anew is touched";
}

INSTANTIATE_TEST_SUITE_P(
    All, CopyRefuses,
    ::testing::Values(
        Refused{"NoStripTags", {}, VELLUM_TAG_MISSING},
        Refused{"NoByteCounts", {tiff::longs(273, {8})}, VELLUM_TAG_MISSING},
        Refused{"NoOffsets", {tiff::longs(279, {8})}, VELLUM_TAG_MISSING},
        Refused{"MoreOffsets", {tiff::longs(273, {8, 9}), tiff::longs(279, {1})}, VELLUM_STRIP_OUT_OF_RANGE},
        Refused{"MoreByteCounts", {tiff::longs(273, {8}), tiff::longs(279, {1, 1})}, VELLUM_STRIP_OUT_OF_RANGE},
        Refused{"OffsetsAsBytes", {tiff::byteValues(273, {8}), tiff::longs(279, {1})}, VELLUM_STRIP_OUT_OF_RANGE},
        Refused{"CountsAsText", {tiff::longs(273, {8}), tiff::ascii(279, "")}, VELLUM_STRIP_OUT_OF_RANGE},
        Refused{"NoSize", {tiff::longs(273, {8}), tiff::longs(279, {0})}, VELLUM_STRIP_OUT_OF_RANGE},
        Refused{"BehindTheEnd", {tiff::longs(273, {8}), tiff::longs(279, {500})}, VELLUM_IO_ERROR},
        Refused{"FarBehindTheEnd", {tiff::longs(273, {0x80000000}), tiff::longs(279, {1})}, VELLUM_IO_ERROR},
        Refused{"HugeCount", {tiff::longs(273, {8}), tiff::longs(279, {0xFFFFFFFF})}, VELLUM_IO_ERROR},
        Refused{"WrappingAround", {tiff::longs(273, {0xFFFFFFF0}), tiff::longs(279, {0x20})}, VELLUM_IO_ERROR}),
    [](const ::testing::TestParamInfo<Refused> &refused) { return refused.param.name; });

TEST_F(Copy, StripsThatShareTheirBytesBeyondAllMeasureAreRefused) {
    const std::vector<std::uint32_t> offsets(4000, 8);
    const std::vector<std::uint32_t> counts(4000, 10000);
    const std::string from =
        folder_.add("from.tif", pageWith({tiff::longs(273, offsets), tiff::longs(279, counts)}, 10000));
    EXPECT_EQ(copyInFile(from, 0, to_, T_CREAT), failedWith(VELLUM_IO_ERROR));
    const std::string few =
        folder_.add("few.tif", pageWith({tiff::longs(273, {8, 8, 8}), tiff::longs(279, {100, 100, 99})}));
    ASSERT_EQ(copyInFile(few, 0, to_, T_CREAT), kCopied);
    expectCopied(RawTiff(to_).pages[0], RawTiff(few).pages[0]);
}

TEST_F(Copy, AnEmptyStripWithoutAPlaceIsNoError) {
    const std::string from = folder_.add("from.tif", pageWith({tiff::longs(273, {8, 0}), tiff::longs(279, {5, 0})}));
    ASSERT_EQ(copyInFile(from, 0, to_, T_CREAT), kCopied);
    expectCopied(RawTiff(to_).pages[0], RawTiff(from).pages[0]);
}

TEST_F(Copy, AnImageThatIsNotThereIsRefused) {
    const std::string from = folder_.add("from.tif", manyPages(tiff::kII));
    EXPECT_EQ(copyInFile(from, 4, to_, T_CREAT), failedWith(VELLUM_IO_ERROR));
    EXPECT_EQ(copyInFile(from, 1000, to_, T_CREAT), failedWith(VELLUM_INDEX_OUT_OF_RANGE));
    EXPECT_EQ(folder_.names(), std::vector<std::string>{"from.tif"});
}

TEST_F(Copy, FilesThatDoNotOpenAreRefusedWithTheErrorOfTheOpening) {
    const std::string from = folder_.add("from.tif", manyPages(tiff::kII));
    const std::string text = folder_.add("text.txt", {'t', 'e', 'x', 't'});
    EXPECT_EQ(copyInFile(folder_.file("none.tif"), 0, to_, T_CREAT), failedWith(VELLUM_IO_ERROR));
    EXPECT_EQ(copyInFile(text, 0, to_, T_CREAT), failedWith(VELLUM_BAD_BYTE_ORDER));
    EXPECT_EQ(copyInFile(from, 0, text, T_APPEND), failedWith(VELLUM_BAD_BYTE_ORDER));
    EXPECT_EQ(copyInFile(from, 0, folder_.file("none/to.tif"), T_CREAT), failedWith(VELLUM_IO_ERROR));
    EXPECT_EQ(CopyTiffImageInFile(nullptr, 0, to_.c_str(), T_CREAT), 0u);
    EXPECT_EQ(TiffError(), DWORD{VELLUM_IO_ERROR});
    EXPECT_EQ(CopyTiffImageInFile(from.c_str(), 0, nullptr, T_CREAT), 0u);
    EXPECT_EQ(CopyTiffImage(nullptr, 0, nullptr), 0u);
    EXPECT_EQ(folder_.names(), (std::vector<std::string>{"from.tif", "text.txt"}));
}

TEST_F(Copy, AFileIsNotCopiedIntoItself) {
    const Bytes content = manyPages(tiff::kII);
    const std::string from = folder_.add("from.tif", content);
    for (const DWORD mode : {DWORD{T_CREAT}, DWORD{T_APPEND}, DWORD{T_READ}}) {
        EXPECT_EQ(copyInFile(from, 0, from, mode), failedWith(VELLUM_IO_ERROR));
        EXPECT_EQ(copyInFile(from, 0, folder_.file("./from.tif"), mode), failedWith(VELLUM_IO_ERROR));
        EXPECT_TRUE(readFile(from) == content);
    }
}

TEST_F(Copy, ADestinationOpenedForReadingIsAppendedTo) {
    const std::string from = folder_.add("from.tif", manyPages(tiff::kII));
    folder_.add("to.tif", manyPages(tiff::kMM));
    ASSERT_EQ(copyInFile(from, 0, to_, T_READ), kCopied);
    EXPECT_EQ(RawTiff(to_).pages.size(), 5u);
}

TEST_F(Copy, AFileThatCouldNotBeOpenedForAppendingIsNotWrittenTo) {
    const std::string from = folder_.add("from.tif", manyPages(tiff::kII));
    const Bytes existing = manyPages(tiff::kMM);
    folder_.add("to.tif", existing);
    const OpenedTiff source(from);
    TiffHandle destination = nullptr;
    {
        const FailNth fault(Call::Open, 0);
        destination = OpenTiffFile(to_.c_str(), T_APPEND);
    }
    EXPECT_EQ(copyImage(source.get(), 0, destination), failedWith(VELLUM_IO_ERROR));
    CloseTiffFile(destination);
    EXPECT_TRUE(readFile(to_) == existing);
}

TEST_F(Copy, AFailedCopyLeavesTheHandleAsItWas) {
    const std::string from = folder_.add("from.tif", manyPages(tiff::kII));
    const std::string bad = folder_.add("bad.tif", pageWith({tiff::longs(273, {8}), tiff::longs(279, {500})}));
    {
        const OpenedTiff source(from);
        const OpenedTiff badSource(bad);
        const WrittenTiff destination(to_.c_str());
        EXPECT_EQ(copyImage(badSource.get(), 0, destination.get()), failedWith(VELLUM_IO_ERROR));
        EXPECT_EQ(NumberOfTiffImages(destination.get(), VELLUM_ALL_IMAGES), 0);
        EXPECT_EQ(IsTiffImageRegistered(badSource.get(), 0), 0u);
        ASSERT_EQ(copyImage(source.get(), 0, destination.get()), kCopied);
        EXPECT_EQ(copyImage(badSource.get(), 0, destination.get()), failedWith(VELLUM_IO_ERROR));
        ASSERT_EQ(copyImage(source.get(), 1, destination.get()), kCopied);
    }
    EXPECT_EQ(RawTiff(to_).pages.size(), 2u);
}

TEST_F(Copy, ANewFileHasTheByteOrderThatItsHandleWasGiven) {
    const std::string from = folder_.add("from.tif", manyPages(tiff::kII));
    {
        const OpenedTiff source(from);
        const WrittenTiff destination(to_.c_str());
        ModiTiffFileInfo(destination.get(), nullptr, VELLUM_BYTE_ORDER_MM);
        ASSERT_EQ(copyImage(source.get(), 2, destination.get()), kCopied);
    }
    const RawTiff copy(to_);
    EXPECT_TRUE(copy.motorola);
    ASSERT_EQ(copy.pages.size(), 1u);
    expectCopied(copy.pages[0], RawTiff(from).pages[2]);
}

TEST_F(Copy, AnExistingFileIsNotWrittenToInAnotherByteOrder) {
    const std::string from = folder_.add("from.tif", manyPages(tiff::kII));
    const Bytes existing = manyPages(tiff::kII);
    folder_.add("to.tif", existing);
    {
        const OpenedTiff source(from);
        const WrittenTiff destination(to_.c_str(), T_APPEND);
        ModiTiffFileInfo(destination.get(), nullptr, VELLUM_BYTE_ORDER_MM);
        EXPECT_EQ(copyImage(source.get(), 2, destination.get()), failedWith(VELLUM_BAD_BYTE_ORDER));
    }
    EXPECT_TRUE(readFile(to_) == existing);
}

} // namespace
