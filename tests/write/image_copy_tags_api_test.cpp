// What becomes of tags that lead to data or to other directories, or whose types the library does not read in full,
// when an image is copied.
#include "support/read_tags.h"
#include "write/copying.h"
#include "write/raw_pages.h"

#include <gtest/gtest.h>

namespace {

using namespace vellum::test;

class CopiedTags : public ::testing::Test {
protected:
    TempFolder folder_;
    const std::string to_ = folder_.file("to.tif");
};

// Tables and tiles in an order of their own, with gaps between them.
Bytes jpegPage(std::vector<tiff::Entry> more = {}, std::vector<std::uint32_t> huffman = {2, 1}) {
    tiff::Builder file(tiff::kMM);
    tiff::Bytes table(16, 0);
    table[3] = static_cast<std::uint8_t>(huffman[0]);
    table[15] = static_cast<std::uint8_t>(huffman[1]);
    tiff::Bytes ac = table;
    for (std::uint32_t i = 0; i < huffman[0] + huffman[1]; ++i) {
        ac.push_back(static_cast<std::uint8_t>(0x90 + i));
    }
    const std::uint32_t acAt = file.append(ac);
    file.append({1, 1, 1});
    tiff::Bytes quantization(64, 0x33);
    const std::uint32_t qAt = file.append(quantization);
    const std::uint32_t tileAt = file.append({0xA0, 0xA1, 0xA2, 0xA3, 0xA4});
    std::vector<tiff::Entry> entries = {
        tiff::shorts(256, {16}),         tiff::shorts(257, {16}),  tiff::shorts(258, {8}),
        tiff::shorts(259, {6}),          tiff::shorts(322, {16}),  tiff::shorts(323, {8}),
        tiff::longs(324, {tileAt, qAt}), tiff::longs(325, {5, 2}), tiff::shorts(512, {1}),
        tiff::longs(519, {qAt, qAt}),    tiff::longs(520, {acAt}), tiff::longs(521, {acAt})};
    entries.insert(entries.end(), more.begin(), more.end());
    file.directory(entries);
    return file.bytes();
}

TEST_F(CopiedTags, JpegTablesFollowTheTilesInTheOrderOfTheirTags) {
    const std::string from = folder_.add("from.tif", jpegPage());
    ASSERT_EQ(copyInFile(from, 0, to_, T_CREAT), kCopied);
    RawTiff copy(to_);
    ASSERT_EQ(copy.pages.size(), 1u);
    const RawPage &page = copy.pages[0];
    expectCopied(page, RawTiff(from).pages[0]);
    const std::uint32_t data = 8 + 2 + 12 * 12 + 4 + 8 + 8 + 8;
    EXPECT_EQ(page.numbers(324), (std::vector<std::uint32_t>{data, data + 5}));
    EXPECT_EQ(page.numbers(519), (std::vector<std::uint32_t>{data + 7, data + 71}));
    EXPECT_EQ(page.numbers(520), (std::vector<std::uint32_t>{data + 135}));
    EXPECT_EQ(page.numbers(521), (std::vector<std::uint32_t>{data + 154}));
    EXPECT_EQ(copy.size(), data + 173);
    EXPECT_EQ(copy.slice(data + 71, 64), Bytes(64, 0x33));
    EXPECT_EQ(copy.slice(data + 154 + 16, 3), (Bytes{0x90, 0x91, 0x92}));
}

TEST_F(CopiedTags, AJpegTableOutsideTheFileFailsTheCopy) {
    for (const unsigned tag : {519U, 520U, 521U}) {
        SCOPED_TRACE(tag);
        tiff::Builder file;
        file.append(tiff::Bytes(100, 0));
        std::vector<tiff::Entry> entries = {tiff::shorts(259, {6}), tiff::longs(324, {8}), tiff::longs(325, {5}),
                                            tiff::longs(tag, {1000000})};
        file.directory(entries);
        const std::string from = folder_.add("from.tif", file.bytes());
        EXPECT_EQ(copyInFile(from, 0, to_, T_CREAT), failedWith(VELLUM_IO_ERROR));
        EXPECT_FALSE(readFile(to_)) << "nothing is written";
    }
}

TEST_F(CopiedTags, AJpegStreamAsAWholeIsMovedToo) {
    tiff::Builder file;
    file.append(tiff::Bytes{9, 0xFF, 0xD8, 1, 2, 3, 0xFF, 0xD9});
    file.directory({tiff::shorts(259, {6}), tiff::longs(273, {11}), tiff::longs(279, {2}), tiff::longs(513, {9}),
                    tiff::longs(514, {7})});
    const std::string from = folder_.add("from.tif", file.bytes());
    ASSERT_EQ(copyInFile(from, 0, to_, T_CREAT), kCopied);
    RawTiff copy(to_);
    EXPECT_EQ(copy.slice(copy.pages[0].numbers(513).at(0), 7), (Bytes{0xFF, 0xD8, 1, 2, 3, 0xFF, 0xD9}));
    EXPECT_EQ(copy.pages[0].strips, (std::vector<Bytes>{{1, 2}}));
}

TEST_F(CopiedTags, ALoneSlongReadsBackAsItWasRead) {
    const std::string from = folder_.add(
        "from.tif", onePage(tiff::kII, plainEntries(1, 3, {tiff::field(65000, 9, 1, 8)}), {{0x11, 0x22, 0x33, 0x44}}));
    ASSERT_EQ(copyInFile(from, 0, to_, T_CREAT), kCopied);
    const OpenedTiff copy(to_);
    ASSERT_TRUE(registerImage(copy.get(), 0));
    EXPECT_EQ(storedTag(copy.get(), 0, 65000).bytes, (Bytes{0x11, 0x22, 0x33, 0x44}));
}

TEST_F(CopiedTags, DoublesAndTheLikeComeInFullThoughTheLibraryReadsThemAsBytes) {
    for (const std::uint16_t order : {tiff::kII, tiff::kMM}) {
        tiff::Builder file(order);
        const std::uint32_t values = file.append({1, 2, 3, 4, 5, 6, 7, 8, 11, 12, 13, 14, 15, 16, 17, 18});
        file.page(plainEntries(1, 3, {tiff::field(33550, 12, 2, values), tiff::field(33551, 12, 1, values)}), {{1, 2}});
        const std::string from = folder_.add("from.tif", file.bytes());
        ASSERT_EQ(copyInFile(from, 0, to_, T_CREAT), kCopied);
        const RawTiff copy(to_);
        expectCopied(copy.pages[0], RawTiff(from).pages[0]);
    }
}

TEST_F(CopiedTags, ValuesOfSuchTypesThatLieOutsideTheFileStayAsTheyAre) {
    const std::string from = folder_.add(
        "from.tif", onePage(tiff::kII, plainEntries(1, 3, {tiff::field(33550, 12, 3, 0x10000000)}), {{1, 2}}));
    ASSERT_EQ(copyInFile(from, 0, to_, T_CREAT), kCopied);
    const OpenedTiff copy(to_);
    ASSERT_TRUE(registerImage(copy.get(), 0));
    EXPECT_EQ(storedTag(copy.get(), 0, 33550).bytes, (Bytes{0, 0, 0, 0x10}));
}

TEST_F(CopiedTags, TagsThatLeadToOtherDirectoriesAreLeftOut) {
    const std::string from = folder_.add(
        "from.tif", onePage(tiff::kII,
                            plainEntries(1, 3,
                                         {tiff::longs(330, {8, 8}), tiff::longs(34665, {8}), tiff::longs(34853, {8}),
                                          tiff::longs(40965, {8}), tiff::typed(65000, 13, 1, 4, {8})}),
                            {{1, 2}}));
    ASSERT_EQ(copyInFile(from, 0, to_, T_CREAT), kCopied);
    expectCopied(RawTiff(to_).pages[0], RawTiff(from).pages[0], {330, 34665, 34853, 40965, 65000});
    EXPECT_EQ(RawTiff(to_).pages[0].find(34665), nullptr);
}

} // namespace
