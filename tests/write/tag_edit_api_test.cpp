// Adding and deleting tags of files on disk: what the rebuilt file holds, and what is refused with the file as it was.
#include "support/decode_lines.h"
#include "support/encode_lines.h"
#include "support/faults.h"
#include "support/read_tags.h"
#include "write/pages_to_copy.h"
#include "write/raw_pages.h"

#include <gtest/gtest.h>

namespace {

using namespace vellum::test;

constexpr Outcome kEdited = {1, VELLUM_OK};

Outcome add(const std::string &file, LONG index, DWORD tag, DWORD type, const void *values, DWORD count) {
    SetTiffError(VELLUM_INDEX_OUT_OF_RANGE);
    const DWORD result = AddTiffTagToImage(file.c_str(), index, tag, type, values, count);
    return {result, TiffError()};
}

Outcome addText(const std::string &file, LONG index, DWORD tag = 315) {
    return add(file, index, tag, 2, "somebody", 9);
}

Outcome remove(const std::string &file, LONG index, DWORD tag) {
    SetTiffError(VELLUM_INDEX_OUT_OF_RANGE);
    const DWORD result = DeleteTiffTagOfImage(file.c_str(), index, tag);
    return {result, TiffError()};
}

const Bytes kText = {'s', 'o', 'm', 'e', 'b', 'o', 'd', 'y', 0};

class TagEdit : public ::testing::Test {
protected:
    // Adding and deleting fail with this error, the file stays, and nothing is left beside it.
    void expectRefused(const Bytes &content, DWORD error, LONG index = 0) {
        folder_.add("file.tif", content);
        EXPECT_EQ(addText(file_, index), failedWith(error));
        EXPECT_EQ(remove(file_, index, 256), failedWith(error));
        EXPECT_TRUE(readFile(file_) == content) << "the file has changed";
        EXPECT_EQ(folder_.names(), std::vector<std::string>{"file.tif"});
    }
    // The file is rebuilt by both calls.
    void expectRebuilt(const Bytes &content) {
        folder_.add("file.tif", content);
        const RawTiff original(content);
        ASSERT_EQ(addText(file_, 0), kEdited);
        ASSERT_EQ(remove(file_, 0, 315), kEdited);
        const RawTiff rebuilt(file_);
        EXPECT_TRUE(rebuilt.whole);
        EXPECT_FALSE(rebuilt.motorola);
        ASSERT_EQ(rebuilt.pages.size(), original.pages.size());
        for (std::size_t page = 0; page < original.pages.size(); ++page) {
            SCOPED_TRACE(page);
            expectCopied(rebuilt.pages[page], original.pages[page]);
        }
        EXPECT_EQ(folder_.names(), std::vector<std::string>{"file.tif"});
    }

    TempFolder folder_;
    const std::string file_ = folder_.file("file.tif");
};

TEST_F(TagEdit, ATagIsAddedToOneImageAndAllElseStays) {
    for (const std::uint16_t order : {tiff::kII, tiff::kMM}) {
        const RawTiff original(manyPages(order));
        for (LONG image = 0; image < 4; ++image) {
            SCOPED_TRACE(image);
            folder_.add("file.tif", manyPages(order));
            ASSERT_EQ(addText(file_, image), kEdited);
            const RawTiff rebuilt(file_);
            EXPECT_TRUE(rebuilt.whole);
            EXPECT_FALSE(rebuilt.motorola) << "a rebuilt file is in Intel order";
            ASSERT_EQ(rebuilt.pages.size(), 4u);
            EXPECT_EQ(rebuilt.pages[0].offset, 8u);
            for (std::size_t page = 0; page < 4; ++page) {
                expectCopied(rebuilt.pages[page], original.pages[page], {315});
                const RawEntry *entry = rebuilt.pages[page].find(315);
                ASSERT_EQ(entry != nullptr, page == static_cast<std::size_t>(image));
                if (entry != nullptr) {
                    EXPECT_EQ(*entry, (RawEntry{315, 2, 9, kText}));
                }
            }
            EXPECT_EQ(folder_.names(), std::vector<std::string>{"file.tif"});
        }
    }
}

TEST_F(TagEdit, ATagThatIsThereIsReplaced) {
    folder_.add("file.tif", manyPages(tiff::kMM));
    ASSERT_EQ(addText(file_, 2, 65010), kEdited); // twice there
    const RawTiff rebuilt(file_);
    ASSERT_EQ(rebuilt.pages.size(), 4u);
    expectCopied(rebuilt.pages[2], RawTiff(manyPages(tiff::kMM)).pages[2], {65010});
    const auto &entries = rebuilt.pages[2].entries;
    EXPECT_EQ(std::count_if(entries.begin(), entries.end(), [](const RawEntry &entry) { return entry.tag == 65010; }),
              1);
    EXPECT_EQ(rebuilt.pages[2].find(65010)->values, kText);
}

TEST_F(TagEdit, ATagIsDeletedFromOneImage) {
    folder_.add("file.tif", manyPages(tiff::kMM));
    const RawTiff original(file_);
    ASSERT_EQ(remove(file_, 1, 305), kEdited);
    const RawTiff rebuilt(file_);
    ASSERT_EQ(rebuilt.pages.size(), 4u);
    EXPECT_EQ(rebuilt.pages[1].find(305), nullptr);
    for (std::size_t page = 0; page < 4; ++page) {
        expectCopied(rebuilt.pages[page], original.pages[page], {305});
    }
}

TEST_F(TagEdit, DeletingWhatIsNotThereRebuildsAllTheSame) {
    folder_.add("file.tif", manyPages(tiff::kMM));
    ASSERT_EQ(remove(file_, 1, 60000), kEdited);
    EXPECT_FALSE(RawTiff(file_).motorola);
    // No tag has such a number: its low half is not meant.
    ASSERT_EQ(remove(file_, 1, 65536 + 256), kEdited);
    EXPECT_NE(RawTiff(file_).pages[1].find(256), nullptr);
}

TEST_F(TagEdit, EveryKindOfPageIsRebuiltAsItWas) {
    expectRebuilt(manyPages(tiff::kII));
    expectRebuilt(manyPages(tiff::kMM));
}

TEST_F(TagEdit, TheSubfileTypesStay) {
    tiff::Builder file(tiff::kMM);
    for (const std::uint32_t type : {0U, 1U, 2U, 4U}) {
        file.page(plainEntries(1, 3, {tiff::longs(254, {type})}), {{1, 2}});
    }
    file.page(plainEntries(1, 3, {tiff::shorts(255, {3})}), {{1, 2}});
    folder_.add("file.tif", file.bytes());
    ASSERT_EQ(addText(file_, 1), kEdited);
    const OpenedTiff rebuilt(file_);
    for (const DWORD type : {1UL, 4UL}) {
        EXPECT_EQ(NumberOfTiffImages(rebuilt.get(), type), 1);
    }
    EXPECT_EQ(NumberOfTiffImages(rebuilt.get(), 2), 2);
}

TEST_F(TagEdit, TheDecodedPixelsStay) {
    for (const DWORD key : kAllKeys) {
        SCOPED_TRACE(keyName(key));
        folder_.add("file.tif", codedPage(key, tiff::kMM));
        LineLog logs[2];
        for (LineLog &log : logs) {
            const OpenedTiff tiff(file_);
            ASSERT_TRUE(registerImage(tiff.get(), 0));
            EXPECT_EQ(decodeInto(log, tiff.get(), 0), kDecoded);
            if (&log == &logs[0]) {
                ASSERT_EQ(addText(file_, 0), kEdited);
            }
        }
        EXPECT_EQ(logs[0].lines, 20u);
        EXPECT_TRUE(logs[0].data == logs[1].data);
    }
}

TEST_F(TagEdit, FilesThatTheLibraryWroteAreRebuilt) {
    {
        LineSource lines;
        lines.lineBytes = 12;
        lines.data = Bytes(12 * 30, 0x5A);
        for (const DWORD compression : {1UL, 4UL, 5UL, 32773UL}) {
            const WrittenTiff tiff(file_.c_str(), T_APPEND);
            lines.calls = 0;
            ASSERT_EQ(tiff.add(pictureTags(90, 30, 1, 7, {{259, 3, {compression}}, {270, 2, {'a', 'b', 'c', 'd', 0}}}),
                               lines),
                      1u);
        }
    }
    expectRebuilt(*readFile(file_));
}

TEST_F(TagEdit, AFileCanBeEditedAgainAndAgain) {
    folder_.add("file.tif", manyPages(tiff::kII));
    ASSERT_EQ(addText(file_, 3), kEdited);
    const auto once = readFile(file_);
    for (int i = 0; i < 5; ++i) {
        ASSERT_EQ(addText(file_, 3), kEdited);
    }
    EXPECT_TRUE(readFile(file_) == once) << "it grows";
}

// ---- indexes and files

TEST_F(TagEdit, IndexesOutsideTheFileAreError3) {
    for (const LONG index : {-1L, 4L, 1000L, 0x7FFFFFFFL, -0x7FFFFFFFL}) {
        expectRefused(manyPages(tiff::kMM), VELLUM_INDEX_OUT_OF_RANGE, index);
    }
    expectRefused(tiff::Builder().bytes(), VELLUM_INDEX_OUT_OF_RANGE);
}

TEST_F(TagEdit, AFileThatDoesNotOpenIsError6AndOneThatIsNoTiffError1) {
    EXPECT_EQ(addText(file_, 0), failedWith(VELLUM_IO_ERROR));
    EXPECT_EQ(remove(file_, 0, 256), failedWith(VELLUM_IO_ERROR));
    EXPECT_EQ(addText("", 0), failedWith(VELLUM_IO_ERROR));
    EXPECT_EQ(AddTiffTagToImage(nullptr, 0, 256, 3, "ab", 1), 0u);
    EXPECT_EQ(DeleteTiffTagOfImage(nullptr, 0, 256), 0u);
    EXPECT_EQ(TiffError(), DWORD{VELLUM_IO_ERROR});
    EXPECT_EQ(folder_.names(), std::vector<std::string>{});
    expectRefused({'n', 'o', ' ', 't', 'i', 'f', 'f', '!', '!'}, VELLUM_NO_MEMORY);
    expectRefused({}, VELLUM_NO_MEMORY);
    expectRefused({'I', 'I', 42, 0, 100, 0, 0, 0}, VELLUM_NO_MEMORY);
}

TEST_F(TagEdit, PathsBeyond149CharactersAreError7) {
    EXPECT_EQ(addText(folder_.file(std::string(150, 'n') + ".tif"), 0), failedWith(VELLUM_PATH_TOO_LONG));
    EXPECT_EQ(remove(folder_.file(std::string(150, 'n') + ".tif"), 0, 256), failedWith(VELLUM_PATH_TOO_LONG));
}

TEST_F(TagEdit, APathOf149CharactersIsEdited) {
    const std::string name(149 - folder_.file("").size(), 'n');
    folder_.add(name, manyPages(tiff::kMM));
    ASSERT_EQ(folder_.file(name).size(), 149u);
    EXPECT_EQ(addText(folder_.file(name), 0), kEdited);
    EXPECT_EQ(folder_.names(), std::vector<std::string>{name});
}

// ---- the new file beside the old one

TEST_F(TagEdit, AFileOfTheUsersUnderTheTemporaryNameIsNotTouched) {
    folder_.add("file.tif", manyPages(tiff::kMM));
    folder_.add("file.~~~", {1, 2, 3});
    folder_.add("file.~00", {4});
    ASSERT_EQ(addText(file_, 0), kEdited);
    EXPECT_EQ(folder_.names(), (std::vector<std::string>{"file.tif", "file.~00", "file.~~~"}));
    EXPECT_EQ(readFile(folder_.file("file.~~~")), (Bytes{1, 2, 3}));
    EXPECT_EQ(readFile(folder_.file("file.~00")), (Bytes{4}));
    EXPECT_FALSE(RawTiff(file_).motorola);
    EXPECT_EQ(remove(file_, 9, 256), failedWith(VELLUM_INDEX_OUT_OF_RANGE));
    EXPECT_EQ(folder_.names().size(), 3u);
}

TEST_F(TagEdit, WithoutAFreeNameTheCallFails) {
    const Bytes content = manyPages(tiff::kMM);
    folder_.add("file.tif", content);
    folder_.add("file.~~~", {1});
    for (int i = 0; i < 100; ++i) {
        folder_.add(std::string("file.~") + static_cast<char>('0' + i / 10) + static_cast<char>('0' + i % 10), {1});
    }
    EXPECT_EQ(addText(file_, 0), failedWith(VELLUM_IO_ERROR));
    EXPECT_TRUE(readFile(file_) == content);
    EXPECT_EQ(folder_.names().size(), 102u);
}

TEST_F(TagEdit, NamesWithoutExtensionAndWithSeveralDotsAreEdited) {
    std::filesystem::create_directory(folder_.file("a.b"));
    for (const char *name : {"plain", "one.two.three", ".hidden", "file.~~~", "a.b/inner"}) {
        SCOPED_TRACE(name);
        folder_.add(name, manyPages(tiff::kMM));
        const auto before = folder_.names();
        ASSERT_EQ(addText(folder_.file(name), 0), kEdited);
        EXPECT_FALSE(RawTiff(folder_.file(name)).motorola);
        EXPECT_EQ(folder_.names(), before);
    }
}

// ---- what would lose images or data

TEST_F(TagEdit, AChainThatBreaksIsNotRebuilt) {
    tiff::Builder file;
    file.page(plainEntries(1, 3), {{1, 2}});
    file.linkTo(100000);
    expectRefused(file.bytes(), VELLUM_IO_ERROR);
}

TEST_F(TagEdit, AChainThatLoopsIsNotRebuilt) {
    tiff::Builder file;
    const std::uint32_t first = file.page(plainEntries(1, 3), {{1, 2}});
    file.page(plainEntries(1, 3), {{1, 2}});
    file.linkTo(first);
    expectRefused(file.bytes(), VELLUM_INDEX_OUT_OF_RANGE);
}

TEST_F(TagEdit, AThousandImagesAreRebuiltAndOneMoreNot) {
    tiff::Builder file(tiff::kMM);
    for (int i = 0; i < 1000; ++i) {
        file.page(plainEntries(1, 3), {{static_cast<std::uint8_t>(i), 2}});
    }
    folder_.add("file.tif", file.bytes());
    ASSERT_EQ(addText(file_, 999), kEdited);
    const RawTiff rebuilt(file_);
    ASSERT_EQ(rebuilt.pages.size(), 1000u);
    EXPECT_EQ(rebuilt.pages[998].strips, (std::vector<Bytes>{{998 % 256, 2}}));
    EXPECT_NE(rebuilt.pages[999].find(315), nullptr);
    file.page(plainEntries(1, 3), {{1, 2}});
    expectRefused(file.bytes(), VELLUM_INDEX_OUT_OF_RANGE);
}

TEST_F(TagEdit, AnImageThatCannotBeLoadedFailsTheCallWhicheverItIs) {
    tiff::Builder file;
    file.page(plainEntries(1, 3), {{1, 2}});
    file.page(plainEntries(1, 3, {tiff::field(305, 2, 50, 100000)}), {{1, 2}});
    expectRefused(file.bytes(), VELLUM_IO_ERROR, 0);
    expectRefused(file.bytes(), VELLUM_IO_ERROR, 1);
}

TEST_F(TagEdit, AnImageWhoseStripsAreNotThereFailsTheCall) {
    const struct {
        std::vector<tiff::Entry> tags;
        DWORD error;
    } kCases[] = {{{}, VELLUM_TAG_MISSING},
                  {{tiff::longs(273, {8})}, VELLUM_TAG_MISSING},
                  {{tiff::longs(273, {8, 8}), tiff::longs(279, {1})}, VELLUM_STRIP_OUT_OF_RANGE},
                  {{tiff::longs(273, {8}), tiff::longs(279, {0})}, VELLUM_STRIP_OUT_OF_RANGE},
                  {{tiff::longs(273, {8}), tiff::longs(279, {10000})}, VELLUM_IO_ERROR},
                  {{tiff::longs(273, {8}), tiff::longs(279, {0xFFFFFFFF})}, VELLUM_IO_ERROR}};
    for (const auto &[tags, error] : kCases) {
        tiff::Builder file;
        file.page(plainEntries(1, 3), {{1, 2}});
        std::vector<tiff::Entry> entries = plainEntries(1, 3);
        entries.insert(entries.end(), tags.begin(), tags.end());
        file.directory(entries);
        expectRefused(file.bytes(), error);
    }
}

TEST_F(TagEdit, DirectoriesOutsideTheChainWouldBeLostSoTheFileIsNotRebuilt) {
    for (const tiff::Entry &pointer :
         {tiff::longs(330, {8}), tiff::longs(34665, {8}), tiff::longs(34853, {8}), tiff::typed(65000, 13, 1, 4, {8})}) {
        tiff::Builder file;
        file.page(plainEntries(1, 3), {{1, 2}});
        file.page(plainEntries(1, 3, {pointer}), {{1, 2}});
        expectRefused(file.bytes(), VELLUM_BAD_TAG);
        EXPECT_EQ(remove(file_, 1, pointer.tag), kEdited) << "deleted with the tag, they are not missed";
        EXPECT_EQ(RawTiff(file_).pages.size(), 2u);
    }
}

TEST_F(TagEdit, DeletingTheStripTagsIsRefused) {
    const Bytes content = manyPages(tiff::kII);
    folder_.add("file.tif", content);
    EXPECT_EQ(remove(file_, 0, 273), failedWith(VELLUM_TAG_MISSING));
    EXPECT_EQ(remove(file_, 0, 279), failedWith(VELLUM_TAG_MISSING));
    EXPECT_TRUE(readFile(file_) == content);
}

TEST_F(TagEdit, ValuesThatAreNotGivenAreError1) {
    const Bytes content = manyPages(tiff::kII);
    folder_.add("file.tif", content);
    EXPECT_EQ(add(file_, 0, 315, 2, nullptr, 5), failedWith(VELLUM_NO_MEMORY));
    EXPECT_EQ(add(file_, 0, 315, 4, "", 0x40000000), failedWith(VELLUM_NO_MEMORY));
    EXPECT_TRUE(readFile(file_) == content);
    EXPECT_EQ(folder_.names(), std::vector<std::string>{"file.tif"});
}

TEST_F(TagEdit, ADirectoryHasRoomFor65535Entries) {
    std::vector<tiff::Entry> entries = plainEntries(1, 3);
    for (std::uint32_t i = 0; entries.size() < 65533; ++i) {
        entries.push_back(tiff::shorts(1000 + i % 30000, {i % 65536}));
    }
    tiff::Builder file;
    file.page(entries, {{1, 2}});
    folder_.add("file.tif", file.bytes());
    EXPECT_EQ(addText(file_, 0), failedWith(VELLUM_NO_MEMORY));
    EXPECT_TRUE(readFile(file_) == file.bytes());
    ASSERT_EQ(remove(file_, 0, 30000), kEdited);
    ASSERT_EQ(addText(file_, 0), kEdited);
    EXPECT_EQ(RawTiff(file_).pages[0].entries.size(), 65534u) << "the tag was there twice";
}

TEST_F(TagEdit, BigValuesAreStored) {
    folder_.add("file.tif", manyPages(tiff::kMM));
    Bytes value(200000);
    for (std::size_t i = 0; i < value.size(); ++i) {
        value[i] = static_cast<BYTE>(i * 7);
    }
    ASSERT_EQ(add(file_, 1, 37724, 7, value.data(), static_cast<DWORD>(value.size())), kEdited);
    const RawTiff rebuilt(file_);
    ASSERT_EQ(rebuilt.pages.size(), 4u);
    EXPECT_TRUE(rebuilt.pages[1].find(37724)->values == value);
}

TEST_F(TagEdit, ALoneSlongReadsBackAsItWasGiven) {
    folder_.add("file.tif", manyPages(tiff::kMM));
    const DWORD value = 0x12345678;
    ASSERT_EQ(add(file_, 1, 65000, 9, &value, 1), kEdited);
    const OpenedTiff tiff(file_);
    ASSERT_TRUE(registerImage(tiff.get(), 1));
    EXPECT_EQ(storedTag(tiff.get(), 1, 65000).bytes, (Bytes{0x78, 0x56, 0x34, 0x12}));
}

} // namespace
