// Things that are no TIFF, and TIFFs whose header, directories and tables lie: the stated error, at once, in little
// memory.
#include "hostile/orderly.h"

namespace {

using namespace vellum::test;

DWORD errorOfOpening(const std::string &path) {
    const OpenedTiff tiff(path);
    EXPECT_FALSE(tiff);
    EXPECT_EQ(GetNumberOfImagesInTiffFile(path.c_str()), 0xFFFFFFFFU);
    EXPECT_EQ(LoadTiffIntoDIB(path.c_str(), 0, 0), nullptr);
    return TiffError();
}

DWORD errorOfOpening(const Bytes &content) {
    const TempFile file(content);
    const DWORD error = errorOfOpening(std::string(file.path()));
    EXPECT_EQ(readFile(file.path()), content);
    return error;
}

TEST(BadFiles, AMissingFileAndAFolderAreIoErrors) {
    const TempFile missing;
    EXPECT_EQ(errorOfOpening(std::string(missing.path())), DWORD{VELLUM_IO_ERROR});
    EXPECT_FALSE(readFile(missing.path()));
    EXPECT_EQ(errorOfOpening(tempFolder()), DWORD{VELLUM_IO_ERROR});
    EXPECT_EQ(errorOfOpening(fixture("")), DWORD{VELLUM_IO_ERROR});
}

TEST(BadFiles, AnEmptyFileIsAnIoError) {
    EXPECT_EQ(errorOfOpening(Bytes{}), DWORD{VELLUM_IO_ERROR});
}

TEST(BadFiles, HeadersOfOtherKindsHaveTheirErrors) {
    EXPECT_EQ(errorOfOpening(Bytes{'I', 'M', 42, 0, 8, 0, 0, 0}), DWORD{VELLUM_BAD_BYTE_ORDER});
    EXPECT_EQ(errorOfOpening(Bytes{'B', 'M', 42, 0, 8, 0, 0, 0}), DWORD{VELLUM_BAD_BYTE_ORDER});
    EXPECT_EQ(errorOfOpening(Bytes{'I', 'I', 43, 0, 8, 0, 0, 0}), DWORD{VELLUM_NOT_TIFF});
    EXPECT_EQ(errorOfOpening(Bytes{'M', 'M', 42, 0, 0, 0, 0, 8}), DWORD{VELLUM_NOT_TIFF});
    EXPECT_EQ(errorOfOpening(Bytes{'I', 'I', 42, 0, 8, 0, 0, 0}), DWORD{VELLUM_IO_ERROR});
    EXPECT_EQ(errorOfOpening(Bytes{'I', 'I', 42, 0}), DWORD{VELLUM_IO_ERROR});
}

TEST(BadFiles, RandomBytesAreNoTiff) {
    for (std::uint32_t seed = 0; seed < 200; ++seed) {
        Random random(seed);
        Bytes content;
        for (std::uint32_t i = 2 + random.below(3000); i > 0; --i) {
            content.push_back(static_cast<std::uint8_t>(random.below(256)));
        }
        content[0] = static_cast<std::uint8_t>(content[0] | 0x80U);
        EXPECT_EQ(errorOfOpening(content), DWORD{VELLUM_BAD_BYTE_ORDER}) << seed;
    }
}

TEST(BadFiles, RandomBytesBehindAGoodHeaderEndOrderly) {
    const Stopwatch watch;
    for (std::uint32_t seed = 0; seed < 1500; ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        Random random(seed);
        Bytes content = seed % 2 == 0 ? Bytes{'I', 'I', 42, 0, 8, 0, 0, 0} : Bytes{'M', 'M', 0, 42, 0, 0, 0, 8};
        const std::uint32_t numbers = 1 + random.below(8); // small numbers make directories that almost work
        for (std::uint32_t i = random.below(600); i > 0; --i) {
            content.push_back(
                static_cast<std::uint8_t>(random.below(3) == 0 ? random.below(256) : random.below(numbers)));
        }
        if (const OpenedTiff tiff(content); tiff) {
            useAllImages(tiff.get(), 2);
        }
        if (seed % 10 == 0) {
            const TempFile file(content);
            if (const OpenedTiff tiff{std::string(file.path())}; tiff) {
                useAllImages(tiff.get(), 2);
            }
        }
    }
    EXPECT_LT(watch.seconds(), kPromptSeconds * 3);
}

// ------------------------------------------------------------------------------------------------ chains

// A directory of a 1 x 1 image.
std::vector<tiff::Entry> smallestImage() {
    return entriesOf({.width = 1, .height = 1, .key = VELLUM_KEY_NONE});
}

TEST(BadChains, OffsetsOutsideTheFileEndTheChain) {
    for (const std::uint32_t outside : {100000U, 0x7FFFFFFFU, 0x80000000U, 0xFFFFFFF0U, 0xFFFFFFFFU}) {
        SCOPED_TRACE(outside);
        tiff::Builder none;
        none.linkTo(outside);
        EXPECT_EQ(errorOfOpening(none.bytes()), DWORD{VELLUM_IO_ERROR});
        tiff::Builder two;
        two.page(smallestImage(), {{0x80}});
        two.page(smallestImage(), {{0x80}});
        two.linkTo(outside);
        const TempFile file(two.bytes());
        const OpenedTiff tiff{std::string(file.path())};
        ASSERT_TRUE(tiff);
        EXPECT_EQ(TiffError(), DWORD{VELLUM_IO_ERROR});
        EXPECT_EQ(NumberOfTiffImages(tiff.get(), VELLUM_ALL_IMAGES), 2);
    }
}

TEST(BadChains, LoopsStopAtAThousandImages) {
    tiff::Builder file;
    const std::uint32_t first = file.page(smallestImage(), {{0x80}});
    const std::uint32_t second = file.page(smallestImage(), {{0x80}});
    for (const std::uint32_t back : {first, second}) {
        file.linkTo(back);
        const Stopwatch watch;
        const TempFile temp(file.bytes());
        const OpenedTiff onDisk{std::string(temp.path())};
        const OpenedTiff inMemory(file.bytes());
        for (const OpenedTiff *tiff : {&onDisk, &inMemory}) {
            ASSERT_TRUE(*tiff);
            EXPECT_EQ(NumberOfTiffImages(tiff->get(), VELLUM_ALL_IMAGES), 1000);
            EXPECT_TRUE(registerImage(tiff->get(), 999));
        }
        EXPECT_LT(watch.seconds(), kPromptSeconds);
    }
}

// The longest directory there can be, a thousand times over.
TEST(BadChains, TheWorstChainOpensInSeconds) {
    tiff::Builder file;
    std::vector<tiff::Entry> entries;
    for (std::uint32_t i = 0; i < 65535; ++i) {
        entries.push_back(tiff::field(1 + i % 65534, 1 + i % 4, 1, 7));
    }
    file.linkTo(file.directory(entries));
    const TempFile temp(file.bytes());
    const Stopwatch watch;
    const PeakMemory memory;
    const OpenedTiff tiff{std::string(temp.path())};
    ASSERT_TRUE(tiff);
    EXPECT_EQ(NumberOfTiffImages(tiff.get(), VELLUM_ALL_IMAGES), 1000);
    EXPECT_TRUE(registerImage(tiff.get(), 500));
    EXPECT_LT(watch.seconds(), kPromptSeconds);
    EXPECT_LT(memory.bytes(), kLittleMemory);
    RecordProperty("milliseconds", static_cast<int>(watch.seconds() * 1000));
}

TEST(BadChains, TheWorstChainInMemoryOpensInSeconds) {
    tiff::Builder file;
    file.linkTo(file.directory(std::vector<tiff::Entry>(65535, tiff::field(300, 3, 2, 7))));
    const OpenedTiff closedAtOnce(file.bytes());
    const Stopwatch watch;
    const OpenedTiff tiff(file.bytes());
    ASSERT_TRUE(tiff);
    EXPECT_EQ(NumberOfTiffImages(tiff.get(), VELLUM_ALL_IMAGES), 1000);
    EXPECT_LT(watch.seconds(), kPromptSeconds);
}

// ------------------------------------------------------------------------------------------------ counts and tables

// An image with one more tag that lies, opened from a file and from memory.
void expectRefusedPromptly(const tiff::Entry &lie) {
    tiff::Builder file;
    std::vector<tiff::Entry> entries = smallestImage();
    entries.push_back(lie);
    file.page(entries, {{0x80}});
    const Stopwatch watch;
    const PeakMemory memory;
    const TempFile temp(file.bytes());
    if (const OpenedTiff onDisk{std::string(temp.path())}; onDisk) {
        EXPECT_FALSE(registerImage(onDisk.get(), 0));
        EXPECT_TRUE(TiffError() == VELLUM_IO_ERROR || TiffError() == VELLUM_NO_MEMORY) << TiffError();
    }
    if (const OpenedTiff inMemory(file.bytes()); inMemory) {
        useAllImages(inMemory.get());
    }
    EXPECT_LT(watch.seconds(), kPromptSeconds);
    EXPECT_LT(memory.bytes(), kLittleMemory);
}

TEST(BadCounts, SizesThatOverflowAreRefused) {
    for (std::uint32_t type = 0; type <= 13; ++type) {
        for (const std::uint32_t count : {0x08000000U, 0x1FFFFFFFU, 0x20000000U, 0x20000001U, 0x40000000U, 0x40000001U,
                                          0x7FFFFFFFU, 0x80000000U, 0x80000001U, 0xFFFFFFF3U, 0xFFFFFFFFU}) {
            SCOPED_TRACE("type " + std::to_string(type) + ", count " + std::to_string(count));
            expectRefusedPromptly(tiff::field(700, type, count, 8));
        }
    }
}

TEST(BadCounts, ManyLargeCountsTogetherAreRefused) {
    tiff::Builder file;
    std::vector<tiff::Entry> entries = smallestImage();
    for (std::uint32_t i = 0; i < 5000; ++i) {
        entries.push_back(tiff::field(700 + i, 1, 0x00FFFFFF, 8));
    }
    file.page(entries, {{0x80}});
    const Stopwatch watch;
    const PeakMemory memory;
    const TempFile temp(file.bytes());
    if (const OpenedTiff tiff{std::string(temp.path())}; tiff) {
        EXPECT_FALSE(registerImage(tiff.get(), 0));
    }
    if (const OpenedTiff tiff(file.bytes()); tiff) {
        useAllImages(tiff.get());
    }
    EXPECT_LT(watch.seconds(), kPromptSeconds);
    EXPECT_LT(memory.bytes(), kLittleMemory);
}

TEST(BadCounts, AStripTableOfABillionEntriesIsRefused) {
    for (const std::uint32_t type : {3U, 4U}) {
        tiff::Builder file;
        std::vector<tiff::Entry> entries =
            entriesOf({.width = 8, .height = 1000000000, .key = VELLUM_KEY_NONE, .rowsPerStrip = 1});
        entries.insert(entries.begin() + 5, tiff::field(273, type, 1000000000, 8));
        file.directory(entries);
        const Stopwatch watch;
        const PeakMemory memory;
        const TempFile temp(file.bytes());
        const OpenedTiff tiff{std::string(temp.path())};
        ASSERT_TRUE(tiff);
        EXPECT_FALSE(registerImage(tiff.get(), 0));
        EXPECT_TRUE(TiffError() == VELLUM_IO_ERROR || TiffError() == VELLUM_NO_MEMORY) << TiffError();
        EXPECT_EQ(LoadTiffIntoDIB(temp.path(), 0, 0), nullptr);
        if (const OpenedTiff inMemory(file.bytes()); inMemory) {
            useAllImages(inMemory.get());
        }
        EXPECT_LT(watch.seconds(), kPromptSeconds);
        EXPECT_LT(memory.bytes(), kLittleMemory);
    }
}

// ------------------------------------------------------------------------------------------------ strips

class BadStrips : public testing::TestWithParam<DWORD> {};

// The picture's strips, with another StripOffsets entry than theirs.
Bytes withStripOffsets(const SmallPicture &picture, const tiff::Entry &offsets) {
    tiff::Builder file;
    file.append(picture.code);
    std::vector<tiff::Entry> entries = entriesOf(picture.page);
    auto at = entries.begin();
    while (at != entries.end() && at->tag < 273) {
        ++at;
    }
    entries.insert(at, offsets);
    file.directory(entries);
    return file.bytes();
}

TEST_P(BadStrips, OffsetsOutsideTheFileAreAnIoErrorWithoutALine) {
    const SmallPicture picture = smallPicture(GetParam());
    for (const std::uint32_t outside : {100000U, 0x7FFFFFFFU, 0x80000000U, 0xFFFFFF00U, 0xFFFFFFFFU}) {
        SCOPED_TRACE(outside);
        const TempFile file(withStripOffsets(picture, tiff::longs(273, {outside})));
        const OpenedTiff tiff{std::string(file.path())};
        ASSERT_TRUE(registerImage(tiff.get(), 0));
        LineLog log;
        EXPECT_EQ(decodeInto(log, tiff.get(), 0), failedWith(VELLUM_IO_ERROR));
        EXPECT_EQ(log.lines, 0U);
    }
}

TEST_P(BadStrips, ATableShorterThanTheImageEndsTheDecode) {
    SmallPicture picture = smallPicture(GetParam());
    picture.page.rowsPerStrip = 1;
    std::vector<Bytes> strips = encodeStrips(picture.page, picture.packed);
    strips.resize(3);
    const Bytes content = codedTiff(picture.page, strips);
    const TempFile file(content);
    const OpenedTiff onDisk{std::string(file.path())};
    const OpenedTiff inMemory(content);
    for (const OpenedTiff *tiff : {&onDisk, &inMemory}) {
        ASSERT_TRUE(registerImage(tiff->get(), 0));
        LineLog log;
        const Outcome outcome = decodeInto(log, tiff->get(), 0);
        EXPECT_EQ(outcome.result, 0U);
        EXPECT_NE(outcome.error, DWORD{VELLUM_OK});
        EXPECT_TRUE(startsWithLinesOf(picture.packed, log));
        EXPECT_EQ(log.lines, 3U);
    }
}

TEST_P(BadStrips, TablesOfEveryTypeAndLengthEndOrderly) {
    SmallPicture picture = smallPicture(GetParam());
    picture.page.rowsPerStrip = 3;
    for (std::uint32_t type = 0; type <= 13; ++type) {
        for (const std::uint32_t count : {0U, 1U, 2U, 3U, 4U, 5U, 9U}) {
            SCOPED_TRACE("type " + std::to_string(type) + ", count " + std::to_string(count));
            const Bytes content = withStripOffsets(picture, tiff::field(273, type, count, 8));
            if (const OpenedTiff tiff(content); tiff) {
                useAllImages(tiff.get());
            }
            const TempFile file(content);
            if (const OpenedTiff tiff{std::string(file.path())}; tiff) {
                useAllImages(tiff.get());
            }
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Hostile, BadStrips, testing::ValuesIn(kAllKeys),
                         [](const testing::TestParamInfo<DWORD> &key) { return "Key" + std::to_string(key.param); });

} // namespace
